#include "studio/editor/openplace.h"

#include <algorithm>
#include <filesystem>
#include <sstream>
#include <string_view>

namespace {

using Command = std::vector<std::string>;

bool isOneOf(const std::string& name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool needsTerminal(const std::string& name) {
  return isOneOf(name, {"vi", "vim", "nvim", "nano", "pico", "ed", "micro", "hx", "helix", "joe", "ne"});
}

// The option after which a terminal takes a command with its arguments.
std::string commandOption(const std::string& terminal) {
  if (terminal == "gnome-terminal") return "--";
  return terminal == "xfce4-terminal" ? "-x" : "-e";
}

Command withPlace(Command command, const std::string& file, int line) {
  const std::string name = std::filesystem::path(command.front()).filename().string();
  const std::string at = std::to_string(line);
  if (line <= 0) {
    command.push_back(file);
  } else if (isOneOf(name, {"code", "codium", "code-insiders", "cursor"})) {
    command.insert(command.end(), {"--goto", file + ":" + at});
  } else if (isOneOf(name, {"subl", "sublime_text", "zed", "hx", "helix"})) {
    command.push_back(file + ":" + at);
  } else if (isOneOf(name, {"kate", "kwrite", "idea", "clion", "pycharm"})) {
    command.insert(command.end(), {"--line", at, file});
  } else if (isOneOf(name, {"gedit", "gvim", "emacs", "emacsclient", "mousepad", "geany", "gnome-text-editor", "vi",
                            "vim", "nvim", "nano", "pico", "micro", "joe", "ne"})) {
    command.insert(command.end(), {"+" + at, file});
  } else {
    command.push_back(file);
  }
  return command;
}

}  // namespace

std::optional<Command> editorCommand(const EditorChoice& choice, const std::string& file, int line) {
  std::istringstream words(choice.visual);
  Command visual;
  for (std::string word; words >> word;) visual.push_back(word);
  const bool inTerminal = !visual.empty() && needsTerminal(std::filesystem::path(visual.front()).filename().string());
  if (!visual.empty() && !inTerminal) return withPlace(visual, file, line);
  if (inTerminal && !choice.terminal.empty()) {
    Command command{choice.terminal, commandOption(choice.terminal)};
    const Command editor = withPlace(visual, file, line);
    command.insert(command.end(), editor.begin(), editor.end());
    return command;
  }
  if (choice.programs.empty()) return std::nullopt;
  return withPlace({choice.programs.front()}, file, line);
}
