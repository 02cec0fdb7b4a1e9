#include "gfx/foundation/hsrect.h"

#include <algorithm>

bool hsIntRect::Intersect(const hsIntRect& r) {
  if (!Intersects(r)) return false;
  *this = {std::max(fLeft, r.fLeft), std::max(fTop, r.fTop), std::min(fRight, r.fRight), std::min(fBottom, r.fBottom)};
  return true;
}

bool hsIntRect::Intersect(int32_t left, int32_t top, int32_t right, int32_t bottom) {
  return Intersect(hsIntRect{left, top, right, bottom});
}

bool hsIntRect::Intersect(const hsIntRect& r, hsIntRect* dst) const {
  const hsIntRect mine = *this;  // dst may be this
  *dst = r;
  return dst->Intersect(mine);
}

void hsIntRect::Union(const hsIntRect& r) {
  *this = {std::min(fLeft, r.fLeft), std::min(fTop, r.fTop), std::max(fRight, r.fRight), std::max(fBottom, r.fBottom)};
}

void hsRect::Union(const hsRect& r) {
  *this = {std::min(fLeft, r.fLeft), std::min(fTop, r.fTop), std::max(fRight, r.fRight), std::max(fBottom, r.fBottom)};
}

void hsRect::Set(int32_t count, const hsPoint points[]) {
  if (count <= 0) return;
  *this = {points[0].fX, points[0].fY, points[0].fX, points[0].fY};
  UnionPoints(count - 1, points + 1);
}

void hsRect::UnionPoints(int32_t count, const hsPoint points[]) {
  // A point that moves the left edge isn't tried against the right one. From edges that are in order it makes
  // no difference; from a rectangle turned inside out it does.
  for (const hsPoint* p = points; count > 0; --count, ++p) {
    if (p->fX < fLeft)
      fLeft = p->fX;
    else if (p->fX > fRight)
      fRight = p->fX;
    if (p->fY < fTop)
      fTop = p->fY;
    else if (p->fY > fBottom)
      fBottom = p->fY;
  }
}

void hsRect::ToQuad(hsPoint quad[4]) const {
  quad[0] = {fLeft, fTop};
  quad[1] = {fRight, fTop};
  quad[2] = {fRight, fBottom};
  quad[3] = {fLeft, fBottom};
}

void hsRect::Round(hsIntRect* out) const {
  *out = {hsFixedRound(fLeft), hsFixedRound(fTop), hsFixedRound(fRight), hsFixedRound(fBottom)};
}

void hsRect::RoundOut(hsIntRect* out) const {
  *out = {hsFixedFloor(fLeft), hsFixedFloor(fTop), hsFixedCeil(fRight), hsFixedCeil(fBottom)};
}
