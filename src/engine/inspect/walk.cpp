#include "engine/inspect/walk.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "engine/engine.h"
#include "engine/widgets/image.h"
#include "engine/widgets/number.h"
#include "engine/widgets/select.h"
#include "engine/widgets/slider.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"

namespace {

// What lies in each widget of a frame's page, the last one first.
using Children = std::unordered_map<const Widget*, std::vector<Widget*>>;

Children childrenOf(Frame* frame) {
  std::unordered_set<const Widget*> listed;
  for (const Widget* widget = frame->widgets; widget; widget = widget->nextInFrame) listed.insert(widget);
  Children children;
  for (Widget* widget = frame->widgets; widget; widget = widget->nextInFrame)
    children[listed.contains(widget->parentWidget) ? widget->parentWidget : frame].push_back(widget);
  for (auto& [parent, list] : children) std::reverse(list.begin(), list.end());
  return children;
}

}  // namespace

std::vector<WalkedWidget> walkWidgets(const Engine& engine) {
  std::vector<WalkedWidget> found, waiting;
  if (engine.topFrame) waiting.push_back({engine.topFrame, 0});
  Children children;
  while (!waiting.empty()) {
    const WalkedWidget next = waiting.back();
    waiting.pop_back();
    found.push_back(next);
    if (auto* frame = dynamic_cast<Frame*>(next.widget)) children.merge(childrenOf(frame));
    if (const auto inside = children.find(next.widget); inside != children.end())
      for (Widget* child : inside->second) waiting.push_back({child, next.level + 1});
  }
  return found;
}

Widget* widgetById(const Engine& engine, WidgetId id) {
  if (id == 0) return nullptr;
  for (const WalkedWidget& walked : walkWidgets(engine))
    if (walked.widget->id == id) return walked.widget;
  return nullptr;
}

WidgetKind kindOf(const Widget* widget) {
  if (dynamic_cast<const ImageWidget*>(widget)) return WidgetKind::image;
  if (dynamic_cast<const Frame*>(widget)) return WidgetKind::frame;
  if (dynamic_cast<const TextWidget*>(widget)) return WidgetKind::text;
  if (dynamic_cast<const NumberWidget*>(widget)) return WidgetKind::number;
  if (dynamic_cast<const SliderWidget*>(widget)) return WidgetKind::slider;
  if (dynamic_cast<const SelectWidget*>(widget)) return WidgetKind::select;
  if (dynamic_cast<const TextContainerWidget*>(widget)) return WidgetKind::textContainer;
  const char* type = attrPlainString(widget->record, "type");
  return type && std::string_view(type) == "group" ? WidgetKind::group : WidgetKind::box;
}

std::string_view widgetKindName(WidgetKind kind) {
  switch (kind) {
    case WidgetKind::box: return "";
    case WidgetKind::group: return "group";
    case WidgetKind::image: return "image";
    case WidgetKind::frame: return "frame";
    case WidgetKind::text: return "text";
    case WidgetKind::number: return "number";
    case WidgetKind::slider: return "slider";
    case WidgetKind::select: return "select";
    case WidgetKind::textContainer: return "textContainer";
  }
  return "";
}
