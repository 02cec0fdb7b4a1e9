#include "gfx/pixel/hsgmask.h"

#include "gfx/foundation/hsdebug.h"

uint16_t hsGMask::RowBytes(uint16_t maskType, int32_t width) {
  switch (maskType) {
    case kMask_Bit: return uint16_t((width + 7) >> 3);
    case kMask_LCD: return uint16_t(width * 3 + 2);
    default: return uint16_t(width);
  }
}

void hsGMask::AllocImage() {
  if (!hsAssert(!fImage, "allocating over existing image")) return;
  fOwned = std::make_unique<uint8_t[]>(ImageSize());
  fImage = fOwned.get();
}
