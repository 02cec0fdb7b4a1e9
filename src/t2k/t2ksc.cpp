#include "t2k/t2ksc.h"

#include <algorithm>

#include "t2k/crossings.h"
#include "t2k/t2kpaint.h"

namespace {

// Coordinates within this leave room for oversampling.
constexpr int32_t kCoordinateLimit = 1 << 24;
// A shape whose points spread further than this has no bitmap, whatever its curves do.
constexpr int32_t kSpreadLimit = 2 * kMaxBitmapSide * 64;

CrossingBounds PointBounds(const GlyphClass& glyph) {
  CrossingBounds b{glyph.x[0], glyph.y[0], glyph.x[0], glyph.y[0]};
  for (int i = 1; i < glyph.pointCount; ++i) {
    b.xmin = std::min(b.xmin, glyph.x[i]);
    b.xmax = std::max(b.xmax, glyph.x[i]);
    b.ymin = std::min(b.ymin, glyph.y[i]);
    b.ymax = std::max(b.ymax, glyph.y[i]);
  }
  return b;
}

bool IsTooLarge(const CrossingBounds& b) {
  const auto outside = [](int32_t v) { return v > kCoordinateLimit || v < -kCoordinateLimit; };
  if (outside(b.xmin) || outside(b.ymin) || outside(b.xmax) || outside(b.ymax)) return true;
  return b.xmax - b.xmin > kSpreadLimit || b.ymax - b.ymin > kSpreadLimit;
}

tsiScanConv BoundsInPixels(const CrossingBounds& b) {
  tsiScanConv sc{};
  sc.left = b.xmin >> 6;
  sc.bottom = b.ymin >> 6;
  sc.right = (b.xmax >> 6) + 1;
  sc.top = (b.ymax >> 6) + 1;
  sc.xmin = b.xmin;
  sc.ymax = b.ymax;
  return sc;
}

}  // namespace

tsiScanConv ScanConvert(const GlyphClass& glyph, const ScanConvOptions& options) {
  if (glyph.pointCount < 1 || glyph.contourCount < 1) return {};
  const int oversample = std::max(options.greyLevel, 1);
  const CrossingBounds points = PointBounds(glyph);
  const auto rowBytesFor = [&](int width) { return options.greyLevel ? width : (width + 7) / 8; };
  const auto withoutBitmap = [&](tsiScanConv sc) {
    sc.rowBytes = rowBytesFor(sc.Width());
    return sc;
  };
  if (IsTooLarge(points)) return withoutBitmap(BoundsInPixels(points));

  const CrossingTable crossings(glyph, points, oversample, options.greyLevel == 0);
  if (crossings.Overflowed()) return withoutBitmap(BoundsInPixels(points));
  if (crossings.IsEmpty()) return {};
  CrossingBounds bounds = crossings.Bounds();
  for (int32_t* edge : {&bounds.xmin, &bounds.ymin, &bounds.xmax, &bounds.ymax}) *edge /= oversample;
  tsiScanConv sc = withoutBitmap(BoundsInPixels(bounds));
  if (options.boundsOnly || sc.Width() > kMaxBitmapSide || sc.Height() > kMaxBitmapSide) return sc;

  const auto bytes = uint32_t(sc.rowBytes * sc.Height());
  tsiBlock<uint8_t> bits(glyph.mem, bytes);
  sc.baseAddr = bits.get();
  if (options.greyLevel) {
    PaintGrey(sc, crossings, oversample);
    if (options.sharpen) SharpenGrey(sc);
  } else {
    std::memset(bits.get(), 0, bytes);
    PaintMono(sc, crossings, bounds);
  }
  bits.Release();
  return sc;
}
