// The object that makes spans, rectangles and masks into something: pixels of a bitmap, or a region.
//
// Every scan converter ends in calls to a blitter and knows nothing of pixels. The caller has clipped: whatever is
// asked for is drawn. Within one path the spans of a row come from left to right without overlap, and rows from the
// top.
#pragma once

#include <cstdint>

#include "gfx/foundation/hsrefcnt.h"

class hsGAttribute;
class hsGBitmap;
class hsRegion;
struct hsGMask;

class hsGBlitter : public hsRefCnt {
 public:
  // The blitter for a paint on a bitmap. maskType is the type of mask that will be blitted, 0 for plain spans.
  // The caller holds a reference to the result; a bitmap that can't be drawn on throws.
  static hsGBlitter* Choose(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType);

  // Pixels x to x + width of row y; width is above 0.
  virtual void BlitH(int32_t y, int32_t x, int32_t width) = 0;
  // The rows from y on, by BlitH if nothing faster is known. A height below 1 is reported, "bad height".
  virtual void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height);
  // The bitmap, when drawing is nothing but storing a value into it, and that value; otherwise null.
  virtual const hsGBitmap* GetDirectTarget(uint32_t* value);
  // The mask's coverage, cut by clip unless that is null.
  virtual void BlitMask(const hsGMask& mask, const hsRegion* clip);
  // The same for a mask of three coverages a pixel, of which the first used is lcdOffset, 0 to 2.
  virtual void BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset);
  // Makes the blitter over for another bitmap and paint; false if it isn't one for those.
  virtual bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType);

  // The coverage that the next BlitH has to apply, its first byte that of x; null for full coverage. It is set under an
  // hsGCoverageScope only.
  const uint8_t* fAlpha = nullptr;
};

// Takes the coverage away from a blitter, however the scope ends.
class hsGCoverageScope {
 public:
  explicit hsGCoverageScope(hsGBlitter* blitter) : fBlitter(blitter) {}
  ~hsGCoverageScope() { fBlitter->fAlpha = nullptr; }
  hsGCoverageScope(const hsGCoverageScope&) = delete;
  hsGCoverageScope& operator=(const hsGCoverageScope&) = delete;

 private:
  hsGBlitter* fBlitter;
};
