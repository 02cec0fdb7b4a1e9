// Solid colours on a 16-bit device.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"

// One pixel word, stored.
class hsGColorBlitter16Opaque : public hsGDeviceBlitter {
 public:
  hsGColorBlitter16Opaque(const hsGBitmap& device, const hsGColor& color);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  const hsGBitmap* GetDirectTarget(uint32_t* value) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;

 private:
  uint16_t fPixel;
};

// A colour blended in the pixels' own 6-5-5 domain.
class hsGColorBlitter16 : public hsGDeviceBlitter {
 public:
  hsGColorBlitter16(const hsGBitmap& device, const hsGColor& color);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  void BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;

  // BlitH under coverage, from a row's pixels on, without the instructions that only some processors have.
  void BlendCoveredPlain(uint16_t* pixels, int32_t width, const uint8_t* coverage) const;

 private:
  void BlendSpan(uint16_t* pixels, int32_t width) const;
  void BlendCovered(uint16_t* pixels, int32_t width, const uint8_t* coverage) const;
  void BlitCoverage(const hsGMask& mask, const hsRegion* clip) const;

  hsGColor fColor;  // not premultiplied
};
