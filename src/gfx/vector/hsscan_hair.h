// A slanted hairline, ready to be stepped along its longer axis.
#pragma once

#include "gfx/foundation/hstypes.h"

struct hsHairRun {
  bool fIsSteep;   // the longer axis is Y
  int32_t fFirst;  // pixel on the longer axis
  int32_t fCount;  // pixels
  hsFixed fMinor;  // on the other axis, at the centre of the first pixel; cut, it gives the pixel
  hsFixed fSlope;  // of fMinor, per pixel
};
