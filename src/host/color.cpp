#include "host/color.h"

#include <algorithm>

namespace {

double unit(double v) { return std::clamp(v, 0.0, 1.0); }
double chroma(double v) { return std::clamp(v, -0.5, 0.5); }
uint32_t channel(double v) { return uint32_t(int(v * 255 + 0.5)) & 255; }

// Truncation is toward zero, so a negative chroma rounds differently from a positive one.
uint32_t chromaByte(double v) { return uint32_t(int(v * 224 + 0.5) + 128) & 255; }

}  // namespace

uint32_t yCrCbToRgb(uint32_t color) {
  const double y = unit((int(color >> 24) - 16) / 219.0);
  const double cr = chroma((int(color >> 16 & 255) - 128) / 224.0);
  const double cb = chroma((int(color >> 8 & 255) - 128) / 224.0);
  const double r = unit(y + 1.4 * cr);
  const double g = unit(y - 0.714 * cr - 0.344 * cb);
  const double b = unit(y + 1.772 * cb);
  return channel(r) << 16 | channel(g) << 8 | channel(b);
}

uint32_t rgbToYCrCb(uint32_t color) {
  const double r = (color >> 24) / 255.0;
  const double g = (color >> 16 & 255) / 255.0;
  const double b = (color >> 8 & 255) / 255.0;
  const double y = unit(0.299 * r + 0.587 * g + 0.114 * b);
  const double cr = chroma(0.5 * r - 0.419 * g - 0.081 * b);
  const double cb = chroma(-0.169 * r - 0.331 * g + 0.5 * b);
  return uint32_t(int(y * 219 + 0.5) + 16) << 24 | chromaByte(cr) << 16 | chromaByte(cb) << 8;
}
