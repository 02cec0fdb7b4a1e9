#include "bob/model/print.h"

#include <charconv>

#include "bob/base/numbers.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/rows.h"
#include "bob/model/values.h"
#include "bob/model/vectors.h"

using namespace BobLayout;

namespace {

constexpr int kVectorDepth = 256;  // vectors in vectors

bool printNested(BobInterp* interp, BobValue value, BobStream* stream, int depth);

// The elements are read anew at each step: a host's stream might run a script that changes the vector.
bool printVector(BobInterp* interp, BobValue value, BobStream* stream, int depth) {
  if (depth == kVectorDepth) bobRaise(interp, kBobStackOverflow);
  const BobLocal vector(interp->locals, value);
  bool ok = bobPutText(stream, "[");
  for (uint32_t i = 0; i < bobVectorSize(interp, vector); ++i) {
    if (i > 0) ok = bobPutText(stream, ",") && ok;
    const BobValue element = bobVectorElements(interp, vector)[i];
    ok = printNested(interp, element, stream, depth + 1) && ok;
  }
  return bobPutText(stream, "]") && ok;
}

bool printNested(BobInterp* interp, BobValue value, BobStream* stream, int depth) {
  const BobTypeRecord* record = interp->recordOf(value);
  if (record->base == kBobVector) return printVector(interp, value, stream, depth);
  return record->Print(interp, value, stream);
}

// "<Prefix-", the code's name, ">"; code without a name prints as the value's default form.
bool printNamed(BobInterp* interp, BobValue value, BobValue code, const char* prefix, BobStream* stream) {
  const BobValue name = bobCodeName(interp, code);
  if (name == kBobNil) return bobPrintIdentity(interp, value, stream);
  return bobPutText(stream, prefix) && bobDisplay(interp, name, stream) && bobPutText(stream, ">");
}

}  // namespace

bool bobPrint(BobInterp* interp, BobValue value, BobStream* stream) { return printNested(interp, value, stream, 0); }

bool bobDisplay(BobInterp* interp, BobValue value, BobStream* stream) {
  if (interp->isA(value, kBobString)) return bobPutText(stream, interp->stringOf(value));
  return bobPrint(interp, value, stream);
}

bool bobPrintIdentity(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutFormat(stream, "<%s-%08x>", interp->recordOf(value)->name, value);
}

bool bobPrintMethod(BobInterp* interp, BobValue value, BobStream* stream) {
  return printNamed(interp, value, interp->words(value)[kMethodCode], "<Method-", stream);
}

bool bobPrintCode(BobInterp* interp, BobValue value, BobStream* stream) {
  return printNamed(interp, value, value, "<CompiledCode-", stream);
}

bool bobPrintRow(BobInterp* interp, BobValue value, BobStream* stream) {
  const BobStaticRow& row = interp->staticRows[interp->words(value)[kRowIndex]];
  return bobPutFormat(stream, "<%s-%s>", interp->recordOf(value)->name,
                      row.method ? row.method->name : row.property->name);
}

bool bobPrintString(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, "\"") && bobPutText(stream, interp->stringOf(value)) && bobPutText(stream, "\"");
}

bool bobPrintSymbol(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, interp->symbolOf(value));
}

bool bobPrintInteger(BobInterp* interp, BobValue value, BobStream* stream) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, interp->integerOf(value)).ptr;
  return bobPutText(stream, {digits, size_t(end - digits)});
}

bool bobPrintFloat(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutText(stream, bobFormatFloat(interp->floatOf(value)));
}

bool bobPrintVector(BobInterp* interp, BobValue value, BobStream* stream) {
  return printVector(interp, value, stream, 0);
}

bool bobPrintType(BobInterp* interp, BobValue value, BobStream* stream) {
  return bobPutFormat(stream, "<Type-%s>", interp->record(interp->words(value)[kNativePointer])->name);
}
