#include "bob/lib/numberclasses.h"

#include "bob/base/numbers.h"
#include "bob/heap/interp.h"
#include "bob/model/kinds.h"
#include "bob/model/signature.h"
#include "bob/model/values.h"

namespace {

BobValue thisOf(BobInterp* interp, BobType type) {
  BobValue self;
  bobParse(interp, "V=*", type, &self);
  return self;
}

BobValue integerToFloat(BobInterp* interp) {
  return bobMakeFloat(interp, interp->integerOf(thisOf(interp, kBobInteger)));
}

BobValue integerToInteger(BobInterp* interp) { return thisOf(interp, kBobInteger); }

BobValue integerToString(BobInterp* interp) {
  BobValue self;
  const char* format = "%d";
  bobParse(interp, "V=*|S", kBobInteger, &self, &format);
  return bobMakeString(interp, bobFormatInteger(format, interp->integerOf(self)));
}

BobValue floatToFloat(BobInterp* interp) { return thisOf(interp, kBobFloat); }

BobValue floatToInteger(BobInterp* interp) {
  return bobMakeInteger(interp, bobTruncate(interp->floatOf(thisOf(interp, kBobFloat))));
}

constexpr BobMethodRow kIntegerMethods[] = {
    {"toFloat", integerToFloat}, {"toInteger", integerToInteger}, {"toString", integerToString}, {nullptr, nullptr}};
constexpr BobMethodRow kFloatMethods[] = {{"toFloat", floatToFloat}, {"toInteger", floatToInteger}, {nullptr, nullptr}};

}  // namespace

void bobInitIntegerClass(BobInterp* interp) {
  interp->integerClass = bobMakeValueClass(interp, kBobInteger, kIntegerMethods, nullptr);
}

void bobInitFloatClass(BobInterp* interp) {
  interp->floatClass = bobMakeValueClass(interp, kBobFloat, kFloatMethods, nullptr);
}
