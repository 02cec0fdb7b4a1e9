// The shapes that a path can be built from.
#include <algorithm>
#include <utility>

#include "gfx/foundation/hscubic.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hstrig.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"

namespace {

constexpr hsFixed kTinyRadius = 9;          // below it there is nothing to see
constexpr hsFixed kFullCircle = 0x1680000;  // 360 degrees
constexpr hsFixed kOctantX = 23170;         // sin(45 degrees) / 2: an octant's end, of the whole size
constexpr hsFixed kOctantControl = 13573;   // tan(22.5 degrees) / 2: its control point
constexpr hsFixed kCornerHandle = 36194;    // the handle of a quarter circle, of the radius
constexpr int32_t kDegreesOfQuad = 45;      // an arc has a quadratic for as many
constexpr int32_t kMaxArcQuads = 8;

hsPoint OnUnitCircle(hsFixed radians) { return {hsFixedSin(radians), hsWrapNeg(hsFixedCos(radians))}; }

// Two cursors that chase each other round a closed outline: fI the point in hand, fJ the one after it.
class OutlineCursor {
 public:
  OutlineCursor(int32_t count, bool closed) : fJ(count > 1 ? 1 : 0), count(count), closed(closed) {}

  // An open outline is done as soon as there is no point after, a closed one when it is back at its first.
  void Advance() {
    if (++fI == count) {
      fI = 0;
      fDone = true;
    }
    if (++fJ == count) {
      fJ = 0;
      if (!closed) fDone = true;
    }
  }

  int32_t fI = 0;
  int32_t fJ;
  bool fDone = false;

 private:
  int32_t count;
  bool closed;
};

}  // namespace

void hsPath::AddPath(const hsPath& src) {
  if (&src == this) return AddPath(hsPath(src));
  hsPathIter iter(src, false);
  hsPoint pts[4];
  bool first = true;
  for (Verb verb; (verb = iter.Next(pts)) != kDoneVerb; first = false) {
    if (first && !hsAssert(verb == kMoveVerb, "bad src in AddPath")) return;
    AddSegment(verb, verb == kMoveVerb ? pts : pts + 1);
  }
}

void hsPath::AddPoly(int32_t count, const hsPoint points[], bool close) {
  if (count < 1 || !points) return;
  MoveTo(points[0]);
  LineTo(count - 1, points + 1);
  if (close) Close();
}

void hsPath::AddRect(const hsRect* rect, bool reverse) {
  if (!rect) return;
  hsPoint quad[4];
  rect->ToQuad(quad);
  if (reverse) std::reverse(quad, quad + 4);
  AddPoly(4, quad, true);
}

void hsPath::AddOval(const hsRect* rect, bool reverse) {
  if (!rect) return;
  const hsScalar left = rect->fLeft, right = rect->fRight;
  const hsScalar ax = hsFixMul(rect->Width(), kOctantX), bx = hsFixMul(rect->Width(), kOctantControl);
  hsScalar top = rect->fTop, bottom = rect->fBottom;
  hsScalar ay = hsFixMul(rect->Height(), kOctantX), by = hsFixMul(rect->Height(), kOctantControl);
  if (reverse) {
    std::swap(top, bottom);
    ay = hsWrapNeg(ay);
    by = hsWrapNeg(by);
  }
  const hsPoint c{rect->CenterX(), rect->CenterY()};
  const hsPoint leftUp = c - hsPoint{ax, ay}, rightUp = c + hsPoint{ax, hsWrapNeg(ay)};
  const hsPoint rightDown = c + hsPoint{ax, ay}, leftDown = c - hsPoint{ax, hsWrapNeg(ay)};

  MoveTo(left, c.fY);
  QuadTo({left, hsWrapSub(c.fY, by)}, leftUp);
  QuadTo({hsWrapSub(c.fX, bx), top}, {c.fX, top});
  QuadTo({hsWrapAdd(c.fX, bx), top}, rightUp);
  QuadTo({right, hsWrapSub(c.fY, by)}, {right, c.fY});
  QuadTo({right, hsWrapAdd(c.fY, by)}, rightDown);
  QuadTo({hsWrapAdd(c.fX, bx), bottom}, {c.fX, bottom});
  QuadTo({hsWrapSub(c.fX, bx), bottom}, leftDown);
  QuadTo({left, hsWrapAdd(c.fY, by)}, {left, c.fY});
  Close();
}

void hsPath::AddCircle(hsScalar x, hsScalar y, hsScalar radius) {
  const hsScalar r = radius < 0 ? hsWrapNeg(radius) : radius;
  if (r < kTinyRadius) return;
  const hsRect square{hsWrapSub(x, r), hsWrapSub(y, r), hsWrapAdd(x, r), hsWrapAdd(y, r)};
  AddOval(&square, false);
}

void hsPath::AddRoundRect(const hsRect* rect, hsScalar rx, hsScalar ry) {
  if (!rect) return;
  rx = std::max(rx, 0);
  ry = std::max(ry, 0);
  if (rx >= rect->Width() && ry >= rect->Height()) return AddOval(rect, false);
  if (rx < kTinyRadius || ry < kTinyRadius) return AddRect(rect, false);
  rx = std::min(rx, rect->Width());
  ry = std::min(ry, rect->Height());
  const auto [left, top, right, bottom] = *rect;
  const hsScalar hx = hsFixMul(rx, kCornerHandle), hy = hsFixMul(ry, kCornerHandle);
  // Where the straight sides end, and the handles beyond those.
  const hsScalar x0 = hsWrapAdd(left, rx), x1 = hsWrapSub(right, rx), hx0 = hsWrapSub(x0, hx), hx1 = hsWrapAdd(x1, hx);
  const hsScalar y0 = hsWrapAdd(top, ry), y1 = hsWrapSub(bottom, ry), hy0 = hsWrapSub(y0, hy), hy1 = hsWrapAdd(y1, hy);

  MoveTo(x1, top);
  CurveTo({hx1, top}, {right, hy0}, {right, y0});
  LineTo(right, y1);
  CurveTo({right, hy1}, {hx1, bottom}, {x1, bottom});
  LineTo(x0, bottom);
  CurveTo({hx0, bottom}, {left, hy1}, {left, y1});
  LineTo(left, y0);
  CurveTo({left, hy0}, {hx0, top}, {x0, top});
  LineTo(x1, top);
  Close();
}

void hsPath::AddArc(const hsRect* oval, hsFixed startDegrees, hsFixed sweepDegrees, bool wedge) {
  if (!oval) return;
  const bool backward = sweepDegrees < 0;
  if (backward) {
    startDegrees = hsWrapAdd(startDegrees, sweepDegrees);
    sweepDegrees = hsWrapNeg(sweepDegrees);
  }
  if (sweepDegrees >= kFullCircle) return AddOval(oval, false);
  // A quadratic more for each begun 45 degrees; anything less than 1/65536 degree is no beginning.
  const int32_t quads = (hsWrapAdd(sweepDegrees, 0x2CFFFF) >> 16) / kDegreesOfQuad;
  if (quads < 1) return;
  const hsFixed start = hsFixMul(startDegrees % kFullCircle, kRadiansPerDegree);
  const hsFixed sweep = hsFixMul(sweepDegrees, kRadiansPerDegree);
  const hsFixed step = sweep / quads, half = step >> 1;

  // The tangents to the unit circle: between the two ends, the corners in which neighbouring ones meet.
  hsPoint pts[kMaxArcQuads + 3];
  const hsFixed radius = hsFixDiv(kFixed1, hsFixedCos(half));
  pts[0] = OnUnitCircle(start);
  for (int32_t i = 1; i <= quads; ++i) {
    const hsPoint corner = OnUnitCircle(start + half + (i - 1) * step);
    pts[i] = {hsFixMul(radius, corner.fX), hsFixMul(radius, corner.fY)};
  }
  pts[quads + 1] = OnUnitCircle(start + sweep);
  pts[quads + 2] = {0, 0};

  hsMatrix toOval;
  toOval.SetScale(oval->Width() >> 1, oval->Height() >> 1, 0, 0);
  toOval.PostTranslate(oval->CenterX(), oval->CenterY());
  toOval.MapPoints(quads + 3, pts, pts);
  if (backward) std::reverse(pts, pts + quads + 2);

  MoveTo(pts[0]);
  for (int32_t i = 1; i < quads; ++i) QuadTo(pts[i], hsMidPoint(pts[i], pts[i + 1]));
  QuadTo(pts[quads], pts[quads + 1]);
  if (!wedge) return;
  LineTo(pts[quads + 2]);
  Close();
}

void hsPath::AddContourWithOnCurveFlags(int32_t count, const hsPoint points[], const uint8_t onCurve[], bool closed) {
  if (count < 1 || !points || !onCurve) return;
  OutlineCursor at(count, closed);
  bool first = true;
  do {
    hsPoint start = points[at.fI];
    if (!onCurve[at.fI] && onCurve[at.fJ]) {
      start = points[at.fJ];
      at.Advance();
    } else if (!onCurve[at.fI]) {
      start = hsMidPoint(points[at.fI], points[at.fJ]);
    }
    at.Advance();
    if (first) MoveTo(start);
    first = false;

    const hsPoint next = points[at.fI];
    if (onCurve[at.fI]) {
      LineTo(next);
    } else if (onCurve[at.fJ]) {
      QuadTo(next, points[at.fJ]);
      at.Advance();
    } else {
      QuadTo(next, hsMidPoint(next, points[at.fJ]));
    }
  } while (!at.fDone);
  if (closed) Close();
}
