// Mask filters: coverage becomes other coverage.
#pragma once

#include "gfx/foundation/hsflattenable.h"
#include "gfx/foundation/hsmatrix.h"

class hsPath;
struct hsGMask;
struct hsGRawDraw;

class hsGMaskFilter : public hsGSizedFlattenable {
 public:
  using hsGSizedFlattenable::hsGSizedFlattenable;
  hsGMaskFilter() = default;

  // Writes a new mask; false to leave the source alone.
  virtual bool FilterMask(const hsGMask& src, const hsMatrix& matrix, hsGMask* dst) = 0;
  // Fills a path in device space with its coverage filtered; "need filter".
  static void DrawPath(const hsGRawDraw& raw, const hsPath& path, const hsMatrix& matrix, hsGMaskFilter* filter);

  // Widens a rectangle of device pixels by the filter's margin.
  virtual void ComputeBounds(const hsMatrix& matrix, hsIntRect* rect) = 0;
};
