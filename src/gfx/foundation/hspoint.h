// Points. Y grows downward.
#pragma once

#include "gfx/foundation/hstypes.h"

struct hsPoint {
  hsScalar fX, fY;

  constexpr bool operator==(const hsPoint&) const = default;
};

// Component by component; the sums wrap.
constexpr hsPoint operator+(hsPoint a, hsPoint b) { return {hsWrapAdd(a.fX, b.fX), hsWrapAdd(a.fY, b.fY)}; }
constexpr hsPoint operator-(hsPoint a, hsPoint b) { return {hsWrapSub(a.fX, b.fX), hsWrapSub(a.fY, b.fY)}; }

struct hsIntPoint {
  int32_t fX, fY;  // pixels

  constexpr bool operator==(const hsIntPoint&) const = default;
};
