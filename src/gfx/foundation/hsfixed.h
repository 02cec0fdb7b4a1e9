// Fixed-point arithmetic: the conversions, and the product and quotient that everything is drawn with.
//
// A product or quotient that doesn't fit saturates at plus or minus 0x7FFFFFFF. Products, hsMulDiv, hsFracDiv
// and hsMagnitude report "Math overflow" when they do, which stops the system; hsFixDiv never reports, so a caller may
// divide first and test for infinity afterwards. Readers of bytes from outside, which must not stop, use the forms
// that end in Sat: the same results without a report.
//
// Products round to nearest with halves up (-1.5 to -1), quotients with halves away from zero (-1.5 to -2).
#pragma once

#include "gfx/foundation/hstypes.h"

constexpr hsFixed hsIntToFixed(int32_t x) { return hsWrapShl(x, 16); }

// Halves go up, also for negative x: -0.5 becomes 0.
constexpr int32_t hsFixedRound(hsFixed x) { return hsWrapAdd(x, kFixedHalf) >> 16; }
// Within 0xFFFF of either end of the range these two wrap and come out with the wrong sign.
constexpr int32_t hsFixedFloor(hsFixed x) { return x >= 0 ? x >> 16 : -(hsWrapSub(0xFFFF, x) >> 16); }
constexpr int32_t hsFixedCeil(hsFixed x) { return x >= 0 ? hsWrapAdd(x, 0xFFFF) >> 16 : -(hsWrapNeg(x) >> 16); }
// The sum wraps before it is halved.
constexpr hsFixed hsFixedAverage(hsFixed a, hsFixed b) { return hsWrapAdd(a, b) >> 1; }

// A unit value, 0 to 1.0, as a 16-bit colour component: 1.0 is 0xFFFF, and 0x7FFF and 0x8000 share 0x7FFF.
constexpr uint16_t hsScalarTo16Bit(hsScalar x) {
  if (x <= 0) return 0;
  if (x > kFixed1) x = kFixed1;
  return uint16_t(x >= kFixedHalf ? x - 1 : x);
}

constexpr bool hsFits32(int64_t value) { return value == int32_t(value); }
constexpr int32_t hsSaturate(int64_t value) {
  return hsFits32(value) ? int32_t(value) : value < 0 ? kNegInfinity32 : kPosInfinity32;
}

// Reports "Math overflow" and saturates a value that doesn't fit.
[[gnu::cold, gnu::noinline]] int32_t hsMathOverflow(int64_t value);

inline int32_t hsAsLong(int64_t value) {
  if (!hsFits32(value)) [[unlikely]]
    return hsMathOverflow(value);
  return int32_t(value);
}

inline hsFixed hsFixMul(hsFixed a, hsFixed b) { return hsAsLong((int64_t{a} * b + 0x8000) >> 16); }
constexpr hsFixed hsFixMulSat(hsFixed a, hsFixed b) { return hsSaturate((int64_t{a} * b + 0x8000) >> 16); }

// The product shifted down by 30, so of two fracts a fract, and of a fract and a fixed a fixed.
inline int32_t hsFracMul(int32_t a, int32_t b) { return hsAsLong((int64_t{a} * b + (1 << 29)) >> 30); }

// a / b. Division by zero yields infinity of a's sign. Only the high word is judged for saturation, and as a signed
// number: a quotient from 0x80000000 up to 0xFFFFFFFF passes and wraps, and a divisor of 0x80000000 always saturates.
inline hsFixed hsFixDiv(hsFixed a, hsFixed b) {
  const bool negative = (a ^ b) < 0;
  const uint32_t divisor = hsMagnitude32(b);
  const uint64_t dividend = (uint64_t{hsMagnitude32(a)} << 16) + (divisor >> 1);
  if (int32_t(dividend >> 32) >= int32_t(divisor)) [[unlikely]]
    return negative ? kNegInfinity32 : kPosInfinity32;
  return hsWithSign(uint32_t(dividend / divisor), negative);
}

// (a << 30) / b: the ratio of two numbers of one format as a fract. b of 0 reports.
hsFract hsFracDiv(int32_t a, int32_t b);
// a * b / c by way of 64 bits. c of 0 reports.
int32_t hsMulDiv(int32_t a, int32_t b, int32_t c);

// The length of (x, y), in their own unit, rounded down.
int32_t hsMagnitude(int32_t x, int32_t y);
int32_t hsMagnitudeSat(int32_t x, int32_t y);
