#include "bob/signature.h"

#include "bob/objects.h"

using namespace BobLayout;

namespace {

// The callee: it lies behind the slots while no frame has been built.
BobValue Callee(BobInterp* interp) { return interp->sp[interp->argc]; }

int32_t IntegerArgument(BobInterp* interp, BobValue value) {
  if (!bobIsInteger(interp, value)) bobRaise(interp, kBobWrongType, value);
  return bobIntegerValue(interp, value);
}

double FloatArgument(BobInterp* interp, BobValue value) {
  if (!interp->isA(value, kBobFloat)) bobRaise(interp, kBobWrongType, value);
  return bobFloatValue(interp, value);
}

void CheckKind(BobInterp* interp, BobValue value, uint32_t kind) {
  if (!bobIsOfKind(interp, value, kind)) bobRaise(interp, kBobWrongType, value);
}

// A pointer code without a kind takes any native object; everything else has no pointer to give.
void* PointerArgument(BobInterp* interp, BobValue value) {
  const BobTypeRecord* record = interp->recordOf(value);
  const bool holdsHandle = record->Copy == interp->record(kBobCObject)->Copy && !bobIsSmall(value) &&
                           record->Scan == interp->record(kBobCObject)->Scan && record->extraSize == 4;
  return holdsHandle ? bobHandlePointer(interp, interp->words(value)[kNativePointer]) : nullptr;
}

}  // namespace

bool bobIsOfKind(BobInterp* interp, BobValue value, uint32_t kind) {
  for (uint32_t type = interp->typeOf(value); type; type = interp->record(type)->parentType)
    if (interp->record(type)->base == kind) return true;
  return false;
}

void bobCheckArgumentCount(BobInterp* interp, int least, int most) {
  if (interp->argc < least) bobRaise(interp, kBobTooFewArguments, Callee(interp));
  if (interp->argc > most) bobRaise(interp, kBobTooManyArguments, Callee(interp));
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
      if (!optional) bobRaise(interp, kBobTooFewArguments, Callee(interp));
      return;
    }
    --left;
    const BobValue value = *--argument;
    switch (*text) {
      case '*': break;
      case 'B': *static_cast<int32_t*>((slots++)->output) = value != kBobFalse; break;
      case 'V':
        if (text[1] == '=') ++text, CheckKind(interp, value, (slots++)->kind);
        *static_cast<BobValue*>((slots++)->output) = value;
        break;
      case 'P':
        if (text[1] == '=') ++text, CheckKind(interp, value, (slots++)->kind);
        *static_cast<void**>((slots++)->output) = PointerArgument(interp, value);
        break;
      case 'S': {
        const bool mayBeNil = text[1] == '?';
        const bool none = mayBeNil && value == kBobNil;
        if (mayBeNil) ++text;
        if (!none && !interp->isA(value, kBobString)) bobRaise(interp, kBobWrongType, value);
        *static_cast<const char**>((slots++)->output) = none ? nullptr : bobStringText(interp, value).data();
        if (text[1] == '#')
          ++text, *static_cast<int32_t*>((slots++)->output) = none ? 0 : int32_t(bobStringText(interp, value).size());
        break;
      }
      case 'c': *static_cast<int8_t*>((slots++)->output) = int8_t(IntegerArgument(interp, value)); break;
      case 's': *static_cast<int16_t*>((slots++)->output) = int16_t(IntegerArgument(interp, value)); break;
      case 'i':
      case 'l': *static_cast<int32_t*>((slots++)->output) = IntegerArgument(interp, value); break;
      case 'd': *static_cast<double*>((slots++)->output) = FloatArgument(interp, value); break;
      case 'f': *static_cast<float*>((slots++)->output) = float(FloatArgument(interp, value)); break;
      default: bobRaiseNumber(interp, kBobBadParseCode, *text);
    }
  }
  if (left > 0) bobRaise(interp, kBobTooManyArguments, Callee(interp));
}
