// A rectangle that somebody moves or sizes by hand: where it can be taken, and what becomes of it.
#pragma once

#include <array>
#include <cstdint>

#include "engine/inspect.h"

enum class Grip { none, all, left, topLeft, top, topRight, right, bottomRight, bottom, bottomLeft };

struct GripPoint {
  Grip grip;
  double x, y;
};

// Where the edges and corners of a rectangle are taken, in its unit: corners first, which lie over edges.
std::array<GripPoint, 8> gripPoints(const Bounds& place);

// What is taken at a point: a handle no further away than the reach, in either direction, or else the whole if the
// point lies in it.
Grip gripAt(const Bounds& place, double x, double y, double reachX, double reachY);

// After the hand has gone so far. Sides that meet stop there, so that 1 x 1 stays. `straight` keeps a whole that is
// moved in the row or the column that it is in, whichever the hand has left less.
Bounds dragged(const Bounds& place, Grip grip, int32_t dx, int32_t dy, bool straight = false);
