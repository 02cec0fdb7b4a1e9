#include "bob/model/values.h"

#include <algorithm>

#include "bob/heap/heap.h"
#include "bob/heap/local.h"

using namespace BobLayout;

namespace {

// A record of the type whose `count` words after the first `head` ones are nil.
BobValue makeRecord(BobInterp* interp, uint32_t type, uint32_t head, uint32_t count) {
  const BobValue object = bobAllocate(interp, (head + count) * 4);
  uint32_t* w = interp->words(object);
  w[0] = type;
  std::fill_n(w + head, count, kBobNil);
  return object;
}

// No object fills a space, so anything of this many words is refused before its size can wrap.
void checkCount(BobInterp* interp, uint32_t count) {
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

BobValue bobMakeUnwrittenString(BobInterp* interp, size_t length) {
  checkCount(interp, uint32_t(std::min<size_t>(length / 4, UINT32_MAX)));
  const uint32_t size = bobStringSize(uint32_t(length));
  const BobValue object = bobAllocate(interp, size);
  uint32_t* w = interp->words(object);
  w[0] = kBobString;
  w[kStringLength] = uint32_t(length);
  w[size / 4 - 1] = 0;
  return object;
}

BobValue bobMakeEmptyString(BobInterp* interp, uint32_t length) {
  const BobValue object = bobMakeUnwrittenString(interp, length);
  std::memset(interp->bytes(object) + kStringBytes, 0, length);
  return object;
}

BobValue bobMakeString(BobInterp* interp, std::string_view text) {
  const BobValue object = bobMakeUnwrittenString(interp, text.size());
  // An empty text may lie nowhere.
  std::copy(text.begin(), text.end(), reinterpret_cast<char*>(interp->bytes(object)) + kStringBytes);
  return object;
}

BobValue bobMakeVector(BobInterp* interp, uint32_t size) {
  checkCount(interp, size);
  const BobValue object = makeRecord(interp, kBobVector, kElements, size);
  interp->words(object)[kCapacity] = interp->words(object)[kSize] = size;
  return object;
}

BobValue bobMakeCode(BobInterp* interp, uint32_t count) {
  checkCount(interp, count);
  const BobValue object = makeRecord(interp, kBobCompiledCode, kCodeElements, count);
  interp->words(object)[kCodeCount] = count;
  return object;
}

BobValue bobMakeMethod(BobInterp* interp, BobValue code, BobValue env, BobValue scope) {
  const BobLocal keepCode(interp->locals, code), keepEnv(interp->locals, env), keepScope(interp->locals, scope);
  const BobValue object = bobAllocate(interp, 16);
  uint32_t* w = interp->words(object);
  w[0] = kBobMethod;
  w[kMethodCode] = keepCode;
  w[kMethodEnv] = keepEnv;
  w[kMethodScope] = keepScope;
  return object;
}

BobValue bobMakeObject(BobInterp* interp, BobValue parent) {
  const BobLocal keep(interp->locals, parent);
  const BobValue object = bobAllocate(interp, 16);
  uint32_t* w = interp->words(object);
  w[0] = kBobObject;
  w[kParent] = keep;
  w[kProperties] = kBobNil;
  w[kCount] = 0;
  return object;
}

bool bobIsA(BobInterp* interp, BobValue value, uint32_t type) { return interp->isA(value, type); }
bool bobIsInteger(BobInterp* interp, BobValue value) { return interp->isInteger(value); }
int32_t bobIntegerValue(BobInterp* interp, BobValue value) { return interp->integerOf(value); }
std::string_view bobStringText(BobInterp* interp, BobValue value) { return interp->stringOf(value); }

BobValue bobCodeName(BobInterp* interp, BobValue code) {
  const uint32_t* w = interp->words(code);
  return bobCodeCount(w[kCodeCount]) > 1 ? w[kCodeElements + 1] : kBobNil;
}

BobValue bobMethodCode(BobInterp* interp, BobValue method) { return interp->words(method)[kMethodCode]; }

namespace {

struct Number {
  double value;
  bool isNumber;
};

Number numberOf(BobInterp* interp, BobValue value, uint32_t type) {
  if (type == kBobInteger) return {double(interp->integerOf(value)), true};
  if (type == kBobFloat) return {interp->floatOf(value), true};
  return {0, false};
}

}  // namespace

bool bobEqual(BobInterp* interp, BobValue left, BobValue right) {
  if (left == right) return true;
  if (bobIsSmall(left) && bobIsSmall(right)) return false;
  const uint32_t leftType = interp->typeOf(left), rightType = interp->typeOf(right);
  if (leftType == kBobString && rightType == kBobString) return interp->stringOf(left) == interp->stringOf(right);
  const Number a = numberOf(interp, left, leftType), b = numberOf(interp, right, rightType);
  if (!a.isNumber || !b.isNumber) return false;
  return !(a.value < b.value) && !(a.value > b.value);
}
