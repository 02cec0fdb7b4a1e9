#include "bob/model/signature.h"

#include "bob/heap/handles.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"

using namespace BobLayout;

namespace {

// The callee lies above the slots while no frame has been built.
BobValue callee(BobInterp* interp) { return interp->sp[interp->argc]; }

int32_t integerArgument(BobInterp* interp, BobValue value) {
  if (!interp->isInteger(value)) bobRaise(interp, kBobWrongType, value);
  return interp->integerOf(value);
}

double floatArgument(BobInterp* interp, BobValue value) {
  if (!interp->isA(value, kBobFloat)) bobRaise(interp, kBobWrongType, value);
  return interp->floatOf(value);
}

void checkKind(BobInterp* interp, BobValue value, uint32_t kind) {
  if (interp->recordOf(value)->base != kind && !bobIsOfKind(interp, value, kind))
    bobRaise(interp, kBobWrongType, value);
}

// A pointer code without a kind takes any native object; for everything else the pointer is null.
void* pointerArgument(BobInterp* interp, BobValue value) {
  const BobTypeRecord* record = interp->recordOf(value);
  const bool holdsHandle = record->Copy == interp->record(kBobCObject)->Copy && !bobIsSmall(value) &&
                           record->Scan == interp->record(kBobCObject)->Scan && record->extraSize == 4;
  return holdsHandle ? bobHandlePointer(interp, interp->words(value)[kNativePointer]) : nullptr;
}

}  // namespace

void bobCheckArgumentCount(BobInterp* interp, int least) {
  if (interp->argc < least) bobRaise(interp, kBobTooFewArguments, callee(interp));
}

void bobParseSlots(BobInterp* interp, const char* text, const BobParseSlot* slots) {
  const uint32_t* argument = interp->argv;
  int left = interp->argc;
  bool optional = false;
  for (; *text; ++text) {
    if (*text == '|') {
      optional = true;
      continue;
    }
    if (left == 0) {
      if (!optional) bobRaise(interp, kBobTooFewArguments, callee(interp));
      return;
    }
    --left;
    const BobValue value = *--argument;
    switch (*text) {
      case '*': break;
      case 'B': *static_cast<int32_t*>((slots++)->output) = value != kBobFalse; break;
      case 'V':
        if (text[1] == '=') ++text, checkKind(interp, value, (slots++)->kind);
        *static_cast<BobValue*>((slots++)->output) = value;
        break;
      case 'P':
        if (text[1] == '=') ++text, checkKind(interp, value, (slots++)->kind);
        *static_cast<void**>((slots++)->output) = pointerArgument(interp, value);
        break;
      case 'S': {
        const bool mayBeNil = text[1] == '?';
        const bool none = mayBeNil && value == kBobNil;
        if (mayBeNil) ++text;
        if (!none && !interp->isA(value, kBobString)) bobRaise(interp, kBobWrongType, value);
        *static_cast<const char**>((slots++)->output) = none ? nullptr : interp->stringOf(value).data();
        if (text[1] == '#')
          ++text, *static_cast<int32_t*>((slots++)->output) = none ? 0 : int32_t(interp->stringOf(value).size());
        break;
      }
      case 'c': *static_cast<int8_t*>((slots++)->output) = int8_t(integerArgument(interp, value)); break;
      case 's': *static_cast<int16_t*>((slots++)->output) = int16_t(integerArgument(interp, value)); break;
      case 'i':
      case 'l': *static_cast<int32_t*>((slots++)->output) = integerArgument(interp, value); break;
      case 'd': *static_cast<double*>((slots++)->output) = floatArgument(interp, value); break;
      case 'f': *static_cast<float*>((slots++)->output) = float(floatArgument(interp, value)); break;
      default: bobRaiseNumber(interp, kBobBadParseCode, *text);
    }
  }
  if (left > 0) bobRaise(interp, kBobTooManyArguments, callee(interp));
}
