// kpg eval: what the console would answer, without a page.
#include <memory>

#include "kpg/commands.h"
#include "kpg/standardruntime.h"

namespace {

void eval(const std::vector<std::string>& texts) {
  StandardRuntime runtime;
  for (const std::string& text : texts) bobConsoleEvaluate(bobRootScope(runtime.interp), text);
}

}  // namespace

void addEvalCommand(CommandLine& line) {
  auto texts = std::make_shared<std::vector<std::string>>();
  KpgCommand command = line.command("eval", "Evaluate each TEXT as a console line, in one interpreter");
  command.add("TEXT", *texts, "one statement each").required();
  command.runs([texts] { eval(*texts); });
}
