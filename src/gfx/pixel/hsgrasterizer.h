// Effects that only some paints carry, and that the library itself has none of.
#pragma once

#include "gfx/foundation/hsflattenable.h"
#include "gfx/foundation/hsmatrix.h"

class hsGBitmap;
class hsPath;
struct hsGMask;

// Turns a path into a mask in its own way.
class hsGRasterizer : public hsGSizedFlattenable {
 public:
  // Device bounds of what Rasterize will make; false for nothing to draw.
  virtual bool ComputeBounds(const hsPath& path, const hsMatrix& matrix, hsIntRect* bounds) = 0;
  virtual bool Rasterize(const hsPath& path, const hsMatrix& matrix, hsGMask* mask) = 0;
};

// Changes a layer when it is drawn back.
class hsGLayerFilter : public hsRefCnt {
 public:
  // The size of the replacement for a layer of that size; false to leave the layer as it is.
  virtual bool MapSize(uint32_t* width, uint32_t* height) = 0;
  // Fills dst, 32 bits with alpha; false to leave the layer as it is.
  virtual bool Filter(const hsGBitmap& layer, const hsGBitmap& dst) = 0;
};
