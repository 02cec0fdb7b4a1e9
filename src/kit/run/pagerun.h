// A page without a window: loaded from start-up on, driven as a user would, and looked at.
//
// The clock moves only when an action says so, so the same page and actions give the same log and the same pixels.
// Names in the page are found from its own folder, as in the previewer.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/headless/headlessdesktop.h"

struct PageAction {
  enum Kind {
    key,   // press the key of that name, until all is drawn
    wait,  // let so many milliseconds pass
    eval,  // type the text at the console and press Enter, until all is drawn
  } kind;
  std::string argument;
};

struct PagePicture {
  int width, height;
  std::vector<uint32_t> pixels;  // 0x00RRGGBB, rows from the top
};

class PageRun {
 public:
  // `readOnly` makes every script's attempt to write a file fail.
  explicit PageRun(bool readOnly);

  // Loads the page and draws it; false when it can't be loaded, which the log explains.
  bool load(const std::string& path);
  void act(const PageAction& action);

  const std::string& log() const { return desktop.log; }
  // What the window would show. The run is over then: the picture takes its pixels.
  PagePicture take();

 private:
  HeadlessDesktop desktop;
};
