// A descriptor over a block of pixels: copied freely, it never owns them. Whoever allocates fImage frees it.
#pragma once

#include <cstdint>

#include "gfx/pixel/hsgcolortable.h"

class hsGBitmap {
 public:
  enum Config : uint8_t {
    kConfig_None = 0,
    kConfig_RGB32 = 1,   // hsGColor32 whose alpha reads as 0xFF
    kConfig_ARGB32 = 2,  // premultiplied hsGColor32
    kConfig_RGB24 = 3,   // three bytes a pixel; a source only
    kConfig_RGB16 = 4,   // six bits of red, five each of green and blue
    kConfig_Index8 = 5,  // indices of fColorTable
    kConfig_Alpha8 = 6,  // coverage
  };
  enum Flags : uint8_t { kHasTransparent = 4 };  // bits 1 and 2 are a field phase that nothing acts on

  explicit hsGBitmap(uint8_t config = kConfig_None);

  // Bits a pixel; another config throws error 4, and is 0.
  static uint8_t PixelSize(uint8_t config);

  void SetConfig(uint8_t config);  // one without a palette drops the colour table
  void SetFlags(uint8_t flags) { fFlags = flags & 7; }
  void SetColorTable(hsGColorTable* table) { fColorTable = hsShare(table); }

  // Fills all pixels. 16-bit, Index8 (the nearest index, "need colortable") and Alpha8 only: any other reports "unknown
  // config" and throws.
  void Erase(const hsGColor& color);

  // The pixel's address. Reports "pixelSize mismatch" or "bad XY" and is null beyond the bitmap.
  uint8_t* GetAddr8(uint32_t x, uint32_t y) const { return static_cast<uint8_t*>(CheckedAddr(8, x, y)); }
  uint16_t* GetAddr16(uint32_t x, uint32_t y) const { return static_cast<uint16_t*>(CheckedAddr(16, x, y)); }
  hsGColor32* GetAddr32(uint32_t x, uint32_t y) const { return static_cast<hsGColor32*>(CheckedAddr(32, x, y)); }

  // The first pixel of row y, without a check: for blitters, whose callers have clipped.
  template <class Pixel>
  Pixel* Row(int32_t y) const {
    return reinterpret_cast<Pixel*>(static_cast<uint8_t*>(fImage) + int64_t{y} * fRowBytes);
  }

  uint64_t ImageSize() const { return uint64_t{fHeight} * fRowBytes; }  // bytes

  // Whether the descriptions agree. Pixels and colour tables are not looked at, and bitmaps without a transparent index
  // never count as equal.
  static bool Equal(const hsGBitmap& a, const hsGBitmap& b);

  uint32_t fOwnerWord = 0;  // the owner's own
  void* fImage = nullptr;   // top left pixel
  uint32_t fWidth = 0;      // pixels
  uint32_t fHeight = 0;     // pixels
  uint32_t fRowBytes = 0;   // from one row to the next
  uint8_t fFlags = 0;
  uint8_t fConfig;
  uint8_t fPixelSize;             // bits
  uint8_t fTransparentIndex = 0;  // not drawn, with kHasTransparent
  hsRef<hsGColorTable> fColorTable;

 private:
  void* CheckedAddr(uint8_t pixelSize, uint32_t x, uint32_t y) const;
};
