#include "engine/widgets/number.h"

#include <cstdio>

#include "engine/text/textdraw.h"
#include "engine/widgets/textparts.h"

namespace {

constexpr int32_t kMostDigits = 255;  // beyond, nothing is drawn

void draw(NumberWidget* widget) {
  widgetPaint(widget);
  const auto& style = widget->flags & kWidgetHighlighted ? widget->styles.highlighted : widget->styles.plain;
  if (!style || widget->digits > kMostDigits || widget->digits < -kMostDigits) return;
  char text[kMostDigits + 1];
  const int length = std::snprintf(text, sizeof text, "%0*d", widget->digits, widget->value);
  textDrawAt(*style, text, uint32_t(length), widget->bounds.x, widget->bounds.y);
}

}  // namespace

int NumberWidget::handleEvent(const Event* event) {
  if (!event) return 1;
  if (event->code != kFullRedraw && event->code != kContentRedraw) return rangeEvent(this, *event);
  draw(this);
  return 1;
}

Widget* numberCreate(WidgetOwner* owner, Widget* parent, PageObject record) {
  auto* widget = widgetCreate<NumberWidget>(owner, parent, record);
  if (!widget) return nullptr;
  rangeReadAttributes(widget);
  widgetAttrInt(widget, "size", &widget->digits);
  widget->styles = widgetTextStyles(widget);
  widgetReadNavigate(widget);
  return widget;
}
