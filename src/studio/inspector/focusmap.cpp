#include "studio/inspector/focusmap.h"

#include <algorithm>
#include <map>
#include <set>

#include "studio/inspector/widgettree.h"

namespace {

constexpr int64_t kLane = 4;  // pixels beside the middle of an edge, so that arrows there and back are two

// In the middle of the edge or at the corner that lies that way, a little to the right of who goes there.
FocusPoint edgePoint(const Bounds& b, const FocusWay& side, const FocusWay& going) {
  const auto along = [](int64_t begin, int64_t size, int side, int lane) {
    size = std::max<int64_t>(size, 1);
    if (side != 0) return side < 0 ? begin : begin + size - 1;
    return begin + size / 2 + std::clamp(lane * kLane, -size / 4, size / 4);
  };
  const auto point = [](int64_t v) { return int32_t(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX)); };
  return {point(along(b.x, b.w, side.x, -going.y)), point(along(b.y, b.h, side.y, going.x))};
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
        map.deadLinks.push_back(
            {from.id, labelOf(from.id), way.direction, link.name, sources.placeOf(from.id, attribute)});
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
