#include "gfx/foundation/hsmatrix.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hstrig.h"

namespace {

// Both sums wrap.
inline int32_t Sum(int32_t a, int32_t b, int32_t c) { return int32_t(uint32_t(a) + uint32_t(b) + uint32_t(c)); }
inline int32_t FixCross(hsFixed a, hsFixed b, hsFixed c, hsFixed d) {
  return hsWrapSub(hsFixMul(a, b), hsFixMul(c, d));
}
inline int32_t FracCross(int32_t a, int32_t b, int32_t c, int32_t d) {
  return hsWrapSub(hsFracMul(a, b), hsFracMul(c, d));
}

}  // namespace

uint32_t hsMatrix::GetType() const {
  uint32_t type = kIdentityType;
  if (fMap[0][2] != 0 || fMap[1][2] != 0) type |= kTranslateType;
  if (fMap[0][0] != kFixed1 || fMap[1][1] != kFixed1) type |= kScaleType;
  if (fMap[0][1] != 0 || fMap[1][0] != 0) type |= kAffineType;
  if (HasPerspective()) type |= kPerspectiveType;
  return type;
}

void hsMatrix::SetTranslate(hsFixed dx, hsFixed dy) {
  Reset();
  fMap[0][2] = dx;
  fMap[1][2] = dy;
}

void hsMatrix::SetScale(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py) {
  SetTranslate(hsWrapSub(px, hsFixMul(px, sx)), hsWrapSub(py, hsFixMul(py, sy)));
  fMap[0][0] = sx;
  fMap[1][1] = sy;
}

void hsMatrix::SetRotate(hsFixed degrees, hsFixed px, hsFixed py) {
  const hsFixed radians = hsFixMul(degrees, kRadiansPerDegree);
  SetSinCos(hsFixedSin(radians), hsFixedCos(radians), px, py);
}

void hsMatrix::SetSinCos(hsFixed sin, hsFixed cos, hsFixed px, hsFixed py) {
  SetTranslate(hsWrapAdd(FixCross(sin, py, cos, px), px),
               Sum(py, hsWrapNeg(hsFixMul(sin, px)), hsWrapNeg(hsFixMul(cos, py))));
  fMap[0][0] = fMap[1][1] = cos;
  fMap[0][1] = hsWrapNeg(sin);
  fMap[1][0] = sin;
}

void hsMatrix::SetSkew(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py) {
  SetTranslate(hsWrapNeg(hsFixMul(sx, py)), hsWrapNeg(hsFixMul(sy, px)));
  fMap[0][1] = sx;
  fMap[1][0] = sy;
}

void hsMatrix::SetRectToRect(const hsRect* src, const hsRect* dst) {
  SetScale(hsFixDiv(dst->Width(), src->Width()), hsFixDiv(dst->Height(), src->Height()), src->fLeft, src->fTop);
  PostTranslate(hsWrapSub(dst->fLeft, src->fLeft), hsWrapSub(dst->fTop, src->fTop));
}

void hsMatrix::PostTranslate(hsFixed dx, hsFixed dy) {
  if (fMap[2][0] == 0 && fMap[2][1] == 0) {
    fMap[0][2] = hsWrapAdd(fMap[0][2], dx);
    fMap[1][2] = hsWrapAdd(fMap[1][2], dy);
    return;
  }
  for (int column = 0; column < 3; ++column) {
    fMap[0][column] = hsWrapAdd(fMap[0][column], hsFracMul(dx, fMap[2][column]));
    fMap[1][column] = hsWrapAdd(fMap[1][column], hsFracMul(dy, fMap[2][column]));
  }
}

void hsMatrix::PreScale(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py) {
  hsMatrix first;
  first.SetScale(sx, sy, px, py);
  PreConcat(first);
}

void hsMatrix::PreRotate(hsFixed degrees, hsFixed px, hsFixed py) {
  hsMatrix first;
  first.SetRotate(degrees, px, py);
  PreConcat(first);
}

void hsMatrix::PreSinCos(hsFixed sin, hsFixed cos, hsFixed px, hsFixed py) {
  hsMatrix first;
  first.SetSinCos(sin, cos, px, py);
  PreConcat(first);
}

void hsMatrix::PreSkew(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py) {
  hsMatrix first;
  first.SetSkew(sx, sy, px, py);
  PreConcat(first);
}

void hsMatrix::SetConcat(const hsMatrix& a, const hsMatrix& b) {
  const uint32_t aType = a.GetType(), bType = b.GetType();
  if (aType == kIdentityType) {
    *this = b;
    return;
  }
  if (bType == kIdentityType) {
    *this = a;
    return;
  }
  hsMatrix product;
  for (int row = 0; row < 2; ++row)
    for (int column = 0; column < 3; ++column)
      product.fMap[row][column] =
          Sum(hsFixMul(a.fMap[row][0], b.fMap[0][column]), hsFixMul(a.fMap[row][1], b.fMap[1][column]),
              hsFracMul(a.fMap[row][2], b.fMap[2][column]));
  if ((aType | bType) & kPerspectiveType) {
    // Summed as fixed, which is what the products of a fract with the upper rows are, and brought back to fract.
    for (int column = 0; column < 3; ++column)
      product.fMap[2][column] =
          hsWrapShl(Sum(hsFracMul(a.fMap[2][0], b.fMap[0][column]), hsFracMul(a.fMap[2][1], b.fMap[1][column]),
                        hsFracMul(a.fMap[2][2], b.fMap[2][column]) >> 14),
                    14);
  }
  *this = product;
}

hsFixed hsMatrix::Determinant() const {
  const auto& m = fMap;
  const hsFixed flat = FixCross(m[0][0], m[1][1], m[0][1], m[1][0]);
  if (!HasPerspective()) return flat;
  const hsFixed p0 = m[2][0], p1 = m[2][1];
  return Sum(flat, FixCross(hsFracMul(m[0][1], m[1][2]), p0, hsFracMul(m[0][2], m[1][1]), p0),
             FixCross(hsFracMul(m[0][2], m[1][0]), p1, hsFracMul(m[0][0], m[1][2]), p1));
}

bool hsMatrix::Invert(hsMatrix* result) const {
  const uint32_t type = GetType();
  hsMatrix inverse;
  if (type < kScaleType) {
    inverse.SetTranslate(hsWrapNeg(fMap[0][2]), hsWrapNeg(fMap[1][2]));
  } else if (type < kAffineType) {
    for (int i = 0; i < 2; ++i) {
      inverse.fMap[i][i] = hsFixDiv(kFixed1, fMap[i][i]);
      inverse.fMap[i][2] = hsWrapNeg(hsFixMul(fMap[i][2], inverse.fMap[i][i]));
    }
  } else {
    const hsFixed determinant = Determinant();
    if (determinant == 0) return false;
    const hsFixed scale = hsFixDiv(kFixed1, determinant);
    inverse = type & kPerspectiveType ? PerspectiveInverse(scale) : AffineInverse(scale);
  }
  *result = inverse;
  return true;
}

hsMatrix hsMatrix::AffineInverse(hsFixed scale) const {
  const auto& m = fMap;
  hsMatrix inverse;
  inverse.fMap[0][0] = hsFixMul(m[1][1], scale);
  inverse.fMap[0][1] = hsFixMul(hsWrapNeg(m[0][1]), scale);
  inverse.fMap[0][2] = hsFixMul(FixCross(m[0][1], m[1][2], m[0][2], m[1][1]), scale);
  inverse.fMap[1][0] = hsFixMul(hsWrapNeg(m[1][0]), scale);
  inverse.fMap[1][1] = hsFixMul(m[0][0], scale);
  inverse.fMap[1][2] = hsFixMul(FixCross(m[0][2], m[1][0], m[0][0], m[1][2]), scale);
  return inverse;
}

hsMatrix hsMatrix::PerspectiveInverse(hsFixed scale) const {
  const auto& m = fMap;
  hsMatrix inverse;
  inverse.fMap[0][0] = hsFixMul(FracCross(m[1][1], m[2][2], m[1][2], m[2][1]), scale);
  inverse.fMap[0][1] = hsFixMul(FracCross(m[0][2], m[2][1], m[0][1], m[2][2]), scale);
  inverse.fMap[0][2] = hsFixMul(FixCross(m[0][1], m[1][2], m[0][2], m[1][1]), scale);
  inverse.fMap[1][0] = hsFixMul(FracCross(m[1][2], m[2][0], m[1][0], m[2][2]), scale);
  inverse.fMap[1][1] = hsFixMul(FracCross(m[0][0], m[2][2], m[0][2], m[2][0]), scale);
  inverse.fMap[1][2] = hsFixMul(FixCross(m[0][2], m[1][0], m[0][0], m[1][2]), scale);
  inverse.fMap[2][0] = hsWrapShl(hsFixMul(FracCross(m[1][0], m[2][1], m[1][1], m[2][0]), scale), 14);
  inverse.fMap[2][1] = hsWrapShl(hsFixMul(FracCross(m[0][1], m[2][0], m[0][0], m[2][1]), scale), 14);
  inverse.fMap[2][2] = hsWrapShl(hsFixMul(FixCross(m[0][0], m[1][1], m[0][1], m[1][0]), scale), 14);
  return inverse;
}

void hsMatrix::MapPoints(int32_t count, const hsPoint src[], hsPoint dst[], uint32_t type) const {
  if (count <= 0) return;
  if (!hsAssert(src && dst, "need src and dst points")) return;
  const uint32_t actual = GetType();
  hsAssert(type == kUnknownType || type == actual, "bad matType");

  // Copied out, so that the stores to dst need not count as changes of the matrix.
  const hsFixed sx = fMap[0][0], kx = fMap[0][1], tx = fMap[0][2];
  const hsFixed ky = fMap[1][0], sy = fMap[1][1], ty = fMap[1][2];
  if (actual & kPerspectiveType) {
    const hsFract p0 = fMap[2][0], p1 = fMap[2][1];
    const hsFixed w = fMap[2][2] >> 14;
    for (int32_t i = 0; i < count; ++i) {
      const hsPoint p = src[i];
      const hsFixed z = Sum(hsFracMul(p.fX, p0), hsFracMul(p.fY, p1), w);
      if (z == 0) continue;
      const hsFixed x = Sum(hsFixMul(sx, p.fX), hsFixMul(kx, p.fY), tx);
      const hsFixed y = Sum(hsFixMul(ky, p.fX), hsFixMul(sy, p.fY), ty);
      dst[i] = {hsFixDiv(x, z), hsFixDiv(y, z)};
    }
  } else if (actual & kAffineType) {
    for (int32_t i = 0; i < count; ++i) {
      const hsPoint p = src[i];
      dst[i] = {Sum(hsFixMul(sx, p.fX), hsFixMul(kx, p.fY), tx), Sum(hsFixMul(ky, p.fX), hsFixMul(sy, p.fY), ty)};
    }
  } else if (actual & kScaleType) {
    for (int32_t i = 0; i < count; ++i) {
      const hsPoint p = src[i];
      dst[i] = {hsWrapAdd(hsFixMul(sx, p.fX), tx), hsWrapAdd(hsFixMul(sy, p.fY), ty)};
    }
  } else if (actual & kTranslateType) {
    for (int32_t i = 0; i < count; ++i) dst[i] = {hsWrapAdd(src[i].fX, tx), hsWrapAdd(src[i].fY, ty)};
  } else if (src != dst) {
    std::copy_n(src, count, dst);
  }
}

void hsMatrix::MapVectors(int32_t count, const hsPoint src[], hsPoint dst[], uint32_t type) const {
  if (HasPerspective()) {
    for (int32_t i = 0; i < count; ++i) {
      hsPoint ends[2] = {{0, 0}, src[i]};
      MapPoints(2, ends, ends, type);
      dst[i] = {hsWrapSub(ends[1].fX, ends[0].fX), hsWrapSub(ends[1].fY, ends[0].fY)};
    }
    return;
  }
  hsMatrix still = *this;
  still.fMap[0][2] = still.fMap[1][2] = 0;
  still.MapPoints(count, src, dst, type & ~uint32_t{kTranslateType});
}

void hsMatrix::MapRect(const hsRect* src, hsRect* dst, uint32_t type) const {
  if (!hsAssert(src && dst, "need src and dst rects")) return;
  const uint32_t actual = GetType();
  hsAssert(type == kUnknownType || type == actual, "bad matType");
  if (actual >= kAffineType) {
    hsPoint quad[4];
    src->ToQuad(quad);
    MapPoints(4, quad, quad, actual);
    dst->Set(4, quad);
    return;
  }
  const hsFixed sx = fMap[0][0], tx = fMap[0][2], sy = fMap[1][1], ty = fMap[1][2];
  hsRect mapped{hsWrapAdd(hsFixMul(sx, src->fLeft), tx), hsWrapAdd(hsFixMul(sy, src->fTop), ty),
                hsWrapAdd(hsFixMul(sx, src->fRight), tx), hsWrapAdd(hsFixMul(sy, src->fBottom), ty)};
  if (sx < 0) std::swap(mapped.fLeft, mapped.fRight);
  if (sy < 0) std::swap(mapped.fTop, mapped.fBottom);
  *dst = mapped;
}
