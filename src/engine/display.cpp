#include "engine/display.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>
#include <vector>

#include "engine/dirtytracker.h"
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgrasterdevice.h"
#include "host/host.h"

namespace {

class ScreenDevice : public hsGRasterDevice {
 public:
  ScreenDevice(int w, int h);
  ~ScreenDevice() override;

  int width, height;  // pixels
  int depth = 0;      // 0 until first set, then 8 or 16
  std::vector<uint8_t> pixels;
  hsGBitmap bitmap;
  hsGColorTable* colorTable = new hsGColorTable;  // of a fresh 8-bit screen
  DirtyTracker* tracker = new DirtyTracker;

  // What fills are drawn with, kept so that a fill allocates nothing.
  hsGAttribute fillPaint;
  hsPath fillPath;
  hsGAttribute copyPaint;
  hsGAttribute textPaint;
};

ScreenDevice::ScreenDevice(int w, int h) : width(w), height(h) {
  bitmap.fWidth = uint32_t(w);
  bitmap.fHeight = uint32_t(h);
  colorTable->SetDefaultCube();
  SetBounder(tracker);
}

ScreenDevice::~ScreenDevice() {
  SetBitmap(nullptr);
  colorTable->UnRef();
  SetBounder(nullptr);
  tracker->UnRef();
}

ScreenDevice* theDevice = nullptr;
bool swapRequested = false;

// The graphics library takes these two for no number, and stops at a path that has one.
bool isNumber(hsScalar v) { return v != INT32_MIN && v != INT32_MAX; }

// The pixel edge as 16.16, wrapping in 32 bits.
hsScalar edge(int32_t start, int32_t length = 0) { return hsIntToFixed(hsWrapAdd(start, length)); }

// False, and the old pixels, when the halt that tells of it returns.
bool allocatePixels(ScreenDevice* device, uint64_t size) {
  try {
    device->pixels = std::vector<uint8_t>(size_t(size));
    return true;
  } catch (const std::bad_alloc&) {
    hostLog("Out of memory\n");
    hsHalt();
    return false;
  }
}

}  // namespace

uint32_t standardColor(int n) {
  const bool indexed = displayDepth() == 8;
  switch (n) {
    case kColorBlack: return indexed ? 235 : 0x10808000;
    case kColorWhite: return indexed ? 236 : 0xEB808000;
    case kColorTransparent: return indexed ? 237 : 0;
    default: return 0;
  }
}

void displayCreate(int width, int height, int depth) {
  theDevice = new ScreenDevice(width, height);
  hostCreateScreen(width, height, depth);
  displaySetDepth(depth);
}

int displaySetDepth(int depth) {
  ScreenDevice* device = theDevice;
  if (depth == device->depth) return 1;
  if (depth != 8 && depth != 16) return 0;
  hsGBitmap bitmap = device->bitmap;
  bitmap.SetConfig(depth == 8 ? hsGBitmap::kConfig_Index8 : hsGBitmap::kConfig_RGB16);
  if (depth == 8) bitmap.SetColorTable(device->colorTable);
  bitmap.fRowBytes = uint32_t(device->width * depth / 8);
  if (!allocatePixels(device, bitmap.ImageSize())) return 0;
  device->bitmap = bitmap;
  hostSetDepth(depth);
  device->bitmap.fImage = device->pixels.data();
  device->SetBitmap(&device->bitmap);
  device->depth = depth;
  return 1;
}

int displayDepth() { return theDevice ? theDevice->depth : 0; }

void displayFlush() {
  const hsIntRect screen = {0, 0, theDevice->width, theDevice->height};
  const hsIntRect& r = theDevice->tracker->empty ? screen : theDevice->tracker->bounds;
  const int left = std::clamp(r.fLeft, 0, screen.fRight), right = std::clamp(r.fRight, 0, screen.fRight);
  const int top = std::clamp(r.fTop, 0, screen.fBottom), bottom = std::clamp(r.fBottom, 0, screen.fBottom);
  hostPresentRect(theDevice->pixels.data(), left, top, right - left, bottom - top);
  theDevice->tracker->clear();
}

void displaySwap(int) { swapRequested = true; }

int displayTakeSwap() { return std::exchange(swapRequested, false); }

void displaySetColor(hsGAttribute* attribute, uint32_t color) {
  if (theDevice->depth == 8) return attribute->SetColorIndex(uint8_t(color));
  attribute->SetColor(0xFFFF, hsWiden8(color >> 24), hsWiden8(color >> 16 & 255), hsWiden8(color >> 8 & 255));
  attribute->SetColorIndex(-1);
}

void displayFillFixed(const hsRect& rect, uint32_t color) {
  if (!isNumber(rect.fLeft) || !isNumber(rect.fTop) || !isNumber(rect.fRight) || !isNumber(rect.fBottom)) return;
  displaySetColor(&theDevice->fillPaint, color);
  theDevice->fillPath.Rewind();
  theDevice->fillPath.AddRect(&rect);
  theDevice->DrawPath(&theDevice->fillPath, &theDevice->fillPaint);
}

void displayFillRect(const Bounds& r, uint32_t color) {
  displayFillFixed({edge(r.x), edge(r.y), edge(r.x, r.w), edge(r.y, r.h)}, color);
  displayFlush();
}

void displayCopyBitmap(const hsGBitmap& bitmap, int32_t x, int32_t y) {
  theDevice->CopyBitmap(&bitmap, edge(x), edge(y), &theDevice->copyPaint);
  displayFlush();
}

int displaySetColorTable(hsGColorTable* table) {
  if (theDevice->depth != 8) return 0;
  hsGBitmap bitmap;
  theDevice->GetBitmap(&bitmap);
  if (bitmap.fColorTable.get() == table) return 0;
  bitmap.SetColorTable(table);
  theDevice->SetBitmap(&bitmap);
  return 1;
}

hsGColorTable* displayColorTable() {
  hsGBitmap bitmap;
  theDevice->GetBitmap(&bitmap);
  return bitmap.fColorTable.get();
}

hsGRasterDevice* displayDevice() { return theDevice; }
hsGAttribute* displayTextPaint() { return &theDevice->textPaint; }

void displayDestroy() {
  if (theDevice) std::exchange(theDevice, nullptr)->UnRef();
  swapRequested = false;
}
