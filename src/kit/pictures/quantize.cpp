#include "kit/pictures/quantize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <queue>
#include <utility>

#include "kit/pictures/enginecolors.h"
#include "kit/pictures/nearestcolor.h"

namespace {

constexpr std::array<double, 3> kWeights = {2, 1, 1};  // of Y, Cr and Cb, as in colorDistance
constexpr int kRounds = 8;                             // of refinement; the gain of a ninth is below a percent

size_t channel(uint32_t color, size_t n) { return color >> (24 - 8 * n) & 255; }
double number(uint32_t color, size_t n) { return double(channel(color, n)); }

// Of pixels. Whole numbers, and below 2^53: doubles hold them exactly.
struct Sums {
  double count = 0;
  std::array<double, 3> sum{};

  void add(const ColorCount& c) {
    count += c.count;
    for (size_t n = 0; n < 3; ++n) sum[n] += c.count * number(c.color, n);
  }
  uint32_t mean() const {
    uint32_t color = 0;
    for (size_t n = 0; n < 3; ++n) color |= uint32_t(std::lround(sum[n] / count)) << (24 - 8 * n);
    return color;
  }
};

// With what tells how far from their mean they are.
struct SumsAndSquares : Sums {
  std::array<double, 3> square{};

  void add(const ColorCount& c) {
    Sums::add(c);
    for (size_t n = 0; n < 3; ++n) square[n] += c.count * number(c.color, n) * number(c.color, n);
  }
  SumsAndSquares operator-(const SumsAndSquares& part) const {
    SumsAndSquares rest = *this;
    rest.count -= part.count;
    for (size_t n = 0; n < 3; ++n) {
      rest.sum[n] -= part.sum[n];
      rest.square[n] -= part.square[n];
    }
    return rest;
  }
};

// A run of colours that one colour is to represent.
struct Box {
  size_t begin, end;
  SumsAndSquares sums;
  std::array<double, 3> errors;  // weighted squared distance of all pixels from their mean, along each channel
  double error = 0;

  Box(size_t b, size_t e, const SumsAndSquares& s) : begin(b), end(e), sums(s) {
    for (size_t n = 0; n < 3; ++n) {
      errors[n] = kWeights[n] * (sums.square[n] - sums.sum[n] * sums.sum[n] / sums.count);
      error += errors[n];
    }
  }
  size_t size() const { return end - begin; }
  bool operator<(const Box& other) const { return error < other.error; }
};

SumsAndSquares sumsOf(const std::vector<ColorCount>& colors, size_t begin, size_t end) {
  SumsAndSquares sums;
  for (size_t i = begin; i < end; ++i) sums.add(colors[i]);
  return sums;
}

// The box's colours before the middle and from it on.
std::pair<Box, Box> halves(const std::vector<ColorCount>& colors, const Box& box, size_t middle) {
  const bool firstIsLess = middle - box.begin < box.end - middle;
  const SumsAndSquares less = firstIsLess ? sumsOf(colors, box.begin, middle) : sumsOf(colors, middle, box.end);
  const SumsAndSquares more = box.sums - less;
  return {Box(box.begin, middle, firstIsLess ? less : more), Box(middle, box.end, firstIsLess ? more : less)};
}

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
    for (size_t n = 0; n < 3; ++n) sum[n] += moved * number(c.color, n);
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

// Cuts boxes. Colours stay in rising order within each, so that one pass puts them in order by another channel.
class Cutter {
 public:
  explicit Cutter(std::vector<ColorCount>* c) : colors(*c), sorted(c->size()) {}

  // Parts the box along the channel that it is widest in, where the least error is left. Returns where the second part
  // begins.
  size_t cut(const Box& box) {
    axis = 0;
    for (size_t n : {1, 2})
      if (box.errors[n] > box.errors[axis]) axis = n;
    sort(box);
    const size_t count = bestCount(box);
    divide(box, count);
    return box.begin + count;
  }

 private:
  size_t value(const ColorCount& c) const { return channel(c.color, axis); }

  // By the channel, colours with the same value in the order that they have.
  void sort(const Box& box) {
    places.fill(0);
    for (size_t i = box.begin; i < box.end; ++i) ++places[value(colors[i]) + 1];
    for (size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
    for (size_t i = box.begin; i < box.end; ++i) sorted[places[value(colors[i])]++] = colors[i];
  }

  // How many colours the first part should have.
  size_t bestCount(const Box& box) const {
    Parts parts(box.sums);
    size_t best = 1;
    double most = -1;
    for (size_t count = 1; count < box.size(); ++count) {
      parts.moveCut(sorted[count - 1]);
      const double cohesion = parts.cohesion();
      if (cohesion <= most) continue;
      most = cohesion;
      best = count;
    }
    return best;
  }

  // The first of the sorted ones to the front, in the order that they have.
  void divide(const Box& box, size_t count) {
    const size_t limit = value(sorted[count]);  // some of its colours may be in the first part, the first of them
    size_t left = 0;
    for (size_t i = count; i > 0 && value(sorted[i - 1]) == limit; --i) ++left;
    auto front = colors.begin() + long(box.begin);
    auto back = sorted.begin();
    for (size_t i = box.begin; i < box.end; ++i) {
      const ColorCount c = colors[i];
      const bool isFirst = value(c) < limit || (value(c) == limit && left > 0);
      left -= isFirst && value(c) == limit;
      (isFirst ? *front++ : *back++) = c;
    }
    std::copy(sorted.begin(), back, front);
  }

  std::vector<ColorCount>& colors;
  std::vector<ColorCount> sorted;    // those of the box, from the first place on
  std::array<size_t, 257> places{};  // by value
  size_t axis = 0;
};

// Cuts the box with the greatest error in two, again and again.
std::vector<uint32_t> split(std::vector<ColorCount>* colors, size_t most) {
  Cutter cutter(colors);
  std::priority_queue<Box> boxes;
  boxes.emplace(0, colors->size(), sumsOf(*colors, 0, colors->size()));
  std::vector<uint32_t> palette;
  while (boxes.size() + palette.size() < most && !boxes.empty()) {
    const Box box = boxes.top();
    boxes.pop();
    if (box.size() == 1) {
      palette.push_back(box.sums.mean());
      continue;
    }
    const auto [first, second] = halves(*colors, box, cutter.cut(box));
    boxes.push(first);
    boxes.push(second);
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

// By their upper three bytes, one after the other.
void sortColors(std::vector<uint32_t>* words) {
  std::vector<uint32_t> other(words->size());
  for (const int shift : {8, 16, 24}) {
    std::array<size_t, 257> places{};
    for (const uint32_t word : *words) ++places[(word >> shift & 255) + 1];
    for (size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
    for (const uint32_t word : *words) other[places[word >> shift & 255]++] = word;
    words->swap(other);
  }
}

}  // namespace

std::vector<ColorCount> countColors(std::vector<uint32_t> pixels) {
  std::erase(pixels, kTransparentPixel);
  sortColors(&pixels);
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
