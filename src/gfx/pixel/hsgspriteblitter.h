// Sprites: bitmaps that land on whole pixels and are drawn row by row.
//
// There is a member for each pair of source and device format, for full and for partial alpha, and for paints with a
// transfer mode. Where a palette is involved a run of equal inputs is worked out once.
#pragma once

#include "gfx/pixel/hsgdeviceblitter.h"

class hsGSpriteBlitter : public hsGDeviceBlitter {
 public:
  // The source's top left pixel lies at (left, top) on the device. Of the colour only the alpha plays a part.
  hsGSpriteBlitter(const hsGBitmap& device, const hsGBitmap& source, int32_t left, int32_t top, const hsGColor& color);

  // Pixels beyond the source are reported and nothing is drawn: "bad offset", "bad width" and "bad height", or "bad
  // count" for palette sources.
  void BlitH(int32_t y, int32_t x, int32_t width) override;
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override;
  // Another source at another place. False, and no change, unless it has the device's pixel size and this member reads
  // such pixels.
  virtual bool Retarget(const hsGBitmap& source, int32_t left, int32_t top);

 protected:
  // Called before the rows of one blit, with the number of pixels in each of them.
  virtual void BeginRows(int64_t) {}
  virtual void DrawRow(const void* source, void* device, int32_t width) = 0;

  // The entries of the source's palette, all zero for a source without one.
  const hsGColor32* SourceColors() const;
  // The index that is no pixel; -1 for none.
  int32_t SourceKey() const;

  hsGBitmap fSource;
  int32_t fLeft, fTop;  // device pixels
  uint32_t fScale;      // 1 to 256: alpha + 1

 private:
  bool IsInside(int32_t y, int32_t x, int32_t width, int32_t height) const;
  void DrawRows(int32_t y, int32_t x, int32_t width, int32_t height);
};
