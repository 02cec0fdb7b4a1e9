// Upright rectangles: filled, framed, and as a line of one pixel. Nearly all that a page draws is one of these.
#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsgblitter.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"

namespace {

void BlitIfAny(const hsIntRect& r, hsGBlitter* blitter) {
  if (!r.IsEmpty()) blitter->BlitRect(r.fTop, r.fLeft, r.Width(), r.Height());
}

hsRect Grown(const hsRect& r, hsScalar dx, hsScalar dy) {
  return {hsWrapSub(r.fLeft, dx), hsWrapSub(r.fTop, dy), hsWrapAdd(r.fRight, dx), hsWrapAdd(r.fBottom, dy)};
}

// A column of the outline, between its first and last row.
hsIntRect SideOf(const hsIntRect& r, int32_t x) { return {x, r.fTop + 1, x + 1, r.fBottom - 1}; }

void HairUnclipped(const hsIntRect& r, hsGBlitter* blitter) {
  blitter->BlitH(r.fTop, r.fLeft, r.Width());
  if (r.Height() > 1) blitter->BlitH(r.fBottom - 1, r.fLeft, r.Width());
  BlitIfAny(SideOf(r, r.fLeft), blitter);
  if (r.Width() > 1) BlitIfAny(SideOf(r, r.fRight - 1), blitter);
}

// Row y or side x outside the clip is left out.
void HairInRect(const hsIntRect& r, const hsIntRect& clip, hsGBlitter* blitter) {
  const int32_t left = std::max(r.fLeft, clip.fLeft), right = std::min(r.fRight, clip.fRight);
  if (!hsAssert(left < right, "rect should have been clipped out")) return;
  const auto row = [&](int32_t y) {
    if (y >= clip.fTop && y < clip.fBottom) blitter->BlitH(y, left, right - left);
  };
  const auto side = [&](int32_t x) {
    hsIntRect cut = SideOf(r, x);
    if (cut.Intersect(clip)) BlitIfAny(cut, blitter);
  };
  row(r.fTop);
  if (r.Height() > 1) row(r.fBottom - 1);
  side(r.fLeft);
  if (r.Width() > 1) side(r.fRight - 1);
}

void HairInRegion(const hsIntRect& r, const hsRegion& clip, hsGBlitter* blitter) {
  const hsIntRect& bounds = clip.Bounds();
  const int32_t left = std::max(r.fLeft, bounds.fLeft), right = std::min(r.fRight, bounds.fRight);
  clip.BlitClipped(r.fTop, left, right, blitter);
  if (r.Height() > 1) clip.BlitClipped(r.fBottom - 1, left, right, blitter);
  const hsIntRect sides[2] = {SideOf(r, r.fLeft), SideOf(r, r.fRight - 1)};
  HSScan::FillIRect(&sides[0], &clip, blitter);
  if (r.Width() > 1) HSScan::FillIRect(&sides[1], &clip, blitter);
}

}  // namespace

void HSScan::FillIRect(const hsIntRect* rect, const hsRegion* clip, hsGBlitter* blitter) {
  if (!clip)
    BlitIfAny(*rect, blitter);
  else if (!rect->IsEmpty() && !clip->IsEmpty())
    clip->Blit(*rect, blitter);
}

void HSScan::FillRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter, bool atLeastOnePixel) {
  hsIntRect r;
  rect->Round(&r);
  if (atLeastOnePixel) {
    if (r.fLeft >= r.fRight) r.fRight = r.fLeft + 1;
    if (r.fTop >= r.fBottom) r.fBottom = r.fTop + 1;
  }
  FillIRect(&r, clip, blitter);
}

void HSScan::FrameRect(const hsRect* rect, hsScalar frameWidth, hsScalar frameHeight, const hsRegion* clip,
                       hsGBlitter* blitter) {
  if (!rect || !blitter || frameWidth < 0 || frameHeight < 0) {
    hsDebugMessage("bad HSScan::FrameRect params", 0);
    return;
  }
  if (clip && clip->IsEmpty()) return;
  const hsScalar halfWidth = frameWidth >> 1, halfHeight = frameHeight >> 1;
  const hsRect outerRect = Grown(*rect, halfWidth, halfHeight);
  hsIntRect inner, outer;
  Grown(*rect, -halfWidth, -halfHeight).Round(&inner);
  if (inner.IsEmpty()) return FillRect(&outerRect, clip, blitter, false);
  outerRect.Round(&outer);
  if (outer.fLeft == outer.fRight || outer.fTop == outer.fBottom || outer == inner) return;

  const hsIntRect top{outer.fLeft, outer.fTop, outer.fRight, inner.fTop};
  const hsIntRect bottom{outer.fLeft, inner.fBottom, outer.fRight, outer.fBottom};
  const hsIntRect left{outer.fLeft, inner.fTop, inner.fLeft, inner.fBottom};
  const hsIntRect right{inner.fRight, inner.fTop, outer.fRight, inner.fBottom};
  if (clip && !(clip->IsRect() && clip->Bounds().Contains(outer))) {
    if (!clip->Bounds().Intersects(outer)) return;
    for (const hsIntRect* strip : {&top, &left, &right, &bottom}) FillIRect(strip, clip, blitter);
    return;
  }
  if (!hsAssert(outer.Contains(inner), "bad rects")) return;
  for (const hsIntRect* strip : {&top, &bottom, &left, &right}) BlitIfAny(*strip, blitter);
}

void HSScan::HairRect(const hsRect* rect, const hsRegion* clip, hsGBlitter* blitter) {
  if (!hsAssert(rect && blitter, "bad params")) return;
  const hsIntRect r{rect->fLeft >> 16, rect->fTop >> 16, (rect->fRight >> 16) + 1, (rect->fBottom >> 16) + 1};
  if (!hsAssert(r.Width() >= 0 && r.Height() >= 0, "bad hairrect")) return;
  if (r.IsEmpty()) return;
  if (!clip) return HairUnclipped(r, blitter);
  if (clip->IsEmpty() || !clip->Bounds().Intersects(r)) return;
  if (!clip->IsRect()) return HairInRegion(r, *clip, blitter);
  if (clip->Bounds().Contains(r)) return HairUnclipped(r, blitter);
  HairInRect(r, clip->Bounds(), blitter);
}
