#include "bob/lib/stringclasses.h"

#include <string>

#include "bob/base/numbers.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"
#include "bob/model/signature.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"

namespace {

BobValue thisOf(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobString, &self);
  return self;
}

// What conversions read: the text ends at a zero byte.
std::string_view numberText(BobInterp* interp) {
  const std::string_view text = interp->stringOf(thisOf(interp));
  return text.substr(0, text.find('\0'));
}

// Returns a new string, not `this`: `new String(n)` yields that one.
BobValue initialize(BobInterp* interp) {
  BobValue self;
  int32_t length = 0;
  bobParse(interp, "V=*|i", kBobString, &self, &length);
  if (length < 0) bobRaise(interp, kBobIndexOutOfBounds, bobMakeInteger(interp, length));
  return bobMakeEmptyString(interp, uint32_t(length));
}

BobValue intern(BobInterp* interp) {
  const std::string text(interp->stringOf(thisOf(interp)));
  return bobIntern(interp, text);
}

BobValue toInteger(BobInterp* interp) { return bobMakeInteger(interp, bobParseInteger(numberText(interp))); }
BobValue toFloat(BobInterp* interp) { return bobMakeFloat(interp, bobParseFloat(numberText(interp))); }

// Reached with something else when the row itself is fetched from the class.
BobValue getSize(BobInterp* interp, BobValue object) {
  if (!interp->isA(object, kBobString)) bobRaise(interp, kBobWrongType, object);
  return bobMakeInteger(interp, int32_t(interp->stringOf(object).size()));
}

BobValue getPrintName(BobInterp* interp, BobValue object) {
  if (!interp->isA(object, kBobSymbol)) bobRaise(interp, kBobWrongType, object);
  return bobMakeString(interp, interp->symbolOf(object));  // a symbol's text doesn't move
}

constexpr BobMethodRow kStringMethods[] = {
    {"initialize", initialize}, {"Intern", intern}, {"toInteger", toInteger}, {"toFloat", toFloat}, {nullptr, nullptr},
};
constexpr BobPropertyRow kStringProperties[] = {{"size", getSize, nullptr}, {nullptr, nullptr, nullptr}};
constexpr BobPropertyRow kSymbolProperties[] = {{"printName", getPrintName, nullptr}, {nullptr, nullptr, nullptr}};

}  // namespace

void bobInitStringClass(BobInterp* interp) {
  interp->stringClass = bobMakeValueClass(interp, kBobString, kStringMethods, kStringProperties);
}

void bobInitSymbolClass(BobInterp* interp) {
  interp->symbolClass = bobMakeValueClass(interp, kBobSymbol, nullptr, kSymbolProperties);
}
