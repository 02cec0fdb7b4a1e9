#include "kit/pictures/quantize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <queue>

#include "kit/pictures/enginecolors.h"
#include "kit/pictures/nearestcolor.h"

namespace {

constexpr std::array<double, 3> kWeights = {2, 1, 1};  // of Y, Cr and Cb, as in colorDistance
constexpr int kRounds = 8;                             // of refinement; the gain of a ninth is below a percent

double channel(uint32_t color, size_t n) { return double(color >> (24 - 8 * n) & 255); }

struct Sums {
  double count = 0;
  std::array<double, 3> sum{}, squares{};

  void add(const ColorCount& c) {
    count += c.count;
    for (size_t n = 0; n < 3; ++n) {
      const double v = channel(c.color, n);
      sum[n] += c.count * v;
      squares[n] += c.count * v * v;
    }
  }
  // Weighted squared distance of all pixels from their mean, along one channel.
  double error(size_t n) const { return kWeights[n] * (squares[n] - sum[n] * sum[n] / count); }
  // The part of the whole error that depends on where a set is cut in two; the greater the better.
  double cohesion() const {
    double all = 0;
    for (size_t n = 0; n < 3; ++n) all += kWeights[n] * sum[n] * sum[n] / count;
    return all;
  }
  Sums without(const Sums& part) const {
    Sums rest = *this;
    rest.count -= part.count;
    for (size_t n = 0; n < 3; ++n) rest.sum[n] -= part.sum[n];
    return rest;
  }
  uint32_t mean() const {
    uint32_t color = 0;
    for (size_t n = 0; n < 3; ++n) color |= uint32_t(std::lround(sum[n] / count)) << (24 - 8 * n);
    return color;
  }
};

// A run of colours that one colour is to represent.
struct Box {
  size_t begin, end;
  double error;
  Sums sums;

  Box(const std::vector<ColorCount>& colors, size_t b, size_t e) : begin(b), end(e) {
    for (size_t i = begin; i < end; ++i) sums.add(colors[i]);
    error = sums.error(0) + sums.error(1) + sums.error(2);
  }
  bool operator<(const Box& other) const { return error < other.error; }
};

// Sorts the box along the channel that it is widest in, and finds the cut that leaves the least error.
size_t bestCut(std::vector<ColorCount>* colors, const Box& box) {
  size_t axis = 0;
  for (size_t n : {1, 2})
    if (box.sums.error(n) > box.sums.error(axis)) axis = n;
  std::sort(colors->begin() + long(box.begin), colors->begin() + long(box.end), [axis](const auto& a, const auto& b) {
    const double va = channel(a.color, axis), vb = channel(b.color, axis);
    return va != vb ? va < vb : a.color < b.color;
  });
  Sums left;
  size_t best = box.begin + 1;
  double bestCohesion = -1;
  for (size_t i = box.begin; i + 1 < box.end; ++i) {
    left.add((*colors)[i]);
    const double cohesion = left.cohesion() + box.sums.without(left).cohesion();
    if (cohesion <= bestCohesion) continue;
    bestCohesion = cohesion;
    best = i + 1;
  }
  return best;
}

// Cuts the box with the greatest error in two, again and again.
std::vector<uint32_t> split(std::vector<ColorCount>* colors, size_t most) {
  std::priority_queue<Box> boxes;
  boxes.emplace(*colors, 0, colors->size());
  std::vector<uint32_t> palette;
  while (boxes.size() + palette.size() < most && !boxes.empty()) {
    const Box box = boxes.top();
    boxes.pop();
    if (box.end - box.begin == 1) {
      palette.push_back(box.sums.mean());
      continue;
    }
    const size_t cut = bestCut(colors, box);
    boxes.emplace(*colors, box.begin, cut);
    boxes.emplace(*colors, cut, box.end);
  }
  for (; !boxes.empty(); boxes.pop()) palette.push_back(boxes.top().sums.mean());
  return palette;
}

// Moves each colour to the mean of the pixels that are nearest to it. Given colours take their share and stay.
void refine(const std::vector<ColorCount>& colors, const std::vector<uint32_t>& given, std::vector<uint32_t>* palette) {
  for (int round = 0; round < kRounds; ++round) {
    std::vector<uint32_t> all = *palette;
    all.insert(all.end(), given.begin(), given.end());
    const NearestColor nearest(all);
    std::vector<Sums> sums(all.size());
    for (const ColorCount& c : colors) sums[nearest.find(EngineColor(c.color))].add(c);
    bool moved = false;
    for (size_t i = 0; i < palette->size(); ++i) {
      if (sums[i].count == 0) continue;
      const uint32_t mean = sums[i].mean();
      moved = moved || mean != (*palette)[i];
      (*palette)[i] = mean;
    }
    if (!moved) return;
  }
}

}  // namespace

std::vector<ColorCount> countColors(std::vector<uint32_t> pixels) {
  std::erase(pixels, kTransparentPixel);
  std::sort(pixels.begin(), pixels.end());
  std::vector<ColorCount> colors;
  for (uint32_t pixel : pixels) {
    if (colors.empty() || colors.back().color != pixel) colors.push_back({pixel, 0});
    ++colors.back().count;
  }
  return colors;
}

std::vector<uint32_t> choosePalette(std::vector<ColorCount> colors, const std::vector<uint32_t>& given, size_t most) {
  std::erase_if(colors,
                [&](const ColorCount& c) { return std::find(given.begin(), given.end(), c.color) != given.end(); });
  std::vector<uint32_t> palette;
  if (colors.size() <= most) {
    for (const ColorCount& c : colors) palette.push_back(c.color);
    return palette;
  }
  palette = split(&colors, most);
  refine(colors, given, &palette);
  std::sort(palette.begin(), palette.end());
  palette.erase(std::unique(palette.begin(), palette.end()), palette.end());
  return palette;
}
