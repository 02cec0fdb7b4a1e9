// Strings and symbols: elements, members and methods.
#include "bob/bob.h"
#include "bob/numbers.h"

using namespace BobLayout;

namespace {

BobValue This(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobString, &self);
  return self;
}

// What conversions read: the text ends at a zero byte.
std::string_view Number(BobInterp* interp) {
  const std::string_view text = bobStringText(interp, This(interp));
  return text.substr(0, text.find('\0'));
}

// Gives a new string, not `this`: `new String(n)` yields that one.
BobValue Initialize(BobInterp* interp) {
  BobValue self;
  int32_t length = 0;
  bobParse(interp, "V=*|i", kBobString, &self, &length);
  if (length < 0) bobRaise(interp, kBobIndexOutOfBounds, bobMakeInteger(interp, length));
  return bobMakeEmptyString(interp, uint32_t(length));
}

BobValue Intern(BobInterp* interp) {
  const std::string text(bobStringText(interp, This(interp)));
  return bobIntern(interp, text);
}

BobValue ToInteger(BobInterp* interp) { return bobMakeInteger(interp, bobParseInteger(Number(interp))); }
BobValue ToFloat(BobInterp* interp) { return bobMakeFloat(interp, bobParseFloat(Number(interp))); }

// Reached with something else when the row itself is fetched from the class.
BobValue GetSize(BobInterp* interp, BobValue object) {
  if (!interp->isA(object, kBobString)) bobRaise(interp, kBobWrongType, object);
  return bobMakeInteger(interp, int32_t(bobStringText(interp, object).size()));
}

BobValue GetPrintName(BobInterp* interp, BobValue object) {
  if (!interp->isA(object, kBobSymbol)) bobRaise(interp, kBobWrongType, object);
  return bobMakeString(interp, bobSymbolText(interp, object));  // a symbol's text doesn't move
}

uint8_t* ByteAt(BobInterp* interp, BobValue string, BobValue key) {
  const int32_t index = bobIntegerValue(interp, key);
  if (index < 0 || uint32_t(index) >= bobStringText(interp, string).size()) bobRaise(interp, kBobIndexOutOfBounds, key);
  return interp->bytes(string) + kStringBytes + index;
}

constexpr BobMethodRow kStringMethods[] = {
    {"initialize", Initialize}, {"Intern", Intern}, {"toInteger", ToInteger}, {"toFloat", ToFloat}, {nullptr, nullptr},
};
constexpr BobPropertyRow kStringProperties[] = {{"size", GetSize, nullptr}, {nullptr, nullptr, nullptr}};
constexpr BobPropertyRow kSymbolProperties[] = {{"printName", GetPrintName, nullptr}, {nullptr, nullptr, nullptr}};

}  // namespace

bool bobGetStringProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  if (!bobIsInteger(interp, key)) return bobGetValueProperty(interp, object, key, value);
  *value = bobSmall(*ByteAt(interp, object, key));
  return true;
}

bool bobSetStringProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  if (!bobIsInteger(interp, key)) return bobSetValueProperty(interp, object, key, value);
  if (!bobIsInteger(interp, value)) bobRaise(interp, kBobWrongType, value);
  *ByteAt(interp, object, key) = uint8_t(bobIntegerValue(interp, value));
  return true;
}

BobValue bobNewString(BobInterp* interp, BobValue) { return bobMakeEmptyString(interp, 0); }

void bobInitStringClass(BobInterp* interp) {
  interp->stringClass = bobMakeValueClass(interp, kBobString, kStringMethods, kStringProperties);
}

void bobInitSymbolClass(BobInterp* interp) {
  interp->symbolClass = bobMakeValueClass(interp, kBobSymbol, nullptr, kSymbolProperties);
}
