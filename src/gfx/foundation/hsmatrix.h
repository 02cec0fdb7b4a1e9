// A 3 by 3 map of points: two rows of fixed and a bottom row of fract.
//
// Points are columns: x' = fMap[0][0] x + fMap[0][1] y + fMap[0][2]. The bottom row, perspective and homogeneous
// scale, is 2.30 and has 0x40000000 for 1.0. What kind of map it is (GetType) is worked out each time, so callers with
// many small batches pass the type along. Products that overflow report.
#pragma once

#include "gfx/foundation/hsrect.h"

class hsMatrix {
 public:
  enum Type : uint32_t {
    kIdentityType = 0,
    kTranslateType = 1,    // a translation is not 0
    kScaleType = 2,        // a scale is not 1.0
    kAffineType = 4,       // a skew is not 0
    kPerspectiveType = 8,  // the bottom row is not 0, 0, 1.0
    kUnknownType = 128,    // for callers: work it out
  };

  int32_t fMap[3][3] = {{kFixed1, 0, 0}, {0, kFixed1, 0}, {0, 0, kFract1}};

  bool operator==(const hsMatrix&) const = default;
  uint32_t GetType() const;  // bits of Type

  void Reset() { *this = hsMatrix(); }
  void SetTranslate(hsFixed dx, hsFixed dy);
  void SetScale(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py);  // about (px, py), like the next three
  void SetRotate(hsFixed degrees, hsFixed px, hsFixed py);
  void SetSinCos(hsFixed sin, hsFixed cos, hsFixed px, hsFixed py);
  void SetSkew(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py);
  // src onto dst by scale and translation.
  void SetRectToRect(const hsRect* src, const hsRect* dst);
  // The map that takes count (0 to 4) points of src to those of dst: identity, translation, rotation with scale,
  // affine, perspective. False, and no change, for another count and for points that span nothing.
  bool SetPolyToPoly(const hsPoint src[], const hsPoint dst[], int32_t count);

  // Applied after this map.
  void PostTranslate(hsFixed dx, hsFixed dy);
  // Applied before this map.
  void PreScale(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py);
  void PreRotate(hsFixed degrees, hsFixed px, hsFixed py);
  void PreSinCos(hsFixed sin, hsFixed cos, hsFixed px, hsFixed py);
  void PreSkew(hsFixed sx, hsFixed sy, hsFixed px, hsFixed py);

  // This = a times b, so b is applied first. Either may be this.
  void SetConcat(const hsMatrix& a, const hsMatrix& b);

  // The homogeneous scale doesn't enter.
  hsFixed Determinant() const;
  // False, and no change of result, for a singular matrix. Scales alone are not looked at: a scale of 0 becomes
  // infinity. result may be this.
  bool Invert(hsMatrix* result) const;

  // src and dst may be the same array. A type other than kUnknownType must be the true one ("bad matType"). Under
  // perspective a point at infinity leaves its place in dst as it was.
  void MapPoints(int32_t count, const hsPoint src[], hsPoint dst[], uint32_t type = kUnknownType) const;
  // Without the translation.
  void MapVectors(int32_t count, const hsPoint src[], hsPoint dst[], uint32_t type = kUnknownType) const;
  // The bounds of the image of src.
  void MapRect(const hsRect* src, hsRect* dst, uint32_t type = kUnknownType) const;

 private:
  void PreConcat(const hsMatrix& first) { SetConcat(*this, first); }
  bool HasPerspective() const { return fMap[2][0] != 0 || fMap[2][1] != 0 || fMap[2][2] != kFract1; }
  hsMatrix AffineInverse(hsFixed inverseDeterminant) const;
  hsMatrix PerspectiveInverse(hsFixed inverseDeterminant) const;
};
