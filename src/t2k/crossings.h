// The crossings of an outline with the pixel grid's centre lines, line by line in order.
//
// This is all that the scan converter knows of a shape. What is left once overlapping contours are struck out are
// pairs: two crossings that follow each other on a centre line are a span inside the outline.
#pragma once

#include "t2k/crossingsort.h"

inline constexpr int kMaxEdges = 1 << 21;  // crossings of a glyph that takes the slow sort

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
  // Takes in all contours of a scaled glyph whose points lie in box, everything multiplied by oversample.
  CrossingTable(const GlyphClass& glyph, const CrossingBounds& box, int oversample);

  // To be called once, before anything below: puts every line in order and strikes out what lies inside overlapping
  // contours. With exactSpans the spans are those of the engine's own order of crossings that share a place; without,
  // two spans that touch may be one or the other way about, which sums of coverage don't show.
  void Settle(bool exactSpans);

  // Hands all lines that have spans to a painter: Enter<kVertical>(spans).
  template <class Painter>
  void EnterAll(Painter& painter) const {
    for (int i = 0; i < rows_; ++i) EnterLine<false>(painter, Row(i));
    for (int i = 0; i < columns_; ++i) EnterLine<true>(painter, Column(i));
  }

  // The shape has more crossings than the table takes; it is of no further use.
  bool Overflowed() const { return overflowed_; }
  bool IsEmpty() const { return bounds_.xmin > bounds_.xmax; }
  // Of the crossings, oversampled.
  const CrossingBounds& Bounds() const { return bounds_; }

  int Rows() const { return rows_; }
  int Columns() const { return columns_; }
  LineSpans Row(int i) const { return {(lowRow_ + i) * 64 + 32, LineAt(i), count_[i]}; }
  LineSpans Column(int i) const { return {(lowColumn_ + i) * 64 + 32, LineAt(rows_ + i), count_[rows_ + i]}; }

 private:
  template <int kRoom>
  class LineSink;
  class SequenceSink;

  // The first and the last line of a direction that has crossings, and the outermost crossings of all of them.
  struct LineExtent {
    int first = -1, last = -1;
    Crossing lowest = ~Crossing{0}, highest = 0;

    void Take(int slot, Crossing lowestOfLine, Crossing highestOfLine) {
      if (first < 0) first = slot;
      last = slot;
      lowest = std::min(lowest, lowestOfLine);
      highest = std::max(highest, highestOfLine);
    }
  };

  static constexpr int kLineRoom = 16;      // crossings that a line has space for at first, less one
  static constexpr int kMoreRoom = 64;      // and when that isn't enough
  static constexpr int kInlineLines = 256;  // enough for most glyphs

  // Lines have slots: rows from the lowest up, then columns from the left, then one that is never looked at.
  int Slots() const { return rows_ + columns_ + 1; }
  int SlotOf(bool vertical, int32_t number) const { return number - (vertical ? lowColumn_ - rows_ : lowRow_); }
  const Crossing* LineAt(int slot) const { return entries_.get() + start_[slot]; }
  template <int kRoom>
  void WalkIntoLines();
  bool MakeRoom();
  void SortInSequence();
  void ExtendBounds(bool vertical, const LineExtent& extent);

  template <bool kVertical, class Painter>
  static void EnterLine(Painter& painter, const LineSpans& spans) {
    if (spans.count) painter.template Enter<kVertical>(spans);
  }

  bool SettleAll(bool exactSpans) { return SettleLines(false, exactSpans) && SettleLines(true, exactSpans); }
  bool SettleLines(bool vertical, bool exactSpans);

  tsiMemObject* mem_;
  const GlyphClass& glyph_;
  const int oversample_;
  const int rows_, columns_, lowRow_, lowColumn_;
  tsiBuffer<Crossing, kInlineLines * kLineRoom> entries_;
  tsiBuffer<int32_t, kInlineLines * 2> lines_;
  int32_t* const start_;  // of each line in entries_
  int32_t* const count_;
  int room_ = kLineRoom;
  bool overflowed_ = false;
  CrossingBounds bounds_;
};
