// Coverage drawn into a coverage plane; colours have only their alpha here.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"

class hsGColorBlitterAOpaque : public hsGDeviceBlitter {
 public:
  hsGColorBlitterAOpaque(const hsGBitmap& device, const hsGColor& color);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  const hsGBitmap* GetDirectTarget(uint32_t* value) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;
};

class hsGColorBlitterA : public hsGDeviceBlitter {
 public:
  hsGColorBlitterA(const hsGBitmap& device, const hsGColor& color);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;
  bool Reuse(const hsGBitmap& bitmap, const hsGAttribute& attr, int32_t maskType) override;

 private:
  void BlendSpan(uint8_t* pixels, int32_t width) const;

  uint8_t fColorAlpha;
};
