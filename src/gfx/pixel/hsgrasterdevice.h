// A device that draws into a bitmap.
//
// User coordinates are device coordinates; the origin says which of them the bitmap's top left corner has. Total matrix
// and total clip are worked out when a draw needs them and something has changed.
#pragma once

#include "gfx/pixel/hsgcursor.h"
#include "gfx/pixel/hsgdevice.h"
#include "gfx/pixel/hsgrawdraw.h"

class hsGLayerFilter;
struct hsGLayer;

class hsGRasterDevice : public hsGDevice {
 public:
  hsGRasterDevice();
  ~hsGRasterDevice() override;

  // A layer's bitmap has 32 bits and can't be erased, so a layer is asked for but does not open: this reports "unknown
  // config" and throws.
  void SaveLayer(const hsRect* bounds, hsGAttribute* attr) override;
  void Restore() override;
  void ClipPath(const hsPath& path) override;
  void ConcatMatrix(const hsMatrix& matrix) override;
  void GetMatrix(hsMatrix* out) const override;

  virtual void SetBounder(hsGBounder* bounder);
  virtual void SetOrigin(int32_t x, int32_t y);
  // The target; null for none. Pixels are allocated, as zeros, where the bitmap has none; more than 2 GB of them, or
  // rows that don't hold their pixels, fail "bad param" and change nothing.
  virtual void SetBitmap(const hsGBitmap* bitmap);
  virtual void EraseColor(const hsGColor& color);

  // A target of its own, with rows of whole words. An 8-bit one gets the default palette. A rectangle that is reversed
  // has no pixels.
  void SetBounds(const hsIntRect* rect, uint8_t config);
  void SetSize(uint32_t width, uint32_t height, uint8_t config, hsGColorTable* colorTable);
  uint8_t GetBounds(hsIntRect* out) const;  // answers the config
  void GetOrigin(hsIntPoint* out) const { *out = {fOriginX, fOriginY}; }
  // With detach the pixels pass to the caller, who frees them by hsMemory::Delete.
  void GetBitmap(hsGBitmap* out, bool detach = false);
  // An extra clip in device coordinates that stays the caller's; null for none.
  void SetClipRgn(const hsRegion* region);
  void SetCursor(hsGCursor* cursor) { fCursor = hsShare(cursor); }
  void EraseTransparent() { EraseColor(hsGColor{0, 0, 0, 0}); }
  void EraseColor(uint16_t r, uint16_t g, uint16_t b) { EraseColor(hsGColor{0xFFFF, r, g, b}); }
  void EraseColor(uint16_t a, uint16_t r, uint16_t g, uint16_t b) { EraseColor(hsGColor{a, r, g, b}); }
  void ScrollRect(const hsIntRect& rect, int32_t dx, int32_t dy, hsRegion* outDirty);
  void DrawFastText(uint32_t length, const void* text, hsPoint* point, const hsGUnderline* underline,
                    hsGAttribute* attr);
  // At whole pixels: only the translation of origin and layers counts, whatever the matrix.
  void CopyBitmap(const hsGBitmap* bitmap, hsScalar x, hsScalar y, hsGAttribute* attr);

 protected:
  void DoDrawFull(hsGAttribute* attr) override;
  void DoDrawLine(const hsPoint& p0, const hsPoint& p1, hsGAttribute* attr) override;
  void DoDrawRect(const hsRect& rect, hsGAttribute* attr) override;
  void DoDrawPath(const hsPath& path, hsGAttribute* attr) override;
  void DoDrawBitmap(const hsGBitmap& bitmap, hsScalar x, hsScalar y, hsGAttribute* attr) override;
  void DoDrawText(uint32_t length, const void* text, hsScalar x, hsScalar y, hsGAttribute* attr) override;
  void DoDrawPosText(uint32_t length, const void* text, const hsPoint positions[], const hsPoint directions[],
                     hsGAttribute* attr) override;

 private:
  template <class Draw>
  void Drawing(hsGAttribute* attr, Draw&& draw);
  void Update();
  void FreePixels();
  void SetTarget(const hsGBitmap* target);
  void CloseLayer();
  void AddressChanged() { fClipDirty = fMatrixDirty = true; }

  hsGRawDraw fDraw;
  int32_t fOriginX = 0, fOriginY = 0;  // device coordinates of the bitmap's corner
  hsGBitmap fOwnBitmap;
  bool fClipDirty = true;
  bool fOwnsPixels = false;
  hsMatrix fTotalMatrix;
  hsRegion fTotalClip;
  bool fMatrixDirty = true;
  const hsRegion* fUserClip = nullptr;
  hsGLayer* fLayers = nullptr;                   // the top one; null when drawing to fOwnBitmap
  int32_t fLayerOffsetX = 0, fLayerOffsetY = 0;  // sum of the open layers' corners
  hsRef<hsGCursor> fCursor;
  hsRef<hsGBounder> fBounder;  // of fDraw
  hsGAttribute fPlainPaint;    // what the draw core is given where no paint plays a part
};
