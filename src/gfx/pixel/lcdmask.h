// The walk over a mask of three coverages a pixel.
//
// LCD text darkens toward black, whatever the colour, and only where nothing clips it; both gaps are kept.
#pragma once

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/vector/hsregion.h"

// blend(pixel, c0, c1, c2) for each pixel of the mask on the device, coverages 0 to 31. lcdOffset, 0 to 2, is how many
// thirds of a pixel the glyph lies to the right.
template <class Pixel, class Blend>
void hsBlitLCD(const hsGBitmap& device, const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset, Blend&& blend) {
  if (!hsAssert(mask.fMaskType == kMask_LCD, "bad masktype")) return;
  if (!hsAssert(lcdOffset >= 0 && lcdOffset <= 2, "bad lcd offset")) return;
  if (clip) return;
  hsIntRect rect = mask.fBounds;
  if (!rect.Intersect(0, 0, int32_t(device.fWidth), int32_t(device.fHeight))) return;
  const auto coverage = [](uint8_t c) { return std::min<uint32_t>(c, 31); };
  for (int32_t y = rect.fTop; y < rect.fBottom; ++y) {
    const uint8_t* c = mask.Row(y) + 2 - lcdOffset + 3 * (rect.fLeft - mask.fBounds.fLeft);
    Pixel* pixel = device.Row<Pixel>(y) + rect.fLeft;
    for (int32_t x = rect.fLeft; x < rect.fRight; ++x, c += 3, ++pixel)
      *pixel = blend(*pixel, coverage(c[0]), coverage(c[1]), coverage(c[2]));
  }
}
