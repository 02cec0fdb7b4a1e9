// The methods of class Widget.
#include "engine/page/widget.h"

#include "engine/events/eventtrail.h"
#include "engine/page/frame.h"
#include "engine/scriptbindings/bindings.h"
#include "host/host.h"

namespace {

// The widget that a method is called on; null, with the complaint made, when the wrapper is inactive.
Widget* activeWidget(void* pointer) {
  Widget* widget = scriptWidgetOf(pointer);
  if (!widget) scriptComplain(kInactiveWidget);
  return widget;
}

Widget* parseWidget(BobInterp* interp) {
  void* pointer;
  bobParse(interp, "P=*", currentScripts().widgetKind, &pointer);
  return activeWidget(pointer);
}

BobValue setFocus(BobInterp* interp) {
  Widget* widget = parseWidget(interp);
  if (!widget) return kBobFalse;
  widgetFocus(frameOf(widget), widget);
  return kBobTrue;
}

BobValue addElement(BobInterp* interp) {
  void* pointer;
  BobValue value;
  bobParse(interp, "P=*V", currentScripts().widgetKind, &pointer, &value);
  Widget* widget = activeWidget(pointer);
  if (!widget) return kBobFalse;
  KuiValue element;
  if (!BobToKuiValue(interp, value, &element)) {
    scriptComplain("Invalid value\n");
    return kBobNil;
  }
  const std::string text(element.string);  // what the event runs can move the heap
  element.string = text;
  return bobBoolean(eventSendSimple(widget, kAddChoice, 0, &element));
}

// Content, and with an argument the background too: shown for true, hidden for false.
BobValue changeContent(BobInterp* interp, void (*change)(Widget*)) {
  void* pointer;
  int32_t background = -1;
  bobParse(interp, "P=*|B", currentScripts().widgetKind, &pointer, &background);
  Widget* widget = activeWidget(pointer);
  if (!widget) return kBobFalse;
  change(widget);
  if (background == 1) widgetShowBackground(widget);
  if (background == 0) widgetHideBackground(widget);
  return kBobTrue;
}

BobValue changeBackground(BobInterp* interp, void (*change)(Widget*)) {
  Widget* widget = parseWidget(interp);
  if (!widget) return kBobFalse;
  change(widget);
  return kBobTrue;
}

BobValue show(BobInterp* interp) { return changeContent(interp, widgetShow); }
BobValue hide(BobInterp* interp) { return changeContent(interp, widgetHide); }
BobValue showBackground(BobInterp* interp) { return changeBackground(interp, widgetShowBackground); }
BobValue hideBackground(BobInterp* interp) { return changeBackground(interp, widgetHideBackground); }

// A script's event carries no pointer, so codes whose record needs one find nothing to fill or take.
BobValue handleEvent(BobInterp* interp) {
  void* pointer;
  int32_t id, param0 = 0, param1 = 0;
  bobParse(interp, "P=*i|ii", currentScripts().widgetKind, &pointer, &id, &param0, &param1);
  Widget* widget = activeWidget(pointer);
  if (!widget) return kBobFalse;
  const auto code = uint32_t(id);
  const Event event{kEventSize, hostMilliseconds(), code >> 16, code, 0, uint32_t(param0), uint32_t(param1)};
  const EventTrail trail(event, false);
  return bobBoolean(eventSend(widget, event));
}

constexpr BobMethodRow kMethods[] = {
    {"SetFocus", setFocus},
    {"AddElement", addElement},
    {"Show", show},
    {"Hide", hide},
    {"ShowBackground", showBackground},
    {"HideBackground", hideBackground},
    {"HandleEvent", handleEvent},
    {nullptr, nullptr},
};

}  // namespace

bool scriptDefineWidget(ScriptRuntime& runtime) {
  runtime.widgetKind = bobMakeKind(runtime.interp, runtime.targetKind, "Widget", kMethods, kWidgetProperties);
  if (runtime.widgetKind) bobSetFinalizer(runtime.interp, runtime.widgetKind, scriptReleaseTarget);
  return runtime.widgetKind != 0;
}
