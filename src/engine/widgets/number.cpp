#include "engine/widgets/number.h"

#include <algorithm>
#include <cstdio>

#include "engine/text/textdraw.h"
#include "engine/widgets/textparts.h"

namespace {

constexpr int32_t kMostCharacters = 255;  // what is longer is cut at its end

void draw(NumberWidget* widget) {
  widgetPaint(widget);
  const auto& style = widget->flags & kWidgetHighlighted ? widget->styles.highlighted : widget->styles.plain;
  if (!style) return;
  const std::string text = numberFigures(*widget);
  textDrawAt(*style, text.data(), uint32_t(text.size()), widget->bounds.x, widget->bounds.y);
}

}  // namespace

int NumberWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  if (event->code != kFullRedraw && event->code != kContentRedraw) return rangeEvent(this, *event);
  draw(this);
  return 1;
}

std::string numberFigures(const NumberWidget& widget) {
  // Widths from twice the buffer's on show the same zeros or blanks.
  const int width = std::clamp(widget.digits, -2 * kMostCharacters, 2 * kMostCharacters);
  char text[kMostCharacters + 1];
  const int length = std::snprintf(text, sizeof text, "%0*d", width, widget.value);
  return {text, size_t(std::min(length, kMostCharacters))};
}

WidgetPtr<> numberCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto widget = widgetCreate<NumberWidget>(owner, parent, record);
  if (!widget) return nullptr;
  rangeReadAttributes(widget.get());
  widgetAttrInt(widget.get(), "size", &widget->digits);
  widget->styles = widgetTextStyles(widget.get());
  widgetReadNavigate(widget.get());
  return widget;
}
