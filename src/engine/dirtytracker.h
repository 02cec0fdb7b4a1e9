// What has changed on the screen since the host last looked.
//
// It does not cut to the screen: displayFlush does, so that a draw that lies wholly outside still counts as one and
// presents an empty rectangle.
#pragma once

#include <cstdint>

struct PixelRect {
  int32_t left, top, right, bottom;  // pixels, right and bottom exclusive
  bool operator==(const PixelRect&) const = default;
};

class DirtyTracker {
 public:
  void record(const PixelRect& rect);  // an empty one is passed over
  void clear() { empty = true; }

  PixelRect bounds{};  // meaningless while empty
  bool empty = true;
};
