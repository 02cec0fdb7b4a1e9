#include "gfx/vector/hsedge.h"

#include <algorithm>
#include <utility>

#include "gfx/foundation/hsdebug.h"

namespace {

// To 8 fractional bits: neighbouring shapes that almost share a corner then do share it.
constexpr hsFixed RoundTo8(hsFixed x) { return hsWrapAdd(x, 128) & ~255; }

// log2 of the number of lines that a curve is cut into, by how far it bends.
int32_t ShiftOf(int32_t bend) { return bend < 2 ? 1 : bend < 4 ? 2 : bend < 16 ? 3 : bend < 64 ? 4 : 5; }

struct Differences {
  int32_t first, second, third;
};

Differences OfQuad(hsFixed a, hsFixed b, hsFixed c, int32_t shift) {
  const int32_t A = hsWrapSecondDifference(a, b, c), B = hsWrapMul(2, hsWrapSub(b, a));
  return {hsWrapAdd(A >> shift, B), A >> (shift - 1), 0};
}

Differences OfCubic(hsFixed a, hsFixed b, hsFixed c, hsFixed d, int32_t shift) {
  const int32_t B = hsWrapMul(3, hsWrapSub(b, a)), C = hsWrapMul(6, hsWrapSecondDifference(a, b, c));
  const int32_t D = hsWrapAdd(hsWrapSub(d, a), hsWrapMul(3, hsWrapSub(b, c))) >> (shift - 1);
  return {hsWrapAdd(B, hsWrapAdd(C, D) >> (shift + 1)), hsWrapAdd(C, hsWrapMul(3, D)), hsWrapMul(3, D)};
}

// Twice the area, in square pixels, of the triangle of a cubic's ends and one control point. Whole pixels will do.
int64_t Area(hsPoint start, hsPoint control, hsPoint end) {
  const auto pixels = [](hsFixed a, hsFixed b) { return int64_t{hsWrapSub(a, b) >> 16}; };
  const int64_t area = pixels(start.fX, control.fX) * pixels(end.fY, control.fY) -
                       pixels(start.fY, control.fY) * pixels(end.fX, control.fX);
  return area < 0 ? -area : area;
}

}  // namespace

bool hsEdge::SetLine(hsPoint p0, hsPoint p1, int32_t winding, const hsIntRect* clip) {
  p0.fY = RoundTo8(p0.fY);
  p1.fY = RoundTo8(p1.fY);
  int32_t top = hsFirstRow(p0.fY), bottom = hsFirstRow(p1.fY);
  if (top == bottom) return false;
  p0.fX = RoundTo8(p0.fX);
  p1.fX = RoundTo8(p1.fX);
  if (top > bottom) {
    std::swap(top, bottom);
    std::swap(p0, p1);
    winding = -winding;
  }
  if (clip && (top < clip->fTop || bottom > clip->fBottom)) {
    if (top >= clip->fBottom || bottom <= clip->fTop) return false;
    top = std::max(top, clip->fTop);
    bottom = std::min(bottom, clip->fBottom);
  }
  const hsFixed slope = hsFixDiv(hsWrapSub(p1.fX, p0.fX), hsWrapSub(p1.fY, p0.fY));
  if (!hsAssert(slope < kPosInfinity32 && slope > kNegInfinity32, "infinity slope")) return false;
  const hsFixed x = hsWrapAdd(hsFixMul(hsWrapSub(hsRowCentre(top), p0.fY), slope), p0.fX);
  if (!hsAssert(x < kPosInfinity32 && x > kNegInfinity32, "infinity curr_x")) return false;
  fWinding = winding;
  fX = hsWrapAdd(x, kFixedHalf);
  fDX = slope;
  fFirstY = int16_t(top);
  fCount = int16_t(bottom - top);
  return true;
}

void hsEdge::SetQuad(const hsPoint pts[3]) {
  hsPoint p0 = pts[0], p1 = pts[1], p2 = pts[2];
  fCurveWinding = 1;
  if (p0.fY > p2.fY) {
    std::swap(p0, p2);
    fCurveWinding = -1;
  }
  p1.fY = std::clamp(p1.fY, p0.fY, p2.fY);
  const uint32_t bend = std::max(hsMagnitude32(hsWrapSecondDifference(p0.fX, p1.fX, p2.fX)),
                                 hsMagnitude32(hsWrapSecondDifference(p0.fY, p1.fY, p2.fY)));
  fShift = ShiftOf(hsWrapAdd(int32_t(bend), 0x20000) >> 18);
  const Differences x = OfQuad(p0.fX, p1.fX, p2.fX, fShift), y = OfQuad(p0.fY, p1.fY, p2.fY, fShift);
  fDX1 = x.first;
  fDX2 = x.second;
  fDY1 = y.first;
  fDY2 = y.second;
  fCurveX = p0.fX;
  fCurveY = p0.fY;
  fEndX = p2.fX;
  fEndY = p2.fY;
  fCurveCount = int16_t(1 << fShift);
}

void hsEdge::SetCubic(const hsPoint pts[4]) {
  hsPoint p0 = pts[0], p1 = pts[1], p2 = pts[2], p3 = pts[3];
  fCurveWinding = 1;
  if (p0.fY > p3.fY) {
    std::swap(p0, p3);
    std::swap(p1, p2);
    fCurveWinding = -1;
  }
  const int64_t bend = std::max(Area(p0, p1, p3), Area(p0, p2, p3));
  fShift = ShiftOf(int32_t(std::min<int64_t>(bend, INT32_MAX)));
  const Differences x = OfCubic(p0.fX, p1.fX, p2.fX, p3.fX, fShift), y = OfCubic(p0.fY, p1.fY, p2.fY, p3.fY, fShift);
  fDX1 = x.first;
  fDX2 = x.second;
  fDX3 = x.third;
  fDY1 = y.first;
  fDY2 = y.second;
  fDY3 = y.third;
  fCurveX = p0.fX;
  fCurveY = p0.fY;
  fEndX = p3.fX;
  fEndY = p3.fY;
  fCurveCount = int16_t(-(1 << fShift));
}

hsPoint hsEdge::NextQuadPoint(hsPoint from) {
  if (--fCurveCount == 0) return {fEndX, fEndY};
  const hsPoint next = from + hsPoint{fDX1 >> fShift, fDY1 >> fShift};
  fDX1 = hsWrapAdd(fDX1, fDX2);
  fDY1 = hsWrapAdd(fDY1, fDY2);
  return next;
}

hsPoint hsEdge::NextCubicPoint(hsPoint from) {
  if (++fCurveCount == 0) return {fEndX, fEndY};
  const hsPoint next = from + hsPoint{fDX1 >> fShift, fDY1 >> fShift};
  fDX1 = hsWrapAdd(fDX1, fDX2 >> fShift);
  fDY1 = hsWrapAdd(fDY1, fDY2 >> fShift);
  fDX2 = hsWrapAdd(fDX2, fDX3);
  fDY2 = hsWrapAdd(fDY2, fDY3);
  return next;
}

bool hsEdge::Advance(const hsIntRect* clip) {
  // A line too short to reach a row's centre is passed over.
  while (fCurveCount != 0) {
    const hsPoint from{fCurveX, fCurveY};
    hsPoint next;
    if (fCurveCount > 0) {
      next = NextQuadPoint(from);
      if (!hsAssert(next.fY <= fEndY, "went too low")) next.fY = fEndY;
    } else {
      next = NextCubicPoint(from);
    }
    fCurveX = next.fX;
    fCurveY = next.fY;
    if (SetLine(from, next, fCurveWinding, clip)) return true;
  }
  return false;
}
