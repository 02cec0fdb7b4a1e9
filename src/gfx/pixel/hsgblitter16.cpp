#include "gfx/pixel/hsgblitter16.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/fillrow.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/lcdmask.h"
#include "gfx/pixel/lerp.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/pixel/storebits.h"
#include "gfx/pixel/wide16.h"
#include "platform/cpu.h"

#ifdef VISTREL_AVX2
#include <immintrin.h>
#endif

namespace {

constexpr int32_t kLongSpan = 64;  // pixels, from which on it pays to ask for wider stores

uint16_t PixelOf(const hsGColor& c) { return hsPack16(c.fR >> 10, c.fG >> 11, c.fB >> 11); }

uint16_t LerpPixel(uint32_t r6, uint32_t g5, uint32_t b5, uint32_t d, uint32_t scale) {
  return hsPack16(Lerp(r6, hsRed6(d), scale), Lerp(g5, hsGreen5(d), scale), Lerp(b5, hsBlue5(d), scale));
}

// A colour that eight pixels at a time go toward, each channel in 16 bits: a product is at most 63 * 256. Red is taken
// at five bits and doubled, so it loses its low bit here, though not under bit masks.
struct WideColor {
  explicit WideColor(const hsGColor& c)
      : r6(hsWide16{} + uint16_t((c.fR >> 11) * 2u)),
        g5(hsWide16{} + uint16_t(c.fG >> 11)),
        b5(hsWide16{} + uint16_t(c.fB >> 11)),
        alphaScale(hsWide16{} + uint16_t((c.fA >> 8) + 1u)) {}

  static hsWide16 LerpWide(hsWide16 src, hsWide16 dst, hsWide16 scale) {
    using Signed = int16_t __attribute__((vector_size(16)));
    return dst + hsWide16(Signed((src - dst) * scale) >> 8);
  }
  // Of eight pixels, by scales 0 to 256.
  hsWide16 Blended(hsWide16 d, hsWide16 scale) const {
    return LerpWide(r6, d >> 10, scale) << 10 | LerpWide(g5, d >> 5 & 31, scale) << 5 | LerpWide(b5, d & 31, scale);
  }
  hsWide16 Covered(hsWide16 d, hsWide8 coverage) const {
    const hsWide16 v = __builtin_convertvector(coverage, hsWide16) * alphaScale >> 8;
    return Blended(d, v - hsWide16(v != 0));  // one more, but for none
  }
  void BlendCovered(uint16_t* pixels, hsWide8 coverage) const {
    hsStoreWide(pixels, Covered(hsLoadWide(pixels), coverage));
  }

  hsWide16 r6, g5, b5, alphaScale;
};

bool AreFull32(const uint8_t* coverage) {
  uint64_t eights[4];
  std::memcpy(eights, coverage, sizeof eights);
  return ((eights[0] & eights[1]) & (eights[2] & eights[3])) == UINT64_MAX;
}

// A row of at least eight pixels; blended() gives eight from where they lie. The last eight may lie over others that
// are blended before them, so they are taken first and stored last.
template <class Blended>
void BlendWide(uint16_t* pixels, int32_t width, Blended blended) {
  uint16_t* const last = pixels + width - kWide16;
  const hsWide16 end = blended(last);
  for (; pixels < last; pixels += kWide16) hsStoreWide(pixels, blended(pixels));
  hsStoreWide(last, end);
}

#ifdef VISTREL_AVX2

using Wider8 = uint8_t __attribute__((vector_size(16)));

constexpr int32_t WholeWider(int32_t width) { return (width + kWider16 - 1) & -kWider16; }

// WideColor for sixteen pixels at a time.
struct WiderColor {
  VISTREL_AVX2 explicit WiderColor(const hsGColor& c)
      : r6(hsWider16{} + uint16_t((c.fR >> 11) * 2u)),
        g5(hsWider16{} + uint16_t(c.fG >> 11)),
        b5(hsWider16{} + uint16_t(c.fB >> 11)),
        alphaScale(hsWider16{} + uint16_t((c.fA >> 8) + 1u)) {}

  VISTREL_AVX2 static hsWider16 Lerp(hsWider16 src, hsWider16 dst, hsWider16 scale) {
    using Signed = int16_t __attribute__((vector_size(32)));
    return dst + hsWider16(Signed((src - dst) * scale) >> 8);
  }
  VISTREL_AVX2 hsWider16 Covered(const uint16_t* pixels, Wider8 coverage) const {
    const hsWider16 v = hsWider16(_mm256_cvtepu8_epi16(__m128i(coverage))) * alphaScale >> 8,
                    scale = v - hsWider16(v != 0);
    hsWider16 d;
    std::memcpy(&d, pixels, sizeof d);
    return Lerp(r6, d >> 10, scale) << 10 | Lerp(g5, d >> 5 & 31, scale) << 5 | Lerp(b5, d & 31, scale);
  }
  VISTREL_AVX2 void BlendCovered(uint16_t* pixels, Wider8 coverage) const {
    hsStoreWider(pixels, Covered(pixels, coverage));
  }

  hsWider16 r6, g5, b5, alphaScale;
};

VISTREL_AVX2 inline bool AreFull32ByAvx2(const uint8_t* coverage) {
  return _mm256_testc_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(coverage)), _mm256_set1_epi8(-1));
}

// A row of sixteen pixels or more. Rows of shapes are mostly nothing, or the colour itself, with a little between. The
// last sixteen are taken first, as in BlendWide.
VISTREL_AVX2 void CoverRowByAvx2(const hsGColor& color, uint16_t* pixels, int32_t width, const uint8_t* coverage) {
  const WiderColor wider(color);
  const bool isOpaque = color.fA >> 8 == 0xFF;
  const hsWider16 full = wider.r6 << 10 | wider.g5 << 5 | wider.b5;
  uint16_t* const last = pixels + width - kWider16;
  Wider8 some;
  std::memcpy(&some, coverage + width - kWider16, sizeof some);
  const hsWider16 end = wider.Covered(last, some);
  for (; pixels < last; pixels += kWider16, coverage += kWider16) {
    std::memcpy(&some, coverage, sizeof some);
    if (_mm_testz_si128(__m128i(some), __m128i(some))) continue;
    if (!isOpaque || !_mm_test_all_ones(__m128i(some))) {
      wider.BlendCovered(pixels, some);
      continue;
    }
    hsStoreWider(pixels, full);
    for (; last - pixels > 2 * kWider16 && AreFull32ByAvx2(coverage + kWider16);
         pixels += 2 * kWider16, coverage += 2 * kWider16) {
      hsStoreWider(pixels + kWider16, full);
      hsStoreWider(pixels + 2 * kWider16, full);
    }
  }
  hsStoreWider(last, end);
}

constexpr Wider8 kWiderLanes = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

// The bytes from `from` on that lie before end, then any. At least sixteen lie before end.
VISTREL_AVX2 inline Wider8 LoadBefore(const uint8_t* end, const uint8_t* from) {
  const ptrdiff_t missing = std::max<ptrdiff_t>(kWider16 - (end - from), 0);
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from - missing));
  return Wider8(_mm_shuffle_epi8(bytes, __m128i(kWiderLanes + uint8_t(missing))));
}

// A mask of sixteen bytes or more. Pixels of rows can be written up to the next whole sixteen.
VISTREL_AVX2 void CoverByAvx2(const hsGColor& color, uint16_t* pixels, uint32_t pixelRowBytes, const hsGMask& mask) {
  const WiderColor wider(color);
  const int32_t width = mask.fBounds.Width(), whole = (width - 1) / kWider16 * kWider16;
  const auto inLast = Wider8(kWiderLanes < uint8_t(width - whole));
  const uint8_t* coverage = mask.fImage;
  const uint8_t* const end = coverage + mask.PlaneSize();
  for (int32_t height = mask.fBounds.Height(); height > 0; --height, coverage += mask.fRowBytes) {
    Wider8 some;
    for (int32_t x = 0; x < whole; x += kWider16) {
      std::memcpy(&some, coverage + x, sizeof some);
      wider.BlendCovered(pixels + x, some);
    }
    wider.BlendCovered(pixels + whole, LoadBefore(end, coverage + whole) & inLast);
    pixels = reinterpret_cast<uint16_t*>(reinterpret_cast<uint8_t*>(pixels) + pixelRowBytes);
  }
}

#endif

// What is left of a 5-bit channel (in bits 9-5 of the index) under a coverage of 0 to 31.
constexpr std::array<uint8_t, 1024> kDarkened = [] {
  std::array<uint8_t, 1024> t{};
  for (uint32_t i = 0; i < 1024; ++i) t[i] = uint8_t(((i >> 5) * (32 - (i & 31))) >> 5);
  return t;
}();

}  // namespace

// ---- hsGColorBlitter16Opaque

hsGColorBlitter16Opaque::hsGColorBlitter16Opaque(const hsGBitmap& device, const hsGColor& color)
    : hsGDeviceBlitter(device), fPixel(PixelOf(color)) {
  (void)hsAssert(color.fA >> 8 == 0xFF, "bad color.fA");
}

void hsGColorBlitter16Opaque::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad blit count")) return;
  if (width < kLongSpan) return hsFillRow16(Pixels<uint16_t>(y, x), width, fPixel);
  hsFillRows16(Pixels<uint16_t>(y, x), fDevice.fRowBytes, width, 1, fPixel);
}

void hsGColorBlitter16Opaque::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0, "bad blit width")) return;
  if (!hsAssert(height > 0, "bad blit height")) return;
  hsFillRows16(Pixels<uint16_t>(y, x), fDevice.fRowBytes, width, height, fPixel);
}

const hsGBitmap* hsGColorBlitter16Opaque::GetDirectTarget(uint32_t* value) {
  *value = fPixel;
  return &fDevice;
}

void hsGColorBlitter16Opaque::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType == kMask_Bit, "bad masktype")) return;
  hsStoreBits(fDevice, mask, clip, fPixel);
}

bool hsGColorBlitter16Opaque::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (bitmap.fPixelSize != 16 || attr.Color().fA >> 8 != 0xFF || !hsIsPlainPaint(attr) || maskType != kMask_Bit)
    return false;
  fDevice = bitmap;
  fPixel = PixelOf(attr.Color());
  return true;
}

// ---- hsGColorBlitter16

hsGColorBlitter16::hsGColorBlitter16(const hsGBitmap& device, const hsGColor& color)
    : hsGDeviceBlitter(device), fColor(color) {}

void hsGColorBlitter16::BlendSpan(uint16_t* pixels, int32_t width) const {
  if (width >= kWide16) {
    const WideColor wide(fColor);
    return BlendWide(pixels, width, [&](const uint16_t* p) { return wide.Blended(hsLoadWide(p), wide.alphaScale); });
  }
  const uint32_t scale = (fColor.fA >> 8) + 1u;
  const uint32_t r5 = fColor.fR >> 11, g5 = fColor.fG >> 11, b5 = fColor.fB >> 11;
  for (; width > 0; --width, ++pixels) *pixels = LerpPixel(r5 * 2, g5, b5, *pixels, scale);
}

void hsGColorBlitter16::BlendCovered(uint16_t* pixels, int32_t width, const uint8_t* coverage) const {
#ifdef VISTREL_AVX2
  if (width >= kWider16 && hasAvx2()) return CoverRowByAvx2(fColor, pixels, width, coverage);
#endif
  BlendCoveredPlain(pixels, width, coverage);
}

void hsGColorBlitter16::BlendCoveredPlain(uint16_t* pixels, int32_t width, const uint8_t* coverage) const {
  const uint32_t scale = (fColor.fA >> 8) + 1u;
  if (width >= kWide16) {
    const WideColor wide(fColor);
    const hsWide16 full = wide.r6 << 10 | wide.g5 << 5 | wide.b5;
    uint16_t* const last = pixels + width - kWide16;
    const hsWide16 end = wide.Covered(hsLoadWide(last), hsLoadWide(coverage + width - kWide16));
    for (; pixels < last; pixels += kWide16, coverage += kWide16) {
      uint64_t eight;
      std::memcpy(&eight, coverage, sizeof eight);
      if (eight == 0) continue;
      if (eight != UINT64_MAX || scale != 256) {
        wide.BlendCovered(pixels, hsLoadWide(coverage));
        continue;
      }
      hsStoreWide(pixels, full);
      for (; last - pixels > 4 * kWide16 && AreFull32(coverage + kWide16);
           pixels += 4 * kWide16, coverage += 4 * kWide16)
        for (int32_t i = 1; i <= 4; ++i) hsStoreWide(pixels + i * kWide16, full);
    }
    return hsStoreWide(last, end);
  }
  const uint32_t r5 = fColor.fR >> 11, g5 = fColor.fG >> 11, b5 = fColor.fB >> 11;
  for (int32_t i = 0; i < width; ++i) {
    const uint32_t v = (coverage[i] * scale) >> 8;
    if (v != 0) pixels[i] = LerpPixel(r5 * 2, g5, b5, pixels[i], v + 1);
  }
}

void hsGColorBlitter16::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad blit count")) return;
  if (fAlpha) {
    BlendCovered(Pixels<uint16_t>(y, x), width, fAlpha);
  } else {
    BlendSpan(Pixels<uint16_t>(y, x), width);
  }
}

void hsGColorBlitter16::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0 && height > 0, "bad blit size")) return;
  if (!hsAssert(!fAlpha, "GetAlpha() != nil in BlitTile")) return;
  for (; height > 0; --height) BlendSpan(Pixels<uint16_t>(y++, x), width);
}

void hsGColorBlitter16::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType <= kMask_Alpha, "bad masktype")) return;
  if (mask.fMaskType == kMask_Alpha) return BlitCoverage(mask, clip);
  if (!hsAssert(!clip || clip->Bounds().Intersects(mask.fBounds), "mask doesn't intersect clip")) return;
  const uint32_t scale = (fColor.fA >> 8) + 1u;
  const uint32_t r6 = fColor.fR >> 10, g5 = fColor.fG >> 11, b5 = fColor.fB >> 11;
  hsWalkBits(mask, clip, [=, this](int32_t y, int32_t x) {
    uint16_t* pixel = Pixels<uint16_t>(y, x);
    *pixel = LerpPixel(r6, g5, b5, *pixel, scale);
  });
}

// Glyphs are narrow: a row is mostly one or two times eight pixels, of which the last are not the glyph's own. They are
// written as they are.
void hsGColorBlitter16::BlitCoverage(const hsGMask& mask, const hsRegion* clip) const {
#ifdef VISTREL_AVX2
  const hsIntRect& bounds = mask.fBounds;
  if (hasAvx2() && !clip && !bounds.IsEmpty() && mask.fRowBytes >= bounds.Width() && mask.PlaneSize() >= kWider16 &&
      bounds.fLeft + WholeWider(bounds.Width()) <= int32_t(fDevice.fWidth))
    return CoverByAvx2(fColor, Pixels<uint16_t>(bounds.fTop, bounds.fLeft), fDevice.fRowBytes, mask);
#endif
  const WideColor wide(fColor);
  const uint8_t* const end = mask.fImage + mask.PlaneSize();
  hsWalkMaskSpans(mask.fBounds, clip, [&](int32_t y, int32_t x, int32_t width) {
    const uint8_t* coverage = mask.Row(y) + (x - mask.fBounds.fLeft);
    uint16_t* pixels = Pixels<uint16_t>(y, x);
    const int32_t wideWidth = (width + 7) & ~7;
    if (x + wideWidth > int32_t(fDevice.fWidth) || wideWidth > end - coverage)
      return BlendCovered(pixels, width, coverage);
    for (; width >= kWide16; width -= kWide16, pixels += kWide16, coverage += kWide16)
      wide.BlendCovered(pixels, hsLoadWide(coverage));
    if (width > 0) wide.BlendCovered(pixels, hsFirstOfWide8(hsLoadWide(coverage), width));
  });
}

void hsGColorBlitter16::BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset) {
  // Only the low five bits of red take part.
  hsBlitLCD<uint16_t>(fDevice, mask, clip, lcdOffset, [&](uint32_t d, uint32_t c0, uint32_t c1, uint32_t c2) {
    return hsPack16(kDarkened[(d >> 5 & 0x3E0) | c0], kDarkened[(d & 0x3E0) | c1], kDarkened[(d << 5 & 0x3E0) | c2]);
  });
}

bool hsGColorBlitter16::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (bitmap.fPixelSize != 16 || !hsIsPlainPaint(attr) || maskType == kMask_3D) return false;
  if (attr.Color().fA >> 8 == 0xFF && maskType == kMask_Bit) return false;
  fDevice = bitmap;
  fColor = attr.Color();
  return true;
}
