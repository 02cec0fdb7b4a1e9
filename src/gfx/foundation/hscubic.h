// Splitting quadratic (three points) and cubic (four points) Bezier curves, above all at their extrema.
//
// The splits at extrema are for the scan converter, which needs each piece monotonic to the bit: in the coordinate that
// is chopped, the points about the split are set to one value rather than to their true ones.
#pragma once

#include "gfx/foundation/hsfixed.h"
#include "gfx/foundation/hspoint.h"

inline hsFixed hsInterp(hsFixed a, hsFixed b, hsFixed t) { return hsWrapAdd(hsFixMul(t, hsWrapSub(b, a)), a); }
inline hsPoint hsMidPoint(hsPoint a, hsPoint b) { return {hsFixedAverage(a.fX, b.fX), hsFixedAverage(a.fY, b.fY)}; }

class hsCubic {
 public:
  // At t, 0 < t < 1.0 ("bad t"): 5 or 7 points, the split in the middle.
  static void ChopQuadAt(const hsPoint src[3], hsPoint dst[5], hsFixed t);
  static void ChopCubicAt(const hsPoint src[4], hsPoint dst[7], hsFixed t);

  static void QuadToCubic(const hsPoint src[3], hsPoint dst[4]);

  // Where the coordinate changes direction: how many such t there are, 0 < t < 1.0, ascending.
  static int FindQuadExtrema(hsFixed a, hsFixed b, hsFixed c, hsFixed* t);
  static int FindCubicExtrema(hsFixed a, hsFixed b, hsFixed c, hsFixed d, hsFixed t[2]);
  // The roots of A t^2 + B t + C between 0 and 1.0, ascending.
  static int SolveQuadratic(int32_t A, int32_t B, int32_t C, hsFixed t[2]);
  // 1 and the ratio when that lies between 0 and 1.0, both exclusive.
  static int FindValidRatio(int32_t numer, int32_t denom, hsFixed* t);

  // False without an extremum; otherwise the three points between the ends.
  static bool ChopQuadAtYExtrema(const hsPoint src[3], hsPoint dst[3]);
  static bool ChopQuadAtXExtrema(const hsPoint src[3], hsPoint dst[3]);
  // The number of extrema; for 1 the 5 points between the ends, for 2 the 8, with the splits in dst[2] and dst[5].
  static int ChopCubicAtYExtrema(const hsPoint src[4], hsPoint dst[8]);
  static int ChopCubicAtXExtrema(const hsPoint src[4], hsPoint dst[8]);
};
