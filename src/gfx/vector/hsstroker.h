// Makes the outline of a stroke: a path whose inside, by winding, is the stroke.
//
// Each segment is offset to both sides by one segment of its own kind, or by several where its direction changes too
// much for one. Joins go on the side where the corner opens; the other side runs through the corner's offset point and
// overlaps itself, which the winding fill hides.
#pragma once

#include "gfx/vector/hspath.h"

class hsStroker {
 public:
  // style is that of HSScan::StrokePath.
  hsStroker(hsFixed radius, hsFixed miterLimit, uint32_t style, hsPath* dst);

  void Run(const hsPath& src);

 private:
  bool StartContour(const hsPoint pts[], int32_t count, hsPoint* dir);
  // The corner at pts[0] between *dir and the segment of count points; *dir becomes the segment's. prevCount is the
  // point count of the segment before. False for a segment without a direction.
  bool Join(const hsPoint pts[], int32_t count, hsPoint* dir, int32_t prevCount);
  bool MiterJoin(hsPath* outer, hsPoint p, hsPoint a, hsPoint b, hsFixed dot, hsFixed cross, bool afterLine);
  void LineSegment(hsPoint dir, hsPoint end);
  void QuadSegment(hsPoint* dir, const hsPoint pts[3], int32_t level);
  void CubicSegment(hsPoint* dir, const hsPoint pts[4], int32_t level);
  bool SplitsCubic(hsPoint a, hsPoint* e2, hsPoint* e3) const;
  void FinishOpen(hsPoint dir, hsPoint last);
  void FinishClosed(hsPoint dir, int32_t firstCount);
  // An end of the stroke at pt; dir is the unit vector that points into the body.
  void Cap(hsPoint pt, hsPoint dir, bool isMove);
  void Arc(hsPath* path, hsPoint centre, hsFixed start, hsFixed sweep, hsPoint end) const;
  hsPoint NormalOf(hsPoint dir) const;

  const hsFixed fRadius;
  const hsFixed fMiterLimit;
  const hsFixed fInvMiterLimit;
  const uint32_t fStyle;
  hsPath* const fDst;
  hsPath fOuter;  // the side of the normal
  hsPath fInner;
  hsPoint fFirstPt{0, 0};   // start of the contour
  hsPoint fSecondPt{0, 0};  // and the first point that differs from it
  hsPoint fFirstDir{0, 0};  // the direction between them
};
