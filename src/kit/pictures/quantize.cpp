#include "kit/pictures/quantize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <queue>

#include "kit/pictures/enginecolors.h"
#include "kit/pictures/nearestcolor.h"

namespace {

constexpr std::array<double, 3> kWeights = {2, 1, 1};  // of Y, Cr and Cb, as in colorDistance
constexpr size_t kManyColors = 256;                    // from which on they are sorted by bytes
constexpr int kRounds = 8;                             // of refinement; the gain of a ninth is below a percent

double channel(uint32_t color, size_t n) { return double(color >> (24 - 8 * n) & 255); }

// By one channel, then by the others from the brightest on.
uint32_t keyBy(size_t axis, uint32_t color) { return (color >> (24 - 8 * axis)) << 24 | color >> 8; }

// Sorts by a key of four bytes, one byte after the other; equal ones stay as they were.
template <class T, class Key>
void sortByBytes(T* items, size_t count, const Key& key) {
  std::vector<T> other(count);
  T *from = items, *to = other.data();
  for (int shift = 0; shift < 32; shift += 8) {
    std::array<size_t, 257> places{};
    for (size_t i = 0; i < count; ++i) ++places[(key(from[i]) >> shift & 255) + 1];
    for (size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
    for (size_t i = 0; i < count; ++i) to[places[key(from[i]) >> shift & 255]++] = from[i];
    std::swap(from, to);
  }
}

// Of pixels. Whole numbers, and below 2^53: doubles hold them exactly.
struct Sums {
  double count = 0;
  std::array<double, 3> sum{};

  void add(const ColorCount& c) {
    count += c.count;
    for (size_t n = 0; n < 3; ++n) sum[n] += c.count * channel(c.color, n);
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
  Sums sums;
  std::array<double, 3> errors;  // weighted squared distance of all pixels from their mean, along each channel
  double error = 0;

  Box(const std::vector<ColorCount>& colors, size_t b, size_t e) : begin(b), end(e) {
    std::array<double, 3> squares{};
    for (size_t i = begin; i < end; ++i) {
      sums.add(colors[i]);
      for (size_t n = 0; n < 3; ++n) {
        const double v = channel(colors[i].color, n);
        squares[n] += colors[i].count * v * v;
      }
    }
    for (size_t n = 0; n < 3; ++n) {
      errors[n] = kWeights[n] * (squares[n] - sums.sum[n] * sums.sum[n] / sums.count);
      error += errors[n];
    }
  }
  bool operator<(const Box& other) const { return error < other.error; }
};

// The sums before a cut and after it, computed together.
class Parts {
 public:
  explicit Parts(const Sums& all) : count{0, all.count} {
    for (size_t n = 0; n < 3; ++n) sum[n] = Pair{0, all.sum[n]};
  }
  void moveCut(const ColorCount& c) {
    constexpr Pair kBothWays = {1, -1};
    const Pair moved = kBothWays * c.count;
    count += moved;
    for (size_t n = 0; n < 3; ++n) sum[n] += moved * channel(c.color, n);
  }
  // The part of the whole error that depends on the cut; the greater the better.
  double cohesion() const {
    Pair all{};
    for (size_t n = 0; n < 3; ++n) all += kWeights[n] * sum[n] * sum[n];
    all /= count;
    return all[0] + all[1];
  }

 private:
  using Pair = double __attribute__((vector_size(16)));
  Pair count, sum[3];
};

// Sorts the box along the channel that it is widest in, and finds the cut that leaves the least error.
size_t bestCut(std::vector<ColorCount>* colors, const Box& box) {
  size_t axis = 0;
  for (size_t n : {1, 2})
    if (box.errors[n] > box.errors[axis]) axis = n;
  const auto key = [axis](const ColorCount& c) { return keyBy(axis, c.color); };
  if (box.end - box.begin < kManyColors)
    std::sort(colors->begin() + long(box.begin), colors->begin() + long(box.end),
              [key](const auto& a, const auto& b) { return key(a) < key(b); });
  else
    sortByBytes(colors->data() + box.begin, box.end - box.begin, key);
  Parts parts(box.sums);
  size_t best = box.begin + 1;
  double bestCohesion = -1;
  for (size_t i = box.begin; i + 1 < box.end; ++i) {
    parts.moveCut((*colors)[i]);
    const double cohesion = parts.cohesion();
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
  sortByBytes(pixels.data(), pixels.size(), [](uint32_t pixel) { return pixel; });
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
