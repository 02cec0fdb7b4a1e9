// Transfer modes: how a row of source colours meets the device's pixels.
//
// Sources are premultiplied. An alpha row gives a coverage for each pixel; null means full coverage. A mode may act
// otherwise once SetOpaque has said that sources are opaque, so it must not be shared by an opaque and another paint.
#pragma once

#include <cstdint>

#include "gfx/foundation/hsrefcnt.h"
#include "gfx/pixel/hsgcolor.h"

class hsGBitmap;
class hsGBlitter;
class hsGColorTable;
class hsGShader;
class hsMeta;

class hsGXferMode : public hsRefCnt {
 public:
  // The mode that a class of that name makes of its description; null when there is none. The caller holds a reference.
  static hsGXferMode* Create(const char* className, const hsMeta& meta);

  virtual void Describe(hsMeta*) const {}
  virtual void SetOpaque(bool) {}

  // count pixels each, above 0.
  virtual void Xfer32(int32_t, const hsGColor32*, hsGColor32*, const uint8_t*) {}
  virtual void Xfer24(int32_t, const hsGColor32*, uint8_t*, const uint8_t*) {}
  virtual void Xfer16(int32_t, const hsGColor32*, uint16_t*, const uint8_t*) {}
  virtual void Xfer8(int32_t, const hsGColor32*, uint8_t*, const hsGColorTable*, const uint8_t*) {}
  virtual void XferA(int32_t, const uint8_t*, uint8_t*, const uint8_t*) {}

  // A blitter of the mode's own, or null.
  virtual hsGBlitter* ChooseBlitter(const hsGBitmap&, hsGShader*, const hsGColor&, int32_t) { return nullptr; }
};

// The source takes the device's place. On a palette its error is carried along the row, afresh at each call.
class hsGSrcMode : public hsGXferMode {
 public:
  void Xfer16(int32_t count, const hsGColor32* src, uint16_t* dst, const uint8_t* alpha) override;
  void Xfer8(int32_t count, const hsGColor32* src, uint8_t* dst, const hsGColorTable* table,
             const uint8_t* alpha) override;
  void XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) override;
};

// The source lies over the device.
class hsGSrcOverMode : public hsGXferMode {
 public:
  void Xfer16(int32_t count, const hsGColor32* src, uint16_t* dst, const uint8_t* alpha) override;
  void Xfer8(int32_t count, const hsGColor32* src, uint8_t* dst, const hsGColorTable* table,
             const uint8_t* alpha) override;
  void XferA(int32_t count, const uint8_t* src, uint8_t* dst, const uint8_t* alpha) override;
};
