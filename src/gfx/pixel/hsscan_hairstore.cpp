// The part of the hairline converter that knows of pixels.
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/vector/hsscan_hair.h"

namespace {

// Cuts the run to the bitmap; true when all of what is left lies inside. A run is straight, so its ends decide.
bool CutToBitmap(const hsGBitmap& bitmap, hsHairRun* run) {
  const int64_t majorSize = run->fIsSteep ? bitmap.fHeight : bitmap.fWidth;
  const int64_t minorSize = run->fIsSteep ? bitmap.fWidth : bitmap.fHeight;
  const auto minorAt = [&](int32_t i) { return run->fMinor + int64_t{run->fSlope} * i; };
  const auto isInside = [&](int32_t i) { return minorAt(i) >= 0 && minorAt(i) >> 16 < minorSize; };
  int32_t skipped = 0;
  while (skipped < run->fCount && (run->fFirst + skipped < 0 || !isInside(skipped))) ++skipped;
  if (skipped == run->fCount) return false;
  run->fMinor = hsFixed(minorAt(skipped));
  run->fFirst += skipped;
  run->fCount -= skipped;
  while (run->fCount > 0 && (run->fFirst + run->fCount > majorSize || !isInside(run->fCount - 1))) --run->fCount;
  return run->fCount > 0;
}

template <typename Pixel>
void Store(const hsGBitmap& bitmap, Pixel value, const hsHairRun& run) {
  hsFixed minor = run.fMinor;
  if (run.fIsSteep) {
    for (int32_t y = run.fFirst; y < run.fFirst + run.fCount; ++y, minor = hsWrapAdd(minor, run.fSlope))
      bitmap.Row<Pixel>(y)[minor >> 16] = value;
  } else {
    for (int32_t x = run.fFirst; x < run.fFirst + run.fCount; ++x, minor = hsWrapAdd(minor, run.fSlope))
      bitmap.Row<Pixel>(minor >> 16)[x] = value;
  }
}

}  // namespace

void hsStoreHairRun(const hsGBitmap& bitmap, uint32_t value, const hsHairRun& run) {
  hsHairRun cut = run;
  if (bitmap.fPixelSize != 16 && bitmap.fPixelSize != 8)
    hsDebugMessage("bad device depth", bitmap.fPixelSize);
  else if (!CutToBitmap(bitmap, &cut))
    return;
  else if (bitmap.fPixelSize == 16)
    Store(bitmap, uint16_t(value), cut);
  else
    Store(bitmap, uint8_t(value), cut);
}
