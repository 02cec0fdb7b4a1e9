// kpg run: runs source files of the language without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void run(const std::vector<std::string>& paths, double limitSeconds) {
  StandardRuntime runtime(limitSeconds);
  bool ok = true;
  for (const std::string& path : paths) ok = runBobFile(runtime, path) && ok;
  runtime.failUnless(ok);
}

}  // namespace

void addRunCommand(CommandLine& line) {
  struct Options {
    std::vector<std::string> paths;
    double limitSeconds = 0;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command("run", "Run source files, statement by statement; exit status 1 after an error");
  command.add("files", options->paths, "Source files, run one after the other in one interpreter")
      .required()
      .type("FILE");
  command
      .add("--timeout", options->limitSeconds,
           "End what runs for longer than this processor time; by default there is no limit")
      .type("SECONDS")
      .notNegative();
  command.runs([options] { run(options->paths, options->limitSeconds); });
}
