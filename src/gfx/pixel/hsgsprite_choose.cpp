#include "gfx/pixel/hsgsprite_choose.h"

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgsprite_members.h"

namespace {

// What a paint without any alpha draws, wherever it is asked to.
class hsGNullSprite : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;
  void BlitH(int32_t, int32_t, int32_t) override {}
  void BlitRect(int32_t, int32_t, int32_t, int32_t) override {}
  bool Retarget(const hsGBitmap&, int32_t, int32_t) override { return true; }

 protected:
  void DrawRow(const void*, void*, int32_t) override {}
};

// Coverage laid over coverage; the paint's alpha plays no part.
class hsGSpriteBlitterA : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint8_t*>(device);
    for (int32_t i = 0; i < width; ++i) d[i] = uint8_t(s[i] + d[i] - ((s[i] * (d[i] + 1u)) >> 8));
  }
};

class hsGSpriteXferA : public hsGXferSprite {
 public:
  using hsGXferSprite::hsGXferSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    fXfer->XferA(width, static_cast<const uint8_t*>(source), static_cast<uint8_t*>(device), nullptr);
  }
};

}  // namespace

hsGSpriteBlitter* ChooseSpriteBlitter(const hsGBitmap& device, const hsGBitmap& source, int32_t left, int32_t top,
                                      const hsGColor& color, hsGXferMode* xfer) {
  const hsGSpriteParts parts{device, source, left, top, color, xfer};
  if (color.fA >> 8 == 0 && !xfer) return new hsGNullSprite(parts);
  if (device.fConfig == hsGBitmap::kConfig_Alpha8) {
    if (source.fConfig != hsGBitmap::kConfig_Alpha8) hsThrow(hsException::kGeneric);
    if (xfer) return new hsGSpriteXferA(parts, xfer);
    return new hsGSpriteBlitterA(parts);
  }
  if (device.fConfig == hsGBitmap::kConfig_Index8) return hsChooseSprite8(parts);
  const bool is16 = device.fPixelSize == 16;
  if (is16 && source.fConfig == hsGBitmap::kConfig_Index8) return hsChooseSpriteIndex16(parts);
  if (is16 && source.fPixelSize == 16 && !xfer && parts.IsFull()) return hsMakeSpriteCopy16(parts);
  hsThrowIfFalse(source.fPixelSize == 32);
  if (xfer) return hsMakeSpriteXfer(parts);
  if (is16) return hsChooseSprite32To16(parts);
  hsDebugMessage("missing sprite blitter", 0);
  return nullptr;
}
