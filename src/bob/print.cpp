#include "bob/print.h"

#include "bob/bob.h"
#include "bob/numbers.h"

using namespace BobLayout;

namespace {

constexpr int kVectorDepth = 256;  // vectors in vectors

bool PrintNested(BobInterp* interp, BobValue value, BobStream* stream, int depth);

// The elements are read anew at each step: a host's stream might run a script that changes the vector.
bool PrintVector(BobInterp* interp, BobValue value, BobStream* stream, int depth) {
  if (depth == kVectorDepth) bobRaise(interp, kBobStackOverflow);
  const BobLocal vector(interp, value);
  bool ok = bobPutText(stream, "[");
  for (uint32_t i = 0; i < bobVectorSize(interp, vector); ++i) {
    if (i > 0) ok = bobPutText(stream, ",") && ok;
    const BobValue element = interp->words(bobVectorTarget(interp, vector))[kElements + i];
    ok = PrintNested(interp, element, stream, depth + 1) && ok;
  }
  return bobPutText(stream, "]") && ok;
}

bool PrintNested(BobInterp* interp, BobValue value, BobStream* stream, int depth) {
  const BobTypeRecord* record = interp->recordOf(value);
  if (record->base == kBobVector) return PrintVector(interp, value, stream, depth);
  return record->Print(interp, value, stream);
}

// "<Prefix-", the code's name, ">"; code without a name prints as the value's default form.
bool PrintNamed(BobInterp* interp, BobValue value, BobValue code, const char* prefix, BobStream* stream) {
  const uint32_t* w = interp->words(code);
  const BobValue name = bobCodeCount(w[kCodeCount]) > 1 ? w[kCodeElements + 1] : kBobNil;
  if (name == kBobNil) return bobPrintIdentity(interp, value, stream);
  return bobPutText(stream, prefix) && bobDisplay(interp, name, stream) && bobPutText(stream, ">");
}

}  // namespace

bool bobPrint(BobInterp* interp, BobValue value, BobStream* stream) { return PrintNested(interp, value, stream, 0); }

bool bobDisplay(BobInterp* interp, BobValue value, BobStream* stream) {
  if (interp->isA(value, kBobString)) return bobPutText(stream, bobStringText(interp, value));
  return bobPrint(interp, value, stream);
}

bool bobPrintIdentity(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutFormat(stream, "<%s-%08x>", interp->recordOf(value)->name, value);
}

bool bobPrintMethod(BobInterp* interp, BobValue value, BobStream* stream) {
  return PrintNamed(interp, value, interp->words(value)[kMethodCode], "<Method-", stream);
}

bool bobPrintCode(BobInterp* interp, BobValue value, BobStream* stream) {
  return PrintNamed(interp, value, value, "<CompiledCode-", stream);
}

bool bobPrintRow(BobInterp* interp, BobValue value, BobStream* stream) {
  const BobStaticRow& row = interp->staticRows[interp->words(value)[kRowIndex]];
  return bobPutFormat(stream, "<%s-%s>", interp->recordOf(value)->name,
                      row.method ? row.method->name : row.property->name);
}

bool bobPrintString(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, "\"") && bobPutText(stream, bobStringText(interp, value)) && bobPutText(stream, "\"");
}

bool bobPrintSymbol(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, bobSymbolText(interp, value));
}

bool bobPrintInteger(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutFormat(stream, "%d", bobIntegerValue(interp, value));
}

bool bobPrintFloat(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, bobFormatFloat(bobFloatValue(interp, value)));
}

bool bobPrintVector(BobInterp* interp, BobValue value, BobStream* stream) {
  return PrintVector(interp, value, stream, 0);
}

bool bobPrintType(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutFormat(stream, "<Type-%s>", interp->record(interp->words(value)[kNativePointer])->name);
}
