// The walk over a path's edges, row by row.
//
// What a row needs of the active edges lies in arrays, in order of X, so that several edges take a step at once.
// Between one edge's begin or end and the next nothing else happens: which edges bound a span is computed once, and
// again only when a step has taken an edge past another.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsedge.h"

class hsActiveEdges {
 public:
  // most is how many there can be at a time. Inside a shape is where the winding has a bit of mask.
  hsActiveEdges(int32_t most, int32_t mask) : fMask(mask) {
    const size_t padded = size_t(std::max(most, kInlineCount)) + kLanes;
    if (most > kInlineCount) {
      fManyNumbers.reset(new int32_t[padded * 5]);
      fManyLines.reset(new Line[padded * 2]);
    }
    Divide(fManyNumbers ? fManyNumbers.get() : fFewNumbers, fManyLines ? fManyLines.get() : fFewLines, padded);
  }
  hsActiveEdges(const hsActiveEdges&) = delete;
  hsActiveEdges& operator=(const hsActiveEdges&) = delete;

  bool IsEmpty() const { return fCount == 0; }
  // The first row that one of them doesn't reach; for none, beyond all rows.
  int32_t FirstEnd() const { return fFirstEnd; }
  // Of the first one, and so the least.
  hsFixed FirstX() const { return fNow.x[0]; }

  // Readies them for row y: those that have ended go on with the next line of their curve or leave, and those at the
  // front of the list that start here come in, themselves in order. Equal ones stay as they were, and one that starts
  // goes before them. Returns the rest of the list.
  hsEdge* Renew(hsEdge* list, int32_t y, const hsIntRect* clip) {
    if ((list && list->fFirstY <= y) || !AdvanceInPlace(y, clip)) list = Gather(list, y, clip);
    return list;
  }

  // To the next row. False when they are no longer in order.
  bool Step() {
    Lanes before = Lanes{} + INT32_MIN, overtaken{};
    for (int32_t i = 0; i < fCount; i += kLanes) {
      Lanes x, dx;
      std::memcpy(&x, fNow.x + i, sizeof x);
      std::memcpy(&dx, fNow.dx + i, sizeof dx);
      x = Lanes(UnsignedLanes(x) + UnsignedLanes(dx));
      std::memcpy(fNow.x + i, &x, sizeof x);
      overtaken |= x < __builtin_shufflevector(before, x, 3, 4, 5, 6);
      before = x;
    }
    return ((overtaken[0] | overtaken[1]) | (overtaken[2] | overtaken[3])) == 0;
  }

  // Brings them into order again. Equal ones stay as they were.
  void Sort() {
    for (int32_t i = 1; i < fCount; ++i)
      if (fNow.x[i] < fNow.x[i - 1]) PutBack(fNow, i);
    FindSpans();
  }

  template <typename Spans>
  void DrawSpans(int32_t y, const Spans& spans) const {
    const hsFixed* const x = fNow.x;
    const int32_t* bound = fBounds;
    for (const int32_t* const end = bound + 2 * fSpanCount; bound < end; bound += 2) {
      const int32_t left = x[bound[0]] >> 16, right = x[bound[1]] >> 16;
      if (left < right) spans.Blit(y, left, right);
    }
  }

 private:
  static constexpr int32_t kInlineCount = 64;
  static constexpr int32_t kLanes = 4;
  using Lanes = int32_t __attribute__((vector_size(16)));
  using UnsignedLanes = uint32_t __attribute__((vector_size(16)));

  struct Line {
    hsEdge* edge;
    int32_t end;  // the row after its last
    int32_t winding;
  };
  struct Columns {
    hsFixed* x;  // as in hsEdge
    hsFixed* dx;
    Line* line;
  };

  // Passes edges from left to right and notes those that begin or end a span.
  struct SpanFinder {
    void Pass(int32_t i, int32_t by) {
      winding += by;
      const bool isInside = (winding & mask) != 0;
      bounds[count] = i;
      count += isInside != inside;
      inside = isInside;
    }

    int32_t* const bounds;
    const int32_t mask;
    int32_t winding = 0;
    int32_t count = 0;
    bool inside = false;
  };

  // Fills columns in order. The spans that it finds are right if nothing had to be put back.
  struct Appender {
    Appender(const Columns& columns, int32_t* bounds, int32_t mask) : to(columns), found{bounds, mask} {}
    void Append(hsFixed x, hsFixed dx, const Line& line) {
      to.x[count] = x;
      to.dx[count] = dx;
      to.line[count] = line;
      firstEnd = std::min(firstEnd, line.end);
      found.Pass(count, line.winding);
      if (x < last) [[unlikely]] {
        inOrder = false;
        PutBack(to, count);
      } else {
        last = x;
      }
      ++count;
    }

    const Columns to;
    SpanFinder found;
    int32_t count = 0;
    int32_t firstEnd = INT32_MAX;
    hsFixed last = INT32_MIN;
    bool inOrder = true;
  };

  void Divide(int32_t* numbers, Line* lines, size_t padded) {
    fNow = {numbers, numbers + padded, lines};
    fBefore = {numbers + 2 * padded, numbers + 3 * padded, lines + padded};
    fBounds = numbers + 4 * padded;
  }

  static Line LineOf(hsEdge* edge, int32_t y) { return {edge, y + edge->fCount, edge->fWinding}; }

  // Mostly those that have ended go on. False as soon as one doesn't; the rest is as it was then.
  bool AdvanceInPlace(int32_t y, const hsIntRect* clip) {
    hsFixed last = INT32_MIN;
    bool changed = false;
    fFirstEnd = INT32_MAX;
    for (int32_t i = 0; i < fCount; ++i) {
      Line& line = fNow.line[i];
      if (line.end <= y) [[unlikely]] {
        if (!GoesOn(line, y, clip)) return false;
        changed |= line.edge->fWinding != line.winding;
        fNow.x[i] = line.edge->fX;
        fNow.dx[i] = line.edge->fDX;
        line = LineOf(line.edge, y);
      }
      changed |= fNow.x[i] < last;
      last = fNow.x[i];
      fFirstEnd = std::min(fFirstEnd, line.end);
    }
    if (changed) Sort();
    return true;
  }

  // The same when some leave or start.
  hsEdge* Gather(hsEdge* list, int32_t y, const hsIntRect* clip) {
    std::swap(fNow, fBefore);
    const Columns from = fBefore;
    Appender all(fNow, fBounds, fMask);
    const auto starts = [&] { return list && list->fFirstY <= y; };
    hsFixed start = starts() ? list->fX : INT32_MAX;
    for (int32_t i = 0; i < fCount; ++i) {
      hsFixed x = from.x[i], dx = from.dx[i];
      Line line = from.line[i];
      if (line.end <= y) [[unlikely]] {
        if (!GoesOn(line, y, clip)) continue;
        x = line.edge->fX;
        dx = line.edge->fDX;
        line = LineOf(line.edge, y);
      }
      while (start <= x && starts()) [[unlikely]] {
          all.Append(list->fX, list->fDX, LineOf(list, y));
          list = list->fNext;
          start = starts() ? list->fX : INT32_MAX;
        }
      all.Append(x, dx, line);
    }
    for (; starts(); list = list->fNext) all.Append(list->fX, list->fDX, LineOf(list, y));
    fCount = all.count;
    fFirstEnd = all.firstEnd;
    fSpanCount = all.found.count / 2;
    if (!all.inOrder) FindSpans();
    Pad();
    return list;
  }

  // Whether an edge whose line has ended has another.
  static bool GoesOn(const Line& line, int32_t y, const hsIntRect* clip) {
    hsAssert(line.end == y, "HSScan assert failed");
    return line.edge->fCurveCount != 0 && line.edge->Advance(clip);
  }

  // Puts an edge after the last of those before it that are not beyond it. These are in order.
  static void PutBack(const Columns& in, int32_t place) {
    const hsFixed x = in.x[place], dx = in.dx[place];
    const Line line = in.line[place];
    for (; place > 0 && x < in.x[place - 1]; --place) {
      in.x[place] = in.x[place - 1];
      in.dx[place] = in.dx[place - 1];
      in.line[place] = in.line[place - 1];
    }
    in.x[place] = x;
    in.dx[place] = dx;
    in.line[place] = line;
  }

  void FindSpans() {
    SpanFinder found{fBounds, fMask};
    for (int32_t i = 0; i < fCount; ++i) found.Pass(i, fNow.line[i].winding);
    fSpanCount = found.count / 2;
  }

  // Lanes after the last edge never leave the order.
  void Pad() {
    const Lanes last = Lanes{} + INT32_MAX, none{};
    std::memcpy(fNow.x + fCount, &last, sizeof last);
    std::memcpy(fNow.dx + fCount, &none, sizeof none);
  }

  const int32_t fMask;
  int32_t fCount = 0;
  int32_t fFirstEnd = INT32_MAX;
  int32_t fSpanCount = 0;
  Columns fNow, fBefore;
  int32_t* fBounds;  // the edges that begin and end spans, by turns
  std::unique_ptr<int32_t[]> fManyNumbers;
  std::unique_ptr<Line[]> fManyLines;
  int32_t fFewNumbers[5 * (kInlineCount + kLanes)];
  Line fFewLines[2 * (kInlineCount + kLanes)];
};

// Draws rows top to bottom of a list of edges, count in all, sorted by first row and X.
template <typename Spans>
void hsWalkEdges(hsEdge* list, int32_t count, int32_t top, int32_t bottom, int32_t mask, const Spans& spans) {
  constexpr hsFixed kLeftmost = -32767 * kFixed1;
  hsActiveEdges active(count, mask);
  for (int32_t y = top;;) {
    // After the last row, too, curves look for their next line: what is wrong with it is reported.
    list = active.Renew(list, y, spans.Bounds());
    if (y >= bottom) return;
    int32_t end = std::min(bottom, active.FirstEnd());
    if (list) end = std::min<int32_t>(end, list->fFirstY);
    if (active.IsEmpty()) {
      if (!hsAssert(list, "HSScan assert failed")) return;
      y = end;
      continue;
    }
    for (;;) {
      hsAssert(active.FirstX() >= kLeftmost, "unordered edges");
      active.DrawSpans(y, spans);
      const bool inOrder = active.Step();
      if (++y >= end) break;
      if (!inOrder) active.Sort();
    }
  }
}
