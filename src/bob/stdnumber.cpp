// The methods of Integer and Float.
#include "bob/bob.h"
#include "bob/numbers.h"

namespace {

BobValue This(BobInterp* interp, BobType type) {
  BobValue self;
  bobParse(interp, "V=*", type, &self);
  return self;
}

BobValue IntegerToFloat(BobInterp* interp) {
  return bobMakeFloat(interp, bobIntegerValue(interp, This(interp, kBobInteger)));
}

BobValue IntegerToInteger(BobInterp* interp) { return This(interp, kBobInteger); }

BobValue IntegerToString(BobInterp* interp) {
  BobValue self;
  const char* format = "%d";
  bobParse(interp, "V=*|S", kBobInteger, &self, &format);
  return bobMakeString(interp, bobFormatInteger(format, bobIntegerValue(interp, self)));
}

BobValue FloatToFloat(BobInterp* interp) { return This(interp, kBobFloat); }

BobValue FloatToInteger(BobInterp* interp) {
  return bobMakeInteger(interp, bobTruncate(bobFloatValue(interp, This(interp, kBobFloat))));
}

constexpr BobMethodRow kIntegerMethods[] = {
    {"toFloat", IntegerToFloat}, {"toInteger", IntegerToInteger}, {"toString", IntegerToString}, {nullptr, nullptr}};
constexpr BobMethodRow kFloatMethods[] = {{"toFloat", FloatToFloat}, {"toInteger", FloatToInteger}, {nullptr, nullptr}};

}  // namespace

void bobInitIntegerClass(BobInterp* interp) {
  interp->integerClass = bobMakeValueClass(interp, kBobInteger, kIntegerMethods, nullptr);
}

void bobInitFloatClass(BobInterp* interp) {
  interp->floatClass = bobMakeValueClass(interp, kBobFloat, kFloatMethods, nullptr);
}
