// One value stored wherever a bit mask has a bit set.
#pragma once

#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/pixel/wide16.h"

// A whole mask, not empty, whose bytes all lie over pixels of the device.
template <class Pixel>
void hsStoreWholeBits(const hsGBitmap& device, const hsGMask& mask, Pixel value) {
  using Wide = decltype(hsLoadWide(&value));
  const Wide wide = Wide{} + value;
  const auto store = [wide](Pixel* pixels, uint8_t bits) {
    const Wide old = hsLoadWide(pixels);
    hsStoreWide(pixels, old ^ ((old ^ wide) & hsWideBits<Wide>(bits)));
  };
  const hsIntRect& bounds = mask.fBounds;
  const int32_t last = (bounds.Width() - 1) / 8;
  const uint8_t keepLast = uint8_t(0xFF << (7 - (bounds.Width() - 1) % 8));
  const uint8_t* bits = mask.Row(bounds.fTop);
  auto* row = reinterpret_cast<uint8_t*>(device.Row<Pixel>(bounds.fTop) + bounds.fLeft);
  const uint32_t rowBytes = device.fRowBytes, maskBytes = mask.fRowBytes;
  int32_t height = bounds.Height();
  if (last == 0) {
    for (; height > 0; --height, bits += maskBytes, row += rowBytes)
      store(reinterpret_cast<Pixel*>(row), *bits & keepLast);
    return;
  }
  for (; height > 0; --height, bits += maskBytes, row += rowBytes) {
    auto* const pixels = reinterpret_cast<Pixel*>(row);
    for (int32_t i = 0; i < last; ++i) store(pixels + 8 * i, bits[i]);
    store(pixels + 8 * last, bits[last] & keepLast);
  }
}

// The pixels of a device of 16 or 8 bits that the clip leaves. Eight of them are written at a time, those of clear bits
// as they were, but for masks whose last bytes reach over the device's edge.
template <class Pixel>
void hsStoreBits(const hsGBitmap& device, const hsGMask& mask, const hsRegion* clip, Pixel value) {
  const hsIntRect& bounds = mask.fBounds;
  if (!clip && !bounds.IsEmpty() && bounds.fLeft >= 0 &&
      bounds.fLeft + ((bounds.Width() + 7) & ~7) <= int32_t(device.fWidth))
    return hsStoreWholeBits(device, mask, value);
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
