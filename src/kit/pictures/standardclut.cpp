#include "kit/pictures/standardclut.h"

#include <cstddef>

#include "engine/screen/standardcolor.h"
#include "host/color.h"

namespace {

constexpr int kCube = 216;
constexpr int kGreys = 21;

uint32_t color(int r, int g, int b) { return rgbToYCrCb(uint32_t(r) << 24 | uint32_t(g) << 16 | uint32_t(b) << 8); }

uint32_t grey(int n) {
  const int level = 255 * (n + 1) / (kGreys + 1);
  return color(level, level, level);
}

}  // namespace

std::array<uint32_t, kMaxClutColors> standardClut() {
  std::array<uint32_t, kMaxClutColors> colors{};
  for (int i = 0; i < kCube; ++i) colors[size_t(i)] = color(i / 36 * 51, i / 6 % 6 * 51, i % 6 * 51);
  int greys = 0;
  for (int i = kCube; i < int(kMaxClutColors); ++i) {
    if (i < kIndexBlack || i > kIndexTransparent) colors[size_t(i)] = grey(greys++);
  }
  colors[kIndexBlack] = color(0, 0, 0);
  colors[kIndexWhite] = color(255, 255, 255);
  colors[kIndexTransparent] = 0;
  return colors;
}
