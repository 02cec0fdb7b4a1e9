#include "gfx/foundation/hscubic.h"

#include <utility>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hswide.h"

namespace {

constexpr hsFixed kTwoThirds = 43690;  // cut: a rounded one would be 43691

using Axis = hsScalar hsPoint::*;

hsPoint Interp(hsPoint a, hsPoint b, hsFixed t) { return {hsInterp(a.fX, b.fX, t), hsInterp(a.fY, b.fY, t)}; }

// The three inner points of a quadratic chopped at t, level in `flat`.
template <Axis flat>
bool ChopQuadFlat(const hsPoint src[3], hsPoint dst[3]) {
  hsFixed t = 0;
  if (!hsCubic::FindQuadExtrema(src[0].*flat, src[1].*flat, src[2].*flat, &t)) return false;
  const hsPoint ab = Interp(src[0], src[1], t), bc = Interp(src[1], src[2], t), top = Interp(ab, bc, t);
  dst[0] = ab;
  dst[1] = top;
  dst[2] = bc;
  dst[0].*flat = dst[2].*flat = top.*flat;
  return true;
}

// The five inner points of a cubic chopped at t. About the split `flat` is level, at the height of abc.
template <Axis flat>
void ChopCubicFlatAt(const hsPoint src[4], hsPoint dst[5], hsFixed t) {
  const hsPoint ab = Interp(src[0], src[1], t), bc = Interp(src[1], src[2], t), cd = Interp(src[2], src[3], t);
  const hsPoint abc = Interp(ab, bc, t), bcd = Interp(bc, cd, t);
  dst[0] = ab;
  dst[1] = abc;
  dst[2] = Interp(abc, bcd, t);
  dst[3] = bcd;
  dst[4] = cd;
  dst[2].*flat = dst[3].*flat = abc.*flat;
}

template <Axis flat>
int ChopCubicFlat(const hsPoint src[4], hsPoint dst[8]) {
  hsFixed t[2] = {};
  const int count = hsCubic::FindCubicExtrema(src[0].*flat, src[1].*flat, src[2].*flat, src[3].*flat, t);
  if (count > 0) ChopCubicFlatAt<flat>(src, dst, t[0]);
  if (count == 2) {
    const hsPoint right[4] = {dst[2], dst[3], dst[4], src[3]};
    ChopCubicFlatAt<flat>(right, dst + 3, hsFixDiv(t[1] - t[0], kFixed1 - t[0]));
  }
  return count;
}

}  // namespace

void hsCubic::ChopQuadAt(const hsPoint src[3], hsPoint dst[5], hsFixed t) {
  hsAssert(t > 0 && t < kFixed1, "bad t");
  const hsPoint end = src[2], ab = Interp(src[0], src[1], t), bc = Interp(src[1], src[2], t);
  dst[0] = src[0];
  dst[1] = ab;
  dst[2] = Interp(ab, bc, t);
  dst[3] = bc;
  dst[4] = end;
}

void hsCubic::ChopCubicAt(const hsPoint src[4], hsPoint dst[7], hsFixed t) {
  hsAssert(t > 0 && t < kFixed1, "bad t");
  const hsPoint end = src[3];
  const hsPoint ab = Interp(src[0], src[1], t), bc = Interp(src[1], src[2], t), cd = Interp(src[2], src[3], t);
  const hsPoint abc = Interp(ab, bc, t), bcd = Interp(bc, cd, t);
  dst[0] = src[0];
  dst[1] = ab;
  dst[2] = abc;
  dst[3] = Interp(abc, bcd, t);
  dst[4] = bcd;
  dst[5] = cd;
  dst[6] = end;
}

void hsCubic::QuadToCubic(const hsPoint src[3], hsPoint dst[4]) {
  const hsPoint start = src[0], control = src[1], end = src[2];
  dst[0] = start;
  dst[1] = Interp(start, control, kTwoThirds);
  dst[2] = Interp(end, control, kTwoThirds);
  dst[3] = end;
}

int hsCubic::FindValidRatio(int32_t numer, int32_t denom, hsFixed* t) {
  if (numer < 0) {
    numer = hsWrapNeg(numer);
    denom = hsWrapNeg(denom);
  }
  if (denom <= numer || numer == 0) return 0;
  const hsFixed ratio = hsFixDiv(numer, denom);
  if (ratio < 1 || ratio > 0xFFFF) return 0;
  *t = ratio;
  return 1;
}

int hsCubic::FindQuadExtrema(hsFixed a, hsFixed b, hsFixed c, hsFixed* t) {
  return FindValidRatio(hsWrapSub(a, b), hsWrapSecondDifference(a, b, c), t);
}

int hsCubic::FindCubicExtrema(hsFixed a, hsFixed b, hsFixed c, hsFixed d, hsFixed t[2]) {
  if ((a <= b && b <= c && c <= d) || (a >= b && b >= c && c >= d)) return 0;
  const uint32_t ua = uint32_t(a), ub = uint32_t(b), uc = uint32_t(c), ud = uint32_t(d);
  return SolveQuadratic(int32_t(ua + 3 * (uc - ub) - ud), int32_t(2 * (2 * ub - ua - uc)), int32_t(ua - ub), t);
}

int hsCubic::SolveQuadratic(int32_t A, int32_t B, int32_t C, hsFixed t[2]) {
  if (A == 0) return FindValidRatio(hsWrapNeg(C), B, t);
  const hsWide discriminant = hsWide().Mul(B, B).Sub(hsWide().Mul(A, C).ShiftLeft(2));
  if (discriminant.IsNeg()) return 0;
  const int32_t R = discriminant.Sqrt();
  if (R == 0) return FindValidRatio(hsWrapNeg(B), hsWrapShl(A, 1), t);
  const int32_t Q = hsWrapNeg(B >= 0 ? hsWrapAdd(B, R) : hsWrapSub(B, R)) >> 1;
  if (Q == 0) return 0;
  int count = FindValidRatio(Q, A, &t[0]);
  count += FindValidRatio(C, Q, &t[count]);
  if (count < 2) return count;
  if (t[0] == t[1]) return 1;
  if (t[0] > t[1]) std::swap(t[0], t[1]);
  return 2;
}

bool hsCubic::ChopQuadAtYExtrema(const hsPoint src[3], hsPoint dst[3]) { return ChopQuadFlat<&hsPoint::fY>(src, dst); }
bool hsCubic::ChopQuadAtXExtrema(const hsPoint src[3], hsPoint dst[3]) { return ChopQuadFlat<&hsPoint::fX>(src, dst); }
int hsCubic::ChopCubicAtYExtrema(const hsPoint src[4], hsPoint dst[8]) { return ChopCubicFlat<&hsPoint::fY>(src, dst); }
int hsCubic::ChopCubicAtXExtrema(const hsPoint src[4], hsPoint dst[8]) { return ChopCubicFlat<&hsPoint::fX>(src, dst); }
