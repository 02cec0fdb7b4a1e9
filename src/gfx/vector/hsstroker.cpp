#include "gfx/vector/hsstroker.h"

#include <algorithm>

#include "gfx/foundation/hscubic.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmath.h"
#include "gfx/foundation/hstrig.h"
#include "gfx/foundation/hswide.h"
#include "gfx/vector/hspathiter.h"
#include "gfx/vector/hsscan.h"

namespace {

constexpr const char kFailed[] = "frame assert failed";
constexpr hsFixed kPi = 205887;
constexpr hsFixed kSameDirection = 0xFFF8;  // a cosine from which on two directions are one
constexpr hsFixed kShallow = 0xE000;        // 0.875
constexpr hsFixed kCosOf45 = 46332;
constexpr hsFixed kTwoThirds = 43690;
constexpr int32_t kDeepestQuad = 7, kDeepestCubic = 9;

hsPoint Negated(hsPoint p) { return {hsWrapNeg(p.fX), hsWrapNeg(p.fY)}; }
hsPoint Scaled(hsPoint p, hsFixed by) { return {hsFixMul(p.fX, by), hsFixMul(p.fY, by)}; }
// A quarter circle to the side that is called outer.
hsPoint Turned(hsPoint p) { return {p.fY, hsWrapNeg(p.fX)}; }
hsFixed Dot(hsPoint a, hsPoint b) { return hsWrapAdd(hsFixMul(a.fX, b.fX), hsFixMul(a.fY, b.fY)); }
hsFixed Cross(hsPoint a, hsPoint b) { return hsWrapSub(hsFixMul(a.fX, b.fY), hsFixMul(a.fY, b.fX)); }

bool IsNearZero(hsPoint p) { return hsMagnitude32(p.fX) < 16 && hsMagnitude32(p.fY) < 16; }

// False, and no change, when the vector is too short to have a direction.
bool Normalize(hsPoint* p, hsFixed length = kFixed1) {
  const hsFixed magnitude = hsMagnitude(p->fX, p->fY);
  if (magnitude <= length >> 15) return false;
  *p = Scaled(*p, hsFixDiv(length, magnitude));
  return true;
}

// The index of the first point that gives a direction from pts[0], 0 if none does.
int32_t FirstDirection(const hsPoint pts[], int32_t count, hsPoint* dir) {
  for (int32_t i = 1; i < count; ++i) {
    hsPoint d = pts[i] - pts[0];
    if (!Normalize(&d)) continue;
    *dir = d;
    return i;
  }
  return 0;
}

// The angle with this cosine, and the sign of `sign`.
hsFixed AngleFromCos(hsFixed cos, hsFixed sign) {
  const hsFixed angle = cos >= kFixed1 ? 0 : cos <= -kFixed1 ? kPi : hsFixedACos(cos);
  return sign < 0 ? -angle : angle;
}

// Halves a quadratic where it bends most; false when that is at no point between its ends.
bool ChopAtMaxCurvature(const hsPoint pts[3], hsPoint dst[5]) {
  const hsPoint a = pts[1] - pts[0], b = pts[0] - pts[1] - pts[1] + pts[2];
  const hsWide n = hsWide().Sub(hsWide().Mul(a.fX, b.fX)).Sub(hsWide().Mul(a.fY, b.fY));
  const hsWide d = hsWide().Mul(b.fX, b.fX).Add(hsWide().Mul(b.fY, b.fY));
  if (n.Value() <= 0 || n.Value() >= d.Value()) return false;
  const hsFixed t = n.FixDiv(d);
  if (!hsAssert(t >= 0 && t <= kFixed1, "oops")) return false;
  if (t == 0 || t == kFixed1) return false;  // rounded onto an end
  hsCubic::ChopQuadAt(pts, dst, t);
  return true;
}

}  // namespace

hsStroker::hsStroker(hsFixed radius, hsFixed miterLimit, uint32_t style, hsPath* dst)
    : fRadius(radius),
      fMiterLimit(miterLimit),
      fInvMiterLimit(hsFixDiv(kFixed1, miterLimit)),
      fStyle(style),
      fDst(dst) {}

hsPoint hsStroker::NormalOf(hsPoint dir) const { return Turned(Scaled(dir, fRadius)); }

void hsStroker::Run(const hsPath& src) {
  fOuter.Reserve(3 * src.CountPoints());
  fInner.Reserve(3 * src.CountPoints());
  fDst->Reserve(6 * src.CountPoints());
  int32_t prev = 0;  // the point count of the segment before; 1 after a move, 0 outside a contour
  int32_t firstCount = 0;
  hsPoint dir{0, 0}, last{0, 0}, pts[4];
  hsPathIter iter(src, false);
  for (hsPath::Verb verb; (verb = iter.Next(pts)) != hsPath::kDoneVerb;) {
    switch (verb) {
      case hsPath::kMoveVerb:
        if (prev > 1) FinishOpen(dir, last);
        prev = 1;
        break;
      case hsPath::kLineVerb:
      case hsPath::kQuadVerb:
      case hsPath::kCurveVerb: {
        const int32_t count = 1 + hsPointsOfVerb(verb);
        if (!hsAssert(prev >= 1 && prev <= 4, kFailed)) break;
        if (prev == 1) firstCount = count;
        // A segment without a direction is passed over.
        if (!(prev == 1 ? StartContour(pts, count, &dir) : Join(pts, count, &dir, prev))) break;
        if (count == 2) LineSegment(dir, pts[1]);
        if (count == 3) QuadSegment(&dir, pts, 0);
        if (count == 4) CubicSegment(&dir, pts, 0);
        last = pts[count - 1];
        prev = count;
        break;
      }
      case hsPath::kCloseVerb:
        if (prev > 1 && hsAssert(firstCount >= 2, kFailed)) FinishClosed(dir, firstCount);
        prev = 0;
        break;
      default: hsThrow(hsException::kGeneric, 0);
    }
  }
  if (prev >= 2) FinishOpen(dir, last);
}

bool hsStroker::StartContour(const hsPoint pts[], int32_t count, hsPoint* dir) {
  const int32_t second = FirstDirection(pts, count, dir);
  if (second == 0) return false;
  fFirstPt = pts[0];
  fSecondPt = pts[second];
  fFirstDir = *dir;
  const hsPoint normal = NormalOf(*dir);
  fOuter.MoveTo(pts[0] + normal);
  fInner.MoveTo(pts[0] - normal);
  return true;
}

bool hsStroker::Join(const hsPoint pts[], int32_t count, hsPoint* dir, int32_t prevCount) {
  const hsPoint p = pts[0], a = *dir;
  if (FirstDirection(pts, count, dir) == 0) return false;
  const hsPoint b = *dir;
  hsFixed dot = Dot(a, b), cross = 0;
  if (dot > kSameDirection) return true;
  if (dot < -kSameDirection)
    dot = -kFixed1;
  else
    cross = std::clamp(Cross(a, b), -kFixed1, kFixed1);

  const bool opensOuter = cross >= 0;
  hsPath* const outer = opensOuter ? &fOuter : &fInner;
  hsPath* const inner = opensOuter ? &fInner : &fOuter;
  const hsPoint normal = opensOuter ? NormalOf(b) : Negated(NormalOf(b));
  bool needsCorner = true;
  if (fStyle & HSScan::kRoundJoin) {
    const hsPoint u = opensOuter ? Turned(a) : Negated(Turned(a));
    Arc(outer, p, AngleFromCos(u.fX, u.fY), AngleFromCos(dot, cross), p + normal);
    needsCorner = false;
  } else if (!(fStyle & HSScan::kBevelJoin)) {
    // A line begins at the miter's tip itself.
    needsCorner = !(MiterJoin(outer, p, a, b, dot, cross, prevCount == 2) && count < 3);
  }
  if (needsCorner) outer->LineTo(p + normal);
  inner->LineTo(p - normal);
  return true;
}

// False when the miter would be too long.
bool hsStroker::MiterJoin(hsPath* outer, hsPoint p, hsPoint a, hsPoint b, hsFixed dot, hsFixed cross, bool afterLine) {
  hsPoint d;
  hsFixed m = 0;
  if (dot < kShallow) {
    d = a - b;
    if (cross < 0) cross = -cross;
    const hsFixed limit = hsFixMul(cross, fMiterLimit);
    if (Dot(d, d) < hsFixMul(limit, limit)) m = cross;
  } else {
    d = {hsWrapAdd(a.fY, b.fY), hsWrapSub(hsWrapNeg(a.fX), b.fX)};
    hsFixed s = hsFractSqrt((dot + kFixed1) >> 1) >> 7;  // the cosine of half the angle
    // Negated for bends to the one side, which so never get a miter here.
    if (cross < 0) s = -s;
    if (fInvMiterLimit < s) m = hsFixMul(hsMagnitude(d.fX, d.fY), s);
  }
  if (m == 0) return false;
  const hsPoint tip = p + Scaled(d, hsFixDiv(fRadius, m));
  if (afterLine)
    outer->SetLastPoint(tip.fX, tip.fY);
  else
    outer->LineTo(tip);
  return true;
}

void hsStroker::LineSegment(hsPoint dir, hsPoint end) {
  if (IsNearZero(dir)) return;
  const hsPoint normal = NormalOf(dir);
  fOuter.LineTo(end + normal);
  fInner.LineTo(end - normal);
}

void hsStroker::QuadSegment(hsPoint* dir, const hsPoint pts[3], int32_t level) {
  const hsPoint a = *dir;
  hsPoint v = pts[2] - pts[1];
  if (IsNearZero(pts[1] - pts[0]) || IsNearZero(v)) {
    LineSegment(a, pts[2]);
    v = pts[2] - pts[0];
    if (Normalize(&v)) *dir = v;
    return;
  }
  Normalize(&v);
  const hsFixed dot = Dot(a, v);
  hsPoint half[5];
  if (level == 0 && dot < -kShallow && ChopAtMaxCurvature(pts, half)) {
    QuadSegment(dir, half, 1);
    QuadSegment(dir, half + 2, 1);
    return;
  }
  if (level < kDeepestQuad && dot < kCosOf45) {
    half[0] = pts[0];
    half[1] = hsMidPoint(pts[0], pts[1]);
    half[3] = hsMidPoint(pts[1], pts[2]);
    half[2] = hsMidPoint(half[1], half[3]);
    half[4] = pts[2];
    QuadSegment(dir, half, level + 1);
    QuadSegment(dir, half + 2, level + 1);
    return;
  }
  *dir = v;
  hsPoint m = Turned(a + v);
  if (!Normalize(&m, fRadius)) {
    hsDebugMessage("|b| == 0 ???", 0);
    return;
  }
  const hsPoint normal = NormalOf(v);
  fOuter.QuadTo(pts[1] + m, pts[2] + normal);
  fInner.QuadTo(pts[1] - m, pts[2] - normal);
}

// Whether the directions a, e2 and e3 lie too far apart for one curve. Makes unit vectors of those that it compares.
bool hsStroker::SplitsCubic(hsPoint a, hsPoint* e2, hsPoint* e3) const {
  if (IsNearZero(*e2)) return true;
  Normalize(e2);
  Normalize(e3);
  return Dot(a, *e2) < kTwoThirds || Dot(*e2, *e3) < kTwoThirds;
}

void hsStroker::CubicSegment(hsPoint* dir, const hsPoint pts[4], int32_t level) {
  hsPoint a = *dir, e2 = pts[2] - pts[1], e3 = pts[3] - pts[2];
  if (level < kDeepestCubic) {
    const bool noStart = IsNearZero(pts[1] - pts[0]), noEnd = IsNearZero(e3);
    if (noStart && noEnd) return LineSegment(a, pts[3]);
    if (noStart) {
      a = pts[2] - pts[0];
      Normalize(&a);
    } else if (noEnd) {
      e3 = pts[3] - pts[1];
    }
    if (SplitsCubic(a, &e2, &e3)) {
      hsPoint half[7];
      hsCubic::ChopCubicAt(pts, half, kFixedHalf);
      CubicSegment(dir, half, level + 1);
      CubicSegment(dir, half + 3, level + 1);
      return;
    }
  }
  *dir = e3;
  hsPoint m1 = Turned(a + e2), m2 = Turned(e2 + e3);
  if (!Normalize(&m1, fRadius) || !Normalize(&m2, fRadius)) return;
  const hsPoint normal = NormalOf(e3);
  fOuter.CurveTo(pts[1] + m1, pts[2] + m2, pts[3] + normal);
  fInner.CurveTo(pts[1] - m1, pts[2] - m2, pts[3] - normal);
}

void hsStroker::FinishOpen(hsPoint dir, hsPoint last) {
  Cap(fFirstPt, fFirstDir, true);
  fDst->AddForward(fOuter);
  Cap(last, Negated(dir), false);
  fDst->AddReverse(fInner);
  fDst->Close();
  fOuter.Rewind();
  fInner.Rewind();
}

void hsStroker::FinishClosed(hsPoint dir, int32_t firstCount) {
  const hsPoint first[2] = {fFirstPt, fSecondPt};
  // The count of the first segment is taken in place of the last one's: a contour that begins with a line and ends in a
  // curve has its last point moved to the miter's tip.
  Join(first, 2, &dir, firstCount);
  fOuter.Close();
  fDst->AddPath(fOuter);
  fOuter.Rewind();
  hsPoint last;
  if (fInner.GetLastPoint(&last)) {
    fDst->MoveTo(last);
    fDst->AddReverse(fInner);
    fDst->Close();
  }
  fInner.Rewind();
}

void hsStroker::Cap(hsPoint pt, hsPoint dir, bool isMove) {
  const hsPoint n = Scaled(dir, fRadius), side = Turned(n), end = pt + side;
  if (isMove) fDst->MoveTo(pt - side);
  if (fStyle & HSScan::kRoundCap) return Arc(fDst, pt, AngleFromCos(hsWrapNeg(dir.fY), dir.fX), kPi, end);
  if (fStyle & HSScan::kSquareCap) {
    fDst->LineTo(pt - side - n);
    fDst->LineTo(end - n);
  }
  fDst->LineTo(end);
}

void hsStroker::Arc(hsPath* path, hsPoint centre, hsFixed start, hsFixed sweep, hsPoint end) const {
  const hsFixed size = sweep < 0 ? -sweep : sweep;
  if (!hsAssert(size <= kPi, "sweep too big")) return;
  const int32_t n = hsFixedCeil(hsFixDiv(4 * size, kPi));  // a piece for each quarter of pi
  if (!hsAssert(n >= 0 && n <= 4, "bad sweep count") || n < 1) return;
  const hsFixed step = sweep / n, half = step >> 1, r = hsFixDiv(fRadius, hsFixedCos(half));
  hsPoint control[4];
  for (int32_t i = 0; i < n; ++i) {
    const hsFixed angle = start + half + i * step;
    control[i] = centre + hsPoint{hsFixMul(r, hsFixedCos(angle)), hsFixMul(r, hsFixedSin(angle))};
  }
  for (int32_t i = 0; i < n - 1; ++i) path->QuadTo(control[i], hsMidPoint(control[i], control[i + 1]));
  path->QuadTo(control[n - 1], end);
}

void HSScan::StrokePath(const hsPath* src, hsFixed radius, hsFixed miterLimit, uint32_t style, hsPath* dst) {
  hsThrowIfBadParam(radius < 0 || miterLimit < 0 || !dst);
  hsThrowIfNilParam(src);
  hsStroker(radius, miterLimit, style, dst).Run(*src);
}
