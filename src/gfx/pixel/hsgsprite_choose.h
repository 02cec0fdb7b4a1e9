// Which sprite member draws one bitmap on another.
#pragma once

#include "gfx/pixel/hsgspriteblitter.h"

class hsGXferMode;

// The member that draws source at (left, top), with the alpha of color, through xfer unless that is null. The caller
// holds a reference. Null, after "missing sprite blitter", for a device that takes no sprites; a source that doesn't
// fit the device throws error 1.
hsGSpriteBlitter* ChooseSpriteBlitter(const hsGBitmap& device, const hsGBitmap& source, int32_t left, int32_t top,
                                      const hsGColor& color, hsGXferMode* xfer);
