// kpg eval: what the console would answer, without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void eval(const std::vector<std::string>& texts) {
  StandardRuntime runtime;
  bool ok = true;
  for (const std::string& text : texts) ok = bobConsoleEvaluate(bobRootScope(runtime.interp), text) && ok;
  failUnless(ok);
}

}  // namespace

void addEvalCommand(CommandLine& line) {
  auto texts = std::make_shared<std::vector<std::string>>();
  KpgCommand command =
      line.command("eval", "Evaluate each TEXT as a console line, in one interpreter; exit status 1 after an error");
  command.add("text", *texts, "One statement each").required().type("TEXT");
  command.runs([texts] { eval(*texts); });
}
