// Making values, and the equality of the language.
#include <algorithm>

#include "bob/objects.h"

using namespace BobLayout;

namespace {

// A record of the type whose `count` words behind the first `head` ones are nil.
BobValue MakeRecord(BobInterp* interp, uint32_t type, uint32_t head, uint32_t count) {
  const BobValue object = bobAllocate(interp, (head + count) * 4);
  uint32_t* w = interp->words(object);
  w[0] = type;
  std::fill_n(w + head, count, kBobNil);
  return object;
}

// No object fills a space, so anything of this many words is refused before its size can wrap.
void CheckCount(BobInterp* interp, uint32_t count) {
  if (count > (interp->newSpace.top - interp->newSpace.base) / 4) bobRefuseAllocation(interp);
}

}  // namespace

BobValue bobMakeBoxed(BobInterp* interp, int32_t n) {
  const BobValue object = bobAllocate(interp, 8);
  uint32_t* w = interp->words(object);
  w[0] = kBobInteger;
  w[kIntegerValue] = uint32_t(n);
  return object;
}

BobValue bobMakeFloat(BobInterp* interp, double number) {
  const BobValue object = bobAllocate(interp, 16);
  uint32_t* w = interp->words(object);
  w[0] = kBobFloat;
  w[1] = 0;
  std::memcpy(w + kFloatWords, &number, sizeof number);
  return object;
}

BobValue bobMakeEmptyString(BobInterp* interp, uint32_t length) {
  CheckCount(interp, length / 4);
  const uint32_t size = bobStringSize(length);
  const BobValue object = bobAllocate(interp, size);
  uint32_t* w = interp->words(object);
  w[0] = kBobString;
  w[kStringLength] = length;
  std::memset(w + 2, 0, size - 8);
  return object;
}

BobValue bobMakeString(BobInterp* interp, std::string_view text) {
  CheckCount(interp, uint32_t(std::min<size_t>(text.size() / 4, UINT32_MAX)));
  const uint32_t size = bobStringSize(uint32_t(text.size()));
  const BobValue object = bobAllocate(interp, size);
  uint32_t* w = interp->words(object);
  w[0] = kBobString;
  w[kStringLength] = uint32_t(text.size());
  w[size / 4 - 1] = 0;
  std::copy(text.begin(), text.end(), reinterpret_cast<char*>(w + 2));  // an empty text may lie nowhere
  return object;
}

BobValue bobMakeVector(BobInterp* interp, uint32_t size) {
  CheckCount(interp, size);
  const BobValue object = MakeRecord(interp, kBobVector, kElements, size);
  interp->words(object)[kCapacity] = interp->words(object)[kSize] = size;
  return object;
}

BobValue bobMakeCode(BobInterp* interp, uint32_t count) {
  CheckCount(interp, count);
  const BobValue object = MakeRecord(interp, kBobCompiledCode, kCodeElements, count);
  interp->words(object)[kCodeCount] = count;
  return object;
}

BobValue bobMakeEnvironment(BobInterp* interp, uint32_t count) {
  const BobValue object = MakeRecord(interp, kBobEnvironment, kEnvNext, count);
  interp->words(object)[kEnvCount] = count;
  return object;
}

BobValue bobMakeMethod(BobInterp* interp, BobValue code, BobValue env, BobValue scope) {
  const BobLocal keepCode(interp, code), keepEnv(interp, env), keepScope(interp, scope);
  const BobValue object = bobAllocate(interp, 16);
  uint32_t* w = interp->words(object);
  w[0] = kBobMethod;
  w[kMethodCode] = keepCode;
  w[kMethodEnv] = keepEnv;
  w[kMethodScope] = keepScope;
  return object;
}

BobValue bobMakeObject(BobInterp* interp, BobValue parent) {
  const BobLocal keep(interp, parent);
  const BobValue object = bobAllocate(interp, 16);
  uint32_t* w = interp->words(object);
  w[0] = kBobObject;
  w[kParent] = keep;
  w[kProperties] = kBobNil;
  w[kCount] = 0;
  return object;
}

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
  const BobLocal keep(interp, vector), keepTarget(interp, bobVectorTarget(interp, vector));
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

namespace {

struct Number {
  double value;
  bool isNumber;
};

Number NumberOf(BobInterp* interp, BobValue value, uint32_t type) {
  if (type == kBobInteger) return {double(bobIntegerValue(interp, value)), true};
  if (type == kBobFloat) return {bobFloatValue(interp, value), true};
  return {0, false};
}

}  // namespace

bool bobEqual(BobInterp* interp, BobValue left, BobValue right) {
  if (left == right) return true;
  if (bobIsSmall(left) && bobIsSmall(right)) return false;
  const uint32_t leftType = interp->typeOf(left), rightType = interp->typeOf(right);
  if (leftType == kBobString && rightType == kBobString)
    return bobStringText(interp, left) == bobStringText(interp, right);
  const Number a = NumberOf(interp, left, leftType), b = NumberOf(interp, right, rightType);
  if (!a.isNumber || !b.isNumber) return false;
  return !(a.value < b.value) && !(a.value > b.value);
}
