// The scan converters: a shape and a clip go in, spans and rectangles come out to a blitter.
//
// A pixel belongs to a shape when its centre lies inside. A null clip means no clipping: whatever the shape covers is
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
// the left, without overlap; only BlitH is called. A null path or blitter fails "nil param".
void FillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter);

// The rectangle rounded to whole pixels. With atLeastOnePixel a side that rounds to nothing becomes one pixel.
void FillRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter, bool atLeastOnePixel);
void FillIRect(const hsIntRect* rect, const hsRegion* clip, hsGBlitter* blitter);
// A frame centred on the rectangle's outline, frameWidth thick at the left and right, frameHeight at top and bottom.
void FrameRect(const hsRect* rect, hsScalar frameWidth, hsScalar frameHeight, const hsRegion* clip,
               hsGBlitter* blitter);
// An outline one pixel thick. The pixels of the right and bottom edges belong to the rectangle.
void HairRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter);

// A convex quadrilateral; two of its points may be the same. One that isn't convex is reported.
void FillQuad(const hsPoint points[4], const hsRegion* clip, hsGBlitter* blitter);

// The same fills with coverage, of 16 samples to a pixel: the blitter's fAlpha is set, and full is 255. The blitter
// gets whole rows of the shape's bounds, uncovered pixels too, unless the clip is complex. spare isn't looked at.
void AntiFillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter, int32_t spare = 0);
void AntiFillQuad(const hsPoint points[4], const hsRegion* clip, hsGBlitter* blitter);

// A line one pixel thick. Its pixels run from the one that holds the upper or left end; the one after the other end
// is left out. Equal ends draw one pixel.
void HairLine(const hsPoint& p0, const hsPoint& p1, const hsRegion* clip, hsGBlitter* blitter);
// Each segment of a path as hairlines; open contours stay open.
void HairPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter);

// Bits of a stroke's style. Without a join bit corners are mitered, without a cap bit ends are cut straight. Of two
// join bits or two cap bits the lower one counts.
enum StrokeStyle : uint32_t {
  kRoundJoin = 1,
  kBevelJoin = 2,
  kRoundCap = 4,
  kSquareCap = 8,
};

// Adds the outline of a stroke of src to dst, which should arrive empty: filled by winding, it is the stroke. radius is
// half the width. A corner is mitered when its tip lies within miterLimit times radius. A negative radius or limit, or
// a null dst, fails "bad param".
void StrokePath(const hsPath* src, hsFixed radius, hsFixed miterLimit, uint32_t style, hsPath* dst);

}  // namespace HSScan
