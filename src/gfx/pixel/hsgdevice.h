// A drawing surface as callers see it: a stack of matrices and clips, the public drawing calls, and the operations that
// a kind of surface replaces.
//
// A clip is a path in device coordinates, mapped when it is given; a later change of the matrix doesn't move it. Empty
// shapes are dropped here, so the operations never see them. A null attribute reports "nil param" and throws.
#pragma once

#include "gfx/foundation/hsmatrix.h"
#include "gfx/foundation/hsrefcnt.h"
#include "gfx/pixel/hsgcolor.h"
#include "gfx/vector/hspath.h"

class hsGAttribute;
class hsGBitmap;

struct hsGClipRecord {
  hsGClipRecord* fNext;
  hsPath fPath;  // device coordinates
};

struct hsGDeviceState {
  hsGDeviceState* fPrev;
  hsMatrix fMatrix;
  hsGClipRecord* fClipHead = nullptr;  // no records, no clip
};

class hsGDevice : public hsRefCnt {
 public:
  explicit hsGDevice(bool isRaster = false);
  ~hsGDevice() override;
  hsGDevice(const hsGDevice&) = delete;
  hsGDevice& operator=(const hsGDevice&) = delete;

  virtual void Save();
  virtual void SaveLayer(const hsRect* bounds, hsGAttribute* attr);
  virtual void Restore();  // with nothing saved, "nil param" and a throw
  // Sets another device's clips and matrix to this one's; null is ignored.
  virtual void Replay(hsGDevice* other) const;
  // A path that clips this state already adds nothing.
  virtual void ClipPath(const hsPath& path);
  virtual void ConcatMatrix(const hsMatrix& matrix);  // applied before the present one
  virtual void GetMatrix(hsMatrix* out) const;

  void DrawFull(hsGAttribute* attr);
  void DrawLine(const hsPoint* p0, const hsPoint* p1, hsGAttribute* attr);
  void DrawRect(const hsRect* rect, hsGAttribute* attr);
  void DrawOval(const hsRect* rect, hsGAttribute* attr);
  void DrawRoundRect(const hsRect* rect, hsScalar rx, hsScalar ry, hsGAttribute* attr);
  void DrawPath(const hsPath* path, hsGAttribute* attr);
  void DrawBitmap(const hsGBitmap* bitmap, hsScalar x, hsScalar y, hsGAttribute* attr);
  void DrawText(uint32_t length, const void* text, hsScalar x, hsScalar y, hsGAttribute* attr);
  void DrawPosText(uint32_t length, const void* text, const hsPoint positions[], const hsPoint directions[],
                   hsGAttribute* attr);

  void Translate(hsScalar dx, hsScalar dy);
  void Scale(hsScalar sx, hsScalar sy, hsScalar px = 0, hsScalar py = 0);
  void Rotate(hsFixed degrees, hsScalar px = 0, hsScalar py = 0);
  void Skew(hsScalar kx, hsScalar ky, hsScalar px = 0, hsScalar py = 0);
  void ClipRect(const hsRect& rect);
  void ClipIntRect(const hsIntRect& rect);
  void FillColor(const hsGColor* color);  // null does nothing
  void FillColor(uint16_t a, uint16_t r, uint16_t g, uint16_t b);
  // Through the matrix that drawing goes through. An inverse that does not exist leaves dst as it is.
  void MapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const;
  void MapRect(const hsRect* src, hsRect* dst) const;
  void InverseMapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const;
  void InverseMapRect(const hsRect* src, hsRect* dst) const;

  bool IsRaster() const { return fIsRaster; }

 protected:
  virtual void DoDrawFull(hsGAttribute*) {}
  virtual void DoDrawLine(const hsPoint& p0, const hsPoint& p1, hsGAttribute* attr);
  virtual void DoDrawRect(const hsRect& rect, hsGAttribute* attr);
  virtual void DoDrawOval(const hsRect& rect, hsGAttribute* attr);
  virtual void DoDrawRoundRect(const hsRect& rect, hsScalar rx, hsScalar ry, hsGAttribute* attr);
  virtual void DoDrawPath(const hsPath&, hsGAttribute*) {}
  virtual void DoDrawBitmap(const hsGBitmap&, hsScalar, hsScalar, hsGAttribute*) {}
  virtual void DoDrawText(uint32_t, const void*, hsScalar, hsScalar, hsGAttribute*) {}
  virtual void DoDrawPosText(uint32_t, const void*, const hsPoint[], const hsPoint[], hsGAttribute*) {}

  hsGDeviceState* fTop;

 private:
  void PopState();

  bool fIsRaster;
};
