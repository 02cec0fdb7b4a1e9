#include "gfx/foundation/hswide.h"

#include <bit>

#include "gfx/foundation/hsmath.h"

hsWide& hsWide::Mul(int32_t value) {
  const bool negative = (fHi ^ value) < 0;
  uint64_t product;
  if (__builtin_mul_overflow(Magnitude(), uint64_t{hsMagnitude32(value)}, &product) || product >> 63)
    return *this = negative ? kNegInfinity64 : kPosInfinity64;
  return PutSigned(product, negative);
}

hsWide& hsWide::Div(int32_t value) { return Put(hsDivide64(Value(), value)); }

hsWide& hsWide::Div(const hsWide& divisor) {
  int shift = 0;
  for (hsWide shifted = divisor; shifted.IsWide(); shifted.ShiftRight(1)) ++shift;
  if (shift == 0) return Div(divisor.AsLong());
  const int32_t rounded = hsWide(divisor).RoundRight(shift).AsLong();  // before *this, which may be the same object
  return RoundRight(shift).Div(rounded);
}

int32_t hsWide::ScaledDiv(const hsWide& divisor, int bits) const {
  // Bits that the high word has to spare above its magnitude, keeping one for the sign.
  int spare = std::countl_zero(hsMagnitude32(fHi)) - 1;
  if (spare < 0) spare = 0;
  hsWide dividend = *this;
  if (spare >= bits) return dividend.ShiftLeft(bits).Div(divisor).AsLong();
  return dividend.ShiftLeft(spare).Div(hsWide(divisor).RoundRight(bits - spare)).AsLong();
}

int32_t hsWide::Sqrt() const { return hsSaturate(hsSqrt64(Bits())); }

int32_t hsWide::CubeRoot() const { return hsWithSign(hsCubeRoot63(Magnitude()), fHi < 0); }
