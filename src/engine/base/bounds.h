// A rectangle of the screen.
#pragma once

#include <cstdint>

struct Bounds {
  int32_t x = 0, y = 0, w = 0, h = 0;  // pixels
  bool operator==(const Bounds&) const = default;
};
