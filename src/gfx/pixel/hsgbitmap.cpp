#include "gfx/pixel/hsgbitmap.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/fillrow.h"

hsGBitmap::hsGBitmap(uint8_t config) : fConfig(config), fPixelSize(PixelSize(config)) {}

uint8_t hsGBitmap::PixelSize(uint8_t config) {
  switch (config) {
    case kConfig_None: return 0;
    case kConfig_RGB32:
    case kConfig_ARGB32: return 32;
    case kConfig_RGB24: return 24;
    case kConfig_RGB16: return 16;
    case kConfig_Index8:
    case kConfig_Alpha8: return 8;
    default: hsThrow(hsException::kBadParam);
  }
}

void hsGBitmap::SetConfig(uint8_t config) {
  fPixelSize = PixelSize(config);
  fConfig = config;
  if (config != kConfig_Index8) fColorTable.reset();
}

void* hsGBitmap::CheckedAddr(uint8_t pixelSize, uint32_t x, uint32_t y) const {
  if (!hsAssert(fPixelSize == pixelSize, "pixelSize mismatch")) return nullptr;
  if (!hsAssert(x < fWidth && y < fHeight, "bad XY")) return nullptr;
  return Row<uint8_t>(int32_t(y)) + size_t{x} * (pixelSize / 8);
}

void hsGBitmap::Erase(const hsGColor& color) {
  if (fWidth == 0 || fHeight == 0) return;
  if (!fImage) return hsStatusMessage("fImage is nil", 0);
  if (fConfig == kConfig_RGB16) {
    const hsGColor32 c = hsPremultiply(color);
    const uint16_t pixel = hsPack16(hsColor32R(c) >> 2, hsColor32G(c) >> 3, hsColor32B(c) >> 3);
    hsFillRows16(Row<uint16_t>(0), fRowBytes, int32_t(fWidth), int32_t(fHeight), pixel);
    return;
  }
  uint8_t byte;
  if (fConfig == kConfig_Index8) {
    if (!hsAssert(fColorTable, "need colortable")) return;
    byte = fColorTable->ColorToIndex(color);
  } else if (fConfig == kConfig_Alpha8) {
    byte = uint8_t(color.fA >> 8);
  } else {
    hsThrowReported("unknown config", fConfig, hsException::kBadParam);
  }
  for (uint32_t y = 0; y < fHeight; ++y) std::memset(Row<uint8_t>(int32_t(y)), byte, fWidth);
}

bool hsGBitmap::Equal(const hsGBitmap& a, const hsGBitmap& b) {
  return a.fConfig == b.fConfig && a.fFlags == b.fFlags && a.fWidth == b.fWidth && a.fHeight == b.fHeight &&
         a.fOwnerWord == b.fOwnerWord && a.fRowBytes == b.fRowBytes && (a.fFlags & kHasTransparent) &&
         a.fTransparentIndex == b.fTransparentIndex;
}
