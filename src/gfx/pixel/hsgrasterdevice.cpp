#include "gfx/pixel/hsgrasterdevice.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "gfx/foundation/hsdebug.h"
#include "gfx/foundation/hsmemory.h"
#include "gfx/pixel/hsglayer.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/hsgxfermode.h"

namespace {

// The layer that an attribute's layer filter asks for: it takes the transfer mode for itself while it is open.
class LayerScope {
 public:
  LayerScope(hsGDevice* device, hsGAttribute* attr) : fDevice(attr->LayerFilter() ? device : nullptr), fAttr(attr) {
    if (!fDevice) return;
    fDevice->SaveLayer(nullptr, attr);
    fMode = hsShare(attr->XferMode());
    attr->SetXferMode(nullptr);
  }
  ~LayerScope() { Close(); }
  // Draws the layer back, which may throw; left to the destructor only when the draw itself has thrown.
  void Close() {
    if (!fDevice) return;
    fAttr->SetXferMode(fMode.get());
    std::exchange(fDevice, nullptr)->Restore();
  }
  LayerScope(const LayerScope&) = delete;
  LayerScope& operator=(const LayerScope&) = delete;

 private:
  hsGDevice* fDevice;
  hsGAttribute* fAttr;
  hsRef<hsGXferMode> fMode;
};

uint32_t CheckedSize(uint64_t size) {
  hsThrowIfBadParam(size > uint32_t{INT32_MAX});
  return uint32_t(size);
}

// Of pixels that the device will allocate. Rows of 24-bit pixels may be short: nothing draws on them.
void CheckSizes(const hsGBitmap& bitmap) {
  const uint64_t needed = bitmap.fPixelSize == 24 ? 0 : uint64_t{bitmap.fWidth} * (bitmap.fPixelSize / 8);
  hsThrowIfBadParam(bitmap.fRowBytes < needed);
  CheckedSize(bitmap.ImageSize());
}

// 16.16 to the pixel that a translation by it lands on.
int32_t Placed(hsScalar v) { return hsFixedRound(v); }

}  // namespace

hsGRasterDevice::hsGRasterDevice() : hsGDevice(true) {
  fDraw.fBitmap = &fOwnBitmap;
  fDraw.fMatrix = &fTotalMatrix;
  fDraw.fClip = &fTotalClip;
}

hsGRasterDevice::~hsGRasterDevice() {
  while (fLayers) hsGLayer::Pop(&fLayers);
  FreePixels();
}

// ---- bookkeeping

void hsGRasterDevice::Update() {
  if (fClipDirty) {
    const hsGBitmap& target = *fDraw.fBitmap;
    fTotalClip.SetRect(fLayerOffsetX, fLayerOffsetY, hsWrapAdd(fLayerOffsetX, int32_t(target.fWidth)),
                       hsWrapAdd(fLayerOffsetY, int32_t(target.fHeight)));
    if (fUserClip) fTotalClip.Intersect(fTotalClip, *fUserClip);
    for (const hsGDeviceState* state = fTop; state; state = state->fPrev)
      for (const hsGClipRecord* record = state->fClipHead; record; record = record->fNext)
        fTotalClip.SetPath(record->fPath, hsRegion::kIntersectPath);
    if (fLayerOffsetX != 0 || fLayerOffsetY != 0) fTotalClip.Translate(-fLayerOffsetX, -fLayerOffsetY);
    fClipDirty = false;
  }
  if (fMatrixDirty) {
    GetMatrix(&fTotalMatrix);
    fMatrixDirty = false;
  }
}

void hsGRasterDevice::GetMatrix(hsMatrix* out) const {
  if (!out) return;
  *out = fTop->fMatrix;
  out->PostTranslate(hsIntToFixed(hsWrapNeg(hsWrapAdd(fOriginX, fLayerOffsetX))),
                     hsIntToFixed(hsWrapNeg(hsWrapAdd(fOriginY, fLayerOffsetY))));
}

void hsGRasterDevice::ClipPath(const hsPath& path) {
  hsGDevice::ClipPath(path);
  fClipDirty = true;
}

void hsGRasterDevice::ConcatMatrix(const hsMatrix& matrix) {
  hsGDevice::ConcatMatrix(matrix);
  fMatrixDirty = true;
}

void hsGRasterDevice::SetBounder(hsGBounder* bounder) {
  fBounder = hsShare(bounder);
  fDraw.fBounder = bounder;
}

void hsGRasterDevice::SetOrigin(int32_t x, int32_t y) {
  fOriginX = x;
  fOriginY = y;
  fMatrixDirty = true;
}

void hsGRasterDevice::SetClipRgn(const hsRegion* region) {
  fUserClip = region;
  fClipDirty = true;
}

// ---- the target

void hsGRasterDevice::FreePixels() {
  if (!fOwnsPixels) return;
  hsMemory::Delete(fOwnBitmap.fImage);
  fOwnBitmap.fImage = nullptr;
  fOwnsPixels = false;
}

void hsGRasterDevice::SetBitmap(const hsGBitmap* bitmap) {
  if (!bitmap) return FreePixels();
  hsGBitmap target = *bitmap;
  if (!bitmap->fImage) {
    CheckSizes(target);
    target.fImage = hsMemory::New(int32_t(target.ImageSize()));
    std::memset(target.fImage, 0, size_t(target.ImageSize()));
  }
  FreePixels();
  if (target.fWidth != fOwnBitmap.fWidth || target.fHeight != fOwnBitmap.fHeight) fClipDirty = true;
  fOwnBitmap = target;
  fOwnsPixels = !bitmap->fImage;
}

void hsGRasterDevice::SetBounds(const hsIntRect* rect, uint8_t config) {
  if (!hsAssert(rect, "nil bounds")) return;
  hsGBitmap bitmap(config);
  bitmap.fWidth = CheckedSize(uint64_t(std::max<int64_t>(int64_t{rect->fRight} - rect->fLeft, 0)));
  bitmap.fHeight = CheckedSize(uint64_t(std::max<int64_t>(int64_t{rect->fBottom} - rect->fTop, 0)));
  bitmap.fRowBytes = CheckedSize((uint64_t{bitmap.fPixelSize} * bitmap.fWidth + 31) >> 5 << 2);
  if (config == hsGBitmap::kConfig_Index8) {
    bitmap.fColorTable = hsMake<hsGColorTable>();
    bitmap.fColorTable->SetDefaultCube();
  }
  CheckSizes(bitmap);
  SetOrigin(rect->fLeft, rect->fTop);
  SetBitmap(&bitmap);
}

void hsGRasterDevice::SetSize(uint32_t width, uint32_t height, uint8_t config, hsGColorTable* colorTable) {
  hsGBitmap bitmap(config);
  bitmap.fWidth = CheckedSize(width);
  bitmap.fHeight = CheckedSize(height);
  // Of 24-bit pixels this counts two bytes, where SetBounds counts three.
  bitmap.fRowBytes = CheckedSize(((uint64_t{width} << (bitmap.fPixelSize >> 4)) + 3) & ~uint64_t{3});
  if (config == hsGBitmap::kConfig_Index8) bitmap.SetColorTable(colorTable);
  SetBitmap(&bitmap);
}

uint8_t hsGRasterDevice::GetBounds(hsIntRect* out) const {
  out->Set(fOriginX, fOriginY, hsWrapAdd(fOriginX, int32_t(fOwnBitmap.fWidth)),
           hsWrapAdd(fOriginY, int32_t(fOwnBitmap.fHeight)));
  return fOwnBitmap.fConfig;
}

void hsGRasterDevice::GetBitmap(hsGBitmap* out, bool detach) {
  *out = fOwnBitmap;
  if (detach) fOwnsPixels = false;
}

// ---- layers

void hsGRasterDevice::SetTarget(const hsGBitmap* target) {
  fDraw.fBitmap = target;
  AddressChanged();
}

void hsGRasterDevice::SaveLayer(const hsRect* bounds, hsGAttribute* attr) {
  Update();
  hsIntRect rect = fTotalClip.Bounds();
  if (bounds) {
    hsRect mapped;
    hsIntRect wanted;
    fTotalMatrix.MapRect(bounds, &mapped);
    mapped.RoundOut(&wanted);
    if (!rect.Intersect(wanted)) rect = {0, 0, 0, 0};
  }
  auto layer = std::make_unique<hsGLayer>(rect, fTop, attr);
  layer->fBitmap.Erase({0, 0, 0, 0});
  layer->fNext = fLayers;
  fLayers = layer.release();
  fLayerOffsetX += fLayers->fX;
  fLayerOffsetY += fLayers->fY;
  SetTarget(&fLayers->fBitmap);
  Save();
}

void hsGRasterDevice::Restore() {
  hsGDevice::Restore();
  AddressChanged();
  if (fLayers && fLayers->fSavedState == fTop) CloseLayer();
}

void hsGRasterDevice::CloseLayer() {
  hsGLayer* layer = std::exchange(fLayers, fLayers->fNext);
  const std::unique_ptr<hsGLayer> owned(layer);
  fLayerOffsetX -= layer->fX;
  fLayerOffsetY -= layer->fY;
  SetTarget(fLayers ? &fLayers->fBitmap : &fOwnBitmap);
  Update();
  layer->DrawInto(*fDraw.fBitmap, &fTotalClip);
}

// ---- drawing

// What every draw does around itself.
template <class Draw>
void hsGRasterDevice::Drawing(hsGAttribute* attr, Draw&& draw) {
  LayerScope layer(this, attr);
  {
    const hsGCursorHider hider(fCursor.get(), *fDraw.fBitmap, &fDraw.fBounder);
    Update();
    fDraw.fAttr = attr;
    draw();
  }
  layer.Close();
}

void hsGRasterDevice::DoDrawFull(hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawFull(); });
}

void hsGRasterDevice::DoDrawLine(const hsPoint& p0, const hsPoint& p1, hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawLine(p0, p1); });
}

void hsGRasterDevice::DoDrawRect(const hsRect& rect, hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawRect(rect); });
}

void hsGRasterDevice::DoDrawPath(const hsPath& path, hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawPath(path); });
}

void hsGRasterDevice::DoDrawBitmap(const hsGBitmap& bitmap, hsScalar x, hsScalar y, hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawBitmap(bitmap, x, y); });
}

void hsGRasterDevice::DoDrawText(uint32_t length, const void* text, hsScalar x, hsScalar y, hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawText(length, text, x, y); });
}

void hsGRasterDevice::DoDrawPosText(uint32_t length, const void* text, const hsPoint positions[],
                                    const hsPoint directions[], hsGAttribute* attr) {
  Drawing(attr, [&] { fDraw.DrawPosText(length, text, positions, directions); });
}

void hsGRasterDevice::DrawFastText(uint32_t length, const void* text, hsPoint* point, const hsGUnderline* underline,
                                   hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  Drawing(attr, [&] { fDraw.DrawFastText(length, text, point, underline); });
}

void hsGRasterDevice::CopyBitmap(const hsGBitmap* bitmap, hsScalar x, hsScalar y, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (!hsAssert(bitmap, "nil param") || bitmap->fWidth == 0 || bitmap->fHeight == 0) return;
  Drawing(attr, [&] {
    fDraw.DrawSprite(*bitmap, Placed(x) - fOriginX - fLayerOffsetX, Placed(y) - fOriginY - fLayerOffsetY);
  });
}

void hsGRasterDevice::EraseColor(const hsGColor& color) {
  const hsGCursorHider hider(fCursor.get(), *fDraw.fBitmap, &fDraw.fBounder);
  fDraw.fAttr = &fPlainPaint;
  fDraw.Erase(color);
}

void hsGRasterDevice::ScrollRect(const hsIntRect& rect, int32_t dx, int32_t dy, hsRegion* outDirty) {
  const hsGCursorHider hider(fCursor.get(), *fDraw.fBitmap, &fDraw.fBounder);
  Update();
  fDraw.fAttr = &fPlainPaint;
  fDraw.Scroll(rect, dx, dy, outDirty);
}
