// The previewer's desktop on Windows: a console window, a screen window, and wall time.
//
// The engine gets a step after every message and whenever a timer is due; in between nothing visible can change, so
// the program sleeps. One pixel of the television is one of the screen, or, where pixels are small, a square of them:
// a whole factor, by the monitor that a window is on.
#pragma once

#include <windows.h>

#include <chrono>

#include "host/shell.h"
#include "host/win32/consolecontrol.h"

class Win32Desktop : public Desktop {
 public:
  explicit Win32Desktop(HINSTANCE instance);

  bool start();
  void run();  // until a window is closed, which ends the program

  EditControl* createConsole(const std::string& title, int width, int height) override;
  void createScreen(const std::string& title, int width, int height) override;
  void invalidate(const DesktopRect& rect) override;
  std::optional<std::string> chooseFile(const std::string& title, const std::string& filterName,
                                        const std::string& pattern) override;
  uint32_t milliseconds() override;
  bool breathe() override;
  void quit() override;

 private:
  using Clock = std::chrono::steady_clock;

  static LRESULT CALLBACK consoleProcedure(HWND window, UINT message, WPARAM word, LPARAM data);
  static LRESULT CALLBACK screenProcedure(HWND window, UINT message, WPARAM word, LPARAM data);
  HWND createWindow(const std::string& className, const std::string& title, WNDPROC procedure, HMENU menu, int width,
                    int height);
  void onScreenMessage(UINT message, WPARAM word);
  void paint();
  void waitForWork();
  [[noreturn]] void halt();  // the engine stops for ever; the windows go on

  Shell shell{*this};
  const HINSTANCE instance;
  const Clock::time_point started = Clock::now();
  Clock::time_point lastStep = started;  // when the windows were last served
  bool stopped = false;                  // while a dialog is open, or for ever after a halt
  ConsoleControl edit;
  HWND consoleWindow = nullptr, screenWindow = nullptr;
  int consoleWidth = 0, consoleHeight = 0;  // of the client area, in pixels of a plain monitor
};
