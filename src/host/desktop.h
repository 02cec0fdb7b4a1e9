// What a desktop must be able to do for the shell. A backend only moves messages and pixels.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "host/editcontrol.h"

struct DesktopRect {
  int x, y, w, h;  // pixels
};

class Desktop {
 public:
  virtual ~Desktop() = default;

  // The console window with an empty text control of width x height pixels in it; null when that fails.
  virtual EditControl* createConsole(const std::string& title, int width, int height) = 0;

  // The screen window with its menu; its pixels are the shell's ScreenSurface.
  virtual void createScreen(const std::string& title, int width, int height) = 0;

  // The rectangle of the screen window shows old pixels; paint it when there is time.
  virtual void invalidate(const DesktopRect& rect) = 0;

  // Asks for a page file; nothing when the user cancels. The result is a full path.
  virtual std::optional<std::string> chooseFile(const std::string& title, const std::string& filterName,
                                                const std::string& pattern) = 0;

  // What the console wrote, in order and before any trimming.
  virtual void consoleOutput(char) {}

  // The system itself has written this message, not a script; its last byte is on the console now.
  virtual void systemMessage(std::string_view) {}

  // The bytes of a file that is made when it is asked for, by its full name, in the place of one on the disk; null for
  // others. They must last until the next call.
  virtual const std::string* fileMade(const std::filesystem::path&) { return nullptr; }

  // A file of the disk has been opened for reading.
  virtual void fileOpened(const std::filesystem::path&) {}

  // A file that was to be read doesn't exist, under this path or one that differs from it in case.
  virtual void fileMissing(const std::filesystem::path&) {}

  virtual uint32_t milliseconds() = 0;  // since the program started

  // Called now and then while a script or a chain of timers runs on and on: a chance to paint the windows and to close
  // them. No message may reach the shell meanwhile. False when what runs is to end.
  virtual bool breathe() { return true; }

  // Ends the program. Nothing is unloaded or torn down.
  virtual void quit() = 0;
};
