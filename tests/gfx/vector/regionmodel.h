// A region as a bitmap of pixels, the slow and certain way.
#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <random>
#include <stdexcept>
#include <vector>

#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsregionbuilder.h"
#include "gfx/vector/hsregioniter.h"

constexpr int kModelSize = 64;  // pixels either way, as many as a word has bits

struct PixelModel {
  std::array<uint64_t, kModelSize> rows{};  // a bit for each pixel, the left one lowest

  // The pixels that `holds` is true of.
  template <class Holds>
  static PixelModel Where(Holds holds) {
    PixelModel model;
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x) model.rows[size_t(y)] |= uint64_t{holds(x, y)} << x;
    return model;
  }
  // Each row by itself.
  template <class Combine>
  static PixelModel Of(const PixelModel& a, const PixelModel& b, Combine combine) {
    PixelModel model;
    for (size_t y = 0; y < a.rows.size(); ++y) model.rows[y] = combine(a.rows[y], b.rows[y]);
    return model;
  }
  bool operator==(const PixelModel&) const = default;
  bool At(int x, int y) const { return rows[size_t(y)] >> x & 1; }
  static constexpr uint64_t Span(int left, int right) {
    const auto below = [](int x) { return x < kModelSize ? (uint64_t{1} << x) - 1 : ~uint64_t{0}; };
    return below(right) & ~below(left);
  }
  void Fill(const hsIntRect& r, bool value = true) {
    const uint64_t span = r.fLeft < r.fRight ? Span(r.fLeft, r.fRight) : 0;
    for (int y = r.fTop; y < r.fBottom; ++y) {
      uint64_t& row = rows[size_t(y)];
      row = value ? row | span : row & ~span;
    }
  }
  // The spans of a row, left and right alternately.
  std::vector<int16_t> Row(int y) const {
    std::vector<int16_t> edges;
    const uint64_t row = rows[size_t(y)];
    for (uint64_t changes = row ^ row << 1; changes; changes &= changes - 1)
      edges.push_back(int16_t(std::countr_zero(changes)));
    if (edges.size() % 2) edges.push_back(kModelSize);
    return edges;
  }
  // The shortest runs for these pixels: alike rows in one band, no empty band at either end.
  std::vector<int16_t> Runs() const {
    std::vector<int16_t> runs, band;
    size_t kept = 0;  // the length of runs up to the last band with spans
    for (int y = 0; y < kModelSize; ++y) {
      const std::vector<int16_t> row = Row(y);
      if (runs.empty() && row.empty()) continue;
      if (runs.empty()) runs.push_back(int16_t(y));
      if (runs.size() > 1 && row == band) {
        runs[runs.size() - row.size() - 2] = int16_t(y + 1);
        continue;
      }
      band = row;
      runs.push_back(int16_t(y + 1));
      runs.insert(runs.end(), row.begin(), row.end());
      runs.push_back(hsRegion::kRunTypeSentinel);
      if (!row.empty()) kept = runs.size();
    }
    if (kept > 0 && runs.size() != kept) runs.resize(kept);
    runs.push_back(hsRegion::kRunTypeSentinel);
    return runs;
  }
  hsRegion Region() const {
    const std::vector<int16_t> runs = Runs();
    hsRegion region;
    region.SetRuns(int32_t(runs.size()), runs.data());
    return region;
  }
};

// Notes every pixel, whether one came twice, and whether spans came in order: from the top, in a row from the left.
struct PixelBlitter : hsGBlitter {
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    ordered = ordered && width > 0 && (y > lastY || (y == lastY && x >= lastEnd));
    lastY = y;
    lastEnd = x + width;
    if (x < 0 || x + width > kModelSize) throw std::out_of_range("a span leaves the model");
    uint64_t& row = drawn.rows.at(size_t(y));
    const uint64_t span = width > 0 ? PixelModel::Span(x, x + width) : 0;
    twice |= (row & span) != 0;
    row |= span;
  }
  PixelModel drawn;
  bool twice = false, ordered = true;
  int32_t lastY = -1, lastEnd = 0;
};

using Random = std::mt19937;

inline hsIntRect RandomRect(Random& random, int maxSize = kModelSize) {
  const int left = int(random() % kModelSize), top = int(random() % kModelSize);
  const int width = 1 + int(random() % unsigned(maxSize)), height = 1 + int(random() % unsigned(maxSize));
  return {left, top, std::min(left + width, kModelSize), std::min(top + height, kModelSize)};
}

// Nothing, a rectangle, a few shapes with gaps between them, or many small ones.
inline PixelModel RandomModel(Random& random) {
  PixelModel model;
  const unsigned kind = random() % 8;
  const int count = kind == 0 ? 0 : kind == 1 ? 1 : kind < 6 ? 2 + int(random() % 8) : 80;
  for (int i = 0; i < count; ++i) model.Fill(RandomRect(random, kind == 6 ? 4 : 24), kind < 3 || random() % 4 != 0);
  return model;
}
