// What the families of sprite members share: how they are asked for, and the sources that go through a transfer mode.
#pragma once

#include <algorithm>

#include "gfx/pixel/hsgspriteblitter.h"
#include "gfx/pixel/hsgxfermode.h"

// All that a sprite is made of.
struct hsGSpriteParts {
  const hsGBitmap& device;
  const hsGBitmap& source;
  int32_t left, top;
  const hsGColor& color;
  hsGXferMode* xfer;  // or null

  bool IsFull() const { return color.fA >> 8 == 0xFF; }
};

// For a palette device with a table.
hsGSpriteBlitter* hsChooseSprite8(const hsGSpriteParts& parts);
// For palette sources on a 16-bit device.
hsGSpriteBlitter* hsChooseSpriteIndex16(const hsGSpriteParts& parts);
// For 32-bit sources on a 16-bit device, without a transfer mode.
hsGSpriteBlitter* hsChooseSprite32To16(const hsGSpriteParts& parts);
// 16-bit pixels as they are.
hsGSpriteBlitter* hsMakeSpriteCopy16(const hsGSpriteParts& parts);
// 32-bit sources through a transfer mode, on 16 or 32 bits.
hsGSpriteBlitter* hsMakeSpriteXfer(const hsGSpriteParts& parts);

// A member without a transfer mode.
class hsGPlainSprite : public hsGSpriteBlitter {
 public:
  explicit hsGPlainSprite(const hsGSpriteParts& parts)
      : hsGSpriteBlitter(parts.device, parts.source, parts.left, parts.top, parts.color) {}
};

// A member that moves its pixels through a transfer mode, to which it says that they are not all opaque.
class hsGXferSprite : public hsGSpriteBlitter {
 public:
  hsGXferSprite(const hsGSpriteParts& parts, hsGXferMode* mode)
      : hsGSpriteBlitter(parts.device, parts.source, parts.left, parts.top, parts.color), fXfer(hsShare(mode)) {
    fXfer->SetOpaque(false);
  }

 protected:
  // Whether 32-bit pixels can be handed on as they lie in the source.
  bool IsReady() const { return fSource.fConfig == hsGBitmap::kConfig_ARGB32 && fScale == 256; }
  // 32-bit pixels with their alpha, scaled by the paint's.
  void Prepare(const hsGColor32* source, int32_t count, hsGColor32* out) const {
    const hsGColor32 alpha = fSource.fConfig == hsGBitmap::kConfig_ARGB32 ? 0 : 0xFF000000;
    for (int32_t i = 0; i < count; ++i) out[i] = hsScaleColor32(source[i] | alpha, fScale);
  }
  // Pixels through the mode onto a row of the device.
  void Xfer(int32_t count, const hsGColor32* colors, uint8_t* device) const {
    fXfer->Xfer8(count, colors, device, fDevice.fColorTable.get(), nullptr);
  }
  void Xfer(int32_t count, const hsGColor32* colors, uint16_t* device) const {
    fXfer->Xfer16(count, colors, device, nullptr);
  }
  // Palette pixels, the key as nothing at all; the paint's alpha plays no part here.
  void Expand(const uint8_t* source, int32_t count, hsGColor32* out) const {
    const hsGColor32* colors = SourceColors();
    const int32_t key = SourceKey();
    for (int32_t i = 0; i < count; ++i) out[i] = source[i] == key ? 0 : colors[source[i]];
  }

  hsRef<hsGXferMode> fXfer;
};

// Palette pixels through a mode, onto pixels of either depth. A mode may carry error along the pixels of one call, so
// the chunks show.
template <class Pixel>
class hsGSpriteIndexXfer : public hsGXferSprite {
 public:
  explicit hsGSpriteIndexXfer(const hsGSpriteParts& parts) : hsGXferSprite(parts, parts.xfer) {}

 protected:
  static constexpr int32_t kChunk = 32;

  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<Pixel*>(device);
    hsGColor32 colors[kChunk];
    for (int32_t chunk; width > 0; width -= chunk, s += chunk, d += chunk) {
      chunk = std::min(width, kChunk);
      Expand(s, chunk, colors);
      Xfer(chunk, colors, d);
    }
  }
};

// Blends a row of palette pixels, but for the key. blend(index, device pixel) is asked once for each run of equal
// pairs.
template <class Pixel, class Blend>
void hsBlendIndices(const uint8_t* source, Pixel* device, int32_t width, int32_t key, Blend&& blend) {
  int32_t seen = -1;
  Pixel under = 0, blended = 0;
  for (int32_t i = 0; i < width; ++i) {
    if (source[i] == key) continue;
    if (source[i] != seen || device[i] != under) {
      seen = source[i];
      under = device[i];
      blended = blend(source[i], under);
    }
    device[i] = blended;
  }
}
