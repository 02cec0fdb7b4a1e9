#include "engine/widgets/slider.h"

#include <limits>

#include "engine/screen/display.h"
#include "gfx/foundation/hstypes.h"

namespace {

// The sizes in the page record are compared, and for a vertical bar used, with their two bytes swapped, since the
// player never turned them. A bar is therefore horizontal when its width's low byte is the greater, whatever it looks
// like. Pages have been laid out to that.
int32_t swapped(uint16_t word) { return uint16_t(word << 8 | word >> 8); }

// False when there is no quotient.
bool cutOf(int32_t position, int32_t length, int32_t span, int32_t* cut) {
  const int32_t product = hsWrapMul(position, length);
  if (span == 0 || (span == -1 && product == std::numeric_limits<int32_t>::min())) return false;
  *cut = product / span;
  return true;
}

void draw(const SliderWidget* widget) {
  const auto [x, y, w, h] = widget->bounds;
  const int32_t span = hsWrapSub(widget->maximum, widget->minimum);
  const int32_t position = hsWrapSub(widget->value, widget->minimum);
  const int32_t rawW = swapped(widget->record.width()), rawH = swapped(widget->record.height());
  const bool horizontal = rawW > rawH;
  int32_t cut;
  if (!cutOf(position, horizontal ? w : rawH, span, &cut)) return;

  const Bounds filled = horizontal ? Bounds{x, y, cut, h} : Bounds{x, y, w, cut};
  const Bounds rest = horizontal ? Bounds{hsWrapAdd(x, cut), y, hsWrapSub(w, cut), h}
                                 : Bounds{x, hsWrapAdd(y, cut), w, hsWrapSub(h, cut)};
  if (widget->value > widget->minimum) displayFillRect(filled, widget->fillColor);
  if (widget->value < widget->maximum) displayFillRect(rest, widget->restColor);
}

}  // namespace

int SliderWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  if (event->code != kFullRedraw && event->code != kContentRedraw) return rangeEvent(this, *event);
  draw(this);
  return 1;
}

WidgetPtr<> sliderCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<SliderWidget>(owner, parent, record);
  if (!widget) return nullptr;
  rangeReadAttributes(widget.get());
  widget->fillColor = standardColor(kColorWhite);
  widget->restColor = standardColor(kColorBlack);
  widgetAttrColor(widget.get(), "fgColor", &widget->fillColor);
  widgetAttrColor(widget.get(), "bgColor", &widget->restColor);
  widgetReadNavigate(widget.get());
  return widget;
}
