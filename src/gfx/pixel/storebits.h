// One value stored wherever a bit mask has a bit set.
#pragma once

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/pixel/wide16.h"

// The pixels of a device of 16 or 8 bits that the clip leaves. Eight of them are written at a time, those of clear bits
// as they were, but for masks whose last bytes reach over the device's edge.
template <class Pixel>
void hsStoreBits(const hsGBitmap& device, const hsGMask& mask, const hsRegion* clip, Pixel value) {
  using Wide = decltype(hsLoadWide(&value));
  const Wide wide = Wide{} + value;
  hsWalkBitsWide(
      mask, clip, device.fWidth,
      [&](int32_t y, int32_t x, uint8_t bits) {
        Pixel* const pixels = device.Row<Pixel>(y) + x;
        const Wide set = hsWideBits<Wide>(bits);
        hsStoreWide(pixels, (hsLoadWide(pixels) & ~set) | (wide & set));
      },
      [&](int32_t y, int32_t x) { device.Row<Pixel>(y)[x] = value; });
}
