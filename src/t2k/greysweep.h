// Grey coverage straight from the walk of an outline: no crossing is kept, and none is sorted.
//
// That works for a shape of which each centre line meets an inside, an outside, an inside and so on, as nearly all
// glyphs are. Every crossing then begins or ends a span by its direction alone, and a byte is enough for what happens
// in one pixel along one line: nothing, a begin, an end, or one of each in either order. A crossing adds to it a flag
// for its direction and what it gives to the pixel's coverage. Sweeping along all lines at once, sixteen in a register,
// sums that up and finds out whether the shape was such. If it wasn't, or if more happens in a pixel, the crossings
// have to be sorted after all (crossings.h).
//
// An example, with a unit of 20: a begin in the middle of a pixel and an end a quarter into the one after the next are
// the bytes 64 + 10, 0 and 128 + 5, and along this line the pixels get 10, 20 and 5. What an end gives is what lies
// before it, and where both are in one pixel the sum is a unit too large or, inside a span, just right.
#pragma once

#include <array>
#include <cstring>

#include "t2k/outlinewalker.h"
#include "t2k/scanbitmap.h"

//
// In small glyphs more often happens in a pixel. Theirs are cut along the line into kCut cells, each with a byte.
template <int kOversample, int kCut = 1>
class GreySweep {
 public:
  static constexpr int kLanes = 16;
  static constexpr int kMost = std::min(64, 255 / (kOversample * kCut) & -kLanes);  // pixels either way

  static bool Fits(const PixelBox& reach) { return std::max(reach.Width(), reach.Height()) <= kMost; }

  // reach is as far as the points lie, each forced odd.
  GreySweep(const GlyphClass& glyph, const PixelBox& reach)
      : reach_(reach),
        lowLine_{reach.left * kOversample, reach.bottom * kOversample, reach.left * kOversample,
                 reach.bottom * kOversample},
        origin_{reach.bottom * 64, reach.left * 64, reach.bottom * 64, reach.left * 64},
        beginKind_(glyph.curveType == 3
                       ? CrossingLanes{kVerticalRising, kHorizontalFalling, kVerticalRising, kHorizontalFalling}
                       : CrossingLanes{kVerticalFalling, kHorizontalRising, kVerticalFalling, kHorizontalRising}) {
    Clear(columns_, reach.Height(), reach.Width());
    Clear(rows_, reach.Width(), reach.Height());
    OutlineWalker<GreySweep>(glyph, kOversample, *this).Walk();
  }

  // To be called once. False if the crossings have to be sorted; this is of no further use then.
  bool Sum() {
    const int width = reach_.Width(), height = reach_.Height();
    uint8_t rowSums[kMost * kStride];  // columns of pixels, one after the other
    int begins = SweepLines<false>(rows_, width, height, rowSums, usedRows_);
    for (int y = 0; y < height; y += kLanes)
      for (int x = 0; x < width; x += kLanes) Transpose(rowSums + x * kStride + y, coverage_ + y * kStride + x);
    begins += SweepLines<true>(columns_, height, width, coverage_, usedColumns_);
    const int crossings = count_ + fours_[0] + fours_[1] + fours_[2] + fours_[3];
    return begins * 2 == crossings && IsSound();
  }

  // The pixels that crossings lie in, once summed; without any the width is 0.
  PixelBox Bounds() const {
    PixelBox box{0, 0, reach_.Width(), reach_.Height()};
    const auto usesX = [&](int x) { return usedColumns_[x] || IsUsed(rows_ + x * kCut * kStep, box.top); };
    const auto usesY = [&](int y) { return usedRows_[y] || IsUsed(columns_ + y * kCut * kStep, box.right); };
    int left = 0, right = box.right, bottom = 0, top = box.top;
    while (left < right && !usesX(left)) ++left;
    while (left < right && !usesX(right - 1)) --right;
    while (bottom < top && !usesY(bottom)) ++bottom;
    while (bottom < top && !usesY(top - 1)) --top;
    return {reach_.left + left, reach_.bottom + bottom, reach_.left + right, reach_.bottom + top};
  }

  // Writes the rows of sc's bitmap, which lies within the bounds, and up to kLanes bytes more after it.
  void CopyTo(const tsiScanConv& sc) const {
    uint8_t* out = sc.baseAddr;
    for (int y = sc.top - 1; y >= sc.bottom; --y, out += sc.rowBytes) {
      const uint8_t* from = coverage_ + (y - reach_.bottom) * kStride + (sc.left - reach_.left);
      for (int x = 0; x < sc.Width(); x += kLanes) std::memcpy(out + x, from + x, kLanes);
    }
  }

  // For the walker.
  template <bool kVertical>
  void AddStem(int32_t line, int length, uint32_t kind, int32_t place) {
    count_ += length;
    const int begin = (line >> 6) - lowLine_[kVertical ? 0 : 1], end = begin + length;
    const int32_t at = place / kOversample - origin_[kVertical ? 0 : 1];
    const Bytes entry = Bytes{} + EntriesFor<kVertical>(kind)[at & 63];
    uint8_t* cells = (kVertical ? columns_ : rows_) + StepOf(at);
    for (int i = 0; i < kOversample; ++i, cells += kStride) {
      const auto pixelFrom = [&](int line) { return int(unsigned(line + kOversample - 1 - i) / kOversample); };
      const int limit = pixelFrom(end);
      for (int lane = pixelFrom(begin); lane < limit; lane += kLanes) {
        const int left = std::min(limit - lane, kLanes);
        Store(cells + lane, Load(cells + lane) + (entry & Load(kFirstLanes.data() + kLanes - left)));
      }
    }
  }
  template <bool kVertical, class Next>
  void AddRun(int32_t line, int length, uint32_t kind, Next next) {
    count_ += length;
    uint8_t* const cells = kVertical ? columns_ : rows_;
    const int32_t origin = origin_[kVertical ? 0 : 1];
    const uint8_t* const entries = EntriesFor<kVertical>(kind);
    const uint16_t* offset = kLineOffsets.data() + ((line >> 6) - lowLine_[kVertical ? 0 : 1]);
    for (const uint16_t* const end = offset + length; offset < end; ++offset) {
      const int32_t at = next() / kOversample - origin;
      uint8_t& cell = cells[StepOf(at) + *offset];
      cell = uint8_t(cell + entries[at & 63]);
    }
  }
  void AddFour(CrossingLanes number, CrossingLanes along, CrossingLanes kind, CrossingLanes is) {
    using Floats = float __attribute__((vector_size(16)));
    constexpr float kShare = 1.0f / kOversample;  // rounded up or exact, so that products cut come to the quotients
    fours_ += is;
    const CrossingLanes mask = -is;
    const Floats shares = __builtin_convertvector(along, Floats) * kShare;
    const CrossingLanes places = (__builtin_convertvector(shares, CrossingLanes) - origin_) & mask;
    const CrossingLanes steps = StepOf(places), lines = number - lowLine_;
    const CrossingLanes entries = (places & 63) | (mask & (kind != beginKind_) & kEnds) | (~mask & kNone);
    for (int i = 0; i < 4; ++i) {
      uint8_t& cell = (i % 2 ? rows_ : columns_)[steps[i] + kLineOffsets[size_t(lines[i])]];
      cell = uint8_t(cell + kEntries[size_t(entries[i])]);
    }
  }

 private:
  using Bytes = uint8_t __attribute__((vector_size(kLanes)));
  using SignedBytes = int8_t __attribute__((vector_size(kLanes)));

  static constexpr int kPixelUnit = kGreyFull / (2 * kOversample), kUnit = kPixelUnit / kCut;
  static_assert(kPixelUnit % kCut == 0);
  static constexpr uint8_t kBegin = 64, kEnd = 128;
  static_assert(kUnit * 2 < kBegin, "what two crossings give fits below the flags");

  // Cells lie in the order of the sweep: by their place along the lines, then by which of a pixel's lines, then by the
  // pixel across.
  static constexpr int kStride = 64;
  static constexpr int kStep = kOversample * kStride;
  static constexpr int kCellSize = 64 / kCut;  // 26.6
  template <class T>
  static T StepOf(T place) {
    return (place & -kCellSize) * (kStep / kCellSize);
  }
  static constexpr auto kLineOffsets = [] {
    std::array<uint16_t, kMost * kOversample + 1> offsets{};
    for (size_t i = 0; i < offsets.size(); ++i) offsets[i] = uint16_t(i % kOversample * kStride + i / kOversample);
    return offsets;
  }();

  // What a begin adds, by the fraction of its place; then the same for an end; then what no crossing adds.
  static constexpr int kEnds = 64, kNone = 128;
  static constexpr auto kEntries = [] {
    std::array<uint8_t, kNone + 1> entries{};
    for (int fraction = 0; fraction < 64; ++fraction) {
      const int cellsBeyond = kCut - 1 - fraction / kCellSize;
      const int beyond = ((64 - fraction) * kPixelUnit >> 6) - cellsBeyond * kUnit;
      entries[size_t(fraction)] = uint8_t(kBegin + beyond);
      entries[size_t(kEnds + fraction)] = uint8_t(kEnd + kUnit - beyond);
    }
    return entries;
  }();

  template <bool kVertical>
  const uint8_t* EntriesFor(uint32_t kind) const {
    return kEntries.data() + (int32_t(kind) == beginKind_[kVertical ? 0 : 1] ? 0 : kEnds);
  }

  // All ones, then zeros.
  static constexpr auto kFirstLanes = [] {
    std::array<uint8_t, kLanes * 2> lanes{};
    for (int i = 0; i < kLanes; ++i) lanes[size_t(i)] = 255;
    return lanes;
  }();

  static Bytes Load(const uint8_t* from) {
    Bytes bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
  }
  static void Store(uint8_t* to, Bytes bytes) { std::memcpy(to, &bytes, sizeof bytes); }

  static void Clear(uint8_t* cells, int steps, int width) {
    for (int lane = 0; lane < width; lane += kLanes)
      for (int line = 0; line < steps * kCut * kOversample; ++line) Store(cells + line * kStride + lane, Bytes{});
  }

  // Whether anything happens at a step, in the lanes below width.
  static bool IsUsed(const uint8_t* cells, int width) {
    Bytes all{};
    for (int line = 0; line < kCut * kOversample; ++line)
      for (int lane = 0; lane < width; lane += kLanes) all |= Load(cells + line * kStride + lane);
    const auto halves = (uint64_t __attribute__((vector_size(kLanes))))all;
    return (halves[0] | halves[1]) != 0;
  }

  // Sums up along the lines. sums gets, or with kAdds gets added, the coverage of each step's pixels; used,
  // in each lane, whether any spans begin. Says how many spans begin.
  template <bool kAdds>
  int SweepLines(const uint8_t* cells, int steps, int width, uint8_t* sums, uint8_t* used) {
    int begins = 0;
    for (int lane = 0; lane < width; lane += kLanes) {
      Bytes levels[kOversample] = {};  // the unit inside a span
      Bytes begun{}, most = most_;
      for (int step = 0; step < steps; ++step) {
        const uint8_t* from = cells + step * kCut * kStep + lane;
        Bytes sum = kAdds ? Load(sums + step * kStride + lane) : Bytes{};
        for (int i = 0; i < kCut * kOversample; ++i, from += kStride) {
          const int line = i % kOversample;
          const Bytes cell = Load(from);
          const Bytes ends = Bytes(SignedBytes(cell) < 0), begin = Bytes((cell & kBegin) == kBegin);
          const Bytes inside = levels[line] - (ends & uint8_t(kUnit));
          const Bytes part = (cell & uint8_t(kBegin - 1)) + inside;
          levels[line] = inside + (begin & uint8_t(kUnit));
          sum += part;
          begun -= begin;
          most = part > most ? part : most;
        }
        Store(sums + step * kStride + lane, sum);
      }
      for (const Bytes& level : levels) most |= level | -level;  // each span has to end
      Store(used + lane, begun);
      for (int i = 0; i < kLanes; ++i) begins += begun[i];
      most_ = most;
    }
    return begins;
  }

  // A span that begins inside another or ends outside leaves a part below nothing, which is a large byte, or above the
  // unit: in its own pixel or the next, or else it adds nothing at all.
  bool IsSound() const {
    for (int i = 0; i < kLanes; ++i)
      if (most_[i] > kUnit) return false;
    return true;
  }

  // A square of kLanes bytes a side.
  static void Transpose(const uint8_t* from, uint8_t* to) {
    Bytes rows[kLanes];
    for (int i = 0; i < kLanes; ++i) rows[i] = Load(from + i * kStride);
#pragma GCC unroll 4
    for (int round = 0; round < 4; ++round) {
      Bytes mixed[kLanes];
#pragma GCC unroll 8
      for (int i = 0; i < kLanes / 2; ++i) {
        const Bytes a = rows[i], b = rows[i + kLanes / 2];
        mixed[i * 2] = __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
        mixed[i * 2 + 1] = __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31);
      }
      for (int i = 0; i < kLanes; ++i) rows[i] = mixed[i];
    }
    for (int i = 0; i < kLanes; ++i) Store(to + i * kStride, rows[i]);
  }

  const PixelBox reach_;
  const CrossingLanes lowLine_, origin_, beginKind_;  // for vertical lines, horizontal ones, and again
  int count_ = 0;                                     // of crossings
  CrossingLanes fours_{};                             // and of those that came in fours
  Bytes most_{};                                      // that a line gave to a pixel
  uint8_t columns_[kMost * kCut * kStep + kLanes];
  uint8_t rows_[kMost * kCut * kStep + kLanes];
  uint8_t coverage_[kMost * kStride + kLanes];
  uint8_t usedRows_[kStride], usedColumns_[kStride];
};
