// Vectors. One that has outgrown its elements becomes a MovedVector, which leads to the larger one; everything goes
// through bobVectorTarget, so both words stay good for the same vector. The next collection dissolves the detour.
#pragma once

#include "bob/heap/interp.h"

inline BobValue bobVectorTarget(BobInterp* interp, BobValue vector) {
  const uint32_t* w = interp->words(vector);
  return w[0] == kBobMovedVector ? w[BobLayout::kMovedTo] : vector;
}
inline uint32_t bobVectorSize(BobInterp* interp, BobValue vector) {
  return interp->words(bobVectorTarget(interp, vector))[BobLayout::kSize];
}
// Good until the next allocation.
inline uint32_t* bobVectorElements(BobInterp* interp, BobValue vector) {
  return interp->words(bobVectorTarget(interp, vector)) + BobLayout::kElements;
}
// Grows or shrinks to `size` elements, new ones nil. The vector in hand stays valid: it points at a larger one then.
void bobSetVectorSize(BobInterp* interp, BobValue vector, uint32_t size);

// Slots of the type records.
bool bobGetVectorProperty(BobInterp*, BobValue object, BobValue key, BobValue* value);
bool bobSetVectorProperty(BobInterp*, BobValue object, BobValue key, BobValue value);
BobValue bobNewVector(BobInterp*, BobValue value);
