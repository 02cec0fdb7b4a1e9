// A listener that hears the bounds of each drawing operation just before it touches pixels, and may stop it.
#pragma once

#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hsrefcnt.h"

class hsGMaskFilter;
class hsPath;
class hsRegion;

class hsGBounder : public hsRefCnt {
 public:
  // True skips the draw. The rectangle is in device pixels and is not cut by the clip, which may be null.
  virtual bool BoundRect(const hsIntRect& rect, const hsRegion* clip) = 0;

  // These round out, let the mask filter widen, add a column at the right if asked to inflate, and go on to BoundRect.
  virtual bool BoundFixedRect(const hsRect& rect, const hsMatrix& matrix, const hsRegion* clip, hsGMaskFilter* filter,
                              bool inflate);
  // The bounds of all stored points.
  virtual bool BoundPath(const hsPath& path, const hsMatrix& matrix, const hsRegion* clip, hsGMaskFilter* filter,
                         bool inflate);
};
