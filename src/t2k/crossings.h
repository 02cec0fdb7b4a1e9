// Where an outline crosses the centre lines of the pixel grid, in both directions.
//
// This is all that the scan converter knows of a shape. Centre lines run at 32 + 64k in 26.6; the ends of every
// line piece are forced odd, so no end lies on one and every closed contour crosses each centre line as often one way
// as the other. What is left after overlaps are struck out are pairs: two crossings that follow each other on a centre
// line are a span inside the outline.
#pragma once

#include "t2k/glyph.h"

// A crossing in one word, so that words compare as crossings sort: those of horizontal lines first, by y and then x;
// then those of vertical lines, by x and then y. The kind in the low bits doesn't take part.
using Crossing = uint64_t;

enum CrossingKind : uint32_t {
  kVerticalRising = 1,   // crosses a vertical centre line, x growing
  kVerticalFalling = 2,  // x falling
  kHorizontalRising = 4,
  kHorizontalFalling = 8,
};

// Coordinates, oversampled, must stay within this.
inline constexpr int32_t kCrossingLimit = 1 << 27;
inline constexpr int kKindBits = 4;

// line: the coordinate of the centre line; along: where on it.
constexpr Crossing MakeCrossing(int32_t line, int32_t along, CrossingKind kind) {
  const uint64_t vertical = kind <= kVerticalFalling;
  return vertical << 60 | uint64_t(uint32_t(line + kCrossingLimit)) << 32 |
         uint32_t(along + kCrossingLimit) << kKindBits | kind;
}
constexpr bool IsVertical(Crossing c) { return c >> 60; }
constexpr int32_t LineOf(Crossing c) { return int32_t(c >> 32 & 0x0FFFFFFF) - kCrossingLimit; }
constexpr int32_t AlongOf(Crossing c) { return int32_t(uint32_t(c) >> kKindBits) - kCrossingLimit; }
constexpr uint32_t KindOf(Crossing c) { return c & 15; }

struct CrossingBounds {
  int32_t xmin, ymin, xmax, ymax;
};

class CrossingTable {
 public:
  explicit CrossingTable(tsiMemObject* mem);

  // Adds all contours of a scaled glyph, its coordinates multiplied by oversample. False if the shape needs more
  // than kMaxEdges crossings; the table is then of no further use. Throws on a cubic outline whose off-curve points
  // don't come in twos.
  bool AddOutline(const GlyphClass& glyph, int oversample);

  int Count() const { return numEdges_; }
  const CrossingBounds& Bounds() const { return bounds_; }  // oversampled; meaningless while empty

  // Sorts, and strikes out what lies inside overlapping contours.
  void SortAndStrike();

  // The spans that are left, two crossings each.
  const Crossing* HorizontalBegin() const { return edges_.get(); }
  const Crossing* HorizontalEnd() const { return edges_.get() + horizontals_; }
  const Crossing* VerticalBegin() const { return HorizontalEnd(); }
  const Crossing* VerticalEnd() const { return edges_.get() + numEdges_; }

 private:
  struct Point {
    int32_t x, y;
  };
  static Point Middle(Point a, Point b) { return {(a.x + b.x + 1) >> 1, (a.y + b.y + 1) >> 1}; }

  void AddQuadraticContour(const GlyphClass& glyph, int first, int last, int oversample);
  void AddCubicContour(const GlyphClass& glyph, int first, int last, int oversample);
  void AddLine(Point p, Point q);
  void AddQuadratic(Point a, Point b, Point c);
  void AddCubic(Point a, Point b, Point c, Point d);
  template <bool kVertical>
  void AddCrossings(int32_t a0, int32_t b0, int32_t a1, int32_t b1);
  bool Reserve(int more);

  void SortByLines();
  void ShellSort();
  int StrikeOverlaps(int begin, int end, int out);

  tsiMemObject* mem_;
  tsiBlock<Crossing> edges_;
  int numEdges_ = 0;
  int maxEdges_;
  int horizontals_ = 0;
  bool overflowed_ = false;
  CrossingBounds bounds_;
};

inline constexpr int kFirstEdges = 448;
inline constexpr int kMaxEdges = 1 << 20;
