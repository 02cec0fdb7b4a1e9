// The draw core: the four things that define a draw, and for each primitive the decision which scan converter to run
// with which blitter.
//
// A bitmap without pixels is drawn on like any other, so that a bounder hears of everything, and nothing is stored.
//
// Shapes are in user space; a name with "Device" in it still maps its shape, but comes after the decisions that look
// at the shape itself.
#pragma once

#include "gfx/foundation/hsmatrix.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/pixel/hsgbounder.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsregion.h"

class hsGBlitter;
class hsGSpriteBlitter;
struct hsGMask;
struct hsGUnderline;

struct hsGRawDraw {
  // Without bitmap, matrix or attribute each reports "nil param" and throws.
  void DrawFull();
  void DrawLine(const hsPoint& p0, const hsPoint& p1);
  void DrawRect(const hsRect& rect);
  void DrawPath(const hsPath& path);
  void DrawMask(const hsGMask& mask);
  void DrawBitmap(const hsGBitmap& bitmap, hsScalar x, hsScalar y);
  // At whole device pixels, whatever the matrix.
  void DrawSprite(const hsGBitmap& bitmap, int32_t x, int32_t y);
  void DrawText(uint32_t length, const void* text, hsScalar x, hsScalar y);
  void DrawPosText(uint32_t length, const void* text, const hsPoint positions[], const hsPoint directions[]);
  // Single bytes at a device position, which moves on to the end of the text; the underline may be null.
  void DrawFastText(uint32_t length, const void* text, hsPoint* point, const hsGUnderline* underline);
  void Erase(const hsGColor& color);
  // Moves the pixels of rect by whole pixels. outDirty, if given, becomes what was uncovered.
  void Scroll(const hsIntRect& rect, int32_t dx, int32_t dy, hsRegion* outDirty);

  // The same copy onto any bitmap. A null color is opaque; a null clip is the whole target. The cached blitter, if
  // given, is given the source instead of choosing one.
  static void DrawSprite(const hsGBitmap& target, const hsGBitmap& bitmap, int32_t x, int32_t y, const hsGColor* color,
                         hsGXferMode* mode, const hsRegion* clip, hsGSpriteBlitter* cached = nullptr);

  // The clip, or the bitmap's rectangle, built in storage, where there is none.
  const hsRegion* ClipOrBitmap(hsRegion* storage) const;
  // The paint's blitter for that type of mask, or one that draws nothing where the bitmap has no pixels. The caller
  // holds a reference.
  hsGBlitter* GetBlitter(int32_t maskType) const;

  const hsGBitmap* fBitmap = nullptr;
  const hsMatrix* fMatrix = nullptr;
  hsGAttribute* fAttr = nullptr;
  const hsRegion* fClip = nullptr;  // null for the whole bitmap
  hsGBounder* fBounder = nullptr;   // or null

 private:
  void Check() const;
  bool HasPathEffects() const { return fAttr->PathEffect() || fAttr->Rasterizer(); }
  void DrawDevicePath(const hsPath& path, uint32_t flags);
  void DrawDeviceRect(const hsRect& deviceRect, uint32_t flags, hsScalar width);
  void DrawDeviceQuad(const hsPoint points[4]);
  hsGBlitter* BitmapBlitter(const hsGBitmap& source, const hsMatrix& matrix) const;  // null for nothing to draw
  void DrawRasterized(const hsPath& path);
  hsPath Stroked(const hsPath& path, hsScalar width) const;
};
