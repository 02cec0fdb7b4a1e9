#include "studio/inspector/focusmap.h"

#include <algorithm>
#include <map>
#include <set>

#include "studio/inspector/widgettree.h"

namespace {

constexpr int64_t kStub = 24;  // pixels of an arrow that leads nowhere
constexpr int64_t kLane = 4;   // pixels beside the middle of an edge, so that arrows there and back are two

FocusPoint pointOf(int64_t x, int64_t y) {
  const auto fitting = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
  return {fitting(x), fitting(y)};
}

std::string counted(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// In the middle of the edge or at the corner that lies that way, a little to the right of who goes there.
FocusPoint edgePoint(const Bounds& b, const FocusWay& side, const FocusWay& going) {
  const auto along = [](int64_t begin, int64_t size, int side, int lane) {
    size = std::max<int64_t>(size, 1);
    if (side != 0) return side < 0 ? begin : begin + size - 1;
    return begin + size / 2 + std::clamp(lane * kLane, -size / 4, size / 4);
  };
  return pointOf(along(b.x, b.w, side.x, -going.y), along(b.y, b.h, side.y, going.x));
}

class FocusMapper {
 public:
  FocusMapper(PageRun& r, WidgetSources& s, WidgetId frame) : engine(r.engine()), sources(s), ways(engine, frame) {}

  FocusMap run() {
    map.frame = ways.frame();
    map.start = ways.start();
    map.missingStart = ways.missingStart();
    const std::set<size_t> byArrows = ways.reached(false), byDigits = ways.reached(true);
    addStops(byArrows, byDigits);
    for (const FocusWidget& widget : ways.widgets()) addLinks(widget);
    for (const size_t i : byDigits)
      for (const LinkView& link : ways.widgets()[i].links)
        map.scriptsMayMove |= ways.widgets()[i].stateOf(link) == ArrowState::script;
    return std::move(map);
  }

 private:
  void addStops(const std::set<size_t>& byArrows, const std::set<size_t>& byDigits) {
    std::set<WidgetId> targets{map.start};
    for (const FocusWidget& widget : ways.widgets())
      for (const LinkView& link : widget.links) targets.insert(link.target);
    for (size_t i = 0; i < ways.widgets().size(); ++i) {
      const WidgetView& widget = ways.widgets()[i].view;
      if (!ways.widgets()[i].answersFocus && !targets.contains(widget.id)) continue;
      const FocusReach reach = byArrows.contains(i)   ? FocusReach::arrows
                               : byDigits.contains(i) ? FocusReach::digits
                                                      : FocusReach::never;
      map.stops.push_back({widget.id, labelOf(widget.id), widget.bounds, reach, widget.id == map.start, widget.focused,
                           widget.contentHidden});
    }
  }

  void addLinks(const FocusWidget& widget) {
    const WidgetView& from = widget.view;
    for (const LinkView& link : widget.links) {
      if (link.name.empty()) continue;
      const WidgetId to = ways.named(link.name);
      const FocusWay& way = focusWay(link.direction);
      if (to == 0) {
        const std::string attribute(link.direction);
        const FocusPoint tail = edgePoint(from.bounds, way, way);
        map.deadLinks.push_back({from.id, labelOf(from.id), way.direction, link.name, from.contentHidden, tail,
                                 pointOf(int64_t(tail.x) + kStub * way.x, int64_t(tail.y) + kStub * way.y),
                                 sources.placeOf(from.id, attribute)});
        continue;
      }
      const FocusWay opposite{"", -way.x, -way.y};
      map.arrows.push_back({from.id, to, way.direction, widget.stateOf(link), edgePoint(from.bounds, way, way),
                            edgePoint(ways.widgets()[ways.placeOf(to)].view.bounds, opposite, way)});
    }
  }

  std::string labelOf(WidgetId id) {
    if (labels.empty()) labels = widgetLabels(engine);
    return labels.at(id);
  }

  Engine& engine;
  WidgetSources& sources;
  const FocusWays ways;
  FocusMap map;
  std::map<WidgetId, std::string> labels;
};

}  // namespace

FocusMap focusMap(PageRun& run, WidgetSources& sources, WidgetId frame) {
  return FocusMapper(run, sources, frame).run();
}

std::string summaryOf(const FocusMap& map) {
  if (!map.missingStart.empty()) return "Focus map: there is no widget '" + map.missingStart + "' to start at";
  const size_t lost = size_t(std::count_if(map.stops.begin(), map.stops.end(), [](const FocusStop& stop) {
    return !stop.isHidden && stop.reach != FocusReach::arrows;
  }));
  std::string text = "Focus map: ";
  if (lost == 0) {
    text += "the direction keys reach every widget";
  } else {
    text += "no direction key reaches " + counted(lost, "widget", "widgets");
    if (map.scriptsMayMove) text += ", though scripts may";
  }
  if (!map.deadLinks.empty()) {
    const DeadLink& link = map.deadLinks.front();
    text += "; " + counted(map.deadLinks.size(), "link leads", "links lead") + " nowhere: ";
    text += std::string(link.direction) + " of " + link.label + (map.deadLinks.size() > 1 ? " and others" : "");
  }
  return text;
}
