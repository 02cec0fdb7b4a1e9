#include "kit/pictures/nearestcolor.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kCellBits = 3;  // of a channel's eight, within a cell
constexpr int kCellSize = 1 << kCellBits, kCellsAcross = 256 / kCellSize;

// A distance has 18 bits. Six more of a float's 24 say which of so many colours it belongs to.
constexpr uint32_t kNumbered = 64;
constexpr float kNowhere = 1e9f;  // the own part of what no colour uses in the last four

// As colorDistance.
template <class Number>
Number squared(Number y, Number cr, Number cb) {
  return 2 * y * y + cr * cr + cb * cb;
}

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
  for (size_t i = 0; i < colors.size(); i += 4) {
    FourColors four;
    for (size_t lane = 0; lane < 4; ++lane) {
      const EngineColor& color = colors[std::min(i + lane, colors.size() - 1)];
      four.y[lane] = float(color.y);
      four.cr[lane] = float(color.cr);
      four.cb[lane] = float(color.cb);
    }
    palette.push_back(four);
  }
}

// Of the color's cell. What is farther from the cell's nearest point than another color from its farthest is nearest to
// none of it.
NearestColor::Cell NearestColor::candidatesFor(const EngineColor& color) const {
  const auto low = [](int value) { return Four{} + float(lowerEnd(value)); };
  const Four y = low(color.y), cr = low(color.cr), cb = low(color.cb);
  Four reaches = Four{} + std::numeric_limits<float>::max();
  for (const FourColors& c : palette)
    reaches =
        least(reaches, squared(c.y - farthestIn(y, c.y), c.cr - farthestIn(cr, c.cr), c.cb - farthestIn(cb, c.cb)));
  const float reach = leastOf(reaches);
  const auto begin = uint32_t(candidates.size());
  uint32_t count = 0;
  for (size_t i = 0; i < palette.size(); ++i) {
    const FourColors& c = palette[i];
    const Four away = squared(c.y - nearestIn(y, c.y), c.cr - nearestIn(cr, c.cr), c.cb - nearestIn(cb, c.cb));
    for (size_t lane = 0; lane < 4 && 4 * i + lane < colors.size(); ++lane)
      if (away[lane] <= reach) addCandidate(count++, uint32_t(4 * i + lane));
  }
  numbers.resize(4 * candidates.size());
  return {begin, uint32_t(candidates.size())};
}

// The place counts from the first of the cell's.
void NearestColor::addCandidate(uint32_t place, uint32_t number) const {
  const size_t lane = place % 4;
  if (lane == 0) candidates.push_back({Four{} + kNowhere, Four{}, Four{}, Four{}});
  const auto unit = float(kNumbered);
  const EngineColor& color = colors[number];
  const auto y = float(color.y), cr = float(color.cr), cb = float(color.cb);
  FourCandidates& four = candidates.back();
  four.own[lane] = unit * squared(y, cr, cb) + float(place % kNumbered);
  four.y[lane] = -2 * unit * 2 * y;
  four.cr[lane] = -2 * unit * cr;
  four.cb[lane] = -2 * unit * cb;
  numbers.push_back(number);
}

size_t NearestColor::find(const EngineColor& color) const {
  Cell& cell = cells[cellOf(color)];
  if (cell.end == 0) cell = candidatesFor(color);
  const auto y = float(color.y), cr = float(color.cr), cb = float(color.cb);
  const float own = float(kNumbered) * squared(y, cr, cb);
  uint32_t nearest = 0, shortest = std::numeric_limits<uint32_t>::max();
  for (uint32_t begin = cell.begin; begin < cell.end; begin += kNumbered / 4) {
    // The distance, and below it the number, for the least of both without a branch.
    Four best = Four{} + std::numeric_limits<float>::max();
    const uint32_t end = std::min(cell.end, begin + kNumbered / 4);
    for (uint32_t i = begin; i < end; ++i) {
      const FourCandidates& c = candidates[i];
      best = least(best, c.own + c.y * y + c.cr * cr + c.cb * cb);
    }
    const auto word = uint32_t(own + leastOf(best));
    if (word / kNumbered >= shortest) continue;
    shortest = word / kNumbered;
    nearest = 4 * begin + word % kNumbered;
  }
  return numbers[nearest];
}
