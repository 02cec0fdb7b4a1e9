#include "gfx/foundation/hsclipline.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hswide.h"

namespace {

constexpr hsFixed kSlack = 256;  // 1/256 of a unit

// How far from point to other the edge is crossed, or -1 when other lies beyond it too.
hsFixed CrossingRatio(hsFixed edge, hsFixed other, hsFixed point) {
  int32_t numer = hsWrapSub(point, edge), denom = hsWrapSub(point, other);
  if (numer < 0) {
    numer = hsWrapNeg(numer);
    denom = hsWrapNeg(denom);
  }
  return numer < denom ? hsFixDiv(numer, denom) : -1;
}

bool IsNear(const hsRect& r, const hsPoint& p) {
  return p.fX >= hsWrapSub(r.fLeft, kSlack) && p.fX <= hsWrapAdd(r.fRight, kSlack) &&
         p.fY >= hsWrapSub(r.fTop, kSlack) && p.fY <= hsWrapAdd(r.fBottom, kSlack);
}

hsWide Cross(hsPoint a, hsPoint b) { return hsWide().Mul(a.fX, b.fY).Sub(hsWide().Mul(a.fY, b.fX)); }

// The fraction of a segment; not valid outside 0 to denom.
bool IsOnSegment(const hsWide& numer, const hsWide& denom) { return !numer.IsNeg() && numer.Value() <= denom.Value(); }

}  // namespace

bool hsClipLine::ClipEndPoint(const hsPoint& other, const hsRect& rect, hsPoint* point) {
  const hsPoint p = *point;
  hsFixed best = -1;
  bool beyond = false;
  const auto trySide = [&](bool isBeyond, hsFixed edge, hsFixed o, hsFixed c) {
    if (!isBeyond) return;
    beyond = true;
    best = std::max(best, CrossingRatio(edge, o, c));
  };
  trySide(p.fX < rect.fLeft, rect.fLeft, other.fX, p.fX);
  trySide(p.fX > rect.fRight, rect.fRight, other.fX, p.fX);
  trySide(p.fY < rect.fTop, rect.fTop, other.fY, p.fY);
  trySide(p.fY > rect.fBottom, rect.fBottom, other.fY, p.fY);
  if (!beyond) return true;
  if (best < 0) return false;
  const hsPoint way = other - p;
  *point = p + hsPoint{hsFixMul(way.fX, best), hsFixMul(way.fY, best)};
  return IsNear(rect, *point);
}

bool hsClipLine::ClipLine(const hsPoint& p0, const hsPoint& p1, const hsRect& rect, hsPoint out[2]) {
  const hsPoint ends[2] = {p0, p1};
  out[0] = ends[0];
  out[1] = ends[1];
  const bool first = ClipEndPoint(ends[1], rect, &out[0]);
  const bool second = ClipEndPoint(ends[0], rect, &out[1]);
  return first || second;
}

bool hsClipLine::IntersectLines(const hsPoint a[2], const hsPoint b[2], hsPoint* point) {
  const hsPoint along = a[1] - a[0], across = b[1] - b[0], between = b[0] - a[0];
  hsWide denom = Cross(along, across), onA = Cross(between, across), onB = Cross(between, along);
  if (denom.IsNeg()) {
    denom.Negate();
    onA.Negate();
    onB.Negate();
  }
  if (denom == hsWide()) return false;
  if (!hsAssert(!denom.IsNeg(), "need denom > 0")) return false;
  if (!IsOnSegment(onA, denom) || !IsOnSegment(onB, denom)) return false;
  const hsFract t = onA.FracDiv(denom);
  *point = a[0] + hsPoint{hsFracMul(t, along.fX), hsFracMul(t, along.fY)};
  return true;
}
