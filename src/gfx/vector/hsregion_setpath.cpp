// The region of a path: what the scan converter fills, as runs.
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsregionbuilder.h"
#include "gfx/vector/hsscan.h"

void hsRegion::SetPath(const hsPath& path, int op) {
  hsRegion filled;
  hsRect rect;
  if (path.IsRect(&rect, false)) {
    filled.SetRect(rect);
  } else {
    hsRegionBuilder builder;
    HSScan::FillPath(&path, nullptr, &builder);
    int32_t count;
    const int16_t* runs = builder.Finish(&count);
    filled.SetRuns(count, runs);
  }
  if (op == kIntersectPath)
    Intersect(*this, filled);
  else
    Swap(filled);
}
