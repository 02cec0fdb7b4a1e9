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

  const size_t first = size_t(y) * size_t(screenWidth) + size_t(x);
  uint32_t* const out = dibBits.data() + first;
  const int width = right - x;
  if (sourceDepth == 16)
    return convertVideoRows(static_cast<const uint16_t*>(source) + first, out, screenWidth, width, bottom - y);
  if (sourceDepth == 32) {
    // Such a frame buffer loses its column after the first row, so only that row is converted.
    const auto* const colors = static_cast<const uint32_t*>(source) + first;
    std::transform(colors, colors + width, out, yCrCbToRgb);
  } else if (sourceDepth == 8) {
    const auto* const indices = static_cast<const uint8_t*>(source) + first;
    for (size_t at = 0; at < size_t(bottom - y) * size_t(screenWidth); at += size_t(screenWidth))
      convertIndexedRow(indices + at, out + at, width, palette.data());
  }
}

void ScreenSurface::setPalette(const uint32_t* colors, int count) {
  std::transform(colors, colors + std::clamp(count, 0, 256), palette.begin(), yCrCbToRgb);
}

std::vector<uint32_t> ScreenSurface::take() {
  screenWidth = screenHeight = 0;
  return std::exchange(dibBits, {});
}
