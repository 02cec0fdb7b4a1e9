#include "engine/widgets/rangewidget.h"

#include "engine/widgets/navigatekind.h"
#include "host/host.h"

namespace {

// It wraps at the ends of the range.
int valueKey(RangeWidget* widget, const Event& event) {
  const NavigateKind kind = navigateKind(widget, event);
  if (kind == NavigateKind::none) return widgetBaseEvent(widget, event);
  if (kind == NavigateKind::eat) return 1;

  int32_t value;
  if (kind == NavigateKind::next) {
    value = widget->value >= widget->maximum ? widget->minimum : widget->value + 1;
  } else {
    value = widget->value <= widget->minimum ? widget->maximum : widget->value - 1;
  }
  if (value != widget->value) {
    widget->value = value;
    if (widget->flags & kWidgetImmediate) eventSendSimple(widget, kRunOnChange, 0);
  }
  widgetInvalidate(widget);
  return 1;
}

int setValue(RangeWidget* widget, const Event& event) {
  const KuiValue* in = eventPointer<KuiValue>(event);
  if (!in) return 0;
  if (in->kind != KuiValue::kInteger) {
    hostLog("Expecting integer value\n");
  } else if (in->integer < widget->minimum || in->integer > widget->maximum) {
    hostLog("New value out of range: %d\n", in->integer);
  } else {
    widget->value = in->integer;
    widgetInvalidate(widget);
  }
  return 1;
}

int getNumber(int32_t number, const Event& event) {
  int32_t* out = eventPointer<int32_t>(event);
  if (!out) return 0;
  *out = number;
  return 1;
}

}  // namespace

void rangeReadAttributes(RangeWidget* widget) {
  widgetAttrInt(widget, "min", &widget->minimum);
  widgetAttrInt(widget, "max", &widget->maximum);
  widget->value = widget->minimum;
  widgetAttrInt(widget, "value", &widget->value);
}

int rangeEvent(RangeWidget* widget, const Event& event) {
  switch (event.code) {
    case kDirectionKey: return valueKey(widget, event);
    case kGetValue: return eventAnswerInteger(event, widget->value);
    case kSetValue: return setValue(widget, event);
    case kGetMinimum: return getNumber(widget->minimum, event);
    case kSetMinimum: widget->minimum = int32_t(event.data); return 1;
    case kGetMaximum: return getNumber(widget->maximum, event);
    case kSetMaximum: widget->maximum = int32_t(event.data); return 1;
    default: return widgetBaseEvent(widget, event);
  }
}
