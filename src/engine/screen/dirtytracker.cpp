#include "engine/screen/dirtytracker.h"

void DirtyTracker::record(const hsIntRect& rect) {
  if (rect.IsEmpty()) return;
  if (empty) {
    bounds = rect;
    empty = false;
  } else {
    bounds.Union(rect);
  }
}

bool DirtyTracker::BoundRect(const hsIntRect& rect, const hsRegion*) {
  record(rect);
  return false;  // the draw goes on
}
