// A 64-bit integer in two words, for sums of products that 32 bits can't hold.
//
// Sums and shifts wrap. Only what goes back to 32 bits (AsLong, AsFixed, AsFract and the quotients made of them)
// saturates, with the report "Math overflow". Operations work in place and return *this, so that they chain:
//   hsWide().Mul(a, b).Div(c).AsLong()
#pragma once

#include "gfx/foundation/hsfixed.h"

struct hsWide {
  int32_t fHi = 0;
  uint32_t fLo = 0;

  constexpr hsWide() = default;
  constexpr hsWide(int32_t hi, uint32_t lo) : fHi(hi), fLo(lo) {}
  static constexpr hsWide Of(int64_t value) { return {int32_t(value >> 32), uint32_t(value)}; }
  constexpr int64_t Value() const { return int64_t(uint64_t(uint32_t(fHi)) << 32 | fLo); }
  constexpr bool operator==(const hsWide&) const = default;

  constexpr hsWide& Set(int32_t value) { return Put(value); }
  constexpr hsWide& Mul(int32_t a, int32_t b) { return Put(int64_t{a} * b); }
  // Times value; a product of more than 63 bits becomes the infinity of its sign, without a report.
  hsWide& Mul(int32_t value);

  constexpr hsWide& Add(const hsWide& other) { return PutBits(Bits() + other.Bits()); }
  constexpr hsWide& Add(int32_t value) { return PutBits(Bits() + uint64_t(int64_t{value})); }
  constexpr hsWide& Sub(const hsWide& other) { return PutBits(Bits() - other.Bits()); }
  constexpr hsWide& Negate() { return PutBits(0 - Bits()); }

  // By 0 to 63 bits; by more, everything is shifted out. A count below 0 shifts nothing.
  constexpr hsWide& ShiftLeft(int bits) { return bits <= 0 ? *this : PutBits(bits > 63 ? 0 : Bits() << bits); }
  constexpr hsWide& ShiftRight(int bits) { return bits <= 0 ? *this : Put(Value() >> (bits > 63 ? 63 : bits)); }
  // Rounds halves up.
  constexpr hsWide& RoundRight(int bits) {
    if (bits > 0 && bits <= 64) PutBits(Bits() + (uint64_t{1} << (bits - 1)));
    return ShiftRight(bits);
  }

  // Quotients to nearest, halves away from zero. By zero: "Math overflow" or "Math underflow", and infinity.
  hsWide& Div(int32_t value);
  // A divisor of more than 32 bits is rounded to 32, and the dividend by as many bits.
  hsWide& Div(const hsWide& divisor);
  // *this / divisor as a fixed or a fract. These leave *this alone. When the dividend is too high to be scaled up, it
  // is the divisor that loses bits.
  hsFixed FixDiv(const hsWide& divisor) const { return ScaledDiv(divisor, 16); }
  hsFract FracDiv(const hsWide& divisor) const { return ScaledDiv(divisor, 30); }

  // The root of the bits as an unsigned number, rounded down; above 0x7FFFFFFF it saturates without a report.
  int32_t Sqrt() const;
  // Rounded towards zero.
  int32_t CubeRoot() const;

  constexpr bool IsNeg() const { return fHi < 0; }
  // More than a signed 32-bit number.
  constexpr bool IsWide() const { return !hsFits32(Value()); }

  int32_t AsLong() const { return hsAsLong(Value()); }
  hsFixed AsFixed() const { return hsWide(*this).RoundRight(16).AsLong(); }
  hsFract AsFract() const { return hsWide(*this).RoundRight(30).AsLong(); }

 private:
  constexpr uint64_t Bits() const { return uint64_t(Value()); }
  constexpr uint64_t Magnitude() const { return fHi < 0 ? 0 - Bits() : Bits(); }
  constexpr hsWide& PutBits(uint64_t bits) { return *this = Of(int64_t(bits)); }
  constexpr hsWide& Put(int64_t value) { return *this = Of(value); }
  constexpr hsWide& PutSigned(uint64_t magnitude, bool negative) {
    return PutBits(negative ? 0 - magnitude : magnitude);
  }
  int32_t ScaledDiv(const hsWide& divisor, int bits) const;
};

inline constexpr hsWide kPosInfinity64{0x7FFFFFFF, 0xFFFFFFFF};
// Not the most negative number.
inline constexpr hsWide kNegInfinity64{-0x7FFFFFFF, 0};
