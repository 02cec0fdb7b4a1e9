// Wrappers, and values on their way between widgets and scripts.
#include "engine/base/log.h"
#include "engine/page/frame.h"
#include "engine/scriptbindings/bindings.h"
#include "engine/scriptbindings/scriptbindings.h"
#include "host/host.h"

namespace {

// By the page's word for the widget. One of a wrong type has been complained about when the widget was made.
uint32_t kindFor(const Widget* widget) {
  if (const char* text = attrPlainString(widget->record, "type"))
    for (const auto& [name, kind] : currentScripts().widgetTypes)
      if (name == text) return kind;
  return currentScripts().widgetKind;
}

}  // namespace

void scriptComplain(const char* text) {
  if (logVerbose) hostLog("%s", text);
}

BobValue scriptWrapTarget(BobInterp* interp, uint32_t kind, EventTarget* target) {
  // What has gone gets no handle again: nobody would release it. Its wrapper is born inactive.
  if (!target->gone) target->scriptHandle.make(interp, target);
  const BobValue wrapper = bobMakeNative(interp, kind);
  bobHandleOf(interp, wrapper) = target->scriptHandle.number();
  return wrapper;
}

BobValue scriptWrapWidget(BobInterp* interp, Widget* widget) {
  return scriptWrapTarget(interp, kindFor(widget), widget);
}

Widget* scriptWidgetOf(void* pointer) { return dynamic_cast<Widget*>(static_cast<EventTarget*>(pointer)); }

// A getter is also called with the class object itself, which is no widget.
Widget* scriptWidgetOf(BobInterp* interp, BobValue value) {
  if (!bobIsOfKind(interp, value, currentScripts().widgetKind)) return nullptr;
  return scriptWidgetOf(bobNativePointer(interp, value));
}

Frame* scriptFrameOf(void* pointer) { return dynamic_cast<Frame*>(static_cast<EventTarget*>(pointer)); }

bool BobToKuiValue(BobInterp* interp, BobValue value, KuiValue* out) {
  if (value == kBobNil) {
    out->kind = KuiValue::kNil;
  } else if (bobIsInteger(interp, value)) {
    out->kind = KuiValue::kInteger;
    out->integer = bobIntegerValue(interp, value);
  } else if (bobIsA(interp, value, kBobString)) {
    out->kind = KuiValue::kString;
    out->string = bobStringText(interp, value);
  } else {
    scriptComplain("BobToKuiValue - unknown type\n");
    return false;
  }
  return true;
}

bool KuiToBobValue(BobInterp* interp, const KuiValue& value, BobValue* out) {
  switch (value.kind) {
    case KuiValue::kNil: *out = kBobNil; return true;
    case KuiValue::kString: *out = bobMakeString(interp, value.string); return true;
    case KuiValue::kInteger: *out = bobMakeInteger(interp, value.integer); return true;
  }
  if (logVerbose) hostLog("KuiToBobValue - unknown type %d\n", int(value.kind));
  return false;
}
