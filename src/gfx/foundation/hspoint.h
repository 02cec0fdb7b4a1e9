// Points. Y grows downward.
#pragma once

#include "gfx/foundation/hstypes.h"

struct hsPoint {
  hsScalar fX, fY;

  constexpr bool operator==(const hsPoint&) const = default;
};

struct hsIntPoint {
  int32_t fX, fY;  // pixels

  constexpr bool operator==(const hsIntPoint&) const = default;
};
