// Arithmetic and comparison of any two values: what the machine falls back on when its operands aren't small integers.
#pragma once

#include "bob/interp.h"
#include "bob/opcodes.h"

// `op` is one of the binary numeric opcodes, ADD to REM, BAND to XOR, SHL, SHR. May allocate; the operands needn't be
// kept by the caller.
BobValue bobArithmetic(BobInterp* interp, BobOpcode op, BobValue left, BobValue right);
// NEG, BNOT, INC or DEC.
BobValue bobUnary(BobInterp* interp, BobOpcode op, BobValue value);
// Negative, zero or positive.
int bobCompare(BobInterp* interp, BobValue left, BobValue right);

// 32-bit integer arithmetic as the language has it: it wraps, and dividing by 0 gives 0.
constexpr int32_t bobDivide(int32_t a, int32_t b) { return b == 0 ? 0 : b == -1 ? int32_t(0u - uint32_t(a)) : a / b; }
constexpr int32_t bobRemainder(int32_t a, int32_t b) { return b == 0 || b == -1 ? 0 : a % b; }
constexpr int32_t bobShiftLeft(int32_t a, int32_t b) { return int32_t(uint32_t(a) << (b & 31)); }
constexpr int32_t bobShiftRight(int32_t a, int32_t b) { return a >> (b & 31); }
