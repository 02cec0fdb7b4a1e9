// A page never behaves differently for being watched: the demo's pages show the same pixels, log the same lines and
// fill Bob's heap to the same byte, whether somebody looks at everything all the time or nobody does.
#include <gtest/gtest.h>

#include "bob/bob.h"
#include "host/headless/headlessdesktop.h"
#include "support/looking.h"

namespace {

struct Outcome {
  std::string log;
  std::vector<uint32_t> window;
  uint32_t heapBytes, collections;
};

Outcome play(const std::string& page, bool watched) {
  HeadlessDesktop desktop;
  std::unique_ptr<LookingObserver> observer;
  if (watched) observer = std::make_unique<LookingObserver>(desktop.shell.engine);
  desktop.start();
  desktop.settle();
  EXPECT_TRUE(desktop.shell.loadPage(DEMO_FOLDER "/" + page)) << desktop.log;
  desktop.settle();
  const char* const keys[] = {"Down", "Right", "Select", "Down", "1", "Left", "Up", "Clear", "S", "DownRight"};
  for (int round = 0; round < 3; ++round)
    for (const char* key : keys) {
      desktop.key(key);
      desktop.settle();
      desktop.wait(30);
    }
  desktop.typeLine("frame.Nothing();");
  desktop.settle();
  EXPECT_EQ(observer && observer->seen > 1000, watched);
  const EngineScope here(desktop.shell.engine);
  const BobMemory memory = bobMemory(scriptInterp());
  return {desktop.log, desktop.window(), memory.heapBytes, memory.collections};
}

TEST(Watched, EveryDemoPageIsTheSameWatchedOrNot) {
  for (const char* page : {"guide.kpg", "settings.kpg", "tour.kpg", "panel.kpg", "game.kpg", "gallery.kpg"}) {
    const Outcome alone = play(page, false), watched = play(page, true);
    EXPECT_EQ(watched.log, alone.log) << page;
    EXPECT_TRUE(watched.window == alone.window) << page;
    EXPECT_EQ(watched.heapBytes, alone.heapBytes) << page;
    EXPECT_EQ(watched.collections, alone.collections) << page;
  }
}

}  // namespace
