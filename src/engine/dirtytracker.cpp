#include "engine/dirtytracker.h"

#include <algorithm>

void DirtyTracker::record(const PixelRect& rect) {
  if (rect.left >= rect.right || rect.top >= rect.bottom) return;
  if (empty) {
    bounds = rect;
    empty = false;
    return;
  }
  bounds = {std::min(bounds.left, rect.left), std::min(bounds.top, rect.top), std::max(bounds.right, rect.right),
            std::max(bounds.bottom, rect.bottom)};
}
