// The shell: the order of start-up, the step loop, and what keys and menu commands do. The same on every desktop.
//
// It owns an engine and is that engine's host. The engine is current while one of the operations here runs, and not
// otherwise; whoever calls the engine's plain functions makes it current first.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "engine/engine.h"
#include "host/console.h"
#include "host/desktop.h"
#include "host/fileaccess.h"
#include "host/screen.h"

enum class Command { loadPage = 1000, exit = 1001 };

struct MenuItem {
  const char* text;  // null for a separator
  Command command;
};

inline constexpr const char* kFileMenuTitle = "&File";
inline constexpr MenuItem kFileMenu[] = {
    {"&Load KOVA Page File...", Command::loadPage}, {nullptr, {}}, {"E&xit", Command::exit}};

class Shell : public Host {
 public:
  explicit Shell(Desktop& desktop);
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;

  // Console, engine, script compiler. False when the console can't be made or memory doesn't reach; the program then
  // ends with -1.
  bool start();

  // One step of the engine, after a message or without one.
  void step();

  bool busy() const { return engine.busy(); }  // whether a step would do anything but fire timers
  std::optional<uint32_t> nextTimer() const { return engine.timers.nextDue(); }  // on the desktop's clock

  // Messages, in the terms that the windows get them. Each is to be followed by a step. What these, a step and a load
  // can't get the memory for is left undone, and the console says so.
  void keyDown(int virtualKey);
  void character(char c);
  void command(Command command);
  void consoleEnter(const std::function<void()>& breakLine);

  // Makes the file's folder the page's, so that names in the page are found beside it, and loads the page into the top
  // frame. False when it does not load.
  bool loadPage(const std::string& path);

  Desktop& desktop;
  ScreenSurface screen;
  std::unique_ptr<MessageConsole> console;
  std::filesystem::path folder;  // where relative names lead; empty for where the program was started
  FileAccess access;
  uintmax_t written = 0;                   // bytes, by scripts
  uintmax_t* writtenByScripts = &written;  // or where several openings count them together
  bool scriptsHaveWrittenAll = false;
  // Bytes by the full name of their file, which are found before what the disk has, if it has any.
  std::map<std::filesystem::path, std::string> filesInMemory;

 private:
  std::unique_ptr<uint8_t[]> imageCacheMemory;

 public:
  Engine engine{*this};  // goes first, as its end still draws on what is above
};
