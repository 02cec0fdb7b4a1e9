#include "studio/edit/grip.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

struct Sides {
  bool left, top, right, bottom;
};

Sides sidesOf(Grip grip) {
  return {grip == Grip::left || grip == Grip::topLeft || grip == Grip::bottomLeft,
          grip == Grip::top || grip == Grip::topLeft || grip == Grip::topRight,
          grip == Grip::right || grip == Grip::topRight || grip == Grip::bottomRight,
          grip == Grip::bottom || grip == Grip::bottomLeft || grip == Grip::bottomRight};
}

// Moves one or the other end of a length, and leaves at least 1 of it.
void pull(int32_t& begin, int32_t& length, bool first, bool last, int32_t by) {
  if (first) by = std::min(by, std::max(length, 1) - 1);
  if (first) begin += by;
  if (first || last) length = std::max(length + (first ? -by : by), 1);
}

}  // namespace

std::array<GripPoint, 8> gripPoints(const Bounds& b) {
  const double right = b.x + b.w, bottom = b.y + b.h, middle = b.x + b.w / 2.0, center = b.y + b.h / 2.0;
  return {{{Grip::topLeft, double(b.x), double(b.y)},
           {Grip::topRight, right, double(b.y)},
           {Grip::bottomRight, right, bottom},
           {Grip::bottomLeft, double(b.x), bottom},
           {Grip::left, double(b.x), center},
           {Grip::top, middle, double(b.y)},
           {Grip::right, right, center},
           {Grip::bottom, middle, bottom}}};
}

Grip gripAt(const Bounds& place, double x, double y, double reachX, double reachY) {
  const bool isInside = x >= place.x && x < place.x + place.w && y >= place.y && y < place.y + place.h;
  if (isInside) {  // the middle of a small one is left to move it by
    reachX = std::min(reachX, place.w / 4.0);
    reachY = std::min(reachY, place.h / 4.0);
  }
  Grip nearest = isInside ? Grip::all : Grip::none;
  double least = reachX + reachY + 1;
  for (const GripPoint& point : gripPoints(place)) {
    const double awayX = std::abs(point.x - x), awayY = std::abs(point.y - y);
    if (awayX > reachX || awayY > reachY || awayX + awayY >= least) continue;
    least = awayX + awayY;
    nearest = point.grip;
  }
  return nearest;
}

Bounds dragged(const Bounds& place, Grip grip, int32_t dx, int32_t dy, bool straight) {
  Bounds now = place;
  if (grip == Grip::all) {
    if (straight) (std::abs(dx) < std::abs(dy) ? dx : dy) = 0;
    now.x += dx;
    now.y += dy;
    return now;
  }
  const Sides sides = sidesOf(grip);
  pull(now.x, now.w, sides.left, sides.right, dx);
  pull(now.y, now.h, sides.top, sides.bottom, dy);
  return now;
}
