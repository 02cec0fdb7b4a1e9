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

constexpr int32_t bobComputeInteger(BobOpcode op, int32_t a, int32_t b) {
  switch (op) {
    case kOpAdd: return bobAdd(a, b);
    case kOpSub: return bobSubtract(a, b);
    case kOpMul: return int32_t(uint32_t(a) * uint32_t(b));
    case kOpDiv: return b == 0 ? 0 : b == -1 ? bobSubtract(0, a) : a / b;
    case kOpRem: return b == 0 || b == -1 ? 0 : a % b;
    case kOpBand: return a & b;
    case kOpBor: return a | b;
    case kOpXor: return a ^ b;
    case kOpShl: return int32_t(uint32_t(a) << (b & 31));
    default: return a >> (b & 31);  // SHR
  }
}
