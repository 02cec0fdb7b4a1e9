// A desktop inside of a browser's page, or of node. To one without windows it adds files that are fetched when the
// player asks for them, a clock that its caller sets, and pixels to read by the rectangle that has changed.
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/headless/headlessdesktop.h"

// What has changed on the screen: w x h pixels, rows from the top, each four bytes R G B A. w is 0 when nothing has.
struct WebFrame {
  int x = 0, y = 0, w = 0, h = 0;
  const uint32_t* pixels = nullptr;
};

class WebDesktop : public HeadlessDesktop {
 public:
  // Sets the clock (milliseconds since the start) and steps until nothing is left to draw, or until `budget`
  // milliseconds have been spent; a script or a load that runs on is not interrupted. Returns when to call it again: 0
  // at once, the milliseconds until the next timer, or -1 for not before somebody does something.
  int run(uint32_t now, double budget);

  // What has changed since the last call; lasts until the next one.
  WebFrame frame();

  // What the console wrote since the last call.
  std::string takeLog() { return std::exchange(log, {}); }

  // Forgets what wasn't there, and the files that were fetched: they may have changed.
  void forgetFetched();

  void createScreen(const std::string&, int width, int height) override { invalidate({0, 0, width, height}); }
  void invalidate(const DesktopRect& rect) override;
  const std::string* fileMade(const std::filesystem::path& path) override;

 private:
  int left = 0, top = 0, right = 0, bottom = 0;  // what has changed
  std::vector<uint32_t> pixels;
  std::set<std::filesystem::path> fetched, missing;
};
