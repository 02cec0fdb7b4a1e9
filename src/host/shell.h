// The shell: the order of start-up, the turn of the step loop, and what keys and menu commands do. The same on every
// desktop.
#pragma once

#include <memory>
#include <string>

#include "host/console.h"
#include "host/desktop.h"
#include "host/screen.h"

enum class Command { loadPage = 1000, exit = 1001 };

struct MenuItem {
  const char* text;  // null for a separator
  Command command;
};

inline constexpr const char* kFileMenuTitle = "&File";
inline constexpr MenuItem kFileMenu[] = {
    {"&Load KOVA Page File...", Command::loadPage}, {nullptr, {}}, {"E&xit", Command::exit}};

class Shell {
 public:
  // The host operations of host.h act on this shell until it is destroyed; there is one at a time.
  explicit Shell(Desktop& desktop);
  ~Shell();
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;

  // Console, engine, script compiler. False when the console can't be made; the program then ends with -1.
  bool start();

  // One turn of the step loop behind a message, or without one.
  void step();

  // Messages, in the terms that the windows get them. Each is to be followed by a step.
  void keyDown(int virtualKey);
  void character(char c);
  void command(Command command);
  void consoleEnter(const std::function<void()>& breakLine);

  // Makes the file's folder the current directory, so that names in the page lead beside it, and loads the page into
  // the top frame. False when it does not load.
  bool loadPage(const std::string& path);

  Desktop& desktop;
  ScreenSurface screen;
  std::unique_ptr<MessageConsole> console;

 private:
  std::unique_ptr<uint8_t[]> imageCacheMemory;
};
