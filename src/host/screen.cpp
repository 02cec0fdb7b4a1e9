#include "host/screen.h"

#include <algorithm>
#include <utility>

#include "host/color.h"
#include "host/videorows.h"

void ScreenSurface::create(int width, int height, int depth) {
  screenWidth = width;
  screenHeight = height;
  sourceDepth = depth;
  dibBits.assign(size_t(width) * size_t(height), 0);
}

void ScreenSurface::convert(const void* source, int x, int y, int w, int h) {
  const int right = std::min(x + w, screenWidth);
  const int bottom = std::min(y + h, screenHeight);
  x = std::max(x, 0);
  y = std::max(y, 0);
  if (x >= right || y >= bottom) return;

  // A 32-bit frame buffer loses its column after the first row, so only that row is converted.
  const int lastRow = sourceDepth == 32 ? y + 1 : bottom;
  for (int row = y; row < lastRow; ++row) {
    const size_t at = size_t(row) * size_t(screenWidth) + size_t(x);
    uint32_t* out = dibBits.data() + at;
    if (sourceDepth == 8) {
      convertIndexedRow(static_cast<const uint8_t*>(source) + at, out, right - x, palette.data());
    } else if (sourceDepth == 16) {
      convertVideoRow(static_cast<const uint16_t*>(source) + at, out, right - x);
    } else if (sourceDepth == 32) {
      std::transform(static_cast<const uint32_t*>(source) + at, static_cast<const uint32_t*>(source) + at + right - x,
                     out, yCrCbToRgb);
    }
  }
}

void ScreenSurface::setPalette(const uint32_t* colors, int count) {
  std::transform(colors, colors + std::clamp(count, 0, 256), palette.begin(), yCrCbToRgb);
}

std::vector<uint32_t> ScreenSurface::take() {
  screenWidth = screenHeight = 0;
  return std::exchange(dibBits, {});
}
