#include "engine/widgets/textcontainer.h"

#include <algorithm>
#include <cstring>

#include "engine/base/watch.h"
#include "engine/events/value.h"
#include "engine/page/frame.h"
#include "engine/text/textdraw.h"
#include "gfx/foundation/hstypes.h"
#include "host/host.h"

namespace {

// ---- drawing

// With the style's size above the baseline and a quarter of it below.
bool lineVisible(const ContainerLine& line, const TextStyle& style, int32_t top, int32_t bottom) {
  return line.y >= hsWrapAdd(top, style.size) && line.y + style.size / 4 < bottom;
}

// The line's own style says whether it shows, whichever style draws it.
void draw(TextContainerWidget* widget) {
  widgetPaint(widget);
  const Bounds& bounds = widget->bounds;
  const int32_t top = widget->scrollOffset, bottom = hsWrapAdd(top, bounds.h);
  int32_t number = 0;
  for (const ContainerLine& line : widget->lines) {
    const bool selected = ++number == widget->selectedLine;
    if (!line.style || !lineVisible(line, *line.style, top, bottom)) continue;
    textApplyStyle(selected && widget->selectTextStyle ? *widget->selectTextStyle : *line.style);
    if (!line.content) continue;
    textDraw(line.content, uint32_t(std::strlen(line.content)), hsWrapAdd(bounds.x, line.x),
             hsWrapSub(hsWrapAdd(bounds.y, line.y), widget->scrollOffset));
  }
}

// ---- scrolling and the selection; both draw at once

void drawAtOnce(TextContainerWidget* widget) {
  const DrawingWatch watch(widget->id);
  widget->drawnAs = currentRedraws().nextRedraw();
  draw(widget);
}

// Without a bound: blank space can be scrolled to.
int scroll(TextContainerWidget* widget, int32_t steps) {
  const auto distance = hsWrapMul(int32_t(steps), widget->scrollDelta);
  widget->scrollOffset = hsWrapAdd(widget->scrollOffset, distance);
  drawAtOnce(widget);
  return 1;
}

// Where the view goes when the selection leaves it by `delta` lines: the line that it leaves comes to the far edge.
int32_t pagedOffset(const TextContainerWidget* widget, const ContainerLine& leaving, int32_t delta) {
  const int32_t size = leaving.style->size, height = widget->bounds.h;
  if (delta < 1) return std::max(0, hsWrapSub(leaving.y + size / 4, height));
  const int32_t end = widget->lines.back().y + size / 4;
  int32_t offset = leaving.y - size;
  if (hsWrapAdd(offset, height) > end) offset = hsWrapAdd(hsWrapSub(end, height), 1);
  return std::max(0, offset);
}

int moveSelection(TextContainerWidget* widget, int32_t delta) {
  const int64_t old = int64_t{widget->selectedLine} - 1, target = old + delta;
  const auto count = int64_t(widget->lines.size());
  if (!widget->selectTextStyle || old < 0 || old >= count || target < 0 || target >= count) return 1;
  const ContainerLine& leaving = widget->lines[size_t(old)];
  const int32_t bottom = hsWrapAdd(widget->scrollOffset, widget->bounds.h);
  if (!lineVisible(widget->lines[size_t(target)], *widget->selectTextStyle, widget->scrollOffset, bottom)) {
    if (!leaving.style) return 1;
    widget->scrollOffset = pagedOffset(widget, leaving, delta);
  }
  widget->selectedLine = int32_t(target + 1);
  drawAtOnce(widget);
  return 1;
}

// By events, so that a page can handle them itself. `more` tells whether the selection can go on that way.
int step(TextContainerWidget* widget, int32_t delta, bool more) {
  if (widget->selectedLine == 0) {
    eventSendSimple(widget, kScrollLines, uint32_t(delta));
  } else if (more) {
    eventSendSimple(widget, kMoveSelection, uint32_t(delta));
  }
  return 1;
}

int directionKey(TextContainerWidget* widget, const Event& event) {
  switch (event.data) {
    case kDirectionUp: return step(widget, -1, widget->selectedLine >= 2);
    case kDirectionDown: return step(widget, 1, widget->selectedLine < int32_t(widget->lines.size()));
    default: return widgetBaseEvent(widget, event);
  }
}

// ---- creation

const TextStyle* findStyle(const Widget* widget, const char* name) {
  const TextStyle* style = styleFind(frameOf(widget), name);
  if (!style) hostLog("Unknown text style '%s'\n", name);
  return style;
}

// A line that lacks something is kept, so that the others keep their numbers.
ContainerLine readLine(const Widget* widget, const PageObject& record) {
  ContainerLine line{record.x(), record.y()};
  const char* style;
  if (attrString(record, "style", &style)) {
    line.style = findStyle(widget, style);
  } else {
    hostLog("Missing 'style' attribute\n");
  }
  if (!attrString(record, "content", &line.content)) hostLog("Missing 'content' attribute\n");
  return line;
}

}  // namespace

int TextContainerWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  switch (event->code) {
    case kDirectionKey: return directionKey(this, *event);
    case kFullRedraw:
    case kContentRedraw: draw(this); return 1;
    case kGetValue: return eventAnswerInteger(*event, selectedLine);
    case kScrollLines: return scroll(this, int32_t(event->data));
    case kMoveSelection: return moveSelection(this, int32_t(event->data));
    default: return widgetBaseEvent(this, *event);
  }
}

WidgetPtr<> textContainerCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<TextContainerWidget>(owner, parent, record);
  if (!widget) return nullptr;
  PageTable lines;
  if (widgetAttrTable(widget.get(), "children", &lines))
    for (uint32_t i = 0; i < lines.count(); ++i) widget->lines.push_back(readLine(widget.get(), lines.object(i)));
  if (const char* name = widgetAttrString(widget.get(), "selectTextStyle"))
    widget->selectTextStyle = findStyle(widget.get(), name);
  widgetAttrInt(widget.get(), "selectedLine", &widget->selectedLine);
  if (widget->selectTextStyle) widget->scrollDelta = widget->selectTextStyle->size;
  widgetAttrInt(widget.get(), "scrollDelta", &widget->scrollDelta);
  return widget;
}
