// Solid colours on a palette device.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"

// One index, stored.
class hsGIndexBlitter : public hsGDeviceBlitter {
 public:
  hsGIndexBlitter(const hsGBitmap& device, const hsGAttribute& attr, int32_t colorIndex);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  const hsGBitmap* GetDirectTarget(uint32_t* value) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;

 private:
  uint8_t fIndex;
};

// A colour blended with the palette entry of each pixel, and the nearest index of that.
class hsGColorBlitter8 : public hsGDeviceBlitter {
 public:
  hsGColorBlitter8(const hsGBitmap& device, const hsGColor& color);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  void BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;

 private:
  void SetColor(const hsGColor& color);
  uint8_t Blended(uint8_t index, uint32_t scale) const;
  void BlendSpan(uint8_t* pixels, int32_t width) const;
  void BlendCovered(uint8_t* pixels, int32_t width, const uint8_t* coverage) const;

  hsGColor32 fColor = 0;          // not premultiplied
  hsGColor32 fPremultiplied = 0;  // alpha on top as it is
  const uint8_t* fInverse = nullptr;
  const hsGColor32* fColors = nullptr;
};

// The colour that an attribute draws on a palette with coverage: that of the index in force, opaque, or its own.
hsGColor hsPaletteColor(const hsGBitmap& device, const hsGAttribute& attr);
