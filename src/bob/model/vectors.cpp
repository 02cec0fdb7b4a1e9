#include "bob/model/vectors.h"

#include <algorithm>

#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/members.h"
#include "bob/model/values.h"

using namespace BobLayout;

void bobSetVectorSize(BobInterp* interp, BobValue vector, uint32_t size) {
  uint32_t* w = interp->words(bobVectorTarget(interp, vector));
  const uint32_t old = w[kSize];
  if (size <= w[kCapacity]) {
    for (uint32_t i = old; i < size; ++i) w[kElements + i] = kBobNil;
    w[kSize] = size;
    return;
  }
  const uint32_t growth = old < 16 ? 8 : std::min(old / 2, 128u);
  const uint32_t capacity = std::max(old + growth, size);
  const BobLocal keep(interp->locals, vector), keepTarget(interp->locals, bobVectorTarget(interp, vector));
  const BobValue grown = bobMakeVector(interp, capacity);
  uint32_t* to = interp->words(grown);
  const uint32_t* from = interp->words(keepTarget);
  std::copy_n(from + kElements, old, to + kElements);
  to[kSize] = size;
  // A collection on the way dissolved the old indirection, if there was one: both names are the same vector then.
  for (BobValue moved : {keep.value, keepTarget.value}) {
    interp->words(moved)[0] = kBobMovedVector;
    interp->words(moved)[kMovedTo] = grown;
  }
}

bool bobGetVectorProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  if (!interp->isInteger(key)) return bobGetValueProperty(interp, object, key, value);
  const int32_t index = interp->integerOf(key);
  if (index < 0 || uint32_t(index) >= bobVectorSize(interp, object)) bobRaise(interp, kBobIndexOutOfBounds, key);
  *value = bobVectorElements(interp, object)[index];
  return true;
}

bool bobSetVectorProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  if (!interp->isInteger(key)) return bobSetValueProperty(interp, object, key, value);
  const int32_t index = interp->integerOf(key);
  if (index < 0) bobRaise(interp, kBobIndexOutOfBounds, key);
  const BobLocal vector(interp->locals, object), element(interp->locals, value);
  if (uint32_t(index) >= bobVectorSize(interp, object)) bobSetVectorSize(interp, object, uint32_t(index) + 1);
  bobVectorElements(interp, vector)[index] = element;
  return true;
}

BobValue bobNewVector(BobInterp* interp, BobValue) { return bobMakeVector(interp, 0); }
