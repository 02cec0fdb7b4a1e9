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
  const int32_t last = run->fCount - 1;
  if (run->fFirst >= 0 && run->fFirst + int64_t{last} < majorSize && isInside(0) && isInside(last)) [[likely]]
    return true;
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
  const hsFixed slope = run.fSlope;
  hsFixed minor = run.fMinor;
  const auto rowBytes = ptrdiff_t(bitmap.fRowBytes);
  if (run.fIsSteep) {
    auto* row = reinterpret_cast<uint8_t*>(bitmap.Row<Pixel>(run.fFirst));
    for (int32_t count = run.fCount; count > 0; --count, row += rowBytes, minor = hsWrapAdd(minor, slope))
      reinterpret_cast<Pixel*>(row)[minor >> 16] = value;
  } else {
    auto* const top = reinterpret_cast<uint8_t*>(bitmap.Row<Pixel>(0) + run.fFirst);
    for (int32_t i = 0; i < run.fCount; ++i, minor = hsWrapAdd(minor, slope))
      reinterpret_cast<Pixel*>(top + (minor >> 16) * rowBytes)[i] = value;
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
