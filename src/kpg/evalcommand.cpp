// kpg eval: what the console would answer, without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void eval(const std::vector<std::string>& texts, double limitSeconds) {
  StandardRuntime runtime(limitSeconds);
  bool ok = true;
  for (const std::string& text : texts) ok = bobConsoleEvaluate(bobRootScope(runtime.interp), text) && ok;
  runtime.failUnless(ok);
}

}  // namespace

void addEvalCommand(CommandLine& line) {
  struct Options {
    std::vector<std::string> texts;
    double limitSeconds = 10;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command =
      line.command("eval", "Evaluate each TEXT as a console line, in one interpreter; exit status 1 after an error");
  command.add("text", options->texts, "One statement each").required().type("TEXT");
  command
      .add("--timeout", options->limitSeconds,
           "End what runs for longer than this processor time; 10 by default, 0 for never")
      .type("SECONDS")
      .notNegative();
  command.runs([options] { eval(options->texts, options->limitSeconds); });
}
