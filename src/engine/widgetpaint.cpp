// Painting what lies behind a widget's content, and the frame around a highlighted one.
#include <algorithm>

#include "engine/display.h"
#include "engine/imagecache.h"
#include "engine/widget.h"

namespace {

int32_t add(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
int32_t subtract(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }

Bounds grown(const Bounds& r, int32_t by) {
  const int32_t twice = add(by, by);
  return {subtract(r.x, by), subtract(r.y, by), add(r.w, twice), add(r.h, twice)};
}

Bounds intersection(const Bounds& a, const Bounds& b) {
  const int32_t x = std::max(a.x, b.x), y = std::max(a.y, b.y);
  const int32_t right = std::min(add(a.x, a.w), add(b.x, b.w));
  const int32_t bottom = std::min(add(a.y, a.h), add(b.y, b.h));
  return {x, y, subtract(right, x), subtract(bottom, y)};
}

// The top edge is never looked at: what sticks out only above the widget counts as inside, and the strip of a
// highlight frame there keeps what it shows. Pages rely on it.
bool countsAsInside(const Bounds& rect, const Bounds& widget) {
  return rect.x >= widget.x && add(rect.x, rect.w) <= add(widget.x, widget.w) &&
         add(rect.y, rect.h) <= add(widget.y, widget.h);
}

bool hasVisibleBackground(const Widget* widget) {
  return !(widget->flags & kWidgetBackgroundHidden) && (widget->flags & kWidgetHasBgColor || widget->background);
}

void paintOwnBackground(Widget* widget, const Bounds& rect) {
  Bounds clip = intersection(rect, widget->bounds);
  if (clip.w < 1 || clip.h < 1) return;
  if (widget->flags & kWidgetHasBgColor) displayFillRect(clip, widget->bgColor);
  if (widget->background) {
    imageDraw(widget->background->c_str(), subtract(rect.x, widget->bounds.x), subtract(rect.y, widget->bounds.y),
              &clip, (widget->flags & kWidgetTileBackground) != 0);
  }
}

// Paints rect as it looks behind the widget's content: its own background, or that of the nearest widget around it
// that has one, down to the transparent colour of the screen.
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
  strip.y = add(strip.y, add(widget->bounds.h, width));
  displayFillRect(strip, widget->frameColor);

  strip = {outer.x, outer.y, width, outer.h};
  displayFillRect(strip, widget->frameColor);
  strip.x = add(strip.x, add(widget->bounds.w, width));
  displayFillRect(strip, widget->frameColor);
}

}  // namespace

void widgetPaint(Widget* widget) {
  const bool framed = widget->flags & kWidgetHighlightFrame;
  const Bounds outer = framed ? grown(widget->bounds, widget->frameWidth) : widget->bounds;
  paintBehind(widget, outer);
  if (framed && widget->flags & kWidgetHighlighted) paintHighlightFrame(widget, outer);
}
