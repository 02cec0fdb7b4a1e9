// One edge of a shape while it is filled: a line, or a curve that yields its lines one after the other.
//
// A curve is never flattened beforehand. It carries its forward differences and makes the next line only when the
// one before has run out, so it costs one record however many lines it becomes.
#pragma once

#include "gfx/foundation/hspoint.h"
#include "gfx/foundation/hsrect.h"

struct hsEdge {
  hsEdge* fNext;     // first the active edges by X, after them the pending ones by first row
  int32_t fWinding;  // +1 downward, -1 upward
  hsFixed fX;        // on the current row, with a half added, so that cutting the fraction rounds
  hsFixed fDX;       // per row
  int16_t fFirstY;   // first row of this line
  int16_t fCount;    // rows left of it
  hsFixed fCurveX;   // where the current line of a curve ends
  hsFixed fCurveY;
  int32_t fDX1, fDY1;  // differences of the curve, first to third
  int32_t fDX2, fDY2;
  int32_t fDX3, fDY3;
  int32_t fShift;  // log2 of the number of lines
  hsFixed fEndX;   // last point of the curve, exact
  hsFixed fEndY;
  int16_t fCurveCount;    // 0 for a line; above 0 lines left of a quadratic; below 0, negated, of a cubic
  int16_t fCurveWinding;  // of each line of the curve

  // The line's rows from p0 to p1, cut to clip's top and bottom unless that is null. False when it crosses no row's
  // centre. Only the first six fields are set.
  bool SetLine(hsPoint p0, hsPoint p1, int32_t winding, const hsIntRect* clip);
  // A curve whose direction in Y doesn't change. Advance makes its first line.
  void SetQuad(const hsPoint pts[3]);
  void SetCubic(const hsPoint pts[4]);
  // The next line of the curve that crosses a row's centre; false at its end.
  bool Advance(const hsIntRect* clip);

  // One step along the curve: the point after *from. Only while fCurveCount is above 0, or below.
  hsPoint NextQuadPoint(hsPoint from);
  hsPoint NextCubicPoint(hsPoint from);
};

// The rows that a shape's edges own begin at the first centre at or below their upper end.
constexpr int32_t hsFirstRow(hsFixed y) { return hsFixedRound(y); }
// The centre of a row.
constexpr hsFixed hsRowCentre(int32_t y) { return hsWrapShl(y, 16) | kFixedHalf; }
