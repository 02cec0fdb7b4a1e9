// Paints that are no solid colour: a shader, a transfer mode or both, moved through a buffer of 32 pixels.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"
#include "gfx/pixel/hsgshader.h"
#include "gfx/pixel/hsgxfermode.h"

class hsGShaderBlitter : public hsGDeviceBlitter {
 public:
  static constexpr int32_t kSpan = 32;  // pixels; error on a palette starts afresh with each

  hsGShaderBlitter(const hsGBitmap& device, const hsGAttribute& attr, hsGShader* shader, int32_t maskType);

  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitMask(const hsGMask& mask, const hsRegion* clip) override;

 protected:
  // One chunk of the row from x on, its colours in fSpan.
  virtual void XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) = 0;
  virtual void ShadeSpan(hsGShader* shader, int32_t y, int32_t x, int32_t count);

  hsGColor32 fColor;  // premultiplied
  hsGColor32 fColors[kSpan];
  hsGColor32* fSpan = fColors;  // the colours of the chunk at hand; bytes on a device of coverage
  hsRef<hsGShader> fShader;     // or null
  hsRef<hsGXferMode> fXfer;
  int32_t fMaskType;
};

class hsGShaderBlitter8 : public hsGShaderBlitter {
 public:
  using hsGShaderBlitter::hsGShaderBlitter;

 protected:
  void XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) override;
};

class hsGShaderBlitter16 : public hsGShaderBlitter {
 public:
  using hsGShaderBlitter::hsGShaderBlitter;

 protected:
  void XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) override;
};

class hsGShaderBlitterA : public hsGShaderBlitter {
 public:
  hsGShaderBlitterA(const hsGBitmap& device, const hsGAttribute& attr, hsGShader* shader, int32_t maskType);

 protected:
  void XferSpan(int32_t y, int32_t x, int32_t count, const uint8_t* alpha) override;
  void ShadeSpan(hsGShader* shader, int32_t y, int32_t x, int32_t count) override;

 private:
  uint8_t* AlphaSpan() { return reinterpret_cast<uint8_t*>(fSpan); }
};
