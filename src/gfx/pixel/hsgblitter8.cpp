#include "gfx/pixel/hsgblitter8.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/lcdmask.h"
#include "gfx/pixel/lerp.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/pixel/storebits.h"

hsGColor hsPaletteColor(const hsGBitmap& device, const hsGAttribute& attr) {
  const int32_t index = attr.ColorIndex();
  return index < 0 ? attr.Color() : hsWidenColor32(device.fColorTable->Colors()[index] | 0xFF000000);
}

// ---- hsGIndexBlitter

hsGIndexBlitter::hsGIndexBlitter(const hsGBitmap& device, const hsGAttribute& attr, int32_t colorIndex)
    : hsGDeviceBlitter(device),
      fIndex(colorIndex >= 0 ? uint8_t(colorIndex) : device.fColorTable->ColorToIndex(attr.Color())) {}

void hsGIndexBlitter::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad count")) return;
  std::memset(Pixels<uint8_t>(y, x), fIndex, size_t(width));
}

void hsGIndexBlitter::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0 && height > 0, "bad width,height")) return;
  uint8_t* row = Pixels<uint8_t>(y, x);
  for (; height > 0; --height, row += fDevice.fRowBytes) std::memset(row, fIndex, size_t(width));
}

const hsGBitmap* hsGIndexBlitter::GetDirectTarget(uint32_t* value) {
  *value = fIndex;
  return &fDevice;
}

void hsGIndexBlitter::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType == kMask_Bit, "bad masktype")) return;
  hsStoreBits(fDevice, mask, clip, fIndex);
}

bool hsGIndexBlitter::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  const int32_t index = attr.ColorIndex();
  const bool solid = index >= 0 || attr.Color().fA == 0xFFFF;
  if (bitmap.fConfig != hsGBitmap::kConfig_Index8 || !bitmap.fColorTable || !solid || !hsIsPlainPaint(attr) ||
      maskType != kMask_Bit)
    return false;
  fDevice = bitmap;
  fIndex = index >= 0 ? uint8_t(index) : bitmap.fColorTable->ColorToIndex(attr.Color());
  return true;
}

// ---- hsGColorBlitter8

hsGColorBlitter8::hsGColorBlitter8(const hsGBitmap& device, const hsGColor& color) : hsGDeviceBlitter(device) {
  SetColor(color);
}

void hsGColorBlitter8::SetColor(const hsGColor& color) {
  fColor = hsNarrowColor(color);
  fPremultiplied = hsPremultiply(color);
  fInverse = fDevice.fColorTable->GetInverseTable();
  fColors = fDevice.fColorTable->Colors();
}

// The index of the colour laid over that of `index` with scale 1 to 256.
inline uint8_t hsGColorBlitter8::Blended(uint8_t index, uint32_t scale) const {
  const hsGColor32 e = fColors[index];
  return fInverse[hsInverseCell(Lerp(hsColor32R(fColor), hsColor32R(e), scale),
                                Lerp(hsColor32G(fColor), hsColor32G(e), scale),
                                Lerp(hsColor32B(fColor), hsColor32B(e), scale))];
}

// Runs of one index are blended once.
void hsGColorBlitter8::BlendSpan(uint8_t* pixels, int32_t width) const {
  const uint32_t u = 256 - hsColor32A(fColor);
  int32_t seen = -1;
  uint8_t blended = 0;
  for (uint8_t* end = pixels + width; pixels != end; ++pixels) {
    if (*pixels != seen) {
      seen = *pixels;
      blended = fInverse[hsInverseCell(fPremultiplied + hsScaleColor32(fColors[seen], u))];
    }
    *pixels = blended;
  }
}

void hsGColorBlitter8::BlendCovered(uint8_t* pixels, int32_t width, const uint8_t* coverage) const {
  const uint32_t a = hsColor32A(fColor);
  const uint8_t own = fInverse[hsInverseCell(fColor)];
  int32_t seenIndex = -1, seenCoverage = -1;
  uint8_t blended = 0;
  for (int32_t i = 0; i < width; ++i) {
    const uint32_t c = coverage[i];
    if (c == 0) continue;
    if (c == 255 && a == 255) {
      pixels[i] = own;
      continue;
    }
    if (int32_t(c) != seenCoverage || pixels[i] != seenIndex) {
      seenCoverage = int32_t(c);
      seenIndex = pixels[i];
      blended = Blended(pixels[i], a == 255 ? c + 1 : ((c + 1) * (a + 1)) >> 8);
    }
    pixels[i] = blended;
  }
}

void hsGColorBlitter8::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad count")) return;
  if (fAlpha) {
    BlendCovered(Pixels<uint8_t>(y, x), width, fAlpha);
  } else {
    BlendSpan(Pixels<uint8_t>(y, x), width);
  }
}

void hsGColorBlitter8::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0 && height > 0, "bad blit size")) return;
  if (!hsAssert(!fAlpha, "GetAlpha() != nil in BlitTile")) return;
  for (; height > 0; --height) BlendSpan(Pixels<uint8_t>(y++, x), width);
}

void hsGColorBlitter8::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType <= kMask_Alpha, "bad masktype")) return;
  if (mask.fMaskType == kMask_Alpha) return hsGBlitter::BlitMask(mask, clip);
  if (!hsAssert(!clip || clip->Bounds().Intersects(mask.fBounds), "mask doesn't intersect clip")) return;
  const uint32_t scale = hsColor32A(fColor) + 1;
  hsWalkBits(mask, clip, [this, scale](int32_t y, int32_t x) {
    uint8_t* pixel = Pixels<uint8_t>(y, x);
    *pixel = Blended(*pixel, scale);
  });
}

void hsGColorBlitter8::BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset) {
  hsBlitLCD<uint8_t>(fDevice, mask, clip, lcdOffset, [this](uint8_t d, uint32_t c0, uint32_t c1, uint32_t c2) {
    const hsGColor32 e = fColors[d];
    return fInverse[hsInverseCell((hsColor32R(e) * (32 - c0)) >> 5, (hsColor32G(e) * (32 - c1)) >> 5,
                                  (hsColor32B(e) * (32 - c2)) >> 5)];
  });
}

bool hsGColorBlitter8::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (bitmap.fConfig != hsGBitmap::kConfig_Index8 || !bitmap.fColorTable || !hsIsPlainPaint(attr) ||
      maskType == kMask_3D)
    return false;
  const bool solid = attr.ColorIndex() >= 0 || attr.Color().fA >> 8 == 0xFF;
  if (solid && maskType == kMask_Bit) return false;
  fDevice = bitmap;
  SetColor(hsPaletteColor(bitmap, attr));
  return true;
}
