// The library's shape: contours of lines, quadratic and cubic Bezier curves.
//
// A path is two arrays, the points and the verbs that use them, read through hsPathIter. Its one surprising rule: a
// move is lazy. MoveTo stores nothing; the first segment after it writes the move. So moves replace each other, and
// one that leads nowhere leaves no trace.
#pragma once

#include "gfx/foundation/hspoint.h"
#include "gfx/foundation/hsrect.h"
#include "gfx/foundation/hstarray.h"

class hsMatrix;

// Anything that maps points, in place of a matrix. src and dst may be the same array.
class hsPointMapper {
 public:
  virtual ~hsPointMapper() = default;
  virtual void MapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const = 0;
};

class hsPath {
 public:
  // With the points that each stores; the iterator puts the segment's start before those.
  enum Verb : uint8_t {
    kDoneVerb = 0,   // never stored
    kMoveVerb = 1,   // 1
    kLineVerb = 2,   // 1
    kQuadVerb = 3,   // 2
    kCurveVerb = 4,  // 3
    kCloseVerb = 5,  // none
  };
  enum Flags : uint32_t {
    kWindingFill = 0,
    kEvenOddFill = 1,
  };
  enum SegmentMask : uint32_t {
    kLineMask = 1,
    kQuadMask = 2,
    kCurveMask = 4,
  };

  hsPath() = default;
  explicit hsPath(uint32_t flags) { SetFillType(flags); }
  bool operator==(const hsPath&) const = default;

  // Empties the path; the fill type stays.
  void Rewind();
  // Space for count points and count verbs.
  void Reserve(int32_t count);
  bool IsEmpty() const { return fPoints.IsEmpty(); }
  uint32_t FillType() const { return fFlags; }
  void SetFillType(uint32_t flags) { fFlags = flags & kEvenOddFill; }

  // Building. A coordinate of 0x7FFFFFFF or 0x80000000 reports "NAN" and throws. A segment without a MoveTo before it,
  // or after a Close, is reported and left out.
  void MoveTo(hsScalar x, hsScalar y) { MoveTo({x, y}); }
  void MoveTo(hsPoint p);
  void LineTo(hsScalar x, hsScalar y) { LineTo({x, y}); }
  void LineTo(hsPoint p);
  void LineTo(int32_t count, const hsPoint points[]);
  void QuadTo(hsScalar x1, hsScalar y1, hsScalar x2, hsScalar y2) { QuadTo({x1, y1}, {x2, y2}); }
  void QuadTo(hsPoint control, hsPoint end);
  void CurveTo(hsScalar x1, hsScalar y1, hsScalar x2, hsScalar y2, hsScalar x3, hsScalar y3) {
    CurveTo({x1, y1}, {x2, y2}, {x3, y3});
  }
  void CurveTo(hsPoint control1, hsPoint control2, hsPoint end);
  void Close();
  // From the last point; nothing without one.
  void RLineTo(hsScalar dx, hsScalar dy);

  // The first point stored and the last, while a contour is under construction; the pending move when that is all there
  // is of it. False when no contour is open, even if the path holds points.
  bool GetFirstPoint(hsPoint* point) const;
  bool GetLastPoint(hsPoint* point) const;
  // Overwrites the last point stored. Straight after a MoveTo that is still the point of the contour before, or "bad
  // index" without one; with no contour open it is the pending move that changes.
  void SetLastPoint(hsScalar x, hsScalar y);
  int32_t CountPoints() const { return fPoints.Count(); }
  // False outside the points. A null point only tests.
  bool GetPoint(int32_t index, hsPoint* point) const;

  // Appends the segments of src's first contour to the contour open here, which should be at their start, or, in
  // reverse, at their end. Forward takes nothing from a src whose last contour is closed; reverse does.
  void AddForward(const hsPath& src);
  void AddReverse(const hsPath& src);

  // Of all points, control points included; exact, of the curves themselves. 0 for an empty path.
  void ComputeBounds(hsRect* rect, bool exact) const;
  // Whether this is one rectangle, given by 5 points, or by 4 unless mustClose. Only some of the equalities of a
  // rectangle are tested, so that a few skewed quadrilaterals pass. rect may be null.
  bool IsRect(hsRect* rect, bool mustClose) const;
  uint32_t GetSegmentMask() const;  // bits of SegmentMask
  int32_t CountFirstContourSegments(bool forceClose) const;

  // This = src, or this itself when src is null, through the map.
  void Transform(const hsMatrix* matrix, const hsPath* src = nullptr);
  void Transform(const hsPointMapper* mapper, const hsPath* src = nullptr);
  void Offset(hsScalar dx, hsScalar dy, const hsPath* src = nullptr);

  // Cuts every segment into 2^level curves, level 0 to 4; lines become cubics, half as many.
  void Subdivide(int32_t level);
  // Cuts curves until their first control points lie within tolerance, at most maxDepth times. Cubics can't be
  // cut this way: one that would need it reports "bad t" and stays whole.
  void SubdivideToTolerance(hsScalar tolerance, int32_t maxDepth);

  // Writes the path when a buffer is given; always returns the bytes that it takes: the two counts, points, verbs,
  // pending move, contour state, flags, without padding.
  int32_t Flatten(void* buffer) const;
  // Reads what Flatten wrote and moves the cursor past it. Verbs and points that don't agree throw.
  void Unflatten(const void** cursor);

  // Shapes. Those with a sense run clockwise unless reversed.
  void AddPath(const hsPath& src);
  void AddPoly(int32_t count, const hsPoint points[], bool close);
  void AddRect(const hsRect* rect, bool reverse = false);
  void AddOval(const hsRect* rect, bool reverse = false);
  // The sign of the radius doesn't matter; a radius under 9/65536 adds nothing.
  void AddCircle(hsScalar x, hsScalar y, hsScalar radius);
  // Radii are limited to the whole size, not half, so that corners can overlap.
  void AddRoundRect(const hsRect* rect, hsScalar rx, hsScalar ry);
  // From startDegrees over sweepDegrees (16.16), clockwise from twelve o'clock. A wedge goes through the centre and is
  // closed; without one the arc stays open. From 360 degrees on it is the whole oval.
  void AddArc(const hsRect* oval, hsFixed startDegrees, hsFixed sweepDegrees, bool wedge);
  // An outline as fonts store it: quadratics whose on-curve points are left out where they lie midway between two
  // control points.
  void AddContourWithOnCurveFlags(int32_t count, const hsPoint points[], const uint8_t onCurve[], bool closed);

 private:
  friend class hsPathIter;

  bool StartSegment(const char* message);
  template <int32_t count>
  void Store(Verb verb, const hsPoint (&points)[count]);
  bool CanAddContourOf(const hsPath& src) const;
  void AddSegment(Verb verb, const hsPoint points[]);
  template <typename Map>
  void TransformBy(const Map* map, const hsPath* src);

  hsTArray<hsPoint> fPoints;
  hsTArray<uint8_t> fVerbs;
  hsPoint fMoveTo{0, 0};  // the pending start of a contour
  // 0: no contour is open. 1: MoveTo has been called and nothing stored yet. Above: so many points in the open contour.
  int32_t fPtCount = 0;
  uint32_t fFlags = kWindingFill;
};

// The points that a verb stores.
constexpr int32_t hsPointsOfVerb(uint8_t verb) {
  constexpr int8_t kPoints[] = {0, 1, 1, 2, 3, 0};
  return kPoints[verb];
}
