// kpg run: runs source files of the language without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void run(const std::vector<std::string>& paths) {
  StandardRuntime runtime;
  bool ok = true;
  for (const std::string& path : paths) ok = runBobFile(runtime, path) && ok;
  failUnless(ok);
}

}  // namespace

void addRunCommand(CommandLine& line) {
  auto paths = std::make_shared<std::vector<std::string>>();
  KpgCommand command = line.command("run", "Run source files, statement by statement; exit status 1 after an error");
  command.add("files", *paths, "Source files, run one after the other in one interpreter").required().type("FILE");
  command.runs([paths] { run(*paths); });
}
