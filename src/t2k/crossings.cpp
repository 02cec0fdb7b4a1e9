#include "t2k/crossings.h"

#include <algorithm>

#include "gfx/foundation/hstypes.h"

namespace {

constexpr int32_t kLongSpan = 32768;
constexpr int kMaxDepth = 16;  // of a curve's subdivision; 32 bits of error halve twice a step

// Whether the extent lo..hi of a curve piece may cross a centre line.
inline bool CrossesCentre(int32_t lo, int32_t hi) {
  if (hi - lo >= 64) return true;
  const int32_t lowFraction = lo & 63, highFraction = hi & 63;
  if (lo >> 6 == hi >> 6) return lowFraction <= 32 && highFraction >= 32;
  return !(highFraction < 32 && lowFraction > 32);
}

int DepthForError(int32_t error) {
  int depth = 0;
  for (; error > 1; error >>= 2) ++depth;
  return depth;
}

int32_t QuadraticError(int32_t a, int32_t b, int32_t c) { return std::abs((a - 2 * b + c + 2) >> 2); }
int32_t CubicError(int32_t a, int32_t b, int32_t c, int32_t d) { return std::abs(((b + c - a - d) * 3 + 4) >> 3); }

}  // namespace

CrossingTable::CrossingTable(tsiMemObject* mem)
    : mem_(mem),
      edges_(mem, kFirstEdges),
      maxEdges_(kFirstEdges),
      bounds_{kCrossingLimit, kCrossingLimit, -kCrossingLimit, -kCrossingLimit} {}

bool CrossingTable::Reserve(int more) {
  if (more <= maxEdges_ - numEdges_) return true;
  if (more > kMaxEdges - numEdges_) {
    overflowed_ = true;
    return false;
  }
  while (maxEdges_ < numEdges_ + more) maxEdges_ += maxEdges_ / 2;
  edges_.Resize(uint32_t(maxEdges_));
  return true;
}

// The crossings with the centre lines of one axis: a runs across the lines, b along them. Positions are b0 plus an
// exact quotient cut toward zero, kept up from line to line by its remainder.
template <bool kVertical>
inline void CrossingTable::AddCrossings(int32_t a0, int32_t b0, int32_t a1, int32_t b1) {
  constexpr CrossingKind kRising = kVertical ? kVerticalRising : kHorizontalRising;
  constexpr CrossingKind kFalling = kVertical ? kVerticalFalling : kHorizontalFalling;
  CrossingKind kind = kRising;
  if (a0 > a1) {
    std::swap(a0, a1);
    std::swap(b0, b1);
    kind = kFalling;
  }
  int32_t line = ((a0 + 31) & ~63) + 32;
  if (line > a1) return;
  const int count = ((a1 - line) >> 6) + 1;
  if (!Reserve(count)) return;

  int32_t across = a1 - a0;
  int32_t along = b1 - b0;
  while (across > kLongSpan) {
    across >>= 1;
    along >>= 1;
  }
  const bool backward = along < 0;
  const uint64_t steep = hsMagnitude32(along);
  const uint32_t divisor = uint32_t(across);
  const uint64_t numerator = steep * uint32_t(line - a0);
  uint32_t quotient, remainder;
  if (numerator <= UINT32_MAX) [[likely]] {
    quotient = uint32_t(numerator) / divisor;
    remainder = uint32_t(numerator) % divisor;
  } else {
    quotient = uint32_t(numerator / divisor);
    remainder = uint32_t(numerator % divisor);
  }

  Crossing* out = edges_.get() + numEdges_;
  numEdges_ += count;
  const int32_t first = backward ? b0 - int32_t(quotient) : b0 + int32_t(quotient);
  int32_t last = first;
  *out++ = MakeCrossing(line, first, kind);
  if (count > 1) {
    const uint64_t step = steep * 64;
    const uint32_t stepQuotient = uint32_t(step / divisor);
    const uint32_t stepRemainder = uint32_t(step % divisor);
    for (int i = 1; i < count; ++i) {
      line += 64;
      quotient += stepQuotient;
      remainder += stepRemainder;
      if (remainder >= divisor) {
        remainder -= divisor;
        ++quotient;
      }
      last = backward ? b0 - int32_t(quotient) : b0 + int32_t(quotient);
      *out++ = MakeCrossing(line, last, kind);
    }
  }

  const int32_t firstLine = line - (count - 1) * 64;
  auto& [xmin, ymin, xmax, ymax] = bounds_;
  (kVertical ? xmin : ymin) = std::min(kVertical ? xmin : ymin, firstLine);
  (kVertical ? xmax : ymax) = std::max(kVertical ? xmax : ymax, line);
  (kVertical ? ymin : xmin) = std::min({kVertical ? ymin : xmin, first, last});
  (kVertical ? ymax : xmax) = std::max({kVertical ? ymax : xmax, first, last});
}

void CrossingTable::AddLine(Point p, Point q) {
  p = {p.x | 1, p.y | 1};
  q = {q.x | 1, q.y | 1};
  AddCrossings<true>(p.x, p.y, q.x, q.y);
  AddCrossings<false>(p.y, p.x, q.y, q.x);
}

void CrossingTable::AddQuadratic(Point a, Point b, Point c) {
  struct Piece {
    Point a, b, c;
    int depth;
  };
  Piece stack[kMaxDepth + 2];
  Piece* top = stack;
  *top = {a, b, c, DepthForError(std::max(QuadraticError(a.x, b.x, c.x), QuadraticError(a.y, b.y, c.y)))};
  for (;;) {
    const Piece piece = *top;
    const auto [left, right] = std::minmax({piece.a.x, piece.b.x, piece.c.x});
    const auto [low, high] = std::minmax({piece.a.y, piece.b.y, piece.c.y});
    if (CrossesCentre(left, right) || CrossesCentre(low, high)) {
      if (piece.depth > 0) {
        const Point ab = Middle(piece.a, piece.b), bc = Middle(piece.b, piece.c), abc = Middle(ab, bc);
        top[0] = {abc, bc, piece.c, piece.depth - 1};
        top[1] = {piece.a, ab, abc, piece.depth - 1};
        ++top;
        continue;
      }
      AddLine(piece.a, piece.c);
    }
    if (top-- == stack) return;
  }
}

void CrossingTable::AddCubic(Point a, Point b, Point c, Point d) {
  struct Piece {
    Point a, b, c, d;
    int depth;
  };
  Piece stack[kMaxDepth + 2];
  Piece* top = stack;
  *top = {a, b, c, d, DepthForError(std::max(CubicError(a.x, b.x, c.x, d.x), CubicError(a.y, b.y, c.y, d.y)))};
  for (;;) {
    const Piece piece = *top;
    const auto [left, right] = std::minmax({piece.a.x, piece.b.x, piece.c.x, piece.d.x});
    const auto [low, high] = std::minmax({piece.a.y, piece.b.y, piece.c.y, piece.d.y});
    if (CrossesCentre(left, right) || CrossesCentre(low, high)) {
      if (piece.depth > 0) {
        const Point ab = Middle(piece.a, piece.b), bc = Middle(piece.b, piece.c), cd = Middle(piece.c, piece.d);
        const Point abc = Middle(ab, bc), bcd = Middle(bc, cd), abcd = Middle(abc, bcd);
        top[0] = {abcd, bcd, cd, piece.d, piece.depth - 1};
        top[1] = {piece.a, ab, abc, abcd, piece.depth - 1};
        ++top;
        continue;
      }
      AddLine(piece.a, piece.d);
    }
    if (top-- == stack) return;
  }
}

void CrossingTable::AddQuadraticContour(const GlyphClass& glyph, int first, int last, int oversample) {
  const auto pointAt = [&](int i) { return Point{glyph.x[i] * oversample, glyph.y[i] * oversample}; };
  int start = first;
  while (start <= last && !glyph.onCurve[start]) ++start;
  const bool noneOnCurve = start > last;
  if (noneOnCurve) start = last;

  const Point startPoint = noneOnCurve ? Middle(pointAt(last), pointAt(first)) : pointAt(start);
  Point current = startPoint;
  Point control{};
  bool haveControl = false;
  const auto curveOrLineTo = [&](Point p) {
    if (haveControl) {
      AddQuadratic(current, control, p);
    } else {
      AddLine(current, p);
    }
    current = p;
  };
  const int count = last - first + 1;
  const int between = noneOnCurve ? count : count - 1;  // points to walk before the start comes round again
  int i = start;
  for (int k = 0; k < between; ++k) {
    i = i == last ? first : i + 1;
    const Point p = pointAt(i);
    if (glyph.onCurve[i]) {
      curveOrLineTo(p);
      haveControl = false;
      continue;
    }
    if (haveControl) curveOrLineTo(Middle(control, p));
    control = p;
    haveControl = true;
  }
  curveOrLineTo(startPoint);
}

void CrossingTable::AddCubicContour(const GlyphClass& glyph, int first, int last, int oversample) {
  const auto pointAt = [&](int i) { return Point{glyph.x[i] * oversample, glyph.y[i] * oversample}; };
  int start = first;
  while (start <= last && !glyph.onCurve[start]) ++start;
  tsi_Assert(mem_, start <= last);
  const int count = last - first + 1;
  const auto indexAt = [&](int k) { return first + (start - first + k) % count; };
  Point current = pointAt(start);
  for (int k = 1; k <= count;) {
    const int b = indexAt(k);
    if (glyph.onCurve[b]) {
      AddLine(current, pointAt(b));
      current = pointAt(b);
      ++k;
      continue;
    }
    const int c = indexAt(k + 1), d = indexAt(k + 2);
    tsi_Assert(mem_, k + 2 <= count && !glyph.onCurve[c] && glyph.onCurve[d]);
    AddCubic(current, pointAt(b), pointAt(c), pointAt(d));
    current = pointAt(d);
    k += 3;
  }
}

bool CrossingTable::AddOutline(const GlyphClass& glyph, int oversample) {
  for (int i = 0; i < glyph.contourCount && !overflowed_; ++i) {
    const int first = glyph.sp[i], last = glyph.ep[i];
    if (first > last) continue;
    if (glyph.curveType == 3) {
      AddCubicContour(glyph, first, last, oversample);
    } else {
      AddQuadraticContour(glyph, first, last, oversample);
    }
  }
  return !overflowed_;
}
