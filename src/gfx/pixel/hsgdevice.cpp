#include "gfx/pixel/hsgdevice.h"

#include <utility>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgattribute.h"
#include "gfx/pixel/hsgbitmap.h"

hsGDevice::hsGDevice(bool isRaster) : fTop(new hsGDeviceState{nullptr, {}}), fIsRaster(isRaster) {}

hsGDevice::~hsGDevice() {
  while (fTop) PopState();
}

void hsGDevice::PopState() {
  hsGDeviceState* state = std::exchange(fTop, fTop->fPrev);
  while (hsGClipRecord* record = state->fClipHead) {
    state->fClipHead = record->fNext;
    delete record;
  }
  delete state;
}

void hsGDevice::Save() { fTop = new hsGDeviceState{fTop, fTop->fMatrix}; }

void hsGDevice::SaveLayer(const hsRect*, hsGAttribute*) { Save(); }

void hsGDevice::Restore() {
  hsThrowIfNilParam(fTop);
  hsThrowIfNilParam(fTop->fPrev);
  PopState();
}

void hsGDevice::Replay(hsGDevice* other) const {
  if (!other) return;
  other->Save();
  for (const hsGDeviceState* state = fTop; state; state = state->fPrev)
    for (const hsGClipRecord* record = state->fClipHead; record; record = record->fNext) other->ClipPath(record->fPath);
  other->ConcatMatrix(fTop->fMatrix);
}

void hsGDevice::ClipPath(const hsPath& path) {
  hsPath mapped = path;
  if (fTop->fMatrix.GetType()) mapped.Transform(&fTop->fMatrix);
  for (const hsGClipRecord* record = fTop->fClipHead; record; record = record->fNext)
    if (record->fPath == mapped) return;
  fTop->fClipHead = new hsGClipRecord{fTop->fClipHead, std::move(mapped)};
}

void hsGDevice::ConcatMatrix(const hsMatrix& matrix) { fTop->fMatrix.SetConcat(fTop->fMatrix, matrix); }

void hsGDevice::GetMatrix(hsMatrix* out) const {
  if (out) *out = fTop->fMatrix;
}

// ---- drawing

void hsGDevice::DrawFull(hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  DoDrawFull(attr);
}

void hsGDevice::DrawLine(const hsPoint* p0, const hsPoint* p1, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (hsAssert(p0 && p1, "nil params")) DoDrawLine(*p0, *p1, attr);
}

void hsGDevice::DrawRect(const hsRect* rect, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (hsAssert(rect, "nil param") && !rect->IsEmpty()) DoDrawRect(*rect, attr);
}

void hsGDevice::DrawOval(const hsRect* rect, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (hsAssert(rect, "nil param") && !rect->IsEmpty()) DoDrawOval(*rect, attr);
}

void hsGDevice::DrawRoundRect(const hsRect* rect, hsScalar rx, hsScalar ry, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (hsAssert(rect, "nil param") && !rect->IsEmpty()) DoDrawRoundRect(*rect, rx, ry, attr);
}

void hsGDevice::DrawPath(const hsPath* path, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (hsAssert(path, "nil param") && !path->IsEmpty()) DoDrawPath(*path, attr);
}

void hsGDevice::DrawBitmap(const hsGBitmap* bitmap, hsScalar x, hsScalar y, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (!hsAssert(bitmap, "nil param") || bitmap->fWidth == 0 || bitmap->fHeight == 0) return;
  DoDrawBitmap(*bitmap, x, y, attr);
}

void hsGDevice::DrawText(uint32_t length, const void* text, hsScalar x, hsScalar y, hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (length != 0 && hsAssert(text, "nil param")) DoDrawText(length, text, x, y, attr);
}

void hsGDevice::DrawPosText(uint32_t length, const void* text, const hsPoint positions[], const hsPoint directions[],
                            hsGAttribute* attr) {
  hsThrowIfNilParam(attr);
  if (length != 0 && hsAssert(text && positions, "nil param")) DoDrawPosText(length, text, positions, directions, attr);
}

void hsGDevice::DoDrawLine(const hsPoint& p0, const hsPoint& p1, hsGAttribute* attr) {
  hsPath path;
  path.MoveTo(p0);
  path.LineTo(p1);
  const hsGFrameScope framed(attr, true);
  DoDrawPath(path, attr);
}

void hsGDevice::DoDrawRect(const hsRect& rect, hsGAttribute* attr) {
  hsPath path;
  path.AddRect(&rect);
  DoDrawPath(path, attr);
}

void hsGDevice::DoDrawOval(const hsRect& rect, hsGAttribute* attr) {
  hsPath path;
  path.AddOval(&rect);
  DoDrawPath(path, attr);
}

void hsGDevice::DoDrawRoundRect(const hsRect& rect, hsScalar rx, hsScalar ry, hsGAttribute* attr) {
  hsPath path;
  path.AddRoundRect(&rect, rx, ry);
  DoDrawPath(path, attr);
}

// ---- conveniences

void hsGDevice::Translate(hsScalar dx, hsScalar dy) {
  hsMatrix matrix;
  matrix.SetTranslate(dx, dy);
  ConcatMatrix(matrix);
}

void hsGDevice::Scale(hsScalar sx, hsScalar sy, hsScalar px, hsScalar py) {
  hsMatrix matrix;
  matrix.SetScale(sx, sy, px, py);
  ConcatMatrix(matrix);
}

void hsGDevice::Rotate(hsFixed degrees, hsScalar px, hsScalar py) {
  hsMatrix matrix;
  matrix.SetRotate(degrees, px, py);
  ConcatMatrix(matrix);
}

void hsGDevice::Skew(hsScalar kx, hsScalar ky, hsScalar px, hsScalar py) {
  hsMatrix matrix;
  matrix.SetSkew(kx, ky, px, py);
  ConcatMatrix(matrix);
}

void hsGDevice::ClipRect(const hsRect& rect) {
  hsPath path;
  path.AddRect(&rect);
  ClipPath(path);
}

void hsGDevice::ClipIntRect(const hsIntRect& r) {
  ClipRect({hsIntToFixed(r.fLeft), hsIntToFixed(r.fTop), hsIntToFixed(r.fRight), hsIntToFixed(r.fBottom)});
}

void hsGDevice::FillColor(const hsGColor* color) {
  if (!color) return;
  hsGAttribute attr;
  attr.SetColor(color);
  DrawFull(&attr);
}

void hsGDevice::FillColor(uint16_t a, uint16_t r, uint16_t g, uint16_t b) {
  const hsGColor color = {a, r, g, b};
  FillColor(&color);
}

void hsGDevice::MapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const {
  hsMatrix matrix;
  GetMatrix(&matrix);
  matrix.MapPoints(count, src, dst);
}

void hsGDevice::MapRect(const hsRect* src, hsRect* dst) const {
  hsMatrix matrix;
  GetMatrix(&matrix);
  matrix.MapRect(src, dst);
}

void hsGDevice::InverseMapPoints(int32_t count, const hsPoint src[], hsPoint dst[]) const {
  hsMatrix matrix;
  GetMatrix(&matrix);
  if (matrix.Invert(&matrix)) matrix.MapPoints(count, src, dst);
}

void hsGDevice::InverseMapRect(const hsRect* src, hsRect* dst) const {
  hsMatrix matrix;
  GetMatrix(&matrix);
  if (matrix.Invert(&matrix)) matrix.MapRect(src, dst);
}
