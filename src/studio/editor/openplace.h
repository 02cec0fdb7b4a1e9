// How an author's editor is called for a place in a file.
#pragma once

#include <optional>
#include <string>
#include <vector>

struct EditorChoice {
  std::string visual;                 // $VISUAL, or $EDITOR where that is not set; may have options
  std::vector<std::string> programs;  // those of kEditors that there are
  std::string terminal = {};          // the first of kTerminals that there is; empty for none
};

// What opens a file where no editor is named, and the windows for editors that run in a terminal; the best first.
inline constexpr const char* kEditors[] = {"code", "codium", "xdg-open"};
inline constexpr const char* kTerminals[] = {"x-terminal-emulator", "gnome-terminal", "konsole", "xfce4-terminal",
                                             "xterm"};

// The program and its arguments; nothing when there is no editor. An editor that is known takes the line; others only
// open the file. What runs in a terminal, such as vi, gets one; where there is none, the desktop's choice counts.
std::optional<std::vector<std::string>> editorCommand(const EditorChoice& choice, const std::string& file, int line);
