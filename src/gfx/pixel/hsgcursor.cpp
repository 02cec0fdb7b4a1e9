#include "gfx/pixel/hsgcursor.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgrawdraw.h"

void hsGCursor::SetImage(const hsGBitmap& bitmap, int32_t hotX, int32_t hotY) {
  hsThrowIfBadParam(bitmap.fPixelSize != 8 && bitmap.fPixelSize != 16 && bitmap.fPixelSize != 32);
  fImage = bitmap;
  fHotX = hotX;
  fHotY = hotY;
}

void hsGCursor::SetPosition(const hsGBitmap& target, int32_t x, int32_t y) {
  fPosX = std::clamp(x, 0, std::max(0, int32_t(target.fWidth) - 1));
  fPosY = std::clamp(y, 0, std::max(0, int32_t(target.fHeight) - 1));
}

hsIntRect hsGCursor::Bounds() const {
  const int32_t left = hsWrapSub(fPosX, fHotX), top = hsWrapSub(fPosY, fHotY);
  return {left, top, hsWrapAdd(left, int32_t(fImage.fWidth)), hsWrapAdd(top, int32_t(fImage.fHeight))};
}

bool hsGCursor::Touches(const hsIntRect& rect) const {
  return rect.Intersects(Bounds()) || (fBackground.fImage && rect.Intersects(fSavedRect));
}

void hsGCursor::Draw(const hsGBitmap& target) try {
  fBackground.fImage = nullptr;
  hsIntRect rect = Bounds();
  if (!target.fImage || !rect.Intersect(0, 0, int32_t(target.fWidth), int32_t(target.fHeight))) return;
  const size_t bytes = size_t(rect.Width()) * (target.fPixelSize / 8);
  fBackgroundPixels.resize(bytes * size_t(rect.Height()));
  fSavedRect = rect;
  fBackground = target;
  fBackground.fImage = fBackgroundPixels.data();
  fBackground.fRowBytes = uint32_t(bytes);
  fBackground.fWidth = uint32_t(rect.Width());
  fBackground.fHeight = uint32_t(rect.Height());
  for (int32_t y = 0; y < rect.Height(); ++y)
    std::memcpy(fBackground.Row<uint8_t>(y), target.Row<uint8_t>(rect.fTop + y) + rect.fLeft * (target.fPixelSize / 8),
                bytes);
  hsGRawDraw::DrawSprite(target, fImage, Bounds().fLeft, Bounds().fTop, nullptr, nullptr, nullptr);
} catch (const hsException&) {
  // It has been reported, and whoever draws below the cursor must not hear of it.
} catch (const std::bad_alloc&) {
  // The cursor is not seen for once.
}

void hsGCursor::RestoreBackground(const hsGBitmap& target) {
  if (!fBackground.fImage) return;
  const hsGBitmap& kept = fBackground;
  const bool fits = target.fImage && target.fPixelSize == kept.fPixelSize &&
                    uint32_t(fSavedRect.fRight) <= target.fWidth && uint32_t(fSavedRect.fBottom) <= target.fHeight;
  for (int32_t y = 0; fits && y < fSavedRect.Height(); ++y)
    std::memcpy(target.Row<uint8_t>(fSavedRect.fTop + y) + fSavedRect.fLeft * (target.fPixelSize / 8),
                kept.Row<uint8_t>(y), kept.fRowBytes);
  fBackground.fImage = nullptr;
}

hsGCursorHider::hsGCursorHider(hsGCursor* cursor, const hsGBitmap& target, hsGBounder** bounder)
    : fCursor(cursor && cursor->IsVisible() ? cursor : nullptr), fTarget(target), fSlot(bounder), fNext(*bounder) {
  if (fCursor) *fSlot = this;
}

hsGCursorHider::~hsGCursorHider() {
  if (!fCursor) return;
  *fSlot = fNext;
  if (fHidden) fCursor->Draw(fTarget);
}

bool hsGCursorHider::BoundRect(const hsIntRect& rect, const hsRegion* clip) {
  if (!fHidden && fCursor->Touches(rect)) {
    fCursor->RestoreBackground(fTarget);
    fHidden = true;
  }
  return fNext && fNext->BoundRect(rect, clip);
}
