// kpg run: runs source files of the language without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

struct RunOptions {
  std::vector<std::string> paths;
  double limitSeconds = 0;
  bool lines = false;
};

void run(const RunOptions& options) {
  StandardRuntime runtime(options.limitSeconds);
  if (options.lines) runtime.namePlaces();
  bool ok = true;
  for (const std::string& path : options.paths) ok = runBobFile(runtime, path) && ok;
  runtime.failUnless(ok);
}

}  // namespace

void addRunCommand(CommandLine& line) {
  auto options = std::make_shared<RunOptions>();
  KpgCommand command = line.command("run", "Run source files, statement by statement; exit status 1 after an error");
  command.add("files", options->paths, "Source files, run one after the other in one interpreter")
      .required()
      .type("FILE");
  command.flag("--lines", options->lines, "After an error, print FILE:LINE of each line of the traceback, too");
  command
      .add("--timeout", options->limitSeconds,
           "End what runs for longer than this processor time; by default there is no limit")
      .type("SECONDS")
      .notNegative();
  command.runs([options] { run(*options); });
}
