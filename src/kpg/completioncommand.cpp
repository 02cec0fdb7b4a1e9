// kpg completion: prints what a shell needs to complete kpg's commands and options.
#include <iostream>
#include <memory>

#include "kpg/commands.h"
#include "kpg/completion.h"

namespace {

void print(const std::string& shell, const std::vector<CommandSummary>& commands) {
  std::cout << (shell == "bash" ? bashCompletion : shell == "zsh" ? zshCompletion : fishCompletion)(commands);
}

}  // namespace

void addCompletionCommand(CommandLine& line) {
  auto shell = std::make_shared<std::string>();
  KpgCommand command = line.command("completion", "Print a script by which a shell completes commands and options");
  command.add("shell", *shell, "bash, zsh or fish").required().type("SHELL").oneOf({"bash", "zsh", "fish"}, "shell");
  command.runs([shell, &line] { print(*shell, line.summaries()); });
}
