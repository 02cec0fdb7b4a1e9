#include "gfx/pixel/hsgbounder.h"

#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/vector/hspath.h"

bool hsGBounder::BoundFixedRect(const hsRect& rect, const hsMatrix& matrix, const hsRegion* clip, hsGMaskFilter* filter,
                                bool inflate) {
  hsIntRect bounds;
  rect.RoundOut(&bounds);
  if (filter) filter->ComputeBounds(matrix, &bounds);
  if (inflate) bounds.fRight = hsWrapAdd(bounds.fRight, 1);
  return BoundRect(bounds, clip);
}

bool hsGBounder::BoundPath(const hsPath& path, const hsMatrix& matrix, const hsRegion* clip, hsGMaskFilter* filter,
                           bool inflate) {
  hsRect bounds;
  path.ComputeBounds(&bounds, false);
  return BoundFixedRect(bounds, matrix, clip, filter, inflate);
}
