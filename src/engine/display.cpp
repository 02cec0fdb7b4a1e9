#include "engine/display.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "engine/dirtytracker.h"
#include "host/host.h"

namespace {

struct ScreenDevice {
  int width = 0, height = 0;  // pixels
  int depth = 0;              // 0 until first set, then 8 or 16
  std::vector<uint8_t> pixels;
  const Clut* colorTable = nullptr;  // null for the device's own default table
  DirtyTracker tracker;
};

std::unique_ptr<ScreenDevice> theDevice;
bool swapRequested = false;

constexpr int32_t kNoNumber = -32768;  // an edge there is no number to the graphics library

// Edges are 16.16 numbers that wrap in 32 bits.
int32_t edge(int32_t value) { return int16_t(uint16_t(uint32_t(value))); }
int32_t edge(int32_t start, int32_t length) { return edge(int32_t(uint32_t(start) + uint32_t(length))); }

template <class Pixel>
void fill(ScreenDevice& device, const PixelRect& rect, Pixel pixel) {
  auto* pixels = reinterpret_cast<Pixel*>(device.pixels.data());
  for (int y = rect.top; y < rect.bottom; ++y)
    std::fill(pixels + size_t(y) * size_t(device.width) + rect.left,
              pixels + size_t(y) * size_t(device.width) + rect.right, pixel);
}

PixelRect cutToScreen(const PixelRect& r) {
  const int w = theDevice->width, h = theDevice->height;
  return {std::clamp(r.left, 0, w), std::clamp(r.top, 0, h), std::clamp(r.right, 0, w), std::clamp(r.bottom, 0, h)};
}

// The 6:5:5 pixel of an engine colour: low bits are dropped.
uint16_t pixel16(uint32_t color) {
  return uint16_t((color >> 26) << 10 | (color >> 19 & 31) << 5 | (color >> 11 & 31));
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
  theDevice = std::make_unique<ScreenDevice>();
  theDevice->width = width;
  theDevice->height = height;
  hostCreateScreen(width, height, depth);
  displaySetDepth(depth);
}

int displaySetDepth(int depth) {
  if (depth == theDevice->depth) return 1;
  if (depth != 8 && depth != 16) return 0;
  theDevice->pixels.assign(size_t(theDevice->width) * size_t(theDevice->height) * size_t(depth / 8), 0);
  theDevice->colorTable = nullptr;
  hostSetDepth(depth);
  theDevice->depth = depth;
  return 1;
}

int displayDepth() { return theDevice ? theDevice->depth : 0; }

void displayFlush() {
  const ScreenDevice& device = *theDevice;
  const PixelRect r =
      device.tracker.empty ? PixelRect{0, 0, device.width, device.height} : cutToScreen(device.tracker.bounds);
  hostPresentRect(device.pixels.data(), r.left, r.top, std::max(0, r.right - r.left), std::max(0, r.bottom - r.top));
  theDevice->tracker.clear();
}

void displaySwap(int) { swapRequested = true; }

int displayTakeSwap() { return std::exchange(swapRequested, false); }

void displayFillRect(const Bounds& rect, uint32_t color) {
  const int32_t x0 = edge(rect.x), x1 = edge(rect.x, rect.w), y0 = edge(rect.y), y1 = edge(rect.y, rect.h);
  if (x0 != kNoNumber && x1 != kNoNumber && y0 != kNoNumber && y1 != kNoNumber) {
    const PixelRect covered = {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
    theDevice->tracker.record(covered);
    if (theDevice->depth == 8) {
      fill(*theDevice, cutToScreen(covered), uint8_t(color));
    } else {
      fill(*theDevice, cutToScreen(covered), pixel16(color));
    }
  }
  displayFlush();
}

int displaySetColorTable(const Clut* clut) {
  if (theDevice->depth != 8 || theDevice->colorTable == clut) return 0;
  theDevice->colorTable = clut;
  return 1;
}

void displayDestroy() {
  theDevice.reset();
  swapRequested = false;
}
