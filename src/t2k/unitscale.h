// Lengths in font units to 26.6, by a whole number of pixels an em.
#pragma once

#include <bit>

#include "gfx/foundation/hsfixed.h"

// Half a unit in the font's own scale is added and the quotient cut toward zero.
class UnitScale {
 public:
  UnitScale(int pixelsPerEm, int upem)
      : factor_(int64_t{pixelsPerEm} * 64),
        upem_(upem),
        shift_(upem > 0 && (upem & (upem - 1)) == 0 ? std::countr_zero(unsigned(upem)) : -1) {}

  int32_t operator()(int32_t units) const {
    const int64_t numerator = units * factor_ + upem_ / 2;
    if (!hsFits32(numerator)) [[unlikely]]
      return hsSaturate(numerator / upem_);
    const auto small = int32_t(numerator);
    if (shift_ < 0) return small / upem_;
    return (small + ((small >> 31) & (upem_ - 1))) >> shift_;  // the same for the usual em of 2^shift units
  }

  // Of count lengths.
  void Scale(const int16_t* units, int count, int32_t* scaled) const {
    if (shift_ < 0 || factor_ > INT16_MAX) {
      for (int i = 0; i < count; ++i) scaled[i] = (*this)(units[i]);
      return;
    }
    // The same in vectors: products of 16 bits each.
    const auto factor = int16_t(factor_);
    const int32_t half = upem_ / 2, below = upem_ - 1, shift = shift_;
    for (int i = 0; i < count; ++i) {
      const int32_t numerator = int32_t{units[i]} * factor + half;
      scaled[i] = (numerator + ((numerator >> 31) & below)) >> shift;
    }
  }

 private:
  int64_t factor_;
  int32_t upem_;
  int shift_;
};

inline int32_t ScaleUnits(int32_t units, int pixelsPerEm, int upem) { return UnitScale(pixelsPerEm, upem)(units); }
