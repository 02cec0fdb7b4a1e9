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

// On the frame's page or one inside it. Frames are not nested deep.
Widget* findOnPage(const Frame* frame, WidgetId id) {
  for (Widget* widget = frame->widgets; widget; widget = widget->nextInFrame) {
    if (widget->id == id) return widget;
    const auto* inner = dynamic_cast<const Frame*>(widget);
    if (Widget* found = inner ? findOnPage(inner, id) : nullptr) return found;
  }
  return nullptr;
}

}  // namespace

std::vector<Widget*> walkWidgets(const Engine& engine) {
  std::vector<Widget*> found, waiting;
  if (engine.topFrame) waiting.push_back(engine.topFrame);
  Children children;
  while (!waiting.empty()) {
    Widget* next = waiting.back();
    waiting.pop_back();
    found.push_back(next);
    if (auto* frame = dynamic_cast<Frame*>(next)) children.merge(childrenOf(frame));
    if (const auto inside = children.find(next); inside != children.end())
      waiting.insert(waiting.end(), inside->second.begin(), inside->second.end());
  }
  return found;
}

Widget* widgetById(const Engine& engine, WidgetId id) {
  if (id == 0 || !engine.topFrame) return nullptr;
  return engine.topFrame->id == id ? engine.topFrame : findOnPage(engine.topFrame, id);
}

int levelOf(const Widget* widget) {
  int level = 0;
  while ((widget = widget->parentWidget)) ++level;
  return level;
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
