// Looking up single pixels of a source bitmap: tile rules, the bilinear weights, and the walk of a span through a
// source.
#pragma once

#include <algorithm>
#include <iterator>

#include "gfx/foundation/hsmatrix.h"
#include "gfx/pixel/hsgbitmap.h"

// ---- Tile rules: where a coordinate beyond the n pixels of an axis lands. kNoTexel is nowhere.

constexpr int32_t kNoTexel = -1;

struct hsTileClamp {
  static int32_t Map(int32_t v, int32_t n) { return std::clamp(v, 0, n - 1); }
};

struct hsTileRepeat {
  static int32_t Map(int32_t v, int32_t n) {
    if (uint32_t(v) < uint32_t(n)) return v;
    v %= n;
    return v < 0 ? v + n : v;
  }
};

struct hsTileMirror {
  static int32_t Map(int32_t v, int32_t n) {
    const int64_t period = int64_t{n} * 2;
    int64_t m = v % period;
    if (m < 0) m = -1 - m;
    return int32_t(m < n ? m : period - 1 - m);
  }
};

struct hsTileNone {
  static int32_t Map(int32_t v, int32_t n) { return uint32_t(v) < uint32_t(n) ? v : kNoTexel; }
};

// ---- Bilinear weights, in sixteenths, of the pixel, its right, lower and lower right neighbour. A row for each
// fy * 4 + fx, the upper two bits of either fraction.

constexpr uint8_t kBilerpWeights[16][4] = {
    {16, 0, 0, 0}, {12, 4, 0, 0}, {8, 8, 0, 0}, {4, 12, 0, 0},  //
    {12, 0, 4, 0}, {9, 3, 3, 1},  {6, 6, 2, 2}, {3, 9, 1, 3},   //
    {8, 0, 8, 0},  {6, 2, 6, 2},  {4, 4, 4, 4}, {2, 6, 2, 6},   //
    {4, 0, 12, 0}, {3, 1, 9, 3},  {2, 2, 6, 6}, {1, 3, 3, 9},
};
static_assert(std::all_of(std::begin(kBilerpWeights), std::end(kBilerpWeights),
                          [](const uint8_t (&w)[4]) { return w[0] + w[1] + w[2] + w[3] == 16; }),
              "bad table");

// All four channels, two in each product.
constexpr hsGColor32 hsBilerp(hsGColor32 p00, hsGColor32 p10, hsGColor32 p01, hsGColor32 p11, const uint8_t (&w)[4]) {
  constexpr uint32_t kLow = 0x00FF00FF;
  const uint32_t low = (p00 & kLow) * w[0] + (p10 & kLow) * w[1] + (p01 & kLow) * w[2] + (p11 & kLow) * w[3];
  const uint32_t high =
      (p00 >> 8 & kLow) * w[0] + (p10 >> 8 & kLow) * w[1] + (p01 >> 8 & kLow) * w[2] + (p11 >> 8 & kLow) * w[3];
  return (low >> 4 & kLow) | (high << 4 & ~kLow);
}

// The colour at (x, y), 16.16, whose pixel (ix, iy) lies in the source: a mix of up to four pixels, of which those
// beyond the last column and row are replaced by the last ones.
template <class Texels>
hsGColor32 hsFilteredTexel(const Texels& texels, hsFixed x, hsFixed y, int32_t ix, int32_t iy) {
  const int32_t nextX = ix + 1 < texels.width ? ix + 1 : ix;
  const int32_t nextY = iy + 1 < texels.height ? iy + 1 : iy;
  return hsBilerp(texels.At(ix, iy), texels.At(nextX, iy), texels.At(ix, nextY), texels.At(nextX, nextY),
                  kBilerpWeights[(y >> 14 & 3) * 4 + (x >> 14 & 3)]);
}

// ---- Sources. At returns the colour of a pixel inside, IsKey whether it counts as no pixel.

struct hsTexels {
  explicit hsTexels(const hsGBitmap& source)
      : image(static_cast<const uint8_t*>(source.fImage)),
        rowBytes(source.fRowBytes),
        width(int32_t(source.fWidth)),
        height(int32_t(source.fHeight)) {}

  // Whether there is anything to look up, in pixels of that many bits.
  static bool CanRead(const hsGBitmap& source, uint8_t bits) {
    return source.fPixelSize == bits && source.fImage && source.fWidth - 1 < uint32_t{INT32_MAX} &&
           source.fHeight - 1 < uint32_t{INT32_MAX};
  }

  const uint8_t* Row(int32_t y) const { return image + int64_t{y} * rowBytes; }

  const uint8_t* image;
  uint32_t rowBytes;
  int32_t width, height;
};

struct hsTexels32 : hsTexels {
  explicit hsTexels32(const hsGBitmap& source)
      : hsTexels(source), alpha(source.fConfig == hsGBitmap::kConfig_ARGB32 ? 0 : 0xFF000000) {}

  hsGColor32 At(int32_t x, int32_t y) const { return reinterpret_cast<const hsGColor32*>(Row(y))[x] | alpha; }
  static constexpr bool IsKey(int32_t, int32_t) { return false; }

  hsGColor32 alpha;  // of pixels that have none
};

struct hsTexelsIndex : hsTexels {
  explicit hsTexelsIndex(const hsGBitmap& source)
      : hsTexels(source),
        colors(source.fColorTable ? source.fColorTable->Colors() : kNoColors),
        key(source.fFlags & hsGBitmap::kHasTransparent ? source.fTransparentIndex : -1) {}

  hsGColor32 At(int32_t x, int32_t y) const { return colors[Row(y)[x]]; }
  bool IsKey(int32_t x, int32_t y) const { return Row(y)[x] == key; }

  static constexpr hsGColor32 kNoColors[hsGColorTable::kMaxCount] = {};
  const hsGColor32* colors;
  int32_t key;  // -1 for none
};

// ---- Spans

// The source position of a device pixel's corner.
inline hsPoint hsMapPixel(const hsMatrix& inverse, uint32_t type, int32_t x, int32_t y) {
  hsPoint point{hsIntToFixed(x), hsIntToFixed(y)};
  inverse.MapPoints(1, &point, &point, type);
  return point;
}

// put(i, x, y) for each of count pixels from (x, y) on, with the source positions of their corners plus offset. Only
// perspective needs each pixel mapped.
template <class Put>
void hsWalkSource(const hsMatrix& inverse, uint32_t type, int32_t y, int32_t x, int32_t count, hsFixed offset,
                  Put&& put) {
  if (type & hsMatrix::kPerspectiveType) {
    for (int32_t i = 0; i < count; ++i) {
      const hsPoint at = hsMapPixel(inverse, type, x + i, y);
      put(i, hsWrapAdd(at.fX, offset), hsWrapAdd(at.fY, offset));
    }
    return;
  }
  const hsPoint start = hsMapPixel(inverse, type, x, y);
  hsFixed atX = hsWrapAdd(start.fX, offset), atY = hsWrapAdd(start.fY, offset);
  for (int32_t i = 0; i < count; ++i) {
    put(i, atX, atY);
    atX = hsWrapAdd(atX, inverse.fMap[0][0]);
    atY = hsWrapAdd(atY, inverse.fMap[1][0]);
  }
}
