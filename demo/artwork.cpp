// Draws the pictures in demo/artwork: three landscapes with their thumbnails, a tile of woven cloth and a round badge
// with a hole in it. Each is a plain function from a place to a colour.
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <string>

#include "kit/pictures/png.h"

namespace {

struct Color {
  double r, g, b;
  Color operator+(const Color& o) const { return {r + o.r, g + o.g, b + o.b}; }
  Color operator*(double f) const { return {r * f, g * f, b * f}; }
};

// A colour as pages write it, 0xRRGGBB.
Color rgb(uint32_t word) {
  return {double(word >> 16 & 255) / 255, double(word >> 8 & 255) / 255, double(word & 255) / 255};
}

double smooth(double from, double to, double v) {
  const double t = std::clamp((v - from) / (to - from), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

Color mix(const Color& a, const Color& b, double share) { return a * (1 - share) + b * share; }

// A number from 0 to 1 that belongs to a place on the grid.
double hash(int x, int y) {
  uint32_t h = uint32_t(x) * 0x8DA6B343u ^ uint32_t(y) * 0xD8163841u;
  h = (h ^ h >> 13) * 0x9E3779B1u;
  return double((h ^ h >> 16) & 0xFFFF) / 0xFFFF;
}

double noise(double x, double y) {
  const double fx = std::floor(x), fy = std::floor(y);
  const int ix = int(fx), iy = int(fy);
  const double sx = smooth(0, 1, x - fx), sy = smooth(0, 1, y - fy);
  const double top = hash(ix, iy) * (1 - sx) + hash(ix + 1, iy) * sx;
  const double bottom = hash(ix, iy + 1) * (1 - sx) + hash(ix + 1, iy + 1) * sx;
  return top * (1 - sy) + bottom * sy;
}

// Noise of five octaves, 0 to 1.
double clouds(double x, double y) {
  double sum = 0, weight = 0.5;
  for (int octave = 0; octave < 5; ++octave, x *= 2.03, y *= 2.03, weight /= 2) sum += weight * noise(x, y);
  return sum;
}

// How far down a ridge lies at x; later ridges lie lower and are rougher.
double ridge(double x, int number, double top, double height) {
  return top + height * (1 - clouds(x * (1.3 + number * 0.7) + number * 7.7, number * 3.1));
}

double distance(double x, double y, double cx, double cy) { return std::hypot(x - cx, y - cy); }

// Scenes: x from 0 to 4/3, y from 0 at the top to 1.

Color dawn(double x, double y) {
  Color c = mix(rgb(0x2B2F6B), rgb(0xF7B267), smooth(0.0, 0.62, y));
  const double sun = distance(x, y, 0.86, 0.47);
  c = mix(c, rgb(0xFFE9B8), 0.75 * std::exp(-9 * sun * sun));
  c = mix(c, rgb(0xFFF6DA), 1 - smooth(0.098, 0.104, sun));
  c = mix(c, rgb(0xF28F79), 0.55 * smooth(0.48, 0.75, clouds(x * 2.2, y * 9)) * (1 - smooth(0.3, 0.6, y)));
  static const Color kFar = rgb(0xB8709A), kNear = rgb(0x1D1538);
  for (int i = 0; i < 5; ++i) {
    const double top = ridge(x, i, 0.42 + 0.105 * i, 0.16);
    if (y > top) c = mix(mix(kFar, kNear, i / 4.0), rgb(0xF7B267), 0.22 * (1 - i / 4.0) * smooth(0, 0.2, y - top));
  }
  return c;
}

Color harbour(double x, double y) {
  constexpr double kHorizon = 0.58, kMoonX = 0.42, kMoonY = 0.24;
  const auto sky = [](double sx, double sy) {
    Color c = mix(rgb(0x07102B), rgb(0x2A5B8C), smooth(0, kHorizon, sy));
    const double moon = distance(sx, sy, kMoonX, kMoonY);
    c = mix(c, rgb(0xA9C8E8), 0.6 * std::exp(-14 * moon * moon));
    if (hash(int(sx * 300), int(sy * 300)) > 0.996) c = mix(c, rgb(0xFFFFFF), 0.8 * (1 - sy / kHorizon));
    c = mix(c, rgb(0xF4F1DE), 1 - smooth(0.078, 0.083, moon));
    const double coast = kHorizon - 0.02 - 0.09 * clouds(sx * 2.6, 5);
    if (sy > coast) {
      c = rgb(0x0B1A2E);
      if (hash(int(sx * 150), int(sy * 110)) > 0.86 && sy > coast + 0.012) c = rgb(0xFFC75F);
    }
    return c;
  };
  if (y < kHorizon) return sky(x, y);
  const double depth = (y - kHorizon) / (1 - kHorizon);
  const double wave = (noise(x * 14 / (0.25 + depth), 60 * std::sqrt(depth)) - 0.5) * (0.02 + 0.09 * depth);
  Color c = mix(sky(x + wave, std::max(0.0, 2 * kHorizon - y - 0.6 * wave)), rgb(0x0A2540), 0.3 + 0.3 * depth);
  const double path = std::abs(x - kMoonX) / (0.03 + 0.12 * depth);
  if (noise(x * 40 / (0.3 + depth), 130 * std::sqrt(depth)) > 0.5 + 0.3 * path) c = mix(c, rgb(0xDDE8F0), 0.6);
  const double sail = (x - 0.98) / 0.075, up = (0.70 - y) / 0.26;
  if (up > 0.06 && up < 1 && sail > -0.8 * (1 - up) && sail < 0.9 * (1 - up) && std::abs(sail - 0.03) > 0.05)
    c = mix(rgb(0xF2E9DC), rgb(0xC9ADA7), smooth(-0.8, 0.9, sail));
  const double hull = (y - 0.695) / 0.045;
  if (hull > 0 && hull < 1 && std::abs(x - 0.985) < 0.105 - 0.04 * hull) c = mix(rgb(0x9B2226), rgb(0x4A0D10), hull);
  return c;
}

Color dunes(double x, double y) {
  Color c = mix(rgb(0x3A86C8), rgb(0xFCE7C0), smooth(0, 0.5, y));
  c = mix(c, rgb(0xFFFFFF), 0.65 * smooth(0.52, 0.8, clouds(x * 3, y * 8 + 3)) * (1 - smooth(0.25, 0.5, y)));
  static const std::array<uint32_t, 4> kLit = {0xE9B872, 0xE39B4B, 0xD9812F, 0xC2611C};
  for (int i = 0; i < 4; ++i) {
    const double crest = 0.43 + 0.13 * i + 0.07 * std::sin(x * (3.1 + i) + i * 2.1) + 0.03 * noise(x * 3, i);
    if (y <= crest) continue;
    const double slope = std::cos(x * (3.1 + i) + i * 2.1);
    const double below = y - crest;
    const double ripple = 0.5 + 0.5 * std::sin(220 * (below + 0.04 * noise(x * 9, i * 5 + y * 4)) / (0.6 + 0.25 * i));
    const double shade = 0.45 * smooth(-0.2, 0.7, slope) * (1 - smooth(0.0, 0.22, below)) + 0.09 * ripple;
    c = mix(rgb(kLit[size_t(i)]), rgb(0x5B2A1B), shade);
  }
  return c;
}

Color cloth(double x, double y) {
  const double weave = std::sin(x * M_PI * 8) * std::sin(y * M_PI * 8);
  const double thread = 0.5 + 0.5 * std::sin((weave > 0 ? x : y) * M_PI * 32);
  return mix(mix(rgb(0x1B2838), rgb(0x22344A), smooth(-0.3, 0.3, weave)), rgb(0x2C435E), 0.35 * thread);
}

using Scene = std::function<Color(double x, double y)>;

uint32_t channel(double v) { return uint32_t(std::lround(std::clamp(v, 0.0, 1.0) * 255)); }

// A scene of height 1 at a size in pixels, each the mean of 16 places.
std::vector<uint32_t> paint(const Scene& scene, int width, int height) {
  constexpr int kGrid = 4;
  std::vector<uint32_t> pixels;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      Color sum{0, 0, 0};
      for (int n = 0; n < kGrid * kGrid; ++n)
        sum = sum + scene((x + (n % kGrid + 0.5) / kGrid) / height, (y + (n / kGrid + 0.5) / kGrid) / height);
      sum = sum * (1.0 / (kGrid * kGrid));
      pixels.push_back(0xFF000000 | channel(sum.r) << 16 | channel(sum.g) << 8 | channel(sum.b));
    }
  }
  return pixels;
}

// A ring of brass: transparent around it, and in its middle.
std::vector<uint32_t> badge(int size) {
  std::vector<uint32_t> pixels = paint(
      [](double x, double y) {
        const double angle = std::atan2(y - 0.5, x - 0.5), edge = distance(x, y, 0.5, 0.5);
        const double light = 0.5 + 0.5 * std::cos(angle + 2.3) * std::cos((edge - 0.41) * 22);
        return mix(rgb(0x5C3D0C), rgb(0xFFE08A), light);
      },
      size, size);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x) {
      const double edge = distance(x + 0.5, y + 0.5, size / 2.0, size / 2.0) / size;
      if (edge > 0.495 || edge < 0.33) pixels[size_t(y * size + x)] = 0;
    }
  }
  return pixels;
}

}  // namespace

// Takes the folder to write into.
int main(int, char** argv) {
  const std::string folder = std::string(argv[1]) + "/";
  const std::pair<const char*, Scene> scenes[] = {{"dawn", dawn}, {"harbour", harbour}, {"dunes", dunes}};
  for (const auto& [name, scene] : scenes) {
    writePng(folder + name + ".png", 400, 300, paint(scene, 400, 300));
    writePng(folder + name + "-small.png", 112, 84, paint(scene, 112, 84));
  }
  writePng(folder + "cloth.png", 48, 48, paint(cloth, 48, 48));
  writePngWithAlpha(folder + "badge.png", 96, 96, badge(96));
}
