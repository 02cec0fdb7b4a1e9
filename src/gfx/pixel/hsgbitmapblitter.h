// Bitmaps under a matrix that does more than move them.
//
// Each pixel of a span is mapped back into the source. The span's area is the caller's: these blitters only say what
// colour lies where.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"

// Draws nothing: for a matrix that can't be inverted.
class hsGNullBlitter : public hsGBlitter {
 public:
  void BlitH(int32_t, int32_t, int32_t) override {}
  void BlitRect(int32_t, int32_t, int32_t, int32_t) override {}
  void BlitMask(const hsGMask&, const hsRegion*) override {}
};
