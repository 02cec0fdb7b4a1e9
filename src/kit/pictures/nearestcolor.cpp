#include "kit/pictures/nearestcolor.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kCellBits = 3;  // of a channel's eight, within a cell
constexpr int kCellSize = 1 << kCellBits, kCellsAcross = 256 / kCellSize;

// A distance has 18 bits. Six more of a float's 24 say which of so many colours it belongs to.
constexpr uint32_t kNumbered = 64;
constexpr float kFarAway = 600;  // in each channel; of what no colour uses in the last four

size_t cellOf(const EngineColor& color) {
  return size_t(((color.y >> kCellBits) * kCellsAcross + (color.cr >> kCellBits)) * kCellsAcross +
                (color.cb >> kCellBits));
}

int lowerEnd(int value) { return value & -kCellSize; }

template <class Four>
Four least(Four a, Four b) {
  return a < b ? a : b;
}

template <class Four>
float leastOf(Four v) {
  return std::min({v[0], v[1], v[2], v[3]});
}

// The point of a cell that is nearest to each of four values in a channel, and the one farthest from it.
template <class Four>
Four nearestIn(Four low, Four value) {
  const Four high = low + (kCellSize - 1);
  return value < low ? low : least(value, high);
}

template <class Four>
Four farthestIn(Four low, Four value) {
  const Four high = low + (kCellSize - 1);
  return value + value < low + high ? high : low;
}

}  // namespace

NearestColor::NearestColor(const std::vector<uint32_t>& words)
    : colors(words.begin(), words.end()), cells(kCellsAcross * kCellsAcross * kCellsAcross) {
  for (size_t i = 0; i < colors.size(); ++i) put(&palette, i, colors[i]);
}

// Into a place that is there or the next one.
void NearestColor::put(std::vector<FourColors>* to, size_t place, const EngineColor& color) {
  const size_t lane = place % 4;
  if (lane == 0) to->push_back({Four{} + kFarAway, Four{} + kFarAway, Four{} + kFarAway});
  to->back().y[lane] = float(color.y);
  to->back().cr[lane] = float(color.cr);
  to->back().cb[lane] = float(color.cb);
}

// As colorDistance.
NearestColor::Four NearestColor::distances(const FourColors& a, const FourColors& b) {
  const Four y = a.y - b.y, cr = a.cr - b.cr, cb = a.cb - b.cb;
  return 2 * y * y + cr * cr + cb * cb;
}

// Of the color's cell. What is farther from the cell's nearest point than another color from its farthest is nearest to
// none of it.
NearestColor::Cell NearestColor::candidatesFor(const EngineColor& color) const {
  const FourColors low{Four{} + float(lowerEnd(color.y)), Four{} + float(lowerEnd(color.cr)),
                       Four{} + float(lowerEnd(color.cb))};
  Four reaches = Four{} + std::numeric_limits<float>::max();
  for (const FourColors& c : palette)
    reaches =
        least(reaches, distances(c, {farthestIn(low.y, c.y), farthestIn(low.cr, c.cr), farthestIn(low.cb, c.cb)}));
  const float reach = leastOf(reaches);
  const auto begin = uint32_t(candidates.size());
  size_t count = 0;
  for (size_t i = 0; i < palette.size(); ++i) {
    const FourColors& c = palette[i];
    const Four away = distances(c, {nearestIn(low.y, c.y), nearestIn(low.cr, c.cr), nearestIn(low.cb, c.cb)});
    for (size_t lane = 0; lane < 4; ++lane) {
      if (away[lane] > reach) continue;
      put(&candidates, count++, colors[4 * i + lane]);
      numbers.push_back(uint32_t(4 * i + lane));
    }
  }
  numbers.resize(4 * candidates.size());
  return {begin, uint32_t(candidates.size())};
}

size_t NearestColor::find(const EngineColor& color) const {
  Cell& cell = cells[cellOf(color)];
  if (cell.end == 0) cell = candidatesFor(color);
  const FourColors sought{Four{} + float(color.y), Four{} + float(color.cr), Four{} + float(color.cb)};
  uint32_t nearest = 0, shortest = std::numeric_limits<uint32_t>::max();
  for (uint32_t begin = cell.begin; begin < cell.end; begin += kNumbered / 4) {
    // The distance, and below it the number, for the least of both without a branch.
    Four best = Four{} + std::numeric_limits<float>::max(), number{0, 1, 2, 3};
    const uint32_t end = std::min(cell.end, begin + kNumbered / 4);
    for (uint32_t i = begin; i < end; ++i, number += 4)
      best = least(best, distances(candidates[i], sought) * float(kNumbered) + number);
    const auto word = uint32_t(leastOf(best));
    if (word / kNumbered >= shortest) continue;
    shortest = word / kNumbered;
    nearest = 4 * begin + word % kNumbered;
  }
  return numbers[nearest];
}
