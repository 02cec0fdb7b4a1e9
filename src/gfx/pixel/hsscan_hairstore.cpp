// The part of the hairline converter that knows of pixels.
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/vector/hsscan_hair.h"

namespace {

// Where a run lies in a bitmap.
class Place {
 public:
  Place(const hsGBitmap& bitmap, const hsHairRun& run)
      : majorSize(run.fIsSteep ? bitmap.fHeight : bitmap.fWidth),
        minorSize(run.fIsSteep ? bitmap.fWidth : bitmap.fHeight) {}

  // A run is straight, so its ends decide.
  bool Holds(const hsHairRun& run) const {
    return run.fFirst >= 0 && run.fFirst + int64_t{run.fCount} <= majorSize && HoldsMinor(run, 0) &&
           HoldsMinor(run, run.fCount - 1);
  }
  // Leaves of the run what lies inside; false if nothing does.
  bool Cut(hsHairRun* run) const {
    int32_t skipped = 0;
    while (skipped < run->fCount && (run->fFirst + skipped < 0 || !HoldsMinor(*run, skipped))) ++skipped;
    if (skipped == run->fCount) return false;
    run->fMinor = hsFixed(MinorAt(*run, skipped));
    run->fFirst += skipped;
    run->fCount -= skipped;
    while (run->fCount > 0 && (run->fFirst + run->fCount > majorSize || !HoldsMinor(*run, run->fCount - 1)))
      --run->fCount;
    return run->fCount > 0;
  }

 private:
  static int64_t MinorAt(const hsHairRun& run, int32_t i) { return run.fMinor + int64_t{run.fSlope} * i; }
  bool HoldsMinor(const hsHairRun& run, int32_t i) const {
    const int64_t minor = MinorAt(run, i);
    return minor >= 0 && minor >> 16 < minorSize;
  }

  const int64_t majorSize, minorSize;
};

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

void StoreAny(const hsGBitmap& bitmap, uint32_t value, const hsHairRun& run) {
  if (bitmap.fPixelSize == 16)
    Store(bitmap, uint16_t(value), run);
  else
    Store(bitmap, uint8_t(value), run);
}

}  // namespace

void hsStoreHairRun(const hsGBitmap& bitmap, uint32_t value, const hsHairRun& run) {
  if (bitmap.fPixelSize != 16 && bitmap.fPixelSize != 8) {
    hsDebugMessage("bad device depth", bitmap.fPixelSize);
    return;
  }
  const Place place(bitmap, run);
  if (place.Holds(run)) [[likely]]
    return StoreAny(bitmap, value, run);
  hsHairRun cut = run;
  if (place.Cut(&cut)) StoreAny(bitmap, value, cut);
}
