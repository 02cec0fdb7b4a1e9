// The region of a path. Only rectangles for now: any other path needs the scan converter, which isn't here yet, and
// gives the empty region.
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsregion.h"

void hsRegion::SetPath(const hsPath& path, int op) {
  hsRegion filled;
  hsRect rect;
  if (path.IsRect(&rect, false)) filled.SetRect(rect);
  if (op == kIntersectPath)
    Intersect(*this, filled);
  else
    Swap(filled);
}
