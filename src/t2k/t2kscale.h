// A scaler's pixel sizes and the transformation that remains behind them, as one value that can be set and put back.
#pragma once

#include <bit>

#include "gfx/foundation/hsfixed.h"
#include "t2k/t2k.h"

struct T2KScale {
  hsFixed t00, t01, t10, t11;
  bool is_Identity;
  int xPixelsPerEm, yPixelsPerEm;
  hsFixed xPixelsPerEm16Dot16, yPixelsPerEm16Dot16;
  hsFixed xMul, yMul;
};

// What a matrix with the point size in it means for a font at so many dots an inch. Below half a pixel an em the
// transformation is all zeros. Throws tsiError.
T2KScale ScaleFromMatrix(const T2K* t, int xRes, int yRes, const T2KMatrix& matrix);

T2KScale CurrentScale(const T2K* t);
void SetScale(T2K* t, const T2KScale& scale);

// Makes the hinter if there is none and sets it for the current sizes. Throws tsiError.
void PrepareHinter(T2K* t);

// Frees what the purge level says; for use inside the engine.
void Purge(T2K* t, int level);

// Scales lengths in font units by a whole number of pixels an em, to 26.6: half a unit in the font's own scale is
// added and the quotient cut toward zero.
class UnitScale {
 public:
  UnitScale(int pixelsPerEm, int upem)
      : factor_(int64_t{pixelsPerEm} * 64),
        upem_(upem),
        shift_(std::has_single_bit(unsigned(upem)) ? std::countr_zero(unsigned(upem)) : -1) {}

  int32_t operator()(int32_t units) const {
    const int64_t numerator = units * factor_ + upem_ / 2;
    if (!hsFits32(numerator)) [[unlikely]]
      return hsSaturate(numerator / upem_);
    const auto small = int32_t(numerator);
    if (shift_ < 0) return small / upem_;
    return (small + ((small >> 31) & (upem_ - 1))) >> shift_;  // the same for the usual em of 2^shift units
  }

 private:
  int64_t factor_;
  int32_t upem_;
  int shift_;
};

inline int32_t ScaleUnits(int32_t units, int pixelsPerEm, int upem) { return UnitScale(pixelsPerEm, upem)(units); }
