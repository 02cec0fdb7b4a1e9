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

Command withPlace(Command command, const std::string& file, int line) {
  const std::string name = std::filesystem::path(command.front()).filename().string();
  const std::string at = std::to_string(line);
  if (line <= 0) {
    command.push_back(file);
  } else if (isOneOf(name, {"code", "codium", "code-insiders", "cursor"})) {
    command.insert(command.end(), {"--goto", file + ":" + at});
  } else if (isOneOf(name, {"subl", "sublime_text", "zed"})) {
    command.push_back(file + ":" + at);
  } else if (isOneOf(name, {"kate", "kwrite", "idea", "clion", "pycharm"})) {
    command.insert(command.end(), {"--line", at, file});
  } else if (isOneOf(name, {"gedit", "gvim", "emacs", "emacsclient", "mousepad", "geany", "gnome-text-editor"})) {
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
  if (!visual.empty() && !needsTerminal(std::filesystem::path(visual.front()).filename().string()))
    return withPlace(visual, file, line);
  if (choice.programs.empty()) return std::nullopt;
  return withPlace({choice.programs.front()}, file, line);
}
