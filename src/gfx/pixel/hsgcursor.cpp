#include "gfx/pixel/hsgcursor.h"

#include <algorithm>
#include <cstring>

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
  const int32_t left = fPosX - fHotX, top = fPosY - fHotY;
  return {left, top, left + int32_t(fImage.fWidth), top + int32_t(fImage.fHeight)};
}

void hsGCursor::Draw(const hsGBitmap& target) {
  hsIntRect rect = Bounds();
  if (!rect.Intersect(0, 0, int32_t(target.fWidth), int32_t(target.fHeight))) return;
  const size_t bytes = size_t(rect.Width()) * (target.fPixelSize / 8);
  fBackgroundPixels.resize(bytes * size_t(rect.Height()));
  fBackground = target;
  fBackground.fImage = fBackgroundPixels.data();
  fBackground.fRowBytes = uint32_t(bytes);
  fBackground.fWidth = uint32_t(rect.Width());
  fBackground.fHeight = uint32_t(rect.Height());
  for (int32_t y = 0; y < rect.Height(); ++y)
    std::memcpy(fBackground.Row<uint8_t>(y), target.Row<uint8_t>(rect.fTop + y) + rect.fLeft * (target.fPixelSize / 8),
                bytes);
  hsGRawDraw::DrawSprite(target, fImage, Bounds().fLeft, Bounds().fTop, nullptr, nullptr, nullptr);
}

void hsGCursor::RestoreBackground(const hsGBitmap& target) {
  hsIntRect rect = Bounds();
  if (!fBackground.fImage || !rect.Intersect(0, 0, int32_t(target.fWidth), int32_t(target.fHeight))) return;
  for (int32_t y = 0; y < rect.Height(); ++y)
    std::memcpy(target.Row<uint8_t>(rect.fTop + y) + rect.fLeft * (target.fPixelSize / 8), fBackground.Row<uint8_t>(y),
                fBackground.fRowBytes);
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
  if (!fHidden && rect.Intersects(fCursor->Bounds())) {
    fCursor->RestoreBackground(fTarget);
    fHidden = true;
  }
  return fNext && fNext->BoundRect(rect, clip);
}
