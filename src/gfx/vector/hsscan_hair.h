// A slanted hairline, ready to be stepped along its longer axis.
#pragma once

#include "gfx/foundation/hstypes.h"

class hsGBitmap;

struct hsHairRun {
  bool fIsSteep;   // the longer axis is Y
  int32_t fFirst;  // pixel on the longer axis
  int32_t fCount;  // pixels, above 0
  hsFixed fMinor;  // on the other axis, at the centre of the first pixel; cut, it is the pixel
  hsFixed fSlope;  // of fMinor, per pixel
};

// Stores value into the run's pixels, without a call for each. A bitmap of another depth than 16 and 8 is reported,
// "bad device depth", and stays as it is. Nothing is stored outside the bitmap.
void hsStoreHairRun(const hsGBitmap& bitmap, uint32_t value, const hsHairRun& run);
