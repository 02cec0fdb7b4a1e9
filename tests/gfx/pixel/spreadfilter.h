// A mask filter that spreads coverage by a pixel each way, or leaves it alone.
#pragma once

#include <algorithm>

#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgmaskfilter.h"

struct SpreadFilter : hsGMaskFilter {
  bool FilterMask(const hsGMask& src, const hsMatrix& matrix, hsGMask* dst) override {
    seen = src.fBounds;
    if (!works) return false;
    dst->fBounds = src.fBounds;
    ComputeBounds(matrix, &dst->fBounds);
    dst->fMaskType = kMask_Alpha;
    dst->fRowBytes = uint16_t(dst->fBounds.Width());
    dst->AllocImage();
    for (int y = src.fBounds.fTop; y < src.fBounds.fBottom; ++y)
      for (int x = 0; x < src.fBounds.Width(); ++x)
        for (int dy = -1; dy <= 1; ++dy)
          for (int dx = 0; dx <= 2; ++dx) {
            uint8_t& to = dst->fImage[size_t(y + dy - dst->fBounds.fTop) * dst->fRowBytes + size_t(x + dx)];
            to = std::max(to, src.Row(y)[x]);
          }
    return true;
  }
  void ComputeBounds(const hsMatrix&, hsIntRect* rect) override {
    *rect = {rect->fLeft - 1, rect->fTop - 1, rect->fRight + 1, rect->fBottom + 1};
  }

  bool works = true;
  hsIntRect seen{0, 0, 0, 0};  // the bounds of the last mask
};
