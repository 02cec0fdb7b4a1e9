// Widgets as views: what they are, where they lie, and what they show.
#include "engine/engine.h"
#include "engine/inspect/shown.h"
#include "engine/page/directions.h"
#include "engine/widgets/rangewidget.h"
#include "engine/widgets/select.h"
#include "engine/widgets/text.h"
#include "engine/widgets/textcontainer.h"
#include "gfx/foundation/hstypes.h"

namespace {

WidgetId idOf(const EventTarget* target) { return target ? target->id : 0; }

Bounds placeOf(const Widget* widget) {
  Bounds place = widget->bounds;
  if (!widget->parentWidget) return place;
  place.x = hsWrapSub(place.x, widget->parentWidget->bounds.x);
  place.y = hsWrapSub(place.y, widget->parentWidget->bounds.y);
  return place;
}

void readFlags(const Widget* widget, WidgetView* view) {
  const auto has = [widget](uint32_t flags) { return (widget->flags & flags) != 0; };
  view->contentHidden = has(kWidgetContentHidden);
  view->backgroundHidden = has(kWidgetBackgroundHidden);
  view->highlighted = has(kWidgetHighlighted);
  view->redrawWaits = widget->dirtyLink != nullptr;
  view->takesUpDown = has(kWidgetNavigateUpDown);
  view->takesLeftRight = has(kWidgetNavigateLeftRight);
  view->active = widget->targetFlags & kTargetActive;
  if (has(kWidgetHasBgColor)) view->bgColor = widget->bgColor;
}

void readContent(const Widget* widget, WidgetView* view) {
  view->background = widget->background.value_or("");
  view->text = textShown(widget);
  view->style = styleName(widget, styleShown(widget));
  view->picture = pictureShown(widget);
  if (!view->picture.empty()) view->pictureRefusal = currentImages().refusalOf(view->picture.c_str());
  if (const auto* range = dynamic_cast<const RangeWidget*>(widget)) view->value = range->value;
  if (const auto* select = dynamic_cast<const SelectWidget*>(widget)) {
    view->count = select->choices.size();
    if (view->count) view->selected = select->current;
  }
  if (const auto* list = dynamic_cast<const TextContainerWidget*>(widget)) {
    view->count = list->lines.size();
    if (list->selectedLine > 0) view->selected = size_t(list->selectedLine) - 1;
  }
}

WidgetView viewOf(const Widget* widget) {
  const Frame* frame = frameOf(widget);
  WidgetView view;
  view.id = widget->id;
  view.parent = idOf(widget->parentWidget);
  view.frame = idOf(frame);
  view.level = levelOf(widget);
  view.kind = kindOf(widget);
  view.name = widget->name ? widget->name : "";
  view.record = widget->record.offset;
  view.given = {widget->record.x(), widget->record.y(), widget->record.width(), widget->record.height()};
  view.place = placeOf(widget);
  view.bounds = widget->bounds;
  view.isRoot = isRootWidget(widget);
  view.focused = frame && frame->focus == widget;
  view.drawnAs = widget->drawnAs;
  readFlags(widget, &view);
  readContent(widget, &view);
  return view;
}

LinkView linkOf(const Widget* widget, const Direction& direction) {
  LinkView link;
  link.direction = static_cast<const char*>(direction.links[0]);
  PageScript script;
  const auto attribute = direction.script ? attrFind(widget->record, direction.script) : std::nullopt;
  link.script = attribute && PageTag(attribute->tag) == PageTag::script && attrScript(*attribute, &script);
  for (const StringAttribute name : direction.links) {
    const char* target = name ? attrPlainString(widget->record, name) : nullptr;
    if (!target) continue;
    if (link.direction == static_cast<const char*>(name)) link.name = target;
    if (!link.target) link.target = idOf(frameOf(widget)->findWidget(target));
  }
  return link;
}

std::vector<LinkView> linksOf(const Widget* widget) {
  std::vector<LinkView> links;
  if (!frameOf(widget)) return links;
  for (const Direction& direction : kDirections) links.push_back(linkOf(widget, direction));
  return links;
}

}  // namespace

std::vector<WidgetView> inspectWidgets(Engine& engine) {
  const EngineScope here(engine);
  std::vector<WidgetView> views;
  for (const Widget* widget : walkWidgets(engine)) views.push_back(viewOf(widget));
  return views;
}

std::optional<WidgetView> inspectWidget(Engine& engine, WidgetId id) {
  const EngineScope here(engine);
  const Widget* widget = widgetById(engine, id);
  return widget ? std::optional(viewOf(widget)) : std::nullopt;
}

std::vector<LinkView> inspectLinks(Engine& engine, WidgetId id) {
  const EngineScope here(engine);
  const Widget* widget = widgetById(engine, id);
  return widget ? linksOf(widget) : std::vector<LinkView>{};
}

void inspectPage(Engine& engine, WidgetId frame, const std::function<void(WidgetDetails)>& look) {
  const EngineScope here(engine);
  for (const Widget* widget : walkWidgets(engine))
    if (frame != 0 && idOf(frameOf(widget)) == frame) look({viewOf(widget), attributesOf(widget), linksOf(widget)});
}

std::vector<std::string> inspectTextLines(Engine& engine, WidgetId id) {
  const EngineScope here(engine);
  const auto* text = dynamic_cast<const TextWidget*>(widgetById(engine, id));
  return text ? textLines(*text) : std::vector<std::string>{};
}
