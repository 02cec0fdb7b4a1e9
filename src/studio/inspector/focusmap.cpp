#include "studio/inspector/focusmap.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

#include "studio/inspector/widgettree.h"

namespace {

constexpr size_t kDigitTargets = 9;
constexpr int64_t kLane = 4;  // pixels beside the middle of an edge, so that arrows there and back are two

struct Way {
  std::string_view direction;
  int x, y;  // -1, 0 or 1
};
constexpr Way kWays[] = {{"up", 0, -1},      {"down", 0, 1},      {"left", -1, 0},    {"right", 1, 0},
                         {"upLeft", -1, -1}, {"downLeft", -1, 1}, {"upRight", 1, -1}, {"downRight", 1, 1}};

const Way& wayOf(std::string_view direction) {
  return *std::find_if(std::begin(kWays), std::end(kWays), [&](const Way& way) { return way.direction == direction; });
}

// In the middle of the edge or at the corner that lies that way, a little to the right of who goes there.
FocusPoint edgePoint(const Bounds& b, const Way& side, const Way& going) {
  const auto along = [](int64_t begin, int64_t size, int side, int lane) {
    size = std::max<int64_t>(size, 1);
    if (side != 0) return side < 0 ? begin : begin + size - 1;
    return begin + size / 2 + std::clamp(lane * kLane, -size / 4, size / 4);
  };
  const auto point = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
  return {point(along(b.x, b.w, side.x, -going.y)), point(along(b.y, b.h, side.y, going.x))};
}

// Who takes which keys for itself, by its kind.
class KeyTaker {
 public:
  KeyTaker(const WidgetView& w, bool typed, bool inside) : widget(w), isTypedInto(typed), hasFocusInside(inside) {}

  ArrowState stateOf(const LinkView& link) const {
    const Way& way = wayOf(link.direction);
    if (hasFocusInside) return ArrowState::staysInside;
    const bool isDiagonal = way.x != 0 && way.y != 0;
    const bool takesAny = widget.takesUpDown || widget.takesLeftRight;
    if ((isDiagonal && takesAny) || (way.x == 0 && widget.takesUpDown) || (way.y == 0 && widget.takesLeftRight))
      return ArrowState::takenByKind;
    if (widget.kind == WidgetKind::textContainer && way.x == 0) return ArrowState::takenByKind;
    return link.script ? ArrowState::script : ArrowState::followed;
  }

  bool takesDigits() const { return isTypedInto || hasFocusInside; }

 private:
  const WidgetView& widget;
  bool isTypedInto, hasFocusInside;
};

class FocusMapper {
 public:
  FocusMapper(PageRun& r, WidgetSources& s, WidgetId frame) : engine(r.engine()), sources(s) {
    frames = inspectFrames(engine);
    map.frame = frame != 0 ? frame : innermost();
    for (WidgetView& widget : inspectWidgets(engine))
      if (widget.frame == map.frame && widget.level > 0) widgets.push_back(std::move(widget));
    for (size_t i = 0; i < widgets.size(); ++i) numbers[widgets[i].id] = i;
  }

  FocusMap run() {
    if (widgets.empty()) return std::move(map);
    readPage();
    readOrder();
    findStart();
    const std::set<size_t> byArrows = search(false), byDigits = search(true);
    addStops(byArrows, byDigits);
    for (size_t i = 0; i < widgets.size(); ++i) addLinks(i);
    for (const size_t i : byDigits)
      for (const LinkView& link : pages[i].links)
        map.scriptsMayMove |= pages[i].keys.stateOf(link) == ArrowState::script;
    return std::move(map);
  }

 private:
  struct Keys {
    std::vector<LinkView> links;
    KeyTaker keys;
    bool answersFocus;
  };

  const FrameView* findFrame(WidgetId id) const {
    const auto found = std::find_if(frames.begin(), frames.end(), [&](const FrameView& f) { return f.id == id; });
    return found == frames.end() ? nullptr : &*found;
  }

  // From the top one on, as long as what has the focus is a frame with a page.
  WidgetId innermost() const {
    if (frames.empty()) return 0;
    const FrameView* frame = &frames.front();
    for (const FrameView* next = findFrame(frame->focus); next && next->widgets > 0; next = findFrame(frame->focus))
      frame = next;
    return frame->id;
  }

  void readPage() {
    for (const WidgetView& widget : widgets) {
      bool answersFocus = false, isTypedInto = false;
      for (const AttributeView& attribute : inspectAttributes(engine, widget.id)) {
        if (attribute.origin != ValueOrigin::page) continue;
        if (attribute.name == "maxLength") isTypedInto = true;
        answersFocus |= answers(attribute);
      }
      const FrameView* inside = findFrame(widget.id);
      pages.push_back(
          {inspectLinks(engine, widget.id), KeyTaker(widget, isTypedInto, inside && inside->focus != 0), answersFocus});
    }
  }

  static bool answers(const AttributeView& attribute) {
    constexpr std::array<std::string_view, 13> kSigns{"highlightTextStyle",
                                                      "highlightSrc",
                                                      "selectTextStyle",
                                                      "navigate",
                                                      "maxLength",
                                                      "onClick",
                                                      "onFocus",
                                                      "onBlur",
                                                      "onUp",
                                                      "onDown",
                                                      "onLeft",
                                                      "onRight",
                                                      "highlightFrame"};
    if (attribute.name == "highlightFrame") return attribute.text == "true";
    const bool isLink = std::any_of(std::begin(kWays), std::end(kWays),
                                    [&](const Way& way) { return way.direction == attribute.name; });
    return isLink || std::find(kSigns.begin(), kSigns.end(), attribute.name) != kSigns.end();
  }

  // Digits count, and names are looked for, in an order in which what lies in a widget comes before it.
  void readOrder() {
    std::map<WidgetId, std::vector<size_t>> children;
    for (size_t i = 0; i < widgets.size(); ++i) children[widgets[i].parent].push_back(i);
    struct Step {
      size_t widget;
      bool isEntered;
    };
    std::vector<Step> waiting;
    const auto enter = [&](WidgetId parent) {
      const std::vector<size_t>& list = children[parent];
      for (auto child = list.rbegin(); child != list.rend(); ++child) waiting.push_back({*child, false});
    };
    enter(map.frame);
    while (!waiting.empty()) {
      const Step step = waiting.back();
      const WidgetView& widget = widgets[step.widget];
      if (!step.isEntered) {
        waiting.back().isEntered = true;
        enter(widget.id);
        continue;
      }
      waiting.pop_back();
      if (digits.size() < kDigitTargets) digits.push_back(step.widget);
      if (!widget.name.empty()) names.emplace(widget.name, widget.id);
    }
  }

  WidgetId named(const std::string& name) const {
    const auto found = names.find(name);
    return found == names.end() ? 0 : found->second;
  }

  void findStart() {
    const FrameView& frame = *findFrame(map.frame);
    if (!frame.start.empty()) map.start = named(frame.start);
    if (!frame.start.empty() && map.start == 0) map.missingStart = frame.start;
    if (map.start == 0 && numbers.contains(frame.focus)) map.start = frame.focus;
  }

  std::set<size_t> search(bool withDigits) const {
    std::set<size_t> reached;
    std::vector<size_t> waiting;
    const auto reach = [&](size_t i) {
      if (reached.insert(i).second) waiting.push_back(i);
    };
    if (const auto start = numbers.find(map.start); start != numbers.end()) reach(start->second);
    while (!waiting.empty()) {
      const Keys& from = pages[waiting.back()];
      waiting.pop_back();
      for (const LinkView& link : from.links)
        if (const auto to = numbers.find(link.target);
            to != numbers.end() && from.keys.stateOf(link) == ArrowState::followed)
          reach(to->second);
      if (withDigits && !from.keys.takesDigits())
        for (const size_t i : digits) reach(i);
    }
    return reached;
  }

  void addStops(const std::set<size_t>& byArrows, const std::set<size_t>& byDigits) {
    std::set<WidgetId> targets{map.start};
    for (const Keys& page : pages)
      for (const LinkView& link : page.links) targets.insert(link.target);
    for (size_t i = 0; i < widgets.size(); ++i) {
      const WidgetView& widget = widgets[i];
      if (!pages[i].answersFocus && !targets.contains(widget.id)) continue;
      const FocusReach reach = byArrows.contains(i)   ? FocusReach::arrows
                               : byDigits.contains(i) ? FocusReach::digits
                                                      : FocusReach::never;
      map.stops.push_back({widget.id, labelOf(widget.id), widget.bounds, reach, widget.id == map.start, widget.focused,
                           widget.contentHidden});
    }
  }

  void addLinks(size_t i) {
    const WidgetView& from = widgets[i];
    for (const LinkView& link : pages[i].links) {
      if (link.name.empty()) continue;
      const WidgetId to = named(link.name);
      const Way& way = wayOf(link.direction);
      if (to == 0) {
        const std::string attribute(link.direction);
        map.deadLinks.push_back(
            {from.id, labelOf(from.id), way.direction, link.name, sources.placeOf(from.id, attribute)});
        continue;
      }
      const Way opposite{"", -way.x, -way.y};
      map.arrows.push_back({from.id, to, way.direction, pages[i].keys.stateOf(link), edgePoint(from.bounds, way, way),
                            edgePoint(widgets[numbers.at(to)].bounds, opposite, way)});
    }
  }

  std::string labelOf(WidgetId id) {
    if (labels.empty()) labels = widgetLabels(engine);
    return labels.at(id);
  }

  Engine& engine;
  WidgetSources& sources;
  FocusMap map;
  std::vector<FrameView> frames;
  std::vector<WidgetView> widgets;  // of the page
  std::vector<Keys> pages;          // of each
  std::map<WidgetId, size_t> numbers;
  std::map<std::string, WidgetId> names;
  std::vector<size_t> digits;  // where they lead, from 1
  std::map<WidgetId, std::string> labels;
};

}  // namespace

FocusMap focusMap(PageRun& run, WidgetSources& sources, WidgetId frame) {
  return FocusMapper(run, sources, frame).run();
}
