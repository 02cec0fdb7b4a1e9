// What becomes of a span under each kind of clip. The walks are compiled once for each, so that no row asks which.
#pragma once

#include <algorithm>

#include "gfx/vector/hsgblitter.h"
#include "gfx/vector/hsregion.h"

template <typename Blitter>
struct hsSpansUnclipped {
  const hsIntRect* Bounds() const { return nullptr; }
  void Blit(int32_t y, int32_t left, int32_t right) const { blitter->BlitH(y, left, right - left); }

  Blitter* blitter;
};

template <typename Blitter>
struct hsSpansInRect {
  const hsIntRect* Bounds() const { return &rect; }
  void Blit(int32_t y, int32_t left, int32_t right) const {
    left = std::max(left, rect.fLeft);
    right = std::min(right, rect.fRight);
    if (left < right) blitter->BlitH(y, left, right - left);
  }

  Blitter* blitter;
  const hsIntRect& rect;
};

template <typename Blitter>
struct hsSpansInRegion {
  const hsIntRect* Bounds() const { return &region.Bounds(); }
  void Blit(int32_t y, int32_t left, int32_t right) const {
    // Cut to the bounds first: a shape can reach farther than a region's numbers.
    region.BlitClipped(y, std::max(left, Bounds()->fLeft), std::min(right, Bounds()->fRight), blitter);
  }

  Blitter* blitter;
  const hsRegion& region;
};

// Calls walk with the clip's kind.
template <typename Blitter, typename Walk>
void hsWithSpans(const hsRegion* clip, Blitter* blitter, const Walk& walk) {
  if (!clip)
    walk(hsSpansUnclipped<Blitter>{blitter});
  else if (clip->IsRect())
    walk(hsSpansInRect<Blitter>{blitter, clip->Bounds()});
  else
    walk(hsSpansInRegion<Blitter>{blitter, *clip});
}
