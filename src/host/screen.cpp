#include "host/screen.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "host/color.h"

namespace {

// Every 16-bit pixel's desktop colour, worked out once by the exact rule.
const std::vector<uint32_t>& pixel16Table() {
  static const std::vector<uint32_t> table = [] {
    std::vector<uint32_t> colors(65536);
    for (uint32_t p = 0; p < 65536; ++p) colors[p] = yCrCbToRgb(widenPixel16(uint16_t(p)));
    return colors;
  }();
  return table;
}

void convertRow(const uint8_t* source, uint32_t* destination, int count, const uint32_t* palette) {
  for (int i = 0; i < count; ++i) destination[i] = palette[source[i]];
}

// The big table is slow to look into, and pages are flat: four pixels like the four before are copied.
void convertRow(const uint16_t* source, uint32_t* destination, int count, const uint32_t* table) {
  uint64_t seen = 0, four;
  std::array<uint32_t, 4> converted;
  converted.fill(table[0]);
  for (; count >= 4; count -= 4, source += 4, destination += 4) {
    std::memcpy(&four, source, sizeof four);
    if (four != seen) {
      seen = four;
      for (size_t i = 0; i < 4; ++i) converted[i] = table[source[i]];
    }
    std::memcpy(destination, converted.data(), sizeof converted);
  }
  for (int i = 0; i < count; ++i) destination[i] = table[source[i]];
}

}  // namespace

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
      convertRow(static_cast<const uint8_t*>(source) + at, out, right - x, palette.data());
    } else if (sourceDepth == 16) {
      convertRow(static_cast<const uint16_t*>(source) + at, out, right - x, pixel16Table().data());
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
