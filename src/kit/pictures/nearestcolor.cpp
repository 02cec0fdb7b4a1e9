#include "kit/pictures/nearestcolor.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kCellBits = 3;  // of a channel's eight, within a cell
constexpr int kCellSize = 1 << kCellBits, kCellsAcross = 256 / kCellSize;

size_t cellOf(const EngineColor& color) {
  return size_t(((color.y >> kCellBits) * kCellsAcross + (color.cr >> kCellBits)) * kCellsAcross +
                (color.cb >> kCellBits));
}

EngineColor lowCornerOf(size_t cell) {
  const int at = int(cell);
  return {at / (kCellsAcross * kCellsAcross) * kCellSize, at / kCellsAcross % kCellsAcross * kCellSize,
          at % kCellsAcross * kCellSize};
}

// The point of a cell that is nearest to a colour, and the one farthest from it, in one channel.
int nearestIn(int low, int value) { return std::clamp(value, low, low + kCellSize - 1); }
int farthestIn(int low, int value) { return 2 * value < 2 * low + kCellSize - 1 ? low + kCellSize - 1 : low; }

}  // namespace

NearestColor::NearestColor(const std::vector<uint32_t>& words)
    : colors(words.begin(), words.end()), cells(kCellsAcross * kCellsAcross * kCellsAcross) {}

// A colour that is farther from the cell's nearest point than another one from its farthest is nearest to none of it.
NearestColor::Cell NearestColor::candidatesFor(size_t cell) const {
  const EngineColor low = lowCornerOf(cell);
  int reach = std::numeric_limits<int>::max();
  for (const EngineColor& c : colors)
    reach =
        std::min(reach, colorDistance(c, {farthestIn(low.y, c.y), farthestIn(low.cr, c.cr), farthestIn(low.cb, c.cb)}));
  const auto begin = uint32_t(candidates.size());
  for (size_t i = 0; i < colors.size(); ++i) {
    const EngineColor& c = colors[i];
    if (colorDistance(c, {nearestIn(low.y, c.y), nearestIn(low.cr, c.cr), nearestIn(low.cb, c.cb)}) <= reach)
      candidates.push_back({c, uint32_t(i)});
  }
  return {begin, uint32_t(candidates.size())};
}

size_t NearestColor::find(const EngineColor& color) const {
  Cell& cell = cells[cellOf(color)];
  if (cell.end == 0) cell = candidatesFor(cellOf(color));
  // The distance, and below it the number, for the least of both without a branch.
  uint64_t best = UINT64_MAX;
  for (uint32_t i = cell.begin; i < cell.end; ++i) {
    const Candidate& c = candidates[i];
    best = std::min(best, uint64_t(colorDistance(c.color, color)) << 32 | c.number);
  }
  return size_t(best & UINT32_MAX);
}
