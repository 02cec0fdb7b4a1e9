// How an author's editor is called for a place in a file.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct EditorChoice {
  std::string visual;                 // $VISUAL, or $EDITOR where that is not set; may have options
  std::vector<std::string> programs;  // those of `code`, `codium`, `xdg-open` that there are
};

// The program and its arguments; nothing when there is no editor. An editor that is known takes the line; others only
// open the file. What runs in a terminal, such as vi, is left to the desktop's choice.
std::optional<std::vector<std::string>> editorCommand(const EditorChoice& choice, const std::string& file, int line);
