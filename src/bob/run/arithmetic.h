// Arithmetic and comparison of any two values: what the machine falls back on when its operands aren't small integers.
#pragma once

#include "bob/base/opcodes.h"
#include "bob/base/value.h"

// `op` is one of the binary numeric opcodes, ADD to REM, BAND to XOR, SHL, SHR. May allocate; the operands needn't be
// kept by the caller.
BobValue bobArithmetic(BobInterp* interp, BobOpcode op, BobValue left, BobValue right);
// NEG, BNOT, INC or DEC.
BobValue bobUnary(BobInterp* interp, BobOpcode op, BobValue value);
// Negative, zero or positive.
int bobCompare(BobInterp* interp, BobValue left, BobValue right);

// 32-bit integer arithmetic as the language has it: it wraps, and dividing by 0 yields 0.
constexpr int32_t bobAdd(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
constexpr int32_t bobSubtract(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }
constexpr int32_t bobMultiply(int32_t a, int32_t b) { return int32_t(uint32_t(a) * uint32_t(b)); }
constexpr int32_t bobDivide(int32_t a, int32_t b) { return b == 0 ? 0 : b == -1 ? bobSubtract(0, a) : a / b; }
constexpr int32_t bobRemainder(int32_t a, int32_t b) { return b == 0 || b == -1 ? 0 : a % b; }
constexpr int32_t bobShiftLeft(int32_t a, int32_t b) { return int32_t(uint32_t(a) << (b & 31)); }
constexpr int32_t bobShiftRight(int32_t a, int32_t b) { return a >> (b & 31); }

// The same for two small integers, straight on their words: false, with `result` undefined, if the result isn't small.
inline bool bobFastAdd(BobValue a, BobValue b, BobValue* result) {
  int32_t sum;
  const bool fits = !__builtin_add_overflow(int32_t(a), int32_t(b - 1), &sum);
  *result = uint32_t(sum);
  return fits;
}
inline bool bobFastSub(BobValue a, BobValue b, BobValue* result) {
  int32_t difference;
  const bool fits = !__builtin_sub_overflow(int32_t(a), int32_t(b - 1), &difference);
  *result = uint32_t(difference);
  return fits;
}
inline bool bobFastInteger(int32_t n, BobValue* result) {
  *result = bobSmall(n);
  return bobFitsSmall(n);
}
inline bool bobFastMul(BobValue a, BobValue b, BobValue* result) {
  return bobFastInteger(bobMultiply(bobSmallValue(a), bobSmallValue(b)), result);
}
inline bool bobFastDiv(BobValue a, BobValue b, BobValue* result) {
  return bobFastInteger(bobDivide(bobSmallValue(a), bobSmallValue(b)), result);
}
inline bool bobFastRem(BobValue a, BobValue b, BobValue* result) {
  return bobFastInteger(bobRemainder(bobSmallValue(a), bobSmallValue(b)), result);
}
inline bool bobFastBand(BobValue a, BobValue b, BobValue* result) { return *result = a & b, true; }
inline bool bobFastBor(BobValue a, BobValue b, BobValue* result) { return *result = a | b, true; }
inline bool bobFastXor(BobValue a, BobValue b, BobValue* result) { return *result = (a ^ b) | 1, true; }
inline bool bobFastShl(BobValue a, BobValue b, BobValue* result) {
  return bobFastInteger(bobShiftLeft(bobSmallValue(a), bobSmallValue(b)), result);
}
inline bool bobFastShr(BobValue a, BobValue b, BobValue* result) {
  return bobFastInteger(bobShiftRight(bobSmallValue(a), bobSmallValue(b)), result);
}
