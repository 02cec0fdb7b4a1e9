// Turns the spans of a shape drawn four times too large into rows of coverage.
//
// A pixel is 4 by 4 samples. A sample adds 16 to its pixel's byte, but on the first of the four sample rows a span
// takes one off each pixel that it begins in or fills, so that 63 + 64 + 64 + 64 makes 255 and no byte can overflow.
//
// What a span adds is noted where it changes, at its ends, so a wide span costs no more than a narrow one; summing up
// from left to right gives the coverage of the row when its four sample rows are complete.
#pragma once

#include <memory>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsrect.h"
#include "gfx/vector/hsgblitter.h"

class hsRegion;

class hsSuperBlitter final : public hsGBlitter {
 public:
  static constexpr int32_t kShift = 2;  // log2 of the samples to a pixel, either way

  // Rows of bounds (pixels) go to realBlitter: whole when clip is null, otherwise the pieces that lie in clip.
  hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter);

  // In samples, ascending and without overlap.
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    y -= fSuperTop;
    x -= fSuperLeft;
    const bool inside = y >= 0 && y < fSuperHeight && x >= 0 && x + width <= fSuperWidth;
    if (!hsAssert(inside, "HSScan assert failed")) return;
    const int32_t row = fBounds.fTop + (y >> kShift);
    if (row != fCurrY) {
      if (fCurrY != kNoRow) Flush();
      fCurrY = row;
    }
    AddSpan(y & (kSamples - 1), x, x + width);
  }
  // Passes on the last row; the end of every shape.
  void Finish();

 private:
  static constexpr int32_t kNoRow = 0x7FFFFFFF;
  static constexpr int32_t kSamples = 1 << kShift;  // to a pixel, either way
  static constexpr int32_t kSampleValue = 16;
  static constexpr int32_t kInlinePixels = 1024;

  void AddSpan(int32_t subRow, int32_t x, int32_t stop) {
    const int32_t first = x >> kShift, last = stop >> kShift;
    const int32_t less = subRow == 0 ? 1 : 0, full = kSamples * kSampleValue - less;
    const int32_t before = (x & (kSamples - 1)) * kSampleValue, end = (stop & (kSamples - 1)) * kSampleValue;
    // In a pixel that it only begins in, and doesn't fill, the one is taken off too.
    const int32_t lessInOne = first == last ? less : 0;
    Change(first, full - before - lessInOne);
    Change(first + 1, before + lessInOne);
    Change(last, end - full);
    Change(last + 1, -end);
  }
  void Change(int32_t pixel, int32_t by) { fChanges[pixel] = int16_t(fChanges[pixel] + by); }
  void Flush();

  const hsIntRect fBounds;
  const hsRegion* const fClip;
  hsGBlitter* const fRealBlitter;
  const hsGCoverageScope fCovered;
  const int32_t fSuperLeft, fSuperTop, fSuperWidth, fSuperHeight;
  int32_t fCurrY = kNoRow;            // pixel row in progress
  const int32_t fRowPixels;           // with room for what changes after the last, in whole lanes
  int16_t* fChanges = fFewChanges;    // by how much each pixel's coverage is more than that of the one before it
  uint8_t* fCoverage = fFewCoverage;  // the row, a byte a pixel
  std::unique_ptr<int16_t[]> fManyChanges;
  std::unique_ptr<uint8_t[]> fManyCoverage;
  int16_t fFewChanges[kInlinePixels];
  uint8_t fFewCoverage[kInlinePixels];
};
