// The class TextStyle. No widget draws text yet, so there is no style to wrap and the class has no members.
#include "engine/scriptbindings/bindings.h"

BobValue scriptWrapStyle(BobInterp*, const TextStyle*) { return kBobNil; }

const TextStyle* scriptStyleOf(BobInterp*, BobValue) { return nullptr; }

bool scriptDefineTextStyle(ScriptRuntime& runtime) {
  runtime.styleKind = bobMakeKind(runtime.interp, 0, "TextStyle", nullptr, nullptr);
  return runtime.styleKind != 0;
}
