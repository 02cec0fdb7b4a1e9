#include "bob/lib/vectorclass.h"

#include <algorithm>

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/kinds.h"
#include "bob/model/signature.h"
#include "bob/model/values.h"
#include "bob/model/vectors.h"

using namespace BobLayout;

namespace {

BobValue thisOf(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobVector, &self);
  return self;
}

uint32_t checkedSize(BobInterp* interp, int32_t size) {
  if (size < 0) bobRaise(interp, kBobIndexOutOfBounds, bobMakeInteger(interp, size));
  return uint32_t(size);
}

// Grows by one and returns the vector, since `this` may have moved.
BobValue grow(BobInterp* interp) {
  const BobValue self = interp->argv[-1];
  bobSetVectorSize(interp, self, bobVectorSize(interp, self) + 1);
  return interp->argv[-1];
}

// `new Vector(n)` makes an empty one and sends this.
BobValue initialize(BobInterp* interp) {
  BobValue self;
  int32_t size = 0;
  bobParse(interp, "V=*|i", kBobVector, &self, &size);
  const uint32_t checked = checkedSize(interp, size);
  bobSetVectorSize(interp, interp->argv[-1], checked);
  return interp->argv[-1];
}

BobValue clone(BobInterp* interp) {
  const uint32_t size = bobVectorSize(interp, thisOf(interp));
  const BobValue copy = bobMakeVector(interp, size);
  std::copy_n(bobVectorElements(interp, interp->argv[-1]), size, bobVectorElements(interp, copy));
  return copy;
}

// The vector's words if it is called with so many slots, or null. What is common is then done without reading a
// signature.
uint32_t* plainCall(BobInterp* interp, int slots) {
  const BobValue self = interp->argv[-1];
  if (interp->argc != slots || interp->recordOf(self)->base != kBobVector) return nullptr;
  return interp->words(bobVectorTarget(interp, self));
}

BobValue push(BobInterp* interp) {
  if (uint32_t* const w = plainCall(interp, 3); w && w[kSize] < w[kCapacity])
    return w[kElements + w[kSize]++] = interp->argv[-3];
  BobValue self, value;
  bobParse(interp, "V=*V", kBobVector, &self, &value);
  self = grow(interp);
  return bobVectorElements(interp, self)[bobVectorSize(interp, self) - 1] = interp->argv[-3];
}

BobValue pushFront(BobInterp* interp) {
  BobValue self, value;
  bobParse(interp, "V=*V", kBobVector, &self, &value);
  self = grow(interp);
  uint32_t* elements = bobVectorElements(interp, self);
  std::copy_backward(elements, elements + bobVectorSize(interp, self) - 1, elements + bobVectorSize(interp, self));
  return elements[0] = interp->argv[-3];
}

// The size of a vector that has an element to remove.
uint32_t sizeToPop(BobInterp* interp, BobValue self) {
  const uint32_t size = bobVectorSize(interp, self);
  if (size == 0) bobRaise(interp, kBobStackEmpty, self);
  return size;
}

BobValue pop(BobInterp* interp) {
  if (uint32_t* const w = plainCall(interp, 2); w && w[kSize] > 0) return w[kElements + --w[kSize]];
  const BobValue self = thisOf(interp);
  const uint32_t size = sizeToPop(interp, self);
  const BobValue value = bobVectorElements(interp, self)[size - 1];
  bobSetVectorSize(interp, self, size - 1);
  return value;
}

BobValue popFront(BobInterp* interp) {
  const BobValue self = thisOf(interp);
  const uint32_t size = sizeToPop(interp, self);
  uint32_t* elements = bobVectorElements(interp, self);
  const BobValue value = elements[0];
  std::copy(elements + 1, elements + size, elements);
  bobSetVectorSize(interp, self, size - 1);
  return value;
}

// Reached with something else when the row itself is fetched from the class.
void checkVector(BobInterp* interp, BobValue object) {
  if (interp->recordOf(object)->base != kBobVector) bobRaise(interp, kBobWrongType, object);
}

BobValue getSize(BobInterp* interp, BobValue object) {
  checkVector(interp, object);
  return bobMakeInteger(interp, int32_t(bobVectorSize(interp, object)));
}

void setSize(BobInterp* interp, BobValue object, BobValue value) {
  checkVector(interp, object);
  if (!interp->isInteger(value)) bobRaise(interp, kBobWrongType, value);
  const BobLocal keep(interp->locals, object);
  const uint32_t size = checkedSize(interp, interp->integerOf(value));
  bobSetVectorSize(interp, keep, size);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", initialize}, {"Clone", clone},   {"Push", push}, {"PushFront", pushFront}, {"Pop", pop},
    {"PopFront", popFront},     {nullptr, nullptr},
};
constexpr BobPropertyRow kVectorProperties[] = {{"size", getSize, setSize}, {nullptr, nullptr, nullptr}};

}  // namespace

void bobInitVectorClass(BobInterp* interp) {
  interp->vectorClass = bobMakeValueClass(interp, kBobVector, kMethods, kVectorProperties);
}
