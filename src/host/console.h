// The message console: everything the system logs, and a prompt.
//
// Output goes to the caret or over the selection, not to the end: a message can land in the middle of what
// somebody is typing, and it replaces a selected stretch.
#pragma once

#include <array>
#include <functional>
#include <string_view>

#include "host/editcontrol.h"

class MessageConsole {
 public:
  explicit MessageConsole(EditControl& control) : edit(control) {}

  // Text shows when a line ends, or when a byte finds the 1024-byte buffer full. LF goes out as CR LF.
  void consolePutChar(char c);
  void write(std::string_view text);
  void flush();

  // Enter was typed. `breakLine` is what the control itself does with the key; the selection, or else the caret's
  // whole line, is passed to `evaluate` after that. Nothing is evaluated when there is no text.
  void enter(const std::function<void()>& breakLine, const std::function<void(std::string_view)>& evaluate);

 private:
  void trim();

  EditControl& edit;
  std::array<char, 1024> buffer;
  size_t pending = 0;  // bytes of buffer in use
};
