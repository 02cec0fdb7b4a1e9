// The properties of class Widget.
#include "engine/page/frame.h"
#include "engine/page/widget.h"
#include "engine/scriptbindings/bindings.h"

namespace {

constexpr char kInactiveNoNewline[] = "Operation attempted on inactive widget";  // how two of the getters say it

Widget* activeWidget(BobInterp* interp, BobValue self, const char* complaint = kInactiveWidget) {
  Widget* widget = scriptWidgetOf(interp, self);
  if (!widget) scriptComplain(complaint);
  return widget;
}

bool takeInteger(BobInterp* interp, BobValue value, int32_t* out, const char* complaint = kExpectingInteger) {
  if (!bobIsInteger(interp, value)) {
    scriptComplain(complaint);
    return false;
  }
  *out = bobIntegerValue(interp, value);
  return true;
}

// ---- place: read from the page's record, written to the live widget, so a value written is not read back

template <uint16_t (PageObject::*kField)() const>
BobValue getPlace(BobInterp* interp, BobValue self) {
  const Widget* widget = activeWidget(interp, self);
  return widget ? bobSmall((widget->record.*kField)()) : kBobNil;
}

template <int32_t Bounds::*kField>
void setPlace(BobInterp* interp, BobValue self, BobValue value) {
  if (Widget* widget = activeWidget(interp, self)) takeInteger(interp, value, &(widget->bounds.*kField));
}

// ---- value and limits

BobValue getValue(BobInterp* interp, BobValue self) {
  Widget* widget = activeWidget(interp, self);
  KuiValue value;
  BobValue result;
  if (!widget || !eventSendSimple(widget, kGetValue, 0, &value) || !KuiToBobValue(interp, value, &result))
    return kBobNil;
  return result;
}

void setValue(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  KuiValue given;
  if (!widget || !BobToKuiValue(interp, value, &given)) return;
  const std::string text(given.string);  // what the event runs can move the heap
  given.string = text;
  eventSendSimple(widget, kSetValue, 0, &given);
}

template <uint32_t kCode>
BobValue getLimit(BobInterp* interp, BobValue self) {
  Widget* widget = activeWidget(interp, self);
  int32_t limit = 0;  // some widgets answer without writing it
  return widget && eventSendSimple(widget, kCode, 0, &limit) ? bobMakeInteger(interp, limit) : kBobNil;
}

template <uint32_t kCode>
void setLimit(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  int32_t limit;
  if (widget && takeInteger(interp, value, &limit)) eventSendSimple(widget, kCode, uint32_t(limit));
}

// ---- styles

template <uint32_t kCode>
BobValue getStyle(BobInterp* interp, BobValue self) {
  Widget* widget = activeWidget(interp, self);
  const TextStyle* style = nullptr;
  if (!widget || !eventSendSimple(widget, kCode, 0, &style) || !style) return kBobNil;
  return scriptWrapStyle(interp, style);
}

template <uint32_t kCode>
void setStyle(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  if (!widget) return;
  const TextStyle* style = scriptStyleOf(interp, value);
  if (!style) return scriptComplain("Expecting a style value\n");
  const TextStyle kept = *style;  // what the event runs can drop the wrapper
  eventSendSimple(widget, kCode, 0, &kept);
}

// ---- background and highlight

BobValue getBgColor(BobInterp* interp, BobValue self) {
  const Widget* widget = activeWidget(interp, self, kInactiveNoNewline);
  return widget ? bobMakeInteger(interp, int32_t(widget->bgColor)) : kBobNil;
}

void setBgColor(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  int32_t color;
  if (widget && takeInteger(interp, value, &color, "Expecting an integer color value\n"))
    widgetSetBgColor(widget, uint32_t(color));
}

BobValue getBackground(BobInterp* interp, BobValue self) {
  const Widget* widget = activeWidget(interp, self, kInactiveNoNewline);
  return widget && widget->background ? bobMakeString(interp, *widget->background) : kBobNil;
}

void setBackground(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  if (!widget) return;
  if (value == kBobNil) return widgetSetBackground(widget, nullptr);
  if (!bobIsA(interp, value, kBobString)) return scriptComplain("Expecting a string value or nil\n");
  widgetSetBackground(widget, bobStringText(interp, value).data());
}

// The one read that doesn't complain about an inactive widget.
BobValue getHighlighted(BobInterp* interp, BobValue self) {
  const Widget* widget = scriptWidgetOf(interp, self);
  return bobBoolean(widget && widget->flags & kWidgetHighlighted);
}

void setHighlighted(BobInterp* interp, BobValue self, BobValue value) {
  if (Widget* widget = activeWidget(interp, self)) widgetSetHighlight(widget, value != kBobFalse);
}

// ---- pictures

template <uint32_t kCode>
BobValue getName(BobInterp* interp, BobValue self) {
  Widget* widget = activeWidget(interp, self);
  const char* name = nullptr;
  if (!widget || !eventSendSimple(widget, kCode, 0, &name) || !name) return kBobNil;
  return bobMakeString(interp, name);
}

template <uint32_t kCode>
void setName(BobInterp* interp, BobValue self, BobValue value) {
  Widget* widget = activeWidget(interp, self);
  if (!widget) return;
  if (!bobIsA(interp, value, kBobString)) return scriptComplain("Expecting string value\n");
  const std::string name(bobStringText(interp, value));  // what the event runs can move the heap
  eventSendSimple(widget, kCode, 0, name.c_str());
}

}  // namespace

const BobPropertyRow kWidgetProperties[] = {
    {"x", getPlace<&PageObject::x>, setPlace<&Bounds::x>},
    {"y", getPlace<&PageObject::y>, setPlace<&Bounds::y>},
    {"width", getPlace<&PageObject::width>, setPlace<&Bounds::w>},
    {"height", getPlace<&PageObject::height>, setPlace<&Bounds::h>},
    {"value", getValue, setValue},
    {"minValue", getLimit<kGetMinimum>, setLimit<kSetMinimum>},
    {"maxValue", getLimit<kGetMaximum>, setLimit<kSetMaximum>},
    {"style", getStyle<kGetStyle>, setStyle<kSetStyle>},
    {"highlightStyle", getStyle<kGetHighlightStyle>, setStyle<kSetHighlightStyle>},
    {"bgColor", getBgColor, setBgColor},
    {"background", getBackground, setBackground},
    {"highlighted", getHighlighted, setHighlighted},
    {"src", getName<kGetSrc>, setName<kSetSrc>},
    {"highlightSrc", getName<kGetHighlightSrc>, setName<kSetHighlightSrc>},
    {nullptr, nullptr, nullptr},
};
