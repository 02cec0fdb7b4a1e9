// Stands in for the mask operations of all blitters until there are masks: gfx/pixel defines them then, and
// this file goes.
#include "gfx/vector/hsgblitter.h"

void hsGBlitter::BlitMask(const hsGMask&, const hsRegion*) {}

void hsGBlitter::BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t) { BlitMask(mask, clip); }
