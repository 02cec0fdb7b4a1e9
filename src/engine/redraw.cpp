#include "engine/redraw.h"

#include "engine/graveyard.h"
#include "engine/widget.h"

namespace {

Widget* head = nullptr;
Widget** tail = &head;

Widget* take() {
  Widget* widget = head;
  redrawRemove(widget);
  return widget;
}

void drawFully(Widget* widget) {
  widget->flags &= ~(kWidgetFullRedraw | kWidgetContentRedraw);
  if (widget->flags & kWidgetContentHidden) {
    widgetPaint(widget);
  } else {
    eventSendSimple(widget, kFullRedraw, 0);
  }
}

void drawContent(Widget* widget) {
  widget->flags &= ~kWidgetContentRedraw;
  if (!(widget->flags & kWidgetContentHidden)) eventSendSimple(widget, kContentRedraw, 0);
}

}  // namespace

void widgetMarkDirty(Widget* widget, uint32_t bits) {
  if (widget->gone) return;
  if (!(widget->flags & kWidgetQueued)) {
    widget->nextDirty = nullptr;
    widget->dirtyLink = tail;
    *tail = widget;
    tail = &widget->nextDirty;
  }
  widget->flags |= kWidgetQueued | bits;
}

void redrawRemove(Widget* widget) {
  if (!(widget->flags & kWidgetQueued)) return;
  *widget->dirtyLink = widget->nextDirty;
  if (widget->nextDirty) widget->nextDirty->dirtyLink = widget->dirtyLink;
  if (tail == &widget->nextDirty) tail = widget->dirtyLink;
  widget->flags &= ~kWidgetQueued;
}

bool redrawPending() { return head != nullptr; }

void redrawDrain() {
  EngineCall call;
  while (head) {
    Widget* widget = take();
    if (widget->flags & kWidgetFullRedraw) drawFully(widget);
    if (widget->flags & kWidgetContentRedraw && !widget->gone) drawContent(widget);
  }
}

void redrawReset() {
  head = nullptr;
  tail = &head;
}
