// The previewer's desktop: a console window, a screen window, and wall time.
//
// The engine needs a step after every message and whenever a timer is due. In between nothing visible can change, so
// the program sleeps.
#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>
#include <memory>

#include "host/qt/consoleedit.h"
#include "host/qt/screenwidget.h"
#include "host/shell.h"

class QtDesktop : public Desktop {
 public:
  QtDesktop();
  ~QtDesktop() override;

  bool start();

  EditControl* createConsole(const std::string& title, int width, int height) override;
  void createScreen(const std::string& title, int width, int height) override;
  void invalidate(const DesktopRect& rect) override;
  std::optional<std::string> chooseFile(const std::string& title, const std::string& filterName,
                                        const std::string& pattern) override;
  uint32_t milliseconds() override { return uint32_t(sinceStart.elapsed()); }
  bool breathe() override;
  void quit() override;

 private:
  void stepEngine();  // one step, then sleep until the next is due
  void schedule();
  [[noreturn]] void halt();  // the engine stops for ever; the windows go on

  Shell shell{*this};
  QElapsedTimer sinceStart, sinceStep;  // since the windows were last served
  QTimer wakeUp;
  bool stopped = false;  // while a dialog is open, or for ever after a halt
  std::unique_ptr<QMainWindow> consoleWindow, screenWindow;
  ConsoleEdit* edit = nullptr;
  ScreenWidget* screen = nullptr;
};
