// The scan converters: a shape and a clip go in, spans and rectangles come out to a blitter.
//
// A pixel belongs to a shape when its centre lies inside. A nil clip means no clipping: whatever the shape covers is
// asked of the blitter, so a caller without a clip must know that the shape stays on its bitmap. An empty clip draws
// nothing. A blitter must not call a scan converter.
//
// Degenerate shapes draw nothing, silently. Reports are for misuse and for arithmetic that left its range.
#pragma once

#include "gfx/foundation/hsrect.h"

class hsGBlitter;
class hsPath;
class hsRegion;

namespace HSScan {

// The inside of a path by its fill type; open contours count as closed. Spans come from the top and, within a row, from
// the left, without overlap; only BlitH is called. A nil path or blitter fails "nil param".
void FillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter);

// The rectangle rounded to whole pixels. With atLeastOnePixel a side that rounds to nothing becomes one pixel.
void FillRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter, bool atLeastOnePixel);
void FillIRect(const hsIntRect* rect, const hsRegion* clip, hsGBlitter* blitter);
// A frame centred on the rectangle's outline, frameWidth thick at the left and right, frameHeight at top and bottom.
void FrameRect(const hsRect* rect, hsScalar frameWidth, hsScalar frameHeight, const hsRegion* clip,
               hsGBlitter* blitter);
// An outline one pixel thick. The pixels of the right and bottom edges belong to the rectangle.
void HairRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter);

}  // namespace HSScan
