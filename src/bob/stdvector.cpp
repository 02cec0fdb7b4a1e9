// Vectors: elements, members and methods.
#include <algorithm>

#include "bob/bob.h"

using namespace BobLayout;

namespace {

uint32_t* Elements(BobInterp* interp, BobValue vector) {
  return interp->words(bobVectorTarget(interp, vector)) + kElements;
}

BobValue This(BobInterp* interp) {
  BobValue self;
  bobParse(interp, "V=*", kBobVector, &self);
  return self;
}

uint32_t CheckedSize(BobInterp* interp, int32_t size) {
  if (size < 0) bobRaise(interp, kBobIndexOutOfBounds, bobMakeInteger(interp, size));
  return uint32_t(size);
}

// Grows by one and gives the vector, since `this` may have moved.
BobValue Grow(BobInterp* interp) {
  const BobValue self = interp->argv[-1];
  bobSetVectorSize(interp, self, bobVectorSize(interp, self) + 1);
  return interp->argv[-1];
}

// `new Vector(n)` makes an empty one and sends this.
BobValue Initialize(BobInterp* interp) {
  BobValue self;
  int32_t size = 0;
  bobParse(interp, "V=*|i", kBobVector, &self, &size);
  const uint32_t checked = CheckedSize(interp, size);
  bobSetVectorSize(interp, interp->argv[-1], checked);
  return interp->argv[-1];
}

BobValue Clone(BobInterp* interp) {
  const uint32_t size = bobVectorSize(interp, This(interp));
  const BobValue copy = bobMakeVector(interp, size);
  std::copy_n(Elements(interp, interp->argv[-1]), size, Elements(interp, copy));
  return copy;
}

BobValue Push(BobInterp* interp) {
  BobValue self, value;
  bobParse(interp, "V=*V", kBobVector, &self, &value);
  self = Grow(interp);
  return Elements(interp, self)[bobVectorSize(interp, self) - 1] = interp->argv[-3];
}

BobValue PushFront(BobInterp* interp) {
  BobValue self, value;
  bobParse(interp, "V=*V", kBobVector, &self, &value);
  self = Grow(interp);
  uint32_t* elements = Elements(interp, self);
  std::copy_backward(elements, elements + bobVectorSize(interp, self) - 1, elements + bobVectorSize(interp, self));
  return elements[0] = interp->argv[-3];
}

// The size of a vector that has an element to give.
uint32_t SizeToPop(BobInterp* interp, BobValue self) {
  const uint32_t size = bobVectorSize(interp, self);
  if (size == 0) bobRaise(interp, kBobStackEmpty, self);
  return size;
}

BobValue Pop(BobInterp* interp) {
  const BobValue self = This(interp);
  const uint32_t size = SizeToPop(interp, self);
  const BobValue value = Elements(interp, self)[size - 1];
  bobSetVectorSize(interp, self, size - 1);
  return value;
}

BobValue PopFront(BobInterp* interp) {
  const BobValue self = This(interp);
  const uint32_t size = SizeToPop(interp, self);
  uint32_t* elements = Elements(interp, self);
  const BobValue value = elements[0];
  std::copy(elements + 1, elements + size, elements);
  bobSetVectorSize(interp, self, size - 1);
  return value;
}

// Reached with something else when the row itself is fetched from the class.
void CheckVector(BobInterp* interp, BobValue object) {
  if (interp->recordOf(object)->base != kBobVector) bobRaise(interp, kBobWrongType, object);
}

BobValue GetSize(BobInterp* interp, BobValue object) {
  CheckVector(interp, object);
  return bobMakeInteger(interp, int32_t(bobVectorSize(interp, object)));
}

void SetSize(BobInterp* interp, BobValue object, BobValue value) {
  CheckVector(interp, object);
  if (!bobIsInteger(interp, value)) bobRaise(interp, kBobWrongType, value);
  const BobLocal keep(interp, object);
  const uint32_t size = CheckedSize(interp, bobIntegerValue(interp, value));
  bobSetVectorSize(interp, keep, size);
}

constexpr BobMethodRow kMethods[] = {
    {"initialize", Initialize}, {"Clone", Clone},   {"Push", Push}, {"PushFront", PushFront}, {"Pop", Pop},
    {"PopFront", PopFront},     {nullptr, nullptr},
};
constexpr BobPropertyRow kProperties_[] = {{"size", GetSize, SetSize}, {nullptr, nullptr, nullptr}};

}  // namespace

bool bobGetVectorProperty(BobInterp* interp, BobValue object, BobValue key, BobValue* value) {
  if (!bobIsInteger(interp, key)) return bobGetValueProperty(interp, object, key, value);
  const int32_t index = bobIntegerValue(interp, key);
  if (index < 0 || uint32_t(index) >= bobVectorSize(interp, object)) bobRaise(interp, kBobIndexOutOfBounds, key);
  *value = Elements(interp, object)[index];
  return true;
}

bool bobSetVectorProperty(BobInterp* interp, BobValue object, BobValue key, BobValue value) {
  if (!bobIsInteger(interp, key)) return bobSetValueProperty(interp, object, key, value);
  const int32_t index = bobIntegerValue(interp, key);
  if (index < 0) bobRaise(interp, kBobIndexOutOfBounds, key);
  const BobLocal vector(interp, object), element(interp, value);
  if (uint32_t(index) >= bobVectorSize(interp, object)) bobSetVectorSize(interp, object, uint32_t(index) + 1);
  Elements(interp, vector)[index] = element;
  return true;
}

BobValue bobNewVector(BobInterp* interp, BobValue) { return bobMakeVector(interp, 0); }

void bobInitVectorClass(BobInterp* interp) {
  interp->vectorClass = bobMakeValueClass(interp, kBobVector, kMethods, kProperties_);
}
