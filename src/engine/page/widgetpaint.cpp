// Painting the background of a widget's content, and the frame around a highlighted one.
#include <algorithm>

#include "engine/images/imagedraw.h"
#include "engine/page/widget.h"
#include "engine/screen/display.h"
#include "gfx/foundation/hstypes.h"

namespace {

Bounds grown(const Bounds& r, int32_t by) {
  const int32_t twice = hsWrapAdd(by, by);
  return {hsWrapSub(r.x, by), hsWrapSub(r.y, by), hsWrapAdd(r.w, twice), hsWrapAdd(r.h, twice)};
}

Bounds intersection(const Bounds& a, const Bounds& b) {
  const int32_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  const int32_t right = std::min(hsWrapAdd(a.x, a.w), hsWrapAdd(b.x, b.w));
  const int32_t bottom = std::min(hsWrapAdd(a.y, a.h), hsWrapAdd(b.y, b.h));
  return {x, y, hsWrapSub(right, x), hsWrapSub(bottom, y)};
}

// The top edge is never looked at: what sticks out only above the widget counts as inside, and the strip of a
// highlight frame there keeps what it shows. Pages rely on it.
bool countsAsInside(const Bounds& rect, const Bounds& widget) {
  return rect.x >= widget.x && hsWrapAdd(rect.x, rect.w) <= hsWrapAdd(widget.x, widget.w) &&
         hsWrapAdd(rect.y, rect.h) <= hsWrapAdd(widget.y, widget.h);
}

bool hasVisibleBackground(const Widget* widget) {
  return !(widget->flags & kWidgetBackgroundHidden) && (widget->flags & kWidgetHasBgColor || widget->background);
}

void paintOwnBackground(Widget* widget, const Bounds& rect) {
  Bounds clip = intersection(rect, widget->bounds);
  if (clip.w < 1 || clip.h < 1) return;
  if (widget->flags & kWidgetHasBgColor) displayFillRect(clip, widget->bgColor);
  if (widget->background) {
    imageDraw(widget->background->c_str(), hsWrapSub(rect.x, widget->bounds.x), hsWrapSub(rect.y, widget->bounds.y),
              &clip, (widget->flags & kWidgetTileBackground) != 0);
  }
}

// Paints rect as it looks under the widget's content: its own background, or that of the nearest widget around it that
// has one, down to the transparent colour of the screen.
void paintBehind(Widget* widget, const Bounds& rect) {
  while (!hasVisibleBackground(widget)) {
    if (!widget->parentWidget) return displayFillRect(rect, standardColor(kColorTransparent));
    widget = widget->parentWidget;
  }
  if (!countsAsInside(rect, widget->bounds) && widget->parentWidget) paintBehind(widget->parentWidget, rect);
  paintOwnBackground(widget, rect);
}

void paintHighlightFrame(const Widget* widget, const Bounds& outer) {
  const int32_t width = widget->frameWidth;
  Bounds strip = {outer.x, outer.y, outer.w, width};
  displayFillRect(strip, widget->frameColor);
  strip.y = hsWrapAdd(strip.y, hsWrapAdd(widget->bounds.h, width));
  displayFillRect(strip, widget->frameColor);

  strip = {outer.x, outer.y, width, outer.h};
  displayFillRect(strip, widget->frameColor);
  strip.x = hsWrapAdd(strip.x, hsWrapAdd(widget->bounds.w, width));
  displayFillRect(strip, widget->frameColor);
}

}  // namespace

void widgetPaint(Widget* widget) {
  const bool framed = widget->flags & kWidgetHighlightFrame;
  const Bounds outer = framed ? grown(widget->bounds, widget->frameWidth) : widget->bounds;
  paintBehind(widget, outer);
  if (framed && widget->flags & kWidgetHighlighted) paintHighlightFrame(widget, outer);
}
