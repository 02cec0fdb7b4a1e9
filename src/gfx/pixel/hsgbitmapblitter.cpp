#include "gfx/pixel/hsgbitmapblitter.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgxfermode.h"
#include "gfx/pixel/texels.h"

// ---- hsGIndex8Affine

hsGIndex8Affine::hsGIndex8Affine(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse)
    : hsGDeviceBlitter(device), fSource(source), fInverse(inverse) {
  (void)hsAssert(device.fConfig == hsGBitmap::kConfig_Index8, "bad dst bitmap");
  (void)hsAssert(source.fConfig == hsGBitmap::kConfig_Index8, "bad src bitmap");
  (void)hsAssert(hsGColorTable::Equal(device.fColorTable.get(), source.fColorTable.get()), "colortables don't match");
  (void)hsAssert(!(inverse.GetType() & hsMatrix::kPerspectiveType), "bad matrix");
}

void hsGIndex8Affine::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0 && height > 0, "bad dimensions")) return;
  const hsTexelsIndex texels(fSource);
  const auto& map = fInverse.fMap;
  hsPoint row = hsMapPixel(fInverse, hsMatrix::kUnknownType, x, y);
  row = {hsWrapAdd(row.fX, kFixedHalf), hsWrapAdd(row.fY, kFixedHalf)};
  for (; height > 0; --height, ++y) {
    hsPoint at = row;
    uint8_t* d = Pixels<uint8_t>(y, x);
    for (uint8_t* const end = d + width; d != end; ++d) {
      const int32_t ix = hsTileClamp::Map(at.fX >> 16, texels.width), iy = hsTileClamp::Map(at.fY >> 16, texels.height);
      const uint8_t index = texels.Row(iy)[ix];
      if (index != texels.key) *d = index;
      at = {hsWrapAdd(at.fX, map[0][0]), hsWrapAdd(at.fY, map[1][0])};
    }
    row = {hsWrapAdd(row.fX, map[0][1]), hsWrapAdd(row.fY, map[1][1])};
  }
}

// ---- 16 bits

namespace {

// A colour, faded by scale, over a pixel, in the pixel's own 6-5-5 domain.
inline void PutFaded(hsGColor32 c, uint32_t scale, uint16_t* pixel) {
  uint32_t a = hsColor32A(c), r6 = hsColor32R(c) >> 2, g5 = hsColor32G(c) >> 3, b5 = hsColor32B(c) >> 3;
  if (scale != 256) {
    a = (a * scale) >> 8;
    r6 = (r6 * scale) >> 8;
    g5 = (g5 * scale) >> 8;
    b5 = (b5 * scale) >> 8;
  }
  if (a == 0) return;
  if (a != 255) {
    const uint32_t d = *pixel, u = 256 - a;
    r6 += (hsRed6(d) * u) >> 8;
    g5 += (hsGreen5(d) * u) >> 8;
    b5 += (hsBlue5(d) * u) >> 8;
  }
  *pixel = hsPack16(r6, g5, b5);
}

}  // namespace

hsGBitmapBlitter16::hsGBitmapBlitter16(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse,
                                       uint32_t scale)
    : hsGDeviceBlitter(device), fSource(source), fInverse(inverse), fInverseType(inverse.GetType()), fScale(scale) {}

template <bool kFilter>
void hsGBitmapBlitter16::Draw(int32_t y, int32_t x, int32_t width) {
  const hsTexels32 texels(fSource);
  uint16_t* const pixels = Pixels<uint16_t>(y, x);
  const uint32_t scale = fScale;
  hsWalkSource(fInverse, fInverseType, y, x, width, kFilter ? 0 : kFixedHalf, [=](int32_t i, hsFixed atX, hsFixed atY) {
    const int32_t ix = hsTileClamp::Map(atX >> 16, texels.width), iy = hsTileClamp::Map(atY >> 16, texels.height);
    PutFaded(kFilter ? hsFilteredTexel(texels, atX, atY, ix, iy) : texels.At(ix, iy), scale, &pixels[i]);
  });
}

void hsGBitmapBlitterAffine16::BlitH(int32_t y, int32_t x, int32_t width) { Draw<false>(y, x, width); }

void hsGBitmapBlitterFilter16::BlitH(int32_t y, int32_t x, int32_t width) { Draw<true>(y, x, width); }

hsGBitmapBlitterPersp16::hsGBitmapBlitterPersp16(const hsGBitmap& device, const hsGBitmap& source,
                                                 const hsMatrix& inverse, uint32_t scale, bool filter)
    : hsGBitmapBlitter16(device, source, inverse, scale), fDoFilter(filter) {}

void hsGBitmapBlitterPersp16::BlitH(int32_t y, int32_t x, int32_t width) {
  if (fDoFilter) return Draw<true>(y, x, width);
  Draw<false>(y, x, width);
}

hsGBitmapBlitterXfer16::hsGBitmapBlitterXfer16(const hsGBitmap& device, const hsGBitmap& source,
                                               const hsMatrix& inverse, hsGXferMode* mode)
    : hsGBitmapBlitter16(device, source, inverse, 256), fXfer(hsShare(mode)) {
  fXfer->SetOpaque(source.fConfig != hsGBitmap::kConfig_ARGB32);
}

void hsGBitmapBlitterXfer16::BlitH(int32_t y, int32_t x, int32_t width) {
  const hsTexels32 texels(fSource);
  uint16_t* const pixels = Pixels<uint16_t>(y, x);
  hsWalkSource(fInverse, fInverseType, y, x, width, 0, [&](int32_t i, hsFixed atX, hsFixed atY) {
    const int32_t ix = hsTileNone::Map(atX >> 16, texels.width), iy = hsTileNone::Map(atY >> 16, texels.height);
    if (ix == kNoTexel || iy == kNoTexel) return;
    const hsGColor32 color = texels.At(ix, iy);
    fXfer->Xfer16(1, &color, &pixels[i], nullptr);
  });
}
