// Sines by table: a quarter circle is 255 steps, and an angle takes the value of the nearest one.
//
// Angles are radians in 16.16. The constants here are the ones in use; they are not pi to the last digit, and shapes
// depend on them as they are.
#pragma once

#include "gfx/foundation/hstypes.h"

constexpr hsFixed kHalfPi = 102943;
constexpr hsFixed kTwoPi = 411774;
constexpr hsFixed kRadiansPerDegree = 1143;

hsFixed hsFixedSin(hsFixed radians);
hsFixed hsFixedCos(hsFixed radians);
// x beyond 1.0 either way counts as 1.0.
hsFixed hsFixedASin(hsFixed x);
hsFixed hsFixedACos(hsFixed x);
