// Walks over masks, bit by bit or span by span, under a clip.
#pragma once

#include <bit>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/vector/hsregioniter.h"

// put(y, x) for each set bit of the rectangle, which lies inside the mask; padding bits are never looked at.
template <class Put>
void hsWalkBitRect(const hsGMask& mask, const hsIntRect& rect, Put&& put) {
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
      while (bits) {
        const int bit = std::countl_zero(bits);
        put(y, mask.fBounds.fLeft + i * 8 + bit);
        bits = uint8_t(bits & ~(0x80 >> bit));
      }
    }
  }
}

// The same for all of the mask that the clip leaves; nil leaves everything.
template <class Put>
void hsWalkBits(const hsGMask& mask, const hsRegion* clip, Put&& put) {
  if (mask.fBounds.IsEmpty()) return;
  if (!clip) return hsWalkBitRect(mask, mask.fBounds, put);
  for (hsRegionClipRectIter iter(*clip, mask.fBounds); !iter.IsDone(); iter.Next())
    hsWalkBitRect(mask, iter.Rect(), put);
}

// span(y, x, width) for each run of each row that the clip leaves, from the top left; nil leaves everything.
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
