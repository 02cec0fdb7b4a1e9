// Filling of a path enlarged by a whole factor, for the converter that counts samples instead of pixels.
#pragma once

#include "gfx/vector/hsscan.h"

namespace HSScan {

// As FillPath, of the path's points times scale.
void FillScaledPath(const hsPath& path, int32_t scale, const hsRegion* clip, hsGBlitter* blitter);

}  // namespace HSScan
