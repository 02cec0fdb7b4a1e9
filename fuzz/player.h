// The player for targets that load whole pages: one engine for many inputs, since its start takes longer than most
// pages, and no pixels of the desktop, which nobody looks at.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "folder.h"
#include "gfx/foundation/hsdebug.h"
#include "host/headless/headlessdesktop.h"
#include "kit/source/pagewriter.h"

// How many widgets of a page are looked at closely, which takes longer than most pages do.
inline constexpr size_t kLookedAt = 3;

// The file in which an input has its page, and by which that page can name itself.
inline constexpr const char* kSelf = "p";

// Pages that hold themselves, or load themselves again and again, would take most of the time: after so many loads the
// page is an empty one.
class LoadLimit : public EngineObserver {
 public:
  explicit LoadLimit(Engine& e) : engine(e) { engine.observer = this; }
  ~LoadLimit() override { engine.observer = nullptr; }

  void pageLoading(WidgetId, std::string_view) override {
    constexpr int kMostLoads = 8;
    static const std::vector<uint8_t> empty = writePage({});
    if (++loads == kMostLoads) writeBytes(kSelf, empty.data(), empty.size());
  }

 private:
  Engine& engine;
  int loads = 0;
};

// As a block, since the console runs the first statement of a line alone.
inline void typeStatements(HeadlessDesktop& desktop, const std::string& statements) {
  desktop.typeLine("{ " + statements + " }");
}

// Without a page, and with little left of the inputs before. The current directory is a folder for the input's files.
inline HeadlessDesktop& playerWithoutPage() {
  constexpr int kInputsOfAnEngine = 100;
  static std::unique_ptr<HeadlessDesktop> desktop;
  static int inputs = 0;
  enterFolder();
  if (!desktop || ++inputs == kInputsOfAnEngine) {
    hsSetHaltProc([] {});  // numbers that leave their range are reported
    desktop.reset();
    desktop = std::make_unique<HeadlessDesktop>();
    desktop->start();
    desktop->shell.screen.take();
    inputs = 0;
  }
  desktop->typeLine("topFrame.UnloadPage();");
  typeStatements(*desktop, "KOVA.w = KOVA.t = KOVA.e = KOVA.f = KOVA.s = nil; gc();");
  desktop->settle();
  desktop->edit.select({0, -1});
  desktop->edit.replaceSelection("");
  desktop->log.clear();
  return *desktop;
}
