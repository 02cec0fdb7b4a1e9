#include "gfx/pixel/hsgspriteblitter.h"

#include "gfx/foundation/hsdebug.h"

hsGSpriteBlitter::hsGSpriteBlitter(const hsGBitmap& device, const hsGBitmap& source, int32_t left, int32_t top,
                                   const hsGColor& color)
    : hsGDeviceBlitter(device), fSource(source), fLeft(left), fTop(top), fScale((color.fA >> 8) + 1u) {}

bool hsGSpriteBlitter::Retarget(const hsGBitmap& source, int32_t left, int32_t top) {
  if (source.fPixelSize != fDevice.fPixelSize || source.fPixelSize != fSource.fPixelSize) return false;
  fSource = source;
  fLeft = left;
  fTop = top;
  return true;
}

const hsGColor32* hsGSpriteBlitter::SourceColors() const {
  static constexpr hsGColor32 kNoColors[hsGColorTable::kMaxCount] = {};
  return fSource.fColorTable ? fSource.fColorTable->Colors() : kNoColors;
}

int32_t hsGSpriteBlitter::SourceKey() const {
  return fSource.fFlags & hsGBitmap::kHasTransparent ? fSource.fTransparentIndex : -1;
}

bool hsGSpriteBlitter::IsInside(int32_t y, int32_t x, int32_t width, int32_t height) const {
  const bool offset = x >= fLeft && y >= fTop;
  const bool fits = width > 0 && int64_t{x} - fLeft + width <= fSource.fWidth;
  const bool high = height > 0 && int64_t{y} - fTop + height <= fSource.fHeight;
  if (fSource.fConfig == hsGBitmap::kConfig_Index8) return hsAssert(offset && fits && high, "bad count");
  return hsAssert(offset, "bad offset") && hsAssert(fits, "bad width") && hsAssert(high, "bad height");
}

void hsGSpriteBlitter::DrawRows(int32_t y, int32_t x, int32_t width, int32_t height) {
  if (!IsInside(y, x, width, height)) return;
  BeginRows(int64_t{width} * height);
  const uint8_t* source = fSource.Row<uint8_t>(y - fTop) + int64_t{x - fLeft} * (fSource.fPixelSize >> 3);
  uint8_t* device = fDevice.Row<uint8_t>(y) + int64_t{x} * (fDevice.fPixelSize >> 3);
  for (; height > 0; --height, source += fSource.fRowBytes, device += fDevice.fRowBytes) DrawRow(source, device, width);
}

void hsGSpriteBlitter::BlitH(int32_t y, int32_t x, int32_t width) { DrawRows(y, x, width, 1); }

void hsGSpriteBlitter::BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) { DrawRows(y, x, width, height); }
