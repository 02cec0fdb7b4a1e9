// Bitmaps under a matrix that does more than move them.
//
// Each pixel of a span is mapped back into the source. The span's area is the caller's: these blitters only say what
// colour lies where.
#pragma once

#include "gfx/foundation/hsmatrix.h"
#include "gfx/pixel/hsgdeviceblitter.h"

class hsGXferMode;

// Draws nothing: for a matrix that can't be inverted.
class hsGNullBlitter : public hsGBlitter {
 public:
  void BlitH(int32_t, int32_t, int32_t) override {}
  void BlitRect(int32_t, int32_t, int32_t, int32_t) override {}
  void BlitMask(const hsGMask&, const hsRegion*) override {}
};

// A palette source on a device of the same palette: indices move, no colour is ever looked at.
class hsGIndex8Affine : public hsGDeviceBlitter {
 public:
  // The inverse matrix has no perspective.
  hsGIndex8Affine(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse);

  void BlitH(int32_t y, int32_t x, int32_t width) override { BlitRect(y, x, width, 1); }
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;

 private:
  hsGBitmap fSource;
  hsMatrix fInverse;  // device to source
};

// 32-bit sources on a 16-bit device.
class hsGBitmapBlitter16 : public hsGDeviceBlitter {
 public:
  // scale, 1 to 256, is the paint's alpha + 1.
  hsGBitmapBlitter16(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse, uint32_t scale);

 protected:
  // One span, whole pixels or a mix of four.
  template <bool kFilter>
  void Draw(int32_t y, int32_t x, int32_t width);

  hsGBitmap fSource;
  hsMatrix fInverse;
  uint32_t fInverseType;
  uint32_t fScale;
};

class hsGBitmapBlitterAffine16 : public hsGBitmapBlitter16 {
 public:
  using hsGBitmapBlitter16::hsGBitmapBlitter16;
  void BlitH(int32_t y, int32_t x, int32_t width) override;
};

class hsGBitmapBlitterFilter16 : public hsGBitmapBlitter16 {
 public:
  using hsGBitmapBlitter16::hsGBitmapBlitter16;
  void BlitH(int32_t y, int32_t x, int32_t width) override;
};

class hsGBitmapBlitterPersp16 : public hsGBitmapBlitter16 {
 public:
  hsGBitmapBlitterPersp16(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse, uint32_t scale,
                          bool filter);
  void BlitH(int32_t y, int32_t x, int32_t width) override;

 private:
  bool fDoFilter;
};

// The same through a transfer mode, pixel by pixel; nothing is drawn outside the source, and the paint's alpha plays no
// part.
class hsGBitmapBlitterXfer16 : public hsGBitmapBlitter16 {
 public:
  hsGBitmapBlitterXfer16(const hsGBitmap& device, const hsGBitmap& source, const hsMatrix& inverse, hsGXferMode* mode);
  void BlitH(int32_t y, int32_t x, int32_t width) override;

 private:
  hsRef<hsGXferMode> fXfer;
};

// The blitter that draws source on a palette device under a matrix: by indices if it can be, otherwise through a bitmap
// shader. The caller holds a reference.
hsGBlitter* ChooseIndex8Blitter(const hsGBitmap* device, const hsGAttribute* attr, const hsMatrix* matrix,
                                const hsGBitmap* source);
