// Sprites on a palette.
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgsprite_members.h"
#include "gfx/pixel/lerp.h"

namespace {

// The nearest index of s laid over e with scale 0 to 256.
uint8_t Blended(hsGColor32 s, hsGColor32 e, uint32_t scale, const uint8_t* inverse) {
  return inverse[hsInverseCell(Lerp(hsColor32R(s), hsColor32R(e), scale), Lerp(hsColor32G(s), hsColor32G(e), scale),
                               Lerp(hsColor32B(s), hsColor32B(e), scale))];
}

class hsGSpriteRGB8 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint8_t*>(device);
    const uint8_t* inverse = fDevice.fColorTable->GetInverseTable();
    for (int32_t i = 0; i < width; ++i) d[i] = inverse[hsInverseCell(s[i])];
  }
};

class hsGSpriteRGB8Blend : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint8_t*>(device);
    const hsGColor32* colors = fDevice.fColorTable->Colors();
    const uint8_t* inverse = fDevice.fColorTable->GetInverseTable();
    hsGColor32 seen = ~s[0];
    uint8_t under = 0, blended = 0;
    for (int32_t i = 0; i < width; ++i) {
      if (s[i] != seen || d[i] != under) {
        seen = s[i];
        under = d[i];
        blended = Blended(seen, colors[under], fScale, inverse);
      }
      d[i] = blended;
    }
  }
};

class hsGSpriteXfer8 : public hsGXferSprite {
 public:
  using hsGXferSprite::hsGXferSprite;

 protected:
  // A mode may carry error along the pixels of one call, so the chunks show.
  static constexpr int32_t kChunk = 64;

  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint8_t*>(device);
    if (IsReady()) return Xfer(width, s, d);
    for (int32_t chunk; width > 0; width -= chunk, s += chunk, d += chunk) {
      chunk = std::min(width, kChunk);
      Prepare(s, chunk, fBuffer);
      Xfer(chunk, fBuffer, d);
    }
  }

 private:
  hsGColor32 fBuffer[kChunk];
};

class hsGSpriteIndexCopy8 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const int32_t key = SourceKey();
    if (key < 0) {
      std::memmove(device, source, size_t(width));
      return;
    }
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint8_t*>(device);
    for (int32_t i = 0; i < width; ++i) d[i] = s[i] == key ? d[i] : s[i];
  }
};

// Between palettes. Runs of one index are looked up once.
class hsGSpriteIndexRemap8 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint8_t*>(device);
    const hsGColor32* colors = SourceColors();
    const uint8_t* inverse = fDevice.fColorTable->GetInverseTable();
    const int32_t key = SourceKey();
    int32_t seen = -1;
    uint8_t index = 0;
    for (int32_t i = 0; i < width; ++i) {
      if (s[i] == key) continue;
      if (s[i] != seen) {
        seen = s[i];
        index = inverse[hsInverseCell(colors[seen])];
      }
      d[i] = index;
    }
  }
};

class hsGSpriteIndexBlend8 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint8_t*>(device);
    const hsGColor32* from = SourceColors();
    const hsGColor32* onto = fDevice.fColorTable->Colors();
    const uint8_t* inverse = fDevice.fColorTable->GetInverseTable();
    hsBlendIndices(s, d, width, SourceKey(), [&](uint8_t index, uint8_t under) {
      return Blended(from[index], onto[under], ((hsColor32A(from[index]) + 1) * fScale) >> 8, inverse);
    });
  }
};

hsGSpriteBlitter* MakeXfer8(const hsGSpriteParts& parts) {
  if (parts.xfer) return new hsGSpriteXfer8(parts, parts.xfer);
  return new hsGSpriteXfer8(parts, hsMake<hsGSrcOverMode>().get());
}

}  // namespace

hsGSpriteBlitter* hsChooseSprite8(const hsGSpriteParts& parts) {
  (void)hsAssert(parts.device.fPixelSize == 8, "bad device");
  hsThrowIfNilParam(parts.device.fColorTable.get());
  switch (parts.source.fConfig) {
    case hsGBitmap::kConfig_RGB32:
      if (parts.xfer) return MakeXfer8(parts);
      if (parts.IsFull()) return new hsGSpriteRGB8(parts);
      return new hsGSpriteRGB8Blend(parts);
    case hsGBitmap::kConfig_ARGB32: return MakeXfer8(parts);
    case hsGBitmap::kConfig_Index8:
      if (parts.xfer) return new hsGSpriteIndexXfer<uint8_t>(parts);
      if (!parts.IsFull()) return new hsGSpriteIndexBlend8(parts);
      if (hsGColorTable::Equal(parts.device.fColorTable.get(), parts.source.fColorTable.get()))
        return new hsGSpriteIndexCopy8(parts);
      return new hsGSpriteIndexRemap8(parts);
    default:
      hsThrowReported("unsupported source pixelsize", hsGBitmap::PixelSize(parts.source.fConfig),
                      hsException::kGeneric);
  }
}
