// Putting the crossings of one centre line in order, and striking out what lies inside overlapping contours.
#pragma once

#include <algorithm>

#include "t2k/outlinewalker.h"

// A crossing's place on its line above its kind, so that words compare as places do.
using Crossing = uint32_t;
inline constexpr int kKindBits = 4;
// Coordinates, oversampled, must stay within this.
inline constexpr int32_t kCrossingLimit = 1 << 27;
constexpr Crossing MakeCrossing(int32_t along, uint32_t kind) {
  return uint32_t(along + kCrossingLimit) << kKindBits | kind;
}
constexpr int32_t AlongOf(Crossing c) { return int32_t(c >> kKindBits) - kCrossingLimit; }

inline constexpr uint32_t kRisingKinds = kVerticalRising | kHorizontalRising;

// Says whether they rise and fall in pairs from the first on, so that nothing overlaps.
bool SortCrossings(Crossing* c, int count);

// Whether it matters in which order crossings of two kinds at one place come. It does where the second of them would
// end one span and the first begin another, or the other way about, and where they are more than two.
bool IsUndecided(const Crossing* c, int count);

// A crossing at which the winding rises above one lies inside, and so does the one after it. Returns what is left.
int StrikeLine(tsiMemObject* mem, Crossing* line, int count);
