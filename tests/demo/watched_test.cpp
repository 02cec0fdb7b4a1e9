// A page never behaves differently for being watched: the demo's pages show the same pixels, log the same lines and
// fill Bob's heap to the same byte, whether somebody looks at everything all the time or nobody does.
#include <gtest/gtest.h>

#include "bob/bob.h"
#include "engine/inspect.h"
#include "host/headless/headlessdesktop.h"

namespace {

// Looks at all that there is whenever it hears something.
class Watcher : public EngineObserver {
 public:
  explicit Watcher(Engine& e) : engine(e) { engine.observer = this; }
  ~Watcher() override { engine.observer = nullptr; }

  void stepEnded(uint32_t, const DrawCost&) override { look(); }
  void widgetMade(const WidgetMade&) override { look(); }
  void focusMoved(WidgetId, WidgetId, WidgetId) override { look(); }
  void eventDelivered(const EventDelivery&) override { look(); }
  void scriptLeft(const ScriptRun&, bool) override { look(); }
  void lineLogged(std::string_view) override { look(); }  // in the middle of a collection, too

  size_t seen = 0;

 private:
  void look() {
    if (++looks % 8 == 0) lookClosely();
    seen += inspectWidgets(engine).size() + inspectFrames(engine).size() + inspectTimers(engine).size() +
            inspectHeap(engine).collections + inspectImageCache(engine).entries.size();
  }

  void lookClosely() {
    for (const WidgetView& view : inspectWidgets(engine))
      seen += inspectAttributes(engine, view.id).size() + inspectLinks(engine, view.id).size() +
              whyNotSeen(engine, view.id).size();
    seen += widgetsAt(engine, 360, 240).size() + inspectStyles(engine).size() + inspectFonts(engine).size() +
            size_t(inspectGlyphCache(engine).strikes);
  }

  Engine& engine;
  size_t looks = 0;
};

struct Outcome {
  std::string log;
  std::vector<uint32_t> window;
  uint32_t heapBytes, collections;
};

Outcome play(const std::string& page, bool watched) {
  HeadlessDesktop desktop;
  std::unique_ptr<Watcher> watcher;
  if (watched) watcher = std::make_unique<Watcher>(desktop.shell.engine);
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
  EXPECT_EQ(watcher && watcher->seen > 1000, watched);
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
