#include "engine/screen/display.h"

#include <algorithm>
#include <new>
#include <utility>

#include "engine/base/watch.h"
#include "gfx/foundation/hsdebug.h"
#include "host/host.h"

namespace {

// The graphics library takes these two for no number, and stops at a path that has one.
bool isNumber(hsScalar v) { return v != INT32_MIN && v != INT32_MAX; }

// The pixel edge as 16.16, wrapping in 32 bits.
hsScalar edge(int32_t start, int32_t length = 0) { return hsIntToFixed(hsWrapAdd(start, length)); }

uint64_t areaOnScreen(int64_t left, int64_t top, int64_t right, int64_t bottom) {
  const int64_t w = std::min<int64_t>(right, kScreenWidth) - std::max<int64_t>(left, 0);
  const int64_t h = std::min<int64_t>(bottom, kScreenHeight) - std::max<int64_t>(top, 0);
  return w > 0 && h > 0 ? uint64_t(w * h) : 0;
}

}  // namespace

DisplaySurface::DisplaySurface(int w, int h, int firstDepth) : width(w), height(h) {
  bitmap.fWidth = uint32_t(w);
  bitmap.fHeight = uint32_t(h);
  freshColorTable->SetDefaultCube();
  device->SetBounder(tracker.get());
  hostCreateScreen(width, height, firstDepth);
  setDepth(firstDepth);
}

// False, and the old pixels, when the halt that reports it returns.
bool DisplaySurface::allocatePixels(uint64_t size) {
  try {
    pixels.assign(size_t(size), 0);  // in the memory of the deeper screen before, if there was one
    return true;
  } catch (const std::bad_alloc&) {
    hostLog("Out of memory\n");
    hsHalt();
    return false;
  }
}

int DisplaySurface::setDepth(int newDepth) {
  if (newDepth == bitsPerPixel) return 1;
  if (newDepth != 8 && newDepth != 16) return 0;
  hsGBitmap fresh = bitmap;
  fresh.SetConfig(newDepth == 8 ? hsGBitmap::kConfig_Index8 : hsGBitmap::kConfig_RGB16);
  if (newDepth == 8) fresh.SetColorTable(freshColorTable.get());
  fresh.fRowBytes = uint32_t(width * newDepth / 8);
  if (!allocatePixels(fresh.ImageSize())) return 0;
  bitmap = fresh;
  hostSetDepth(newDepth);
  bitmap.fImage = pixels.data();
  device->SetBitmap(&bitmap);
  bitsPerPixel = newDepth;
  return 1;
}

void DisplaySurface::flush() {
  const hsIntRect screen = {0, 0, width, height};
  const hsIntRect& r = tracker->empty ? screen : tracker->bounds;
  const int left = std::clamp(r.fLeft, 0, screen.fRight), right = std::clamp(r.fRight, 0, screen.fRight);
  const int top = std::clamp(r.fTop, 0, screen.fBottom), bottom = std::clamp(r.fBottom, 0, screen.fBottom);
  hostPresentRect(pixels.data(), left, top, right - left, bottom - top);
  if (EngineObserver* observer = currentObserver()) reportDrawing(*observer, {left, top, right - left, bottom - top});
  tracker->clear();
}

void DisplaySurface::setColor(hsGAttribute* attribute, uint32_t color) const {
  if (bitsPerPixel == 8) return attribute->SetColorIndex(uint8_t(color));
  attribute->SetColor(0xFFFF, hsWiden8(color >> 24), hsWiden8(color >> 16 & 255), hsWiden8(color >> 8 & 255));
  attribute->SetColorIndex(-1);
}

void DisplaySurface::fill(const hsRect& rect, uint32_t color) {
  if (!isNumber(rect.fLeft) || !isNumber(rect.fTop) || !isNumber(rect.fRight) || !isNumber(rect.fBottom)) return;
  if (DrawCost* cost = currentCost())
    cost->pixelsFilled += areaOnScreen(rect.fLeft >> 16, rect.fTop >> 16, rect.fRight >> 16, rect.fBottom >> 16);
  setColor(&fillPaint, color);
  fillPath.Rewind();
  fillPath.AddRect(&rect);
  device->DrawPath(&fillPath, &fillPaint);
}

void DisplaySurface::copy(const hsGBitmap& source, int32_t x, int32_t y) {
  if (DrawCost* cost = currentCost())
    cost->pixelsCopied += areaOnScreen(x, y, int64_t{x} + source.fWidth, int64_t{y} + source.fHeight);
  device->CopyBitmap(&source, edge(x), edge(y), &copyPaint);
  flush();
}

bool DisplaySurface::setColorTable(hsGColorTable* table) {
  if (bitsPerPixel != 8 || activeColorTable() == table) return false;
  hsGBitmap target;
  device->GetBitmap(&target);
  target.SetColorTable(table);
  device->SetBitmap(&target);
  return true;
}

hsGColorTable* DisplaySurface::activeColorTable() const {
  hsGBitmap target;
  device->GetBitmap(&target);
  return target.fColorTable.get();
}

uint32_t standardColor(int n) { return standardColorFor(n, currentDisplay().depth()); }

int displaySetDepth(int depth) { return currentDisplay().setDepth(depth); }

void displayFlush() { currentDisplay().flush(); }

void displaySwap(int) {
  currentDisplay().swapPending = true;
  if (const ObserverReport report; report) report->swapped();
}

int displayTakeSwap() { return std::exchange(currentDisplay().swapPending, false); }

void displayFillRect(const Bounds& r, uint32_t color) {
  DisplaySurface& display = currentDisplay();
  display.fill({edge(r.x), edge(r.y), edge(r.x, r.w), edge(r.y, r.h)}, color);
  display.flush();
}

int displaySetColorTable(hsGColorTable* table) { return currentDisplay().setColorTable(table); }
