// Walks a scaled outline and finds where it crosses the centre lines of the pixel grid.
//
// Centre lines run at 32 + 64k in 26.6, so number k is the one through the middle of pixel k. Curves are halved until
// they are flat, and pieces that touch no centre line are passed over.
//
// The invariant that everything above relies on: the ends of every line piece are forced odd, so none lies on a centre
// line (32 + 64k is even), a piece crosses the lines between its ends and no others, and a closed contour crosses each
// line as often one way as the other.
//
// An example: the piece from (10, 20) to (100, 50) becomes (11, 21) to (101, 51). Of the vertical lines 32, 96, 160 it
// crosses those at 32 and 96, numbers 0 and 1, with x growing; of the horizontal ones it crosses 32, number 0, with y
// growing. Where it meets x = 32 is y = 21 + 30 * (32 - 11) / 90 = 21 + 630 / 90 = 28. Lines are 64 apart, so the next
// is 30 * 64 / 90 = 21 higher, with a remainder of 30 carried along: y = 49 at x = 96.
#pragma once

#include <algorithm>
#include <array>

#include "gfx/foundation/hstypes.h"
#include "t2k/glyph.h"

enum CrossingKind : uint32_t {
  kVerticalRising = 1,   // crosses a vertical centre line, x growing
  kVerticalFalling = 2,  // x falling
  kHorizontalRising = 4,
  kHorizontalFalling = 8,
};

// Quotients of small numbers by way of a table of reciprocals, each a little too large: exact, cut toward zero, while
// the dividend stays within 2^20 either way.
inline constexpr uint32_t kReciprocals = 512;
inline constexpr auto kReciprocal = [] {
  std::array<uint32_t, kReciprocals> table{};
  for (uint32_t d = 2; d < kReciprocals; ++d) table[d] = uint32_t((uint64_t{1} << 32) / d + 1);
  return table;
}();

// Divisors are spans across a centre line, at least 2.
inline uint32_t QuotientOf(uint64_t dividend, uint32_t divisor) {
  if (divisor < kReciprocals && dividend < 1 << 20) [[likely]]
    return uint32_t(dividend * kReciprocal[divisor] >> 32);
  return dividend <= UINT32_MAX ? uint32_t(dividend) / divisor : uint32_t(dividend / divisor);
}
using CrossingLanes = int32_t __attribute__((vector_size(16)));

// Beyond this a line is computed by a halved, coarser slope, and its crossings can lie a little beyond its ends.
inline constexpr int32_t kLongSpan = 32768;

inline constexpr int kMaxCurveDepth = 16;  // 32 bits of error, two less at each halving

// Sink gets the crossings in the order of the walk. AddRun<vertical>(line, length, kind, next) are length of them on
// neighbouring lines from line up, next() giving one place after the other. AddStem<vertical>(line, length, kind,
// place) are the same, all at one place. AddFour(numbers, places, kinds, is) are four at once, a vertical line's, a
// horizontal one's and two like them: the one with line number * 64 + 32 where `is` is 1, and none where it is 0; then
// only number means something: it is that of a line of the outline or of the next one.
template <class Sink>
class OutlineWalker {
 public:
  // Coordinates times oversample must stay within 2^27.
  OutlineWalker(const GlyphClass& glyph, int oversample, Sink& sink)
      : glyph_(glyph), oversample_(oversample), sink_(sink) {}

  // Throws on a cubic outline whose off-curve points don't come in twos.
  void Walk() {
    for (int i = 0; i < glyph_.contourCount; ++i) {
      const int first = glyph_.sp[i], last = glyph_.ep[i];
      if (first > last) continue;
      if (glyph_.curveType == 3) {
        WalkCubicContour(first, last);
      } else {
        WalkQuadraticContour(first, last);
      }
    }
  }

 private:
  struct Point {
    int32_t x, y;
  };
  static Point Middle(Point a, Point b) { return {(a.x + b.x + 1) >> 1, (a.y + b.y + 1) >> 1}; }
  Point PointAt(int i) const { return {glyph_.x[i] * oversample_, glyph_.y[i] * oversample_}; }

  // A contour without a point on the curve starts midway between its last and its first.
  void WalkQuadraticContour(int first, int last) {
    int start = first;
    while (start <= last && !glyph_.onCurve[start]) ++start;
    const bool noneOnCurve = start > last;
    if (noneOnCurve) start = last;
    const Point startPoint = noneOnCurve ? Middle(PointAt(last), PointAt(first)) : PointAt(start);
    Point current = startPoint, control{};
    bool haveControl = false;
    const auto goTo = [&](Point p) {
      if (haveControl) {
        AddCurve(current, control, p);
      } else {
        AddLine(current, p);
      }
      current = p;
    };
    int i = start;
    for (int left = last - first + (noneOnCurve ? 1 : 0); left > 0; --left) {
      i = i == last ? first : i + 1;
      const Point p = PointAt(i);
      if (glyph_.onCurve[i]) {
        goTo(p);
        haveControl = false;
        continue;
      }
      if (haveControl) goTo(Middle(control, p));
      control = p;
      haveControl = true;
    }
    goTo(startPoint);
  }

  void WalkCubicContour(int first, int last) {
    int start = first;
    while (start <= last && !glyph_.onCurve[start]) ++start;
    tsi_Assert(glyph_.mem, start <= last);
    const int count = last - first + 1;
    const auto indexAt = [&](int k) { return first + (start - first + k) % count; };
    Point current = PointAt(start);
    for (int k = 1; k <= count;) {
      const int b = indexAt(k);
      if (glyph_.onCurve[b]) {
        AddLine(current, PointAt(b));
        current = PointAt(b);
        ++k;
        continue;
      }
      const int c = indexAt(k + 1), d = indexAt(k + 2);
      tsi_Assert(glyph_.mem, k + 2 <= count && !glyph_.onCurve[c] && glyph_.onCurve[d]);
      AddCurve(current, PointAt(b), PointAt(c), PointAt(d));
      current = PointAt(d);
      k += 3;
    }
  }

  // Whether a centre line lies within lo..hi, both ends included.
  static bool CrossesCentre(int32_t lo, int32_t hi) { return (hi - 32) >> 6 > (lo - 33) >> 6; }

  template <class... Values>
  static int32_t Least(int32_t first, Values... rest) {
    ((first = std::min(first, rest)), ...);
    return first;
  }
  template <class... Values>
  static int32_t Most(int32_t first, Values... rest) {
    ((first = std::max(first, rest)), ...);
    return first;
  }

  static int DepthForError(int32_t error) {
    int depth = 0;
    for (; error > 1; error >>= 2) ++depth;
    return depth;
  }

  // Twice the distance of a curve's middle from its chord, roughly: a quarter of it is left by each halving.
  static int32_t Error(int32_t p, int32_t q, int32_t r) { return std::abs((p - 2 * q + r + 2) >> 2); }
  static int32_t Error(int32_t p, int32_t q, int32_t r, int32_t s) { return std::abs(((q + r - p - s) * 3 + 4) >> 3); }

  // Three points of a quadratic or four of a cubic curve. One that touches no centre line is passed over; one that does
  // is halved all the way down, since a piece that touches none costs next to nothing as a line.
  template <class... Points>
  void AddCurve(Points... points) {
    constexpr size_t kCount = sizeof...(points);
    using Curve = std::array<Point, kCount>;
    struct Piece {
      Curve curve;
      int depth;
    };
    if (!CrossesCentre(Least(points.x...), Most(points.x...)) && !CrossesCentre(Least(points.y...), Most(points.y...)))
      return;
    Curve curve{points...};
    int depth = DepthForError(std::max(Error(points.x...), Error(points.y...)));
    if (!depth) return AddLine(curve.front(), curve.back());
    Piece stack[kMaxCurveDepth];  // what is still to do, the next piece on top
    Piece* top = stack;
    for (;;) {
      // Each round replaces neighbours by the point midway between them. What each begins with is the left half's next
      // point; what remains, its last points first, is the right half.
      Curve left, right = curve;
#pragma GCC unroll 4
      for (size_t k = 0; k < kCount; ++k) {
        left[k] = right[0];
#pragma GCC unroll 4
        for (size_t i = 0; i + k + 1 < kCount; ++i) right[i] = Middle(right[i], right[i + 1]);
      }
      if (--depth) {
        *top++ = {right, depth};
        curve = left;
        continue;
      }
      AddLines(left.front(), right.front(), right.back());
      if (top == stack) return;
      --top;
      curve = top->curve;
      depth = top->depth;
    }
  }

  [[gnu::always_inline]] void AddLine(Point p, Point q) {
    p = {p.x | 1, p.y | 1};
    q = {q.x | 1, q.y | 1};
    if (LinesBelow(p.x) != LinesBelow(q.x)) AddCrossings<true>(p.x, p.y, q.x, q.y);
    if (LinesBelow(p.y) != LinesBelow(q.y)) AddCrossings<false>(p.y, p.x, q.y, q.x);
  }

  // The number of the first centre line above an odd coordinate, or several of them.
  template <class T>
  static T LinesBelow(T a) {
    return (a + 32) >> 6;
  }

  // The line pieces from p to q and from q to r. Most pieces of curves are so short that they cross one line of a
  // direction or none, and which of them do nobody foresees. So both directions of both pieces, each a lane, are worked
  // out together and without a branch, as AddCrossings would.
  [[gnu::always_inline]] void AddLines(Point p, Point q, Point r) {
    using Lanes = CrossingLanes;
    using Floats = float __attribute__((vector_size(16)));
    const Lanes from = Lanes{p.x, p.y, q.x, q.y} | 1, to = Lanes{q.x, q.y, r.x, r.y} | 1;
    const Lanes first = LinesBelow(from), ahead = LinesBelow(to) - first;  // 1 or -1 where it crosses one
    const Lanes tooMany = Lanes((ahead + 1) & ~3) | Lanes(ahead == 2);
    if ((tooMany[0] | tooMany[1]) | (tooMany[2] | tooMany[3])) {
      AddLine(p, q);
      AddLine(q, r);
      return;
    }
    const Lanes falls = ahead >> 31;  // all ones where the piece begins at its other end
    const Lanes way = to - from, across = (way ^ falls) - falls;
    const Lanes begin = from + (way & falls), line = first + falls;
    const Lanes sideways = __builtin_shufflevector(way, way, 1, 0, 3, 2), along = (sideways ^ falls) - falls;
    const Lanes besideBegin = __builtin_shufflevector(from, from, 1, 0, 3, 2) + (sideways & falls);
    // Divided as floats and cut, this is the quotient of integers: with products below 2^14 and divisors below 2^7, one
    // that isn't whole is further from a whole number than a float's rounding.
    const auto floats = [](Lanes lanes) { return __builtin_convertvector(lanes, Floats); };
    const Floats steps = floats(along) * floats(line * 64 + 32 - begin) / floats(across | Lanes(across == 0));
    const Lanes place = besideBegin + __builtin_convertvector(steps, Lanes);
    constexpr Lanes kRising = {kVerticalRising, kHorizontalRising, kVerticalRising, kHorizontalRising};
    const Lanes kind = kRising + (kRising & falls), is = ahead & 1;
    sink_.AddFour(line, place, kind, is);
  }

  // The crossings with the centre lines of one axis: a runs across the lines, b along them. Places are b0 plus
  // an exact quotient cut toward zero, kept up from line to line by its remainder.
  template <bool kVertical>
  [[gnu::noinline]] void AddCrossings(int32_t a0, int32_t b0, int32_t a1, int32_t b1) {
    uint32_t kind = kVertical ? kVerticalRising : kHorizontalRising;
    if (a0 > a1) {
      std::swap(a0, a1);
      std::swap(b0, b1);
      kind = kVertical ? kVerticalFalling : kHorizontalFalling;
    }
    const int32_t line = ((a0 + 31) & ~63) + 32;
    const int count = ((a1 - line) >> 6) + 1;

    int32_t across = a1 - a0;
    int32_t along = b1 - b0;
    if (along == 0) {  // most of the long ones are stems
      sink_.template AddStem<kVertical>(line, count, kind, b0);
      return;
    }
    while (across > kLongSpan) {
      across >>= 1;
      along >>= 1;
    }
    const int32_t sign = along >> 31;
    const uint32_t steep = hsMagnitude32(along), divisor = uint32_t(across);
    const uint64_t numerator = uint64_t{steep} * uint32_t(line - a0);
    uint32_t quotient = QuotientOf(numerator, divisor);
    const auto place = [&] { return b0 + ((int32_t(quotient) ^ sign) - sign); };
    if (count == 1) {
      sink_.template AddRun<kVertical>(line, 1, kind, place);
      return;
    }
    const uint64_t step = uint64_t{steep} * 64;
    const uint32_t stepQuotient = QuotientOf(step, divisor);
    const auto stepRemainder = uint32_t(step - uint64_t{stepQuotient} * divisor);
    auto remainder = uint32_t(numerator - uint64_t{quotient} * divisor);
    sink_.template AddRun<kVertical>(line, count, kind, [&] {
      const int32_t at = place();
      remainder += stepRemainder;
      const bool carry = remainder >= divisor;
      quotient += stepQuotient + carry;
      remainder -= carry ? divisor : 0;
      return at;
    });
  }

  const GlyphClass& glyph_;
  const int oversample_;
  Sink& sink_;
};
