// Walks over masks, bit by bit or span by span, under a clip.
#pragma once

#include <bit>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/vector/hsregioniter.h"

// byte(y, x, bits) for each byte of the rectangle, which lies inside the mask, with a set bit: the highest bit is
// for the pixel at x, and bits outside the rectangle are clear. Padding bits are never looked at.
template <class Byte>
void hsWalkBitBytes(const hsGMask& mask, const hsIntRect& rect, Byte&& byte) {
  const int32_t left = rect.fLeft - mask.fBounds.fLeft;
  const int32_t right = rect.fRight - mask.fBounds.fLeft;
  const int32_t firstByte = left >> 3, lastByte = (right - 1) >> 3;
  const uint8_t keepFirst = uint8_t(0xFF >> (left & 7));
  const uint8_t keepLast = uint8_t(0xFF << (7 - ((right - 1) & 7)));
  for (int32_t y = rect.fTop; y < rect.fBottom; ++y) {
    const uint8_t* row = mask.Row(y);
    for (int32_t i = firstByte; i <= lastByte; ++i) {
      uint8_t bits = row[i];
      if (i == firstByte) bits &= keepFirst;
      if (i == lastByte) bits &= keepLast;
      if (bits) byte(y, mask.fBounds.fLeft + i * 8, bits);
    }
  }
}

// rect(r) for each rectangle of the mask that the clip leaves; null leaves all of it.
template <class Rect>
void hsWalkMaskRects(const hsIntRect& bounds, const hsRegion* clip, Rect&& rect) {
  if (bounds.IsEmpty()) return;
  if (!clip) return rect(bounds);
  for (hsRegionClipRectIter iter(*clip, bounds); !iter.IsDone(); iter.Next()) rect(iter.Rect());
}

// put(y, x) for each set bit that the clip leaves.
template <class Put>
void hsWalkBits(const hsGMask& mask, const hsRegion* clip, Put&& put) {
  hsWalkMaskRects(mask.fBounds, clip, [&](const hsIntRect& rect) {
    hsWalkBitBytes(mask, rect, [&](int32_t y, int32_t x, uint8_t bits) {
      while (bits) {
        const int bit = std::countl_zero(bits);
        put(y, x + bit);
        bits = uint8_t(bits & ~(0x80 >> bit));
      }
    });
  });
}

// The same for what can write eight pixels of a row at once, all of them on a device of that width: wide(y, x, bits)
// for those, put(y, x) for single ones at the device's edges.
template <class Wide, class Put>
void hsWalkBitsWide(const hsGMask& mask, const hsRegion* clip, uint32_t deviceWidth, Wide&& wide, Put&& put) {
  const auto wholeBytesFit = [&](const hsIntRect& rect) {
    const int32_t from = mask.fBounds.fLeft + ((rect.fLeft - mask.fBounds.fLeft) & ~7);
    const int32_t to = mask.fBounds.fLeft + ((rect.fRight - mask.fBounds.fLeft + 7) & ~7);
    return from >= 0 && to <= int32_t(deviceWidth);
  };
  if (mask.fBounds.IsEmpty()) return;
  hsWalkMaskRects(mask.fBounds, clip, [&](const hsIntRect& rect) {
    if (wholeBytesFit(rect)) return hsWalkBitBytes(mask, rect, wide);
    const hsRegion only(rect);
    hsWalkBits(mask, &only, put);
  });
}

// span(y, x, width) for each run of each row that the clip leaves, from the top left; null leaves everything.
template <class Span>
void hsWalkMaskSpans(const hsIntRect& bounds, const hsRegion* clip, Span&& span) {
  if (bounds.IsEmpty()) return;
  if (clip && !clip->Bounds().Intersects(bounds)) return;
  const bool whole = !clip || clip->Contains(bounds);
  for (int32_t y = bounds.fTop; y < bounds.fBottom; ++y) {
    if (whole) {
      span(y, bounds.fLeft, bounds.Width());
      continue;
    }
    int32_t left = bounds.fLeft, right = bounds.fRight;
    while (left < bounds.fRight && clip->ClipSpan(y, &left, &right)) {
      if (left < right) span(y, left, right - left);
      left = right + 1;
      right = bounds.fRight;
    }
  }
}
