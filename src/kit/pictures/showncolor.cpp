#include "kit/pictures/showncolor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "gfx/pixel/hsgcolor.h"
#include "host/color.h"

namespace {

constexpr int kReach = 20;          // how far the colour to write may be from the one meant, in each channel
constexpr double kSameHue = 6;      // degrees
constexpr double kHueOfGrey = 180;  // what any hue is away from none

std::array<int, 3> channels(uint32_t rgb) { return {int(rgb >> 16 & 255), int(rgb >> 8 & 255), int(rgb & 255)}; }

int distance(uint32_t a, uint32_t b) {
  int sum = 0;
  for (size_t i = 0; i < 3; ++i) sum += (channels(a)[i] - channels(b)[i]) * (channels(a)[i] - channels(b)[i]);
  return sum;
}

double hueDistance(double a, double b) {
  if (a < 0 || b < 0) return a == b ? 0 : kHueOfGrey;
  const double d = std::fabs(a - b);
  return std::min(d, 360 - d);
}

// Of sRGB, 0 to 1.
double lightness(uint32_t rgb) {
  const auto linear = [](int channel) {
    const double c = channel / 255.0;
    return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
  };
  const auto [r, g, b] = channels(rgb);
  return 0.2126 * linear(r) + 0.7152 * linear(g) + 0.0722 * linear(b);
}

}  // namespace

double contrastOf(uint32_t rgb, uint32_t other) {
  const auto [darker, lighter] = std::minmax({lightness(rgb), lightness(other)});
  return (lighter + 0.05) / (darker + 0.05);
}

uint32_t shownColor(uint32_t rgb) {
  const uint32_t color = rgbToYCrCb(rgb << 8);
  const uint16_t pixel = hsPack16(color >> 26, color >> 19 & 31, color >> 11 & 31);
  return yCrCbToRgb(widenPixel16(pixel));
}

double hueOf(uint32_t rgb) {
  const auto [r, g, b] = channels(rgb);
  const int most = std::max({r, g, b}), range = most - std::min({r, g, b});
  if (range == 0) return -1;
  const double sixth = most == r   ? double(g - b) / range
                       : most == g ? 2 + double(b - r) / range
                                   : 4 + double(r - g) / range;
  return std::fmod(sixth * 60 + 360, 360);
}

uint32_t colorOfSameHue(uint32_t rgb) {
  const double hue = hueOf(rgb);
  const auto [red, green, blue] = channels(rgb);
  uint32_t best = rgb;
  double bestHue = 361;
  std::pair bestDistance(0, 0);  // of what shows, and of what is written
  const auto near = [](int channel) {
    return std::pair(std::max(channel - kReach, 0), std::min(channel + kReach, 255));
  };
  for (int r = near(red).first; r <= near(red).second; ++r)
    for (int g = near(green).first; g <= near(green).second; ++g)
      for (int b = near(blue).first; b <= near(blue).second; ++b) {
        const uint32_t write = uint32_t(r << 16 | g << 8 | b), shown = shownColor(write);
        const double off = std::max(hueDistance(hueOf(shown), hue), kSameHue);
        const std::pair away(distance(shown, rgb), distance(write, rgb));
        if (off > bestHue || (off == bestHue && away >= bestDistance)) continue;
        best = write;
        bestHue = off;
        bestDistance = away;
      }
  return best;
}
