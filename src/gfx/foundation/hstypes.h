// The number formats of the 2D library, and sums of them that may wrap.
//
// The library has no floating point: geometry is 32-bit two's complement, 16.16 (hsFixed) or 2.30 (hsFract). What
// surprises is that plain sums wrap while products and quotients (hsfixed.h) saturate. A sum that can leave
// 32 bits is written with the functions below, or in uint32_t.
#pragma once

#include <cstdint>

using hsFixed = int32_t;   // 16.16
using hsScalar = hsFixed;  // the type of all public geometry
using hsFract = int32_t;   // 2.30

constexpr hsFixed kFixed1 = 0x10000;
constexpr hsFixed kFixedHalf = 0x8000;
constexpr hsFract kFract1 = 0x40000000;

// What arithmetic saturates to, alike in every format. The two are negatives of each other: 0x80000000 is neither.
constexpr int32_t kPosInfinity32 = 0x7FFFFFFF;
constexpr int32_t kNegInfinity32 = -0x7FFFFFFF;

constexpr int32_t hsWrapAdd(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
constexpr int32_t hsWrapSub(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }
constexpr int32_t hsWrapMul(int32_t a, int32_t b) { return int32_t(uint32_t(a) * uint32_t(b)); }
constexpr int32_t hsWrapSecondDifference(int32_t a, int32_t b, int32_t c) {  // a - 2 b + c
  return int32_t(uint32_t(a) - 2 * uint32_t(b) + uint32_t(c));
}
constexpr int32_t hsWrapNeg(int32_t a) { return int32_t(0u - uint32_t(a)); }
constexpr int32_t hsWrapShl(int32_t a, int bits) { return int32_t(uint32_t(a) << bits); }

// |a| in 0 to 0x80000000: unlike -a, right for the most negative value too.
constexpr uint32_t hsMagnitude32(int32_t a) { return a < 0 ? 0u - uint32_t(a) : uint32_t(a); }
// magnitude with a sign, wrapping.
constexpr int32_t hsWithSign(uint32_t magnitude, bool negative) {
  return int32_t(negative ? 0u - magnitude : magnitude);
}

// A tag of four characters as a number, the first one highest.
constexpr uint32_t hsTag(const char (&text)[5]) {
  return uint32_t(uint8_t(text[0])) << 24 | uint32_t(uint8_t(text[1])) << 16 | uint32_t(uint8_t(text[2])) << 8 |
         uint8_t(text[3]);
}
