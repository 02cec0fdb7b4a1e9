// The crossings of an outline with the pixel grid's centre lines, line by line in order.
//
// This is all that the scan converter knows of a shape. What is left once overlapping contours are struck out are
// pairs: two crossings that follow each other on a centre line are a span inside the outline.
#pragma once

#include <vector>

#include "t2k/outlinewalker.h"

// Coordinates, oversampled, must stay within this.
inline constexpr int32_t kCrossingLimit = 1 << 27;
inline constexpr int kMaxEdges = 1 << 18;  // crossings of a glyph that takes the slow sort

// A crossing's place on its line above its kind, so that words compare as places do.
using Crossing = uint32_t;
inline constexpr int kKindBits = 4;
constexpr Crossing MakeCrossing(int32_t along, uint32_t kind) {
  return uint32_t(along + kCrossingLimit) << kKindBits | kind;
}
constexpr int32_t AlongOf(Crossing c) { return int32_t(c >> kKindBits) - kCrossingLimit; }

struct CrossingBounds {
  int32_t xmin, ymin, xmax, ymax;
};

// The spans on one centre line: crossings in pairs.
struct LineSpans {
  int32_t line;  // 26.6, oversampled
  const Crossing* begin;
  int count;
};

class CrossingTable {
 public:
  // Takes in all contours of a scaled glyph whose points lie in box, everything multiplied by oversample; puts every
  // line in order and strikes out what lies inside overlapping contours. With exactSpans the spans are those of the
  // engine's own order of crossings that share a place; without, two spans that touch may be one or the other way
  // about, which sums of coverage don't show.
  CrossingTable(const GlyphClass& glyph, const CrossingBounds& box, int oversample, bool exactSpans);

  // The shape has more crossings than the table takes; it is of no further use.
  bool Overflowed() const { return overflowed_; }
  bool IsEmpty() const { return bounds_.xmin > bounds_.xmax; }
  // Of the crossings, oversampled.
  const CrossingBounds& Bounds() const { return bounds_; }

  tsiMemObject* Handler() const { return mem_; }
  int Rows() const { return rows_; }
  int Columns() const { return columns_; }
  LineSpans Row(int i) const { return {(lowRow_ + i) * 64 + 32, LineAt(i), count_[i]}; }
  LineSpans Column(int i) const { return {(lowColumn_ + i) * 64 + 32, LineAt(rows_ + i), count_[rows_ + i]}; }

 private:
  class LineSink;
  class SequenceSink;
  struct LineExtent;

  static constexpr int kLineRoom = 16;      // crossings that a line has room for at first
  static constexpr int kInlineLines = 256;  // enough for most glyphs

  // Lines have slots: rows from the lowest up, then columns from the left.
  int SlotOf(bool vertical, int32_t line) const { return (line >> 6) - (vertical ? lowColumn_ - rows_ : lowRow_); }
  const Crossing* LineAt(int slot) const { return entries_.get() + start_[slot]; }
  bool SortLines(bool vertical);
  void SortInSequence();
  void ExtendBounds(bool vertical, const LineExtent& extent);

  tsiMemObject* mem_;
  const GlyphClass& glyph_;
  const int oversample_;
  const bool exactSpans_;
  const int rows_, columns_, lowRow_, lowColumn_;
  tsiBuffer<Crossing, kInlineLines * kLineRoom> entries_;
  tsiBuffer<int32_t, kInlineLines * 2> lines_;
  int32_t* const start_;  // of each line in entries_
  int32_t* const count_;
  bool overflowed_ = false;
  CrossingBounds bounds_;
};
