#include "gfx/pixel/hsglayer.h"

#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/hsgrawdraw.h"

namespace {

hsGBitmap Describe32(uint32_t width, uint32_t height, std::vector<hsGColor32>* pixels) {
  pixels->assign(size_t{width} * height, 0);
  hsGBitmap bitmap(hsGBitmap::kConfig_ARGB32);
  bitmap.fImage = pixels->data();
  bitmap.fWidth = width;
  bitmap.fHeight = height;
  bitmap.fRowBytes = width * 4;
  return bitmap;
}

}  // namespace

hsGLayer::hsGLayer(const hsIntRect& rect, hsGDeviceState* savedState, hsGAttribute* attr)
    : fSavedState(savedState),
      fAttr(hsShare(attr)),
      fBitmap(Describe32(uint32_t(rect.Width()), uint32_t(rect.Height()), &fPixels)),
      fX(rect.fLeft),
      fY(rect.fTop) {}

void hsGLayer::Pop(hsGLayer** top) {
  hsGLayer* layer = *top;
  *top = layer->fNext;
  delete layer;
}

void hsGLayer::DrawInto(const hsGBitmap& target, const hsRegion* clip) const {
  const hsGAttribute plain;
  const hsGAttribute& attr = fAttr ? *fAttr : plain;
  std::vector<hsGColor32> pixels;
  hsGBitmap replacement;
  const hsGBitmap* drawn = &fBitmap;
  uint32_t width = fBitmap.fWidth, height = fBitmap.fHeight;
  if (attr.LayerFilter() && attr.LayerFilter()->MapSize(&width, &height)) {
    replacement = Describe32(width, height, &pixels);
    if (attr.LayerFilter()->Filter(fBitmap, replacement)) drawn = &replacement;
  }
  hsGRawDraw::DrawSprite(target, *drawn, fX, fY, &attr.Color(), attr.XferMode(), clip);
}
