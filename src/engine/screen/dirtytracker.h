// What has changed on the screen since the host last looked.
//
// The raster device reports every draw to its bounder just before it touches pixels. The tracker only remembers the
// union and never vetoes a draw. It does not cut to the screen: displayFlush does, so that a draw that lies wholly
// outside still counts as one and presents an empty rectangle.
#pragma once

#include "gfx/pixel/hsgbounder.h"

class DirtyTracker : public hsGBounder {
 public:
  void record(const hsIntRect& rect);  // device pixels; an empty one is passed over
  void clear() { empty = true; }

  bool BoundRect(const hsIntRect& rect, const hsRegion* clip) override;

  hsIntRect bounds{};  // meaningless while empty
  bool empty = true;
};
