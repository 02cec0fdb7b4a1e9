#include "studio/inspector/focusmap.h"

#include <map>
#include <random>
#include <set>

#include "engine/page/frame.h"
#include "inspectorpage.h"

namespace {

class FocusMapTest : public InspectorPage {
 protected:
  FocusMap mapOf(WidgetId frame = 0) { return focusMap(run(), *sources, frame); }

  std::string nameOf(WidgetId id) { return inspectWidget(engine(), id)->name; }

  std::map<std::string, FocusReach> reachOf(const FocusMap& map) {
    std::map<std::string, FocusReach> reach;
    for (const FocusStop& stop : map.stops) reach[stop.label] = stop.reach;
    return reach;
  }
};

TEST_F(FocusMapTest, ArrowsLeadAlongLinksAndDeadOnesAreTold) {
  open(R"(page:
  type: group
  width: 720
  height: 480
  start: a
  children:
    - {name: a, x: 100, y: 100, width: 40, height: 20, right: b, down: c, upLeft: nowhere}
    - {name: b, x: 200, y: 100, width: 40, height: 20, left: a, onDown: x = 1;}
    - {type: number, name: c, x: 100, y: 200, width: 40, height: 20, navigate: upDown, up: a, left: b}
    - {name: d, x: 300, y: 100, width: 40, height: 20, highlightFrame: true}
    - {name: plain}
    - {name: lost, hidden: both, left: a,
       right: gone}
)");
  const FocusMap map = mapOf();
  EXPECT_EQ(map.frame, inspectFrames(engine()).front().id);
  EXPECT_EQ(map.start, idOf("a"));
  EXPECT_TRUE(map.scriptsMayMove) << "b has a script for down";
  using enum FocusReach;
  EXPECT_EQ(reachOf(map), (std::map<std::string, FocusReach>{
                              {"a", arrows}, {"b", arrows}, {"c", arrows}, {"d", digits}, {"lost", digits}}));
  for (const FocusStop& stop : map.stops) {
    EXPECT_EQ(stop.isStart, stop.label == "a");
    EXPECT_EQ(stop.isFocused, stop.label == "a");
    EXPECT_EQ(stop.isHidden, stop.label == "lost");
  }
  std::string arrowsFound;
  for (const FocusArrow& arrow : map.arrows)
    arrowsFound += nameOf(arrow.from) + " " + std::string(arrow.direction) + " " + nameOf(arrow.to) +
                   (arrow.state == ArrowState::takenByKind ? " taken" : "") + "\n";
  EXPECT_EQ(arrowsFound, "a down c\na right b\nb left a\nc up a taken\nc left b\nlost left a\n");
  // From the right edge of a to the left one of b, and back beside that.
  EXPECT_EQ(map.arrows[1].tail, (FocusPoint{139, 114}));
  EXPECT_EQ(map.arrows[1].head, (FocusPoint{200, 114}));
  EXPECT_EQ(map.arrows[2].tail, (FocusPoint{200, 106}));
  EXPECT_EQ(map.arrows[2].head, (FocusPoint{139, 106}));
  ASSERT_EQ(map.deadLinks.size(), 2u);
  EXPECT_EQ(map.deadLinks[0].name, "nowhere");
  EXPECT_EQ(map.deadLinks[0].direction, "upLeft");
  EXPECT_EQ(map.deadLinks[0].place->line, 7);
  EXPECT_EQ(map.deadLinks[0].tail, (FocusPoint{100, 100}));
  EXPECT_EQ(map.deadLinks[0].head, (FocusPoint{76, 76}));
  EXPECT_EQ(map.deadLinks[1].label, "lost");
  EXPECT_TRUE(map.deadLinks[1].isHidden);
  EXPECT_EQ(map.deadLinks[1].place->line, 13);
  EXPECT_EQ(
      summaryOf(map),
      "Focus map: no direction key reaches 1 widget, though scripts may; 2 links lead nowhere: upLeft of a and others");
}

TEST_F(FocusMapTest, WithoutAStartTheSearchBeginsAtTheFocus) {
  const std::string children =
      "children: [{name: a, right: b}, {name: b}, {name: c, highlightSrc: a.gif}, {name: d, onClick: x = 1;}]}\n";
  open("page: {type: group, " + children);
  EXPECT_EQ(mapOf().start, 0u);
  for (const FocusStop& stop : mapOf().stops) EXPECT_EQ(stop.reach, FocusReach::never) << stop.label;
  open("page: {type: group, start: z, onLoad: 'widgets.a.Focus();', " + children);
  EXPECT_EQ(mapOf().missingStart, "z");
  EXPECT_EQ(summaryOf(mapOf()), "Focus map: there is no widget 'z' to start at");
  open("page: {type: group, start: a, children: [{name: a, right: b}, {name: b}]}");
  EXPECT_EQ(summaryOf(mapOf()), "Focus map: the direction keys reach every widget");
}

TEST_F(FocusMapTest, KeysGoToThePageInside) {
  write("inner.yaml", "page: {type: group, start: in, children: [{name: in, right: on}, {name: on}]}\n");
  buildPage(at("inner.yaml"), at("inner.kpg"));
  open("page: {type: group, start: f, children: [{type: frame, name: f, src: inner.kpg, down: o}, {name: o}]}\n");
  EXPECT_EQ(mapOf().frame, idOf("f"));
  EXPECT_EQ(reachOf(mapOf()), (std::map{std::pair(std::string("in"), FocusReach::arrows), {"on", FocusReach::arrows}}));
  const FocusMap outer = mapOf(inspectFrames(engine()).front().id);
  ASSERT_EQ(outer.arrows.size(), 1u);
  EXPECT_EQ(outer.arrows[0].state, ArrowState::staysInside);
  EXPECT_EQ(reachOf(outer).at("o"), FocusReach::never) << "the page inside takes digits, too";
  EXPECT_TRUE(mapOf(999'999).stops.empty());
}

// ---- against the keys themselves

std::string randomWidget(std::mt19937& random, int number, int count, int depth) {
  const auto pick = [&](int n) { return int(random() % unsigned(n)); };
  const auto anyName = [&] { return "w" + std::to_string(pick(count + 2)); };  // two that nobody has
  const char* const kinds[] = {"text", "number", "slider", "select", "textContainer", "image", "group", "frame", ""};
  const std::string kind = kinds[pick(9)];
  std::string text = "{name: w" + std::to_string(pick(8) == 0 ? pick(count) : number) + ", width: 10, height: 10";
  if (!kind.empty()) text += ", type: " + kind;
  for (const char* link : {"up", "down", "left", "right", "upLeft", "upRight", "downLeft", "downRight"})
    if (pick(5) == 0) text += std::string(", ") + link + ": " + anyName();
  for (const char* hook : {"onUp", "onDown", "onLeft", "onRight"})
    if (pick(12) == 0) text += std::string(", ") + hook + ": x = 1;";
  const char* const navigates[] = {"upDown", "leftRight", "both"};
  if ((kind == "number" || kind == "slider" || kind == "select") && pick(2))
    text += std::string(", navigate: ") + navigates[pick(3)];
  if (kind == "text" && pick(3) == 0) text += ", maxLength: 2";
  if (kind == "frame") text += std::string(", src: ") + (pick(2) ? "focused.kpg" : "idle.kpg");
  if (kind == "group" && depth < 3)
    text += ", children: [" + randomWidget(random, number + 100, count, depth + 1) + "]";
  return text + "}";
}

// Presses every key on every widget that can be reached, as nothing else says where keys lead.
class KeyPresser {
 public:
  explicit KeyPresser(PageRun& r) : run(r), frame(r.engine().topFrame), start(frame->focus) {}

  std::set<WidgetId> reached(const std::vector<std::string>& keys) {
    std::set<WidgetId> found;
    std::vector<Widget*> waiting;
    const auto reach = [&](Widget* widget) {
      if (widget && found.insert(widget->id).second) waiting.push_back(widget);
    };
    reach(start);
    while (!waiting.empty()) {
      Widget* from = waiting.back();
      waiting.pop_back();
      for (const std::string& key : keys) reach(pressed(from, key));
    }
    return found;
  }

  // Who has the focus after the key.
  Widget* pressed(Widget* from, const std::string& key) {
    {
      const EngineScope here(run.engine());
      widgetFocus(frame, from);
    }
    run.act({PageAction::key, key});
    return frame->focus;
  }

 private:
  PageRun& run;
  Frame* frame;
  Widget* start;
};

TEST_F(FocusMapTest, ItSaysWhatTheKeysDo) {
  write("focused.yaml", "page: {type: group, start: a, children: [{name: a}]}\n");
  write("idle.yaml", "page: {type: group, children: [{name: a}]}\n");
  for (const char* name : {"focused", "idle"})
    buildPage(at(std::string(name) + ".yaml"), at(std::string(name) + ".kpg"));
  const std::vector<std::string> arrowKeys{"Up", "Down", "Left", "Right", "UpLeft", "UpRight", "DownLeft", "DownRight"};
  std::vector<std::string> allKeys = arrowKeys;
  for (int digit = 0; digit < 10; ++digit) allKeys.push_back(std::to_string(digit));
  std::mt19937 random(18);
  for (int round = 0; round < 40; ++round) {
    const int count = 3 + int(random() % 12);
    const std::string kind = random() % 2 ? ", type: text, maxLength: 1" : "";  // one that takes the digits itself
    std::string source = "page: {type: group, start: w0, children: [{name: w0, right: w1" + kind + "}";
    for (int i = 1; i < count; ++i) source += ",\n" + randomWidget(random, i, count, 0);
    open(source + "]}\n");
    const WidgetId top = inspectFrames(engine()).front().id;
    const FocusMap map = mapOf(top);
    KeyPresser presser(run());
    std::set<WidgetId> byArrows = presser.reached(arrowKeys);
    const std::set<WidgetId> byAll = presser.reached(allKeys);
    std::set<WidgetId> stops;
    for (const FocusStop& stop : map.stops) {
      const FocusReach expected = byArrows.contains(stop.id) ? FocusReach::arrows
                                  : byAll.contains(stop.id)  ? FocusReach::digits
                                                             : FocusReach::never;
      EXPECT_EQ(stop.reach, expected) << stop.label << "\n" << source;
      stops.insert(stop.id);
    }
    for (const WidgetId id : byArrows) EXPECT_TRUE(stops.contains(id)) << source;
    for (const FocusArrow& arrow : map.arrows) {
      Widget* from = nullptr;
      for (Widget* w = engine().topFrame->widgets; w; w = w->nextInFrame)
        if (w->id == arrow.from) from = w;
      std::string key(arrow.direction);
      key[0] = char(key[0] - 'a' + 'A');
      const WidgetId expected = arrow.state == ArrowState::followed ? arrow.to : arrow.from;
      EXPECT_EQ(presser.pressed(from, key)->id, expected) << nameOf(arrow.from) << " " << key << "\n" << source;
    }
    if (HasFailure()) return;
  }
}

}  // namespace
