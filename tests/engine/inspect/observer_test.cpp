// What an observer hears, and in what order.
#include <functional>

#include "engine/inspect/recorder.h"
#include "support/pagefixture.h"

namespace {

using Lines = std::vector<std::string>;

class ObserverTest : public PageTest {
 protected:
  ObserverTest() {
    recorder.names[topFrame()->id] = "top";
    desktop.shell.engine.observer = &recorder;
  }
  ~ObserverTest() override { desktop.shell.engine.observer = nullptr; }

  // Two boxes and a page in the page. The focus is on `a`.
  void loadBoxes() {
    build("inner.kpg", "page: {type: group, children: [{name: x}]}");
    ASSERT_TRUE(load(R"(flags: 8bit
page:
  name: root
  type: group
  start: a
  bgColor: 1
  width: 720
  height: 480
  children:
    - {name: a, x: 10, y: 20, width: 30, height: 40, bgColor: 2, right: b, onClick: 'nothing();'}
    - {name: b, x: 50, y: 20, width: 10, height: 10, bgColor: 3, left: a, onFocus: 'x = 1;'}
    - {name: inner, type: frame, src: inner.kpg}
)"));
  }

  void talk(const std::string& line) {
    desktop.typeLine(line);
    desktop.settle();
    recorder.heard();
  }

  void expectKey(const char* name, const Lines& lines) {
    key(name);
    EXPECT_EQ(recorder.heard(), lines) << name;
  }

  Recorder recorder;
};

TEST_F(ObserverTest, APageLoadsFromTheOutsideInAndGoesChildrenFirst) {
  loadBoxes();
  EXPECT_EQ(recorder.heard(),
            (Lines{"loading top page.kpg", "made root in top as group", "made a in root", "made b in root",
                   "made inner in root as frame", "loading inner inner.kpg", "made root of inner in inner as group",
                   "made x in root of inner", "loaded inner inner.kpg", "focus of top - > a", "loaded top page.kpg"}));
  EXPECT_FALSE(loadFile("none.kpg"));
  EXPECT_EQ(recorder.heard(),
            (Lines{"loading top none.kpg", "gone a", "gone b", "gone inner", "gone x", "gone root of inner",
                   "unloaded inner inner.kpg", "gone root", "unloaded top page.kpg",
                   "log  -- '" + std::filesystem::current_path().generic_string() + "/none.kpg' not found",
                   "refused top none.kpg"}));
}

TEST_F(ObserverTest, AnEventTellsItsWayAndWhoTookIt) {
  loadBoxes();
  recorder.heard();
  expectKey("Clear", {"post 80004 0", "delivered 80004: top a root top inner root top, consumed by -"});
  expectKey("Select",
            {"post 80002 0", "enter hook a onClick 'page.kpg.yaml:10 a.onClick'",
             "log Error: Unbound variable - nothing", "log Happened in page.kpg.yaml:10 a.onClick",
             "fail hook a onClick 'page.kpg.yaml:10 a.onClick'", "delivered 80002: top a root top, consumed by top"});
  expectKey("Right",
            {"post 80001 8", "focus of top a > b", "enter hook b onFocus 'page.kpg.yaml:11 b.onFocus'",
             "leave hook b onFocus 'page.kpg.yaml:11 b.onFocus'", "delivered 80001: top a root top, consumed by top"});

  talk("define take(e) { return e.param0 == 8 ? nil : true; }");
  talk("topFrame.ObserveEvent(0x80001, function (e) { nil; });");
  talk("widgets.b.OnEvent(0x80001, take);");
  expectKey("Left",
            {"post 80001 4", "enter observer top 80001 ''", "leave observer top 80001 ''",
             "enter handler b 80001 'take'", "leave handler b 80001 'take'", "delivered 80001: top b, handled at b"});
  desktop.typeLine("widgets.a.HandleEvent(0x80006);");
  EXPECT_EQ(recorder.heard(), (Lines{"enter console top  'widgets.a.HandleEvent(0x80006);'", "send 80006 0",
                                     "delivered 80006: a root top, consumed by top", "log --> true",
                                     "leave console top  'widgets.a.HandleEvent(0x80006);'"}));
}

TEST_F(ObserverTest, TimersTellWhoseTheyAre) {
  ASSERT_TRUE(load("page: {type: group, name: root, children: [{name: t, timeout: 20}]}"));
  talk("define tick() { nothing(); }");
  talk("KOVA.t = new Timer(tick, 10);");
  desktop.wait(25);
  EXPECT_EQ(recorder.heard(),
            (Lines{"timer of a script", "enter timer -  'tick'", "log Error: Unbound variable - nothing",
                   "log Happened in tick", "fail timer -  'tick'", "timeout of t"}));
}

TEST_F(ObserverTest, DrawingsTellRectangleAndCost) {
  loadBoxes();
  desktop.typeLine("widgets.b.bgColor = 4;");
  desktop.typeLine("widgets.a.Hide();");  // which leaves its background
  recorder.heard();
  recorder.draws = true;
  desktop.settle();
  EXPECT_EQ(recorder.heard(), (Lines{"step 0", "draw b 50 20 10 10", "draw a 10 20 30 40",
                                     "step end 0 filled 1300 copied 0 glyphs 0 redraws 2"}));
}

TEST_F(ObserverTest, TheImageCacheTellsWhatComesAndGoes) {
  const std::string header("\0\0\2\0\1\220\0\1\0\14\0\0", 12);  // 512 x 400
  for (const char* name : {"one.kpx", "two.kpx", "three.kpx"}) writeText(name, header + std::string(512 * 400, '\1'));
  writeText("bad.kpx", std::string("\0\0\2\0\1\220\0\2\0\14\0\0", 12));
  ASSERT_TRUE(load("flags: 8bit\npage: {type: group, name: root, children: [{name: p, type: image, src: one.kpx}]}"));
  for (const char* name : {"two", "bad", "three"}) {
    desktop.typeLine(std::string("widgets.p.src = \"") + name + ".kpx\";");
    desktop.settle();
  }
  Lines images;
  for (const std::string& line : recorder.heard())
    if (line.starts_with("image")) images.push_back(line);
  // 512 x 400 pixels, the name and 33 bytes more; a third does not fit.
  EXPECT_EQ(images, (Lines{"image one.kpx 512x400 204840", "image two.kpx 512x400 204840", "image out one.kpx 204840",
                           "image refused bad.kpx 3", "image three.kpx 512x400 204842"}));
}

// ---- what an observer can't do

// Does all that it can reach, whatever it hears.
class Meddler : public EngineObserver {
 public:
  explicit Meddler(HeadlessDesktop& d) : desktop(d) {}

  void stepBegun(uint32_t) override { meddle(); }
  void stepEnded(uint32_t, const DrawCost&) override { meddle(); }
  void widgetMade(const WidgetMade&) override { meddle(); }
  void widgetGone(WidgetId) override { meddle(); }
  void focusMoved(WidgetId, WidgetId, WidgetId) override { meddle(); }
  void eventDelivered(const EventDelivery&) override { meddle(); }
  void scriptEntered(const ScriptRun&) override { meddle(); }
  void scriptLeft(const ScriptRun&, bool) override { meddle(); }
  void drawn(const Drawing&) override { meddle(); }
  void lineLogged(std::string_view) override { meddle(); }

  int times = 0;

 private:
  void meddle() {
    ++times;
    desktop.key("Right");
    desktop.shell.step();
    desktop.shell.loadPage("page.kpg");
    eventPostSimple(kSelectKey, 0, 0);
    frameUnload(topFrame());
    if (Widget* focus = topFrame()->focus) eventSendSimple(focus, kSelectKey, 0);
    for (const WidgetView& view : inspectWidgets(desktop.shell.engine)) whyNotSeen(desktop.shell.engine, view.id);
    inspectTimers(desktop.shell.engine);
    inspectFrames(desktop.shell.engine);
  }

  HeadlessDesktop& desktop;
};

TEST_F(ObserverTest, AnObserverCanMoveNothing) {
  Meddler meddler(desktop);
  desktop.shell.engine.observer = &meddler;
  loadBoxes();
  EXPECT_EQ(focusName(), "a");
  key("Right");
  EXPECT_EQ(focusName(), "b");
  key("Select");
  desktop.typeLine("x;");
  EXPECT_EQ(log(), "--> 1\n");
  EXPECT_GT(meddler.times, 20);
}

}  // namespace
