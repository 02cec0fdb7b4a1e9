// Sprites on 16 bits.
#include <cstring>
#include <vector>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgsprite_members.h"
#include "gfx/pixel/lerp.h"

namespace {

// From here on a table of packed entries pays.
constexpr int64_t kTablePixels = 512;

uint16_t PackEntry(hsGColor32 c) { return hsPack16(hsColor32R(c) >> 2, hsColor32G(c) >> 3, hsColor32B(c) >> 3); }

class hsGSpriteCopy16 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    std::memmove(device, source, size_t(width) * 2);
  }
};

class hsGSpriteRGB16 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint16_t*>(device);
    for (int32_t i = 0; i < width; ++i) d[i] = hsPack32To16(s[i]);
  }
};

class hsGSpriteRGB16Blend : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint16_t*>(device);
    const uint32_t scale = fScale;
    for (int32_t i = 0; i < width; ++i) {
      const uint32_t p = s[i];
      d[i] = hsPack16(Lerp(p >> 18 & 63, hsRed6(d[i]), scale), Lerp(p >> 11 & 31, hsGreen5(d[i]), scale),
                      Lerp(p >> 3 & 31, hsBlue5(d[i]), scale));
    }
  }
};

// Red's top bit is lost here, and here only: the device's red is taken as five bits, and so is the result.
class hsGSpriteARGB16 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint16_t*>(device);
    for (int32_t i = 0; i < width; ++i) {
      const uint32_t p = s[i], a = hsColor32A(p), u = 256 - a;
      if (a == 0) continue;
      if (a == 255) {
        d[i] = hsPack32To16(p);
        continue;
      }
      const auto over = [u](uint32_t sc, uint32_t d5) { return (sc + ((hsWiden5(d5) * u) >> 8)) >> 3; };
      d[i] = hsPack16(over(hsColor32R(p), d[i] >> 10 & 31), over(hsColor32G(p), hsGreen5(d[i])),
                      over(hsColor32B(p), hsBlue5(d[i])));
    }
  }
};

class hsGSpriteARGB16Blend : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const hsGColor32*>(source);
    auto* d = static_cast<uint16_t*>(device);
    const uint32_t scale = fScale;
    for (int32_t i = 0; i < width; ++i) {
      const uint32_t p = s[i], a = hsColor32A(p), u = 256 - a;
      if (a == 0) continue;
      const auto over = [u, scale](uint32_t sc, uint32_t w) { return Lerp(sc + ((w * u) >> 8), w, scale); };
      d[i] =
          hsPack16(over(hsColor32R(p), hsWiden6(hsRed6(d[i]))) >> 2, over(hsColor32G(p), hsWiden5(hsGreen5(d[i]))) >> 3,
                   over(hsColor32B(p), hsWiden5(hsBlue5(d[i]))) >> 3);
    }
  }
};

// Large sprites go through a table of the packed palette, made for each blit since the palette may change in between;
// small ones pack as they go.
class hsGSpriteIndex16 : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void BeginRows(int64_t pixels) override {
    fHasTable = pixels >= kTablePixels;
    if (fHasTable) std::transform(SourceColors(), SourceColors() + hsGColorTable::kMaxCount, fPacked, PackEntry);
  }

  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint16_t*>(device);
    const int32_t key = SourceKey();
    if (!fHasTable) {
      const hsGColor32* colors = SourceColors();
      Put(s, d, width, key, [colors](uint8_t index) { return PackEntry(colors[index]); });
    } else {
      Put(s, d, width, key, [this](uint8_t index) { return fPacked[index]; });
    }
  }

 private:
  template <class PixelOf>
  static void Put(const uint8_t* s, uint16_t* d, int32_t width, int32_t key, PixelOf pixelOf) {
    if (key < 0) {
      for (int32_t i = 0; i < width; ++i) d[i] = pixelOf(s[i]);
      return;
    }
    for (int32_t i = 0; i < width; ++i)
      if (s[i] != key) d[i] = pixelOf(s[i]);
  }

  uint16_t fPacked[hsGColorTable::kMaxCount];
  bool fHasTable = false;
};

class hsGSpriteIndex16Blend : public hsGPlainSprite {
 public:
  using hsGPlainSprite::hsGPlainSprite;

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* s = static_cast<const uint8_t*>(source);
    auto* d = static_cast<uint16_t*>(device);
    const hsGColor32* colors = SourceColors();
    hsBlendIndices(s, d, width, SourceKey(), [&](uint8_t index, uint16_t under) {
      const hsGColor32 e = colors[index];
      const uint32_t v = ((hsColor32A(e) + 1) * fScale) >> 8;
      return hsPack16(Lerp(hsColor32R(e) >> 2, hsRed6(under), v), Lerp(hsColor32G(e) >> 3, hsGreen5(under), v),
                      Lerp(hsColor32B(e) >> 3, hsBlue5(under), v));
    });
  }
};

// Hands whole rows to the mode.
class hsGSpriteXfer : public hsGXferSprite {
 public:
  explicit hsGSpriteXfer(const hsGSpriteParts& parts) : hsGXferSprite(parts, parts.xfer) {}

 protected:
  void DrawRow(const void* source, void* device, int32_t width) override {
    const auto* row = static_cast<const hsGColor32*>(source);
    if (!IsReady()) {
      fRow.resize(std::max(fRow.size(), size_t(width)));
      Prepare(row, width, fRow.data());
      row = fRow.data();
    }
    if (fDevice.fPixelSize == 16) {
      Xfer(width, row, static_cast<uint16_t*>(device));
    } else if (fDevice.fPixelSize == 32) {
      fXfer->Xfer32(width, row, static_cast<hsGColor32*>(device), nullptr);
    }
  }

 private:
  std::vector<hsGColor32> fRow;
};

}  // namespace

hsGSpriteBlitter* hsChooseSpriteIndex16(const hsGSpriteParts& parts) {
  if (parts.xfer) return new hsGSpriteIndexXfer<uint16_t>(parts);
  if (parts.IsFull()) return new hsGSpriteIndex16(parts);
  return new hsGSpriteIndex16Blend(parts);
}

hsGSpriteBlitter* hsChooseSprite32To16(const hsGSpriteParts& parts) {
  if (parts.source.fConfig == hsGBitmap::kConfig_ARGB32) {
    if (parts.IsFull()) return new hsGSpriteARGB16(parts);
    return new hsGSpriteARGB16Blend(parts);
  }
  if (parts.IsFull()) return new hsGSpriteRGB16(parts);
  return new hsGSpriteRGB16Blend(parts);
}

hsGSpriteBlitter* hsMakeSpriteCopy16(const hsGSpriteParts& parts) { return new hsGSpriteCopy16(parts); }

hsGSpriteBlitter* hsMakeSpriteXfer(const hsGSpriteParts& parts) {
  hsThrowIfNilParam(hsAssert(parts.xfer, "need xferMode") ? parts.xfer : nullptr);
  return new hsGSpriteXfer(parts);
}
