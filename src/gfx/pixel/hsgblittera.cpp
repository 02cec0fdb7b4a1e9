#include "gfx/pixel/hsgblittera.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/lerp.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/pixel/storebits.h"

// ---- hsGColorBlitterAOpaque

hsGColorBlitterAOpaque::hsGColorBlitterAOpaque(const hsGBitmap& device, const hsGColor& color)
    : hsGDeviceBlitter(device) {
  (void)hsAssert(device.fConfig == hsGBitmap::kConfig_Alpha8 && color.fA >> 8 == 0xFF, "bad device");
}

void hsGColorBlitterAOpaque::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad blit count")) return;
  std::memset(Pixels<uint8_t>(y, x), 0xFF, size_t(width));
}

void hsGColorBlitterAOpaque::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0, "bad blit width")) return;
  if (!hsAssert(height > 0, "bad blit height")) return;
  for (; height > 0; --height) std::memset(Pixels<uint8_t>(y++, x), 0xFF, size_t(width));
}

const hsGBitmap* hsGColorBlitterAOpaque::GetDirectTarget(uint32_t* value) {
  *value = 0xFF;
  return &fDevice;
}

void hsGColorBlitterAOpaque::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType == kMask_Bit, "bad masktype")) return;
  hsStoreBits(fDevice, mask, clip, uint8_t{0xFF});
}

bool hsGColorBlitterAOpaque::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (bitmap.fConfig != hsGBitmap::kConfig_Alpha8 || maskType != kMask_Bit || attr.Color().fA >> 8 != 0xFF ||
      !hsIsPlainPaint(attr))
    return false;
  fDevice = bitmap;
  return true;
}

// ---- hsGColorBlitterA

hsGColorBlitterA::hsGColorBlitterA(const hsGBitmap& device, const hsGColor& color)
    : hsGDeviceBlitter(device), fColorAlpha(uint8_t(color.fA >> 8)) {}

void hsGColorBlitterA::BlendSpan(uint8_t* pixels, int32_t width) const {
  const uint32_t u = 256u - fColorAlpha;
  for (int32_t i = 0; i < width; ++i) pixels[i] = uint8_t(fColorAlpha + ((pixels[i] * u) >> 8));
}

void hsGColorBlitterA::BlitH(int32_t y, int32_t x, int32_t width) {
  if (!hsAssert(width > 0, "bad blit count")) return;
  uint8_t* pixels = Pixels<uint8_t>(y, x);
  if (!fAlpha) return BlendSpan(pixels, width);
  for (int32_t i = 0; i < width; ++i) pixels[i] = uint8_t(Lerp(fColorAlpha, pixels[i], fAlpha[i] + 1u));
}

void hsGColorBlitterA::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!hsAssert(width > 0 && height > 0, "bad blit size")) return;
  if (!hsAssert(!fAlpha, "GetAlpha() != nil in BlitTile")) return;
  for (; height > 0; --height) BlendSpan(Pixels<uint8_t>(y++, x), width);
}

void hsGColorBlitterA::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (!hsAssert(mask.fMaskType <= kMask_Alpha, "bad masktype")) return;
  if (mask.fMaskType == kMask_Alpha) return hsGBlitter::BlitMask(mask, clip);
  if (!hsAssert(!clip || clip->Bounds().Intersects(mask.fBounds), "mask doesn't intersect clip")) return;
  hsWalkBits(mask, clip, [this](int32_t y, int32_t x) {
    uint8_t* pixel = Pixels<uint8_t>(y, x);
    *pixel = uint8_t(Lerp(fColorAlpha, *pixel, fColorAlpha + 1u));
  });
}

bool hsGColorBlitterA::Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) {
  if (bitmap.fConfig != hsGBitmap::kConfig_Alpha8 || !hsIsPlainPaint(attr)) return false;
  if (attr.Color().fA >> 8 == 0xFF && maskType == kMask_Bit) return false;
  fDevice = bitmap;
  fColorAlpha = uint8_t(attr.Color().fA >> 8);
  return true;
}
