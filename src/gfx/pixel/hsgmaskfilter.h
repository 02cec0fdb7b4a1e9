// Mask filters: coverage becomes other coverage.
#pragma once

#include "gfx/foundation/hsflattenable.h"
#include "gfx/foundation/hsmatrix.h"

struct hsGMask;

class hsGMaskFilter : public hsGSizedFlattenable {
 public:
  using hsGSizedFlattenable::hsGSizedFlattenable;
  hsGMaskFilter() = default;

  // Writes a new mask; false to leave the source alone.
  virtual bool FilterMask(const hsGMask& src, const hsMatrix& matrix, hsGMask* dst) = 0;
  // Widens a rectangle of device pixels by the filter's margin.
  virtual void ComputeBounds(const hsMatrix& matrix, hsIntRect* rect) = 0;
};
