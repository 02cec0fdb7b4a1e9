#include "gfx/vector/hspath.h"

#include <algorithm>
#include <cstring>

#include "gfx/foundation/hscubic.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmatrix.h"
#include "gfx/vector/hspathiter.h"

namespace {

// 0x7FFFFFFF and 0x80000000, which lie side by side as unsigned numbers.
bool IsNan(hsScalar x) { return uint32_t(x) - 0x7FFFFFFFu <= 1; }

void CheckPoints(int32_t count, const hsPoint points[]) {
  for (const hsPoint* p = points; p != points + count; ++p) {
    if (!IsNan(p->fX) && !IsNan(p->fY)) continue;
    hsDebugMessage("NAN", 0);
    hsThrow(hsException::kGeneric, 0);
  }
}

bool IsSegment(uint8_t verb) { return verb >= hsPath::kLineVerb && verb <= hsPath::kCurveVerb; }

// Curves chopped at their extrema, first in Y and each piece then in X: the points of all pieces extend the bounds.
void UniteQuad(const hsPoint quad[3], hsRect* bounds) {
  hsPoint halves[5] = {quad[0]};
  const int count = hsCubic::ChopQuadAtYExtrema(quad, halves + 1) ? 2 : 1;
  if (count == 1) std::copy_n(quad, 3, halves);
  halves[2 * count] = quad[2];
  for (const hsPoint* half = halves; half != halves + 2 * count; half += 2) {
    hsPoint inner[3];
    if (hsCubic::ChopQuadAtXExtrema(half, inner))
      bounds->UnionPoints(3, inner);
    else
      bounds->UnionPoints(1, half + 1);
    bounds->UnionPoints(1, half + 2);
  }
}

void UniteCubic(const hsPoint cubic[4], hsRect* bounds) {
  hsPoint pieces[10] = {cubic[0]};
  const int count = 1 + hsCubic::ChopCubicAtYExtrema(cubic, pieces + 1);
  if (count == 1) std::copy_n(cubic, 4, pieces);
  pieces[3 * count] = cubic[3];
  for (const hsPoint* piece = pieces; piece != pieces + 3 * count; piece += 3) {
    hsPoint inner[8];
    const int extrema = hsCubic::ChopCubicAtXExtrema(piece, inner);
    if (extrema > 0)
      bounds->UnionPoints(2 + 3 * extrema, inner);
    else
      bounds->UnionPoints(2, piece + 1);
    bounds->UnionPoints(1, piece + 3);
  }
}

// Both ways of the flat form. Nothing in it is aligned.
class FlatWriter {
 public:
  explicit FlatWriter(void* buffer) : to(static_cast<char*>(buffer)) {}
  void Put(const void* bytes, size_t size) {
    if (size > 0) std::memcpy(to, bytes, size);
    to += size;
  }

 private:
  char* to;
};

class FlatReader {
 public:
  explicit FlatReader(const void* buffer) : from(static_cast<const char*>(buffer)) {}
  void Get(void* bytes, size_t size) {
    if (size > 0) std::memcpy(bytes, from, size);
    from += size;
  }
  const void* Place() const { return from; }

 private:
  const char* from;
};

// Whether the verbs use just these points, and no segment lacks a move.
bool Agree(const hsTArray<uint8_t>& verbs, int32_t pointCount) {
  int64_t used = 0;
  bool open = false;
  for (uint8_t verb : verbs) {
    if (verb == hsPath::kDoneVerb || verb > hsPath::kCloseVerb) return false;
    if (verb != hsPath::kMoveVerb && !open) return false;
    open = verb != hsPath::kCloseVerb;
    used += hsPointsOfVerb(verb);
  }
  return used == pointCount;
}

}  // namespace

void hsPath::Rewind() {
  fPoints.Reset();
  fVerbs.Reset();
  fMoveTo = {0, 0};
  fPtCount = 0;
}

void hsPath::Reserve(int32_t count) {
  fPoints.SetCapacity(count);
  fVerbs.SetCapacity(count);
}

void hsPath::MoveTo(hsPoint p) {
  CheckPoints(1, &p);
  fMoveTo = p;
  fPtCount = 1;
}

bool hsPath::StartSegment(const char* message) {
  if (!hsAssert(fPtCount > 0, message)) return false;
  if (fPtCount == 1) {
    fPoints.Push(fMoveTo);
    fVerbs.Push(kMoveVerb);
  }
  return true;
}

template <int32_t count>
void hsPath::Store(Verb verb, const hsPoint (&points)[count]) {
  std::copy_n(points, count, fPoints.Append(count));
  fVerbs.Push(verb);
  fPtCount += count;
}

void hsPath::LineTo(hsPoint p) {
  const hsPoint points[] = {p};
  CheckPoints(1, points);
  if (StartSegment("LineTo without a MoveTo")) Store(kLineVerb, points);
}

void hsPath::LineTo(int32_t count, const hsPoint points[]) {
  if (!hsAssert(fPtCount > 0, "LineTo without a MoveTo")) return;
  if (count <= 0 || !points) return;
  CheckPoints(count, points);
  StartSegment("LineTo without a MoveTo");
  std::copy_n(points, count, fPoints.Append(count));
  std::fill_n(fVerbs.Append(count), count, uint8_t{kLineVerb});
  fPtCount += count;
}

void hsPath::QuadTo(hsPoint control, hsPoint end) {
  const hsPoint points[] = {control, end};
  CheckPoints(2, points);
  if (StartSegment("QuadTo without a MoveTo")) Store(kQuadVerb, points);
}

void hsPath::CurveTo(hsPoint control1, hsPoint control2, hsPoint end) {
  const hsPoint points[] = {control1, control2, end};
  CheckPoints(3, points);
  if (StartSegment("CurveTo without a MoveTo")) Store(kCurveVerb, points);
}

void hsPath::Close() {
  if (fPtCount > 1) fVerbs.Push(kCloseVerb);
  fPtCount = 0;
}

void hsPath::RLineTo(hsScalar dx, hsScalar dy) {
  hsPoint last;
  if (GetLastPoint(&last)) LineTo(last + hsPoint{dx, dy});
}

bool hsPath::GetFirstPoint(hsPoint* point) const {
  if (fPtCount == 0) return false;
  *point = fPtCount == 1 ? fMoveTo : fPoints[0];
  return true;
}

bool hsPath::GetLastPoint(hsPoint* point) const {
  if (fPtCount == 0) return false;
  *point = fPtCount == 1 ? fMoveTo : fPoints[fPoints.Count() - 1];
  return true;
}

void hsPath::SetLastPoint(hsScalar x, hsScalar y) {
  const hsPoint p{x, y};
  CheckPoints(1, &p);
  (fPtCount == 0 ? fMoveTo : fPoints[fPoints.Count() - 1]) = p;
}

bool hsPath::GetPoint(int32_t index, hsPoint* point) const {
  if (uint32_t(index) >= uint32_t(fPoints.Count())) return false;
  if (point) *point = fPoints[index];
  return true;
}

void hsPath::AddSegment(Verb verb, const hsPoint points[]) {
  switch (verb) {
    case kMoveVerb: return MoveTo(points[0]);
    case kLineVerb: return LineTo(points[0]);
    case kQuadVerb: return QuadTo(points[0], points[1]);
    case kCurveVerb: return CurveTo(points[0], points[1], points[2]);
    case kCloseVerb: return Close();
    default: hsThrow(hsException::kGeneric, 0);
  }
}

bool hsPath::CanAddContourOf(const hsPath& src) const {
  if (fPtCount == 0 || src.fVerbs.IsEmpty()) return false;
  return hsAssert(src.fVerbs[0] == kMoveVerb, "expected moveto");
}

void hsPath::AddForward(const hsPath& src) {
  if (src.fPtCount < 2 || !CanAddContourOf(src)) return;
  if (&src == this) return AddForward(hsPath(src));
  const hsPoint* points = src.fPoints.begin() + 1;
  for (const uint8_t* verb = src.fVerbs.begin() + 1; verb != src.fVerbs.end() && IsSegment(*verb); ++verb) {
    AddSegment(Verb(*verb), points);
    points += hsPointsOfVerb(*verb);
  }
}

void hsPath::AddReverse(const hsPath& src) {
  if (!CanAddContourOf(src)) return;
  if (&src == this) return AddReverse(hsPath(src));
  const hsPoint* points = src.fPoints.begin();  // the contour's last point, once the verbs are counted
  const uint8_t* first = src.fVerbs.begin() + 1;
  const uint8_t* verb = first;
  for (; verb != src.fVerbs.end() && IsSegment(*verb); ++verb) points += hsPointsOfVerb(*verb);
  while (verb != first) {
    switch (*--verb) {
      case kLineVerb: LineTo(points[-1]); break;
      case kQuadVerb: QuadTo(points[-1], points[-2]); break;
      case kCurveVerb: CurveTo(points[-1], points[-2], points[-3]); break;
      default: hsDebugMessage("how'd I get here", *verb);
    }
    points -= hsPointsOfVerb(*verb);
  }
  hsAssert(points == src.fPoints.begin(), "oops");
}

void hsPath::ComputeBounds(hsRect* rect, bool exact) const {
  if (!rect) return;
  if (fPoints.IsEmpty()) {
    *rect = {0, 0, 0, 0};
    return;
  }
  if (!exact) return rect->Set(fPoints.Count(), fPoints.begin());
  rect->Set(1, fPoints.begin());
  hsPathIter iter(*this, false);
  hsPoint pts[4];
  for (Verb verb; (verb = iter.Next(pts)) != kDoneVerb;) {
    switch (verb) {
      case kMoveVerb: rect->UnionPoints(1, pts); break;
      case kLineVerb: rect->UnionPoints(1, pts + 1); break;
      case kQuadVerb: UniteQuad(pts, rect); break;
      case kCurveVerb: UniteCubic(pts, rect); break;
      default: break;  // a close adds nothing; the iterator lets no other verb through
    }
  }
}

bool hsPath::IsRect(hsRect* rect, bool mustClose) const {
  const int32_t count = fPoints.Count();
  if (count != 5 && (count != 4 || mustClose)) return false;
  hsPathIter iter(*this, false);
  hsPoint pts[4];
  if (iter.Next(pts) != kMoveVerb) return false;
  for (int32_t line = 1; line < count; ++line)
    if (iter.Next(pts) != kLineVerb) return false;
  const hsPoint* p = fPoints.begin();
  if (count == 5 && p[4] != p[0]) return false;
  const bool square = p[0].fX != p[1].fX ? p[1].fX == p[2].fX && p[2].fY == p[3].fY && p[3].fX == p[0].fX
                                         : p[1].fY == p[2].fY && p[2].fX == p[3].fX && p[3].fY == p[0].fY;
  if (square && rect) rect->Set(4, p);
  return square;
}

uint32_t hsPath::GetSegmentMask() const {
  uint32_t mask = 0;
  for (uint8_t verb : fVerbs)
    if (IsSegment(verb)) mask |= 1u << (verb - kLineVerb);
  return mask;
}

int32_t hsPath::CountFirstContourSegments(bool forceClose) const {
  hsPathIter iter(*this, forceClose);
  int32_t segments = 0, moves = 0;
  for (Verb verb; (verb = iter.Next(nullptr)) != kDoneVerb;) {
    if (verb == kMoveVerb && ++moves == 2) break;
    if (IsSegment(verb)) ++segments;
  }
  return segments;
}

template <typename Map>
void hsPath::TransformBy(const Map* map, const hsPath* src) {
  hsThrowIfNilParam(map);
  if (src && src != this) *this = *src;
  map->MapPoints(fPoints.Count(), fPoints.begin(), fPoints.begin());
  map->MapPoints(1, &fMoveTo, &fMoveTo);
}

void hsPath::Transform(const hsMatrix* matrix, const hsPath* src) { TransformBy(matrix, src); }

void hsPath::Transform(const hsPointMapper* mapper, const hsPath* src) { TransformBy(mapper, src); }

void hsPath::Offset(hsScalar dx, hsScalar dy, const hsPath* src) {
  if (dx == 0 && dy == 0) {
    if (src) *this = *src;
    return;
  }
  hsMatrix matrix;
  matrix.SetTranslate(dx, dy);
  Transform(&matrix, src);
}

int32_t hsPath::Flatten(void* buffer) const {
  const int32_t pointCount = fPoints.Count(), verbCount = fVerbs.Count();
  if (buffer) {
    FlatWriter out(buffer);
    out.Put(&pointCount, sizeof pointCount);
    out.Put(&verbCount, sizeof verbCount);
    out.Put(fPoints.begin(), size_t(pointCount) * sizeof(hsPoint));
    out.Put(fVerbs.begin(), size_t(verbCount));
    out.Put(&fMoveTo, sizeof fMoveTo);
    out.Put(&fPtCount, sizeof fPtCount);
    out.Put(&fFlags, sizeof fFlags);
  }
  return pointCount * int32_t{sizeof(hsPoint)} + verbCount + 24;
}

void hsPath::Unflatten(const void** cursor) {
  if (!hsAssert(cursor && *cursor, "need storage")) return;
  FlatReader in(*cursor);
  int32_t pointCount = 0, verbCount = 0;
  in.Get(&pointCount, sizeof pointCount);
  in.Get(&verbCount, sizeof verbCount);
  hsThrowIfFalse(pointCount >= 0 && verbCount >= 0);
  hsPath path;
  path.fPoints.SetCount(pointCount);
  in.Get(path.fPoints.begin(), size_t(pointCount) * sizeof(hsPoint));
  path.fVerbs.SetCount(verbCount);
  in.Get(path.fVerbs.begin(), size_t(verbCount));
  in.Get(&path.fMoveTo, sizeof fMoveTo);
  in.Get(&path.fPtCount, sizeof fPtCount);
  in.Get(&path.fFlags, sizeof fFlags);
  hsThrowIfFalse(Agree(path.fVerbs, pointCount));
  *this = path;
  *cursor = in.Place();
}
