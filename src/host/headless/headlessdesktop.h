// A desktop without windows: a clock that moves only when asked, keys as the messages that a keyboard would send,
// console text and pixels to read. The same inputs lead to the same bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/edittext.h"
#include "host/shell.h"

class HeadlessDesktop : public Desktop {
 public:
  HeadlessDesktop() : shell(*this) {}

  bool start() { return shell.start(); }

  // Steps until nothing is left to draw, or until what runs is to end (breathe).
  void settle();

  // A key of the remote control by name (Up Down Left Right Select Clear Backspace UpLeft UpRight DownLeft DownRight
  // 0..9 S), sent as its keyboard messages; false for an unknown name. Does not step.
  bool key(std::string_view name);

  // Types the text at the end of the console and presses Enter.
  void typeLine(std::string_view text);

  // What the screen window shows, 0x00RRGGBB: it repaints at once whatever the shell has converted.
  const std::vector<uint32_t>& window() const { return shell.screen.dibBits; }

  // The clock moves on by 1 millisecond and one step is taken, `milliseconds` times.
  void wait(uint32_t milliseconds);

  EditControl* createConsole(const std::string& title, int width, int height) override;
  void createScreen(const std::string&, int, int) override {}
  void invalidate(const DesktopRect&) override {}
  std::optional<std::string> chooseFile(const std::string&, const std::string&, const std::string&) override;
  void consoleOutput(char c) override { log += c; }
  uint32_t milliseconds() override { return clock; }
  void quit() override { hasQuit = true; }

  uint32_t clock = 0;  // milliseconds
  EditText edit;
  std::string log;                          // all that the system wrote to the console
  std::optional<std::string> fileToChoose;  // what the open dialog will answer
  bool hasQuit = false;
  Shell shell;
};
