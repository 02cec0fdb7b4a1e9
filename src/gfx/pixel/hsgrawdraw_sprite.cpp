// Bitmaps at whole pixels, and the moving of pixels already drawn.
#include <algorithm>
#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/pixel/hsgsprite_choose.h"
#include "gfx/vector/hsregioniter.h"

namespace {

constexpr hsGColor kOpaqueWhite = {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF};

// The part of the bitmap from (dx, dy) on, as a descriptor of its own.
hsGBitmap From(const hsGBitmap& bitmap, int32_t dx, int32_t dy) {
  if (bitmap.fPixelSize == 0) hsThrowReported("unsupported pixel size", bitmap.fPixelSize, hsException::kGeneric);
  hsGBitmap part = bitmap;
  part.fImage = bitmap.Row<uint8_t>(dy) + int64_t{dx} * (bitmap.fPixelSize / 8);
  part.fWidth -= uint32_t(dx);
  part.fHeight -= uint32_t(dy);
  return part;
}

// Moves one run of pixels of a row, which may overlap where it goes.
void MoveSpan(const hsGBitmap& bitmap, int32_t y, int32_t left, int32_t right, int32_t dx, int32_t dy) {
  const int32_t bytes = bitmap.fPixelSize / 8;
  const uint8_t* from = bitmap.Row<uint8_t>(y) + left * bytes;
  uint8_t* to = bitmap.Row<uint8_t>(y + dy) + (left + dx) * bytes;
  std::memmove(to, from, size_t(right - left) * size_t(bytes));
}

}  // namespace

void hsGRawDraw::DrawSprite(const hsGBitmap& target, const hsGBitmap& bitmap, int32_t x, int32_t y,
                            const hsGColor* color, hsGXferMode* mode, const hsRegion* clip, hsGSpriteBlitter* cached) {
  if (!target.fImage) return;
  const hsIntRect requested = {x, y, hsWrapAdd(x, int32_t(bitmap.fWidth)), hsWrapAdd(y, int32_t(bitmap.fHeight))};
  hsIntRect rect = {0, 0, int32_t(target.fWidth), int32_t(target.fHeight)};
  if (!rect.Intersect(requested)) return;
  if (clip && !rect.Intersect(clip->Bounds())) return;
  if (!hsAssert(requested.Contains(rect), "bad clipping")) return;

  const hsGBitmap part = rect.fLeft != x || rect.fTop != y ? From(bitmap, rect.fLeft - x, rect.fTop - y) : bitmap;
  const bool reuses = cached && cached->Retarget(part, rect.fLeft, rect.fTop);
  const hsRef<hsGSpriteBlitter> blitter =
      reuses ? hsShare(cached)
             : hsAdopt(ChooseSpriteBlitter(target, part, rect.fLeft, rect.fTop, color ? *color : kOpaqueWhite, mode));
  if (!blitter) return;
  if (clip) {
    clip->Blit(rect, blitter.get());
  } else {
    blitter->BlitRect(rect.fTop, rect.fLeft, rect.Width(), rect.Height());
  }
}

void hsGRawDraw::DrawSprite(const hsGBitmap& bitmap, int32_t x, int32_t y) {
  Check();
  if (!bitmap.fImage) return;
  const hsIntRect bounds = {x, y, hsWrapAdd(x, int32_t(bitmap.fWidth)), hsWrapAdd(y, int32_t(bitmap.fHeight))};
  if (fBounder && fBounder->BoundRect(bounds, fClip)) return;
  DrawSprite(*fBitmap, bitmap, x, y, &fAttr->Color(), fAttr->XferMode(), fClip);
}

void hsGRawDraw::Scroll(const hsIntRect& rect, int32_t dx, int32_t dy, hsRegion* outDirty) {
  Check();
  if (outDirty) outDirty->SetEmpty();
  hsIntRect bounds = {0, 0, int32_t(fBitmap->fWidth), int32_t(fBitmap->fHeight)};
  if (fBounder) {
    hsIntRect touched = rect;
    (dx < 0 ? touched.fLeft : touched.fRight) = hsWrapAdd(dx < 0 ? touched.fLeft : touched.fRight, dx);
    (dy < 0 ? touched.fTop : touched.fBottom) = hsWrapAdd(dy < 0 ? touched.fTop : touched.fBottom, dy);
    if (fClip && !touched.Intersect(fClip->Bounds())) touched = {0, 0, 0, 0};
    if (fBounder->BoundRect(touched, fClip)) return;
  }
  if ((dx == 0 && dy == 0) || !fBitmap->fImage) return;
  // Nothing that moves by its own size stays inside, and a region can't be moved farther than its numbers go.
  const auto tooFar = [](int32_t by, uint32_t size) { return hsMagnitude32(by) >= std::min<uint32_t>(size, 32767); };
  if (tooFar(dx, fBitmap->fWidth) || tooFar(dy, fBitmap->fHeight)) return;
  if (fBitmap->fPixelSize != 8 && fBitmap->fPixelSize != 16)
    hsThrowReported("unsupported bitdepth", fBitmap->fPixelSize, hsException::kGeneric);

  // What may be seen and may be written: the clip on the bitmap.
  hsRegion inside(bounds);
  if (fClip) inside.Intersect(*fClip, inside);
  hsRegion source;
  source.Intersect(inside, rect);
  hsRegion moved = source;
  moved.Translate(dx, dy);
  moved.Intersect(moved, inside);
  if (moved.IsEmpty()) return;
  source = moved;
  source.Translate(hsWrapNeg(dx), hsWrapNeg(dy));

  // Rows go against the movement, so that none is overwritten before it was read.
  if (source.IsRect()) {
    const hsIntRect& r = source.Bounds();
    const bool upward = dy > 0 || (dy == 0 && dx > 0);
    for (int32_t i = 0; i < r.Height(); ++i)
      MoveSpan(*fBitmap, upward ? r.fBottom - 1 - i : r.fTop + i, r.fLeft, r.fRight, dx, dy);
  } else {
    int32_t y, left, right;
    if (dy > 0 || (dy == 0 && dx > 0)) {
      for (hsRegionReverseRowIter rows(source); rows.Next(&y, &left, &right);)
        MoveSpan(*fBitmap, y, left, right, dx, dy);
    } else {
      for (hsRegionRowIter rows(source); rows.Next(&y, &left, &right);) MoveSpan(*fBitmap, y, left, right, dx, dy);
    }
  }
  if (outDirty) outDirty->Difference(hsRegion(rect), moved);
}
