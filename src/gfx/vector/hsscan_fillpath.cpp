// The walk over a path's edges, row by row.
//
// One list holds all edges: the active ones in front, by X, the others behind them, by first row. Each row is one pass
// over the active ones that makes the spans and at the same time readies the list for the next row. Sorting is
// needed only when that pass has seen an edge overtake another.
#include "gfx/vector/hsscan_fillpath.h"

#include <algorithm>
#include <type_traits>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsscan_clips.h"
#include "gfx/vector/hsscan_edgelist.h"

namespace {

constexpr const char kFailed[] = "HSScan assert failed";
constexpr int32_t kLeftmost = -32767;

// The edges up to row lastY.
bool IsOrdered(const hsEdge* edge, int32_t lastY) {
  if (!edge) return true;
  for (const hsEdge* next; (next = edge->fNext) && next->fFirstY <= lastY; edge = next)
    if (edge->fX > next->fX) return false;
  return true;
}

// Brings the run between head and stop into order. Equal edges stay as they were.
void BubbleSort(hsEdge* head, const hsEdge* stop) {
  bool again;
  do {
    again = false;
    hsEdge* before = head;
    hsEdge* edge = head->fNext;
    if (edge == stop) return;
    for (hsEdge* next; (next = edge->fNext) != stop;) {
      if (edge->fX <= next->fX) {
        before = edge;
        edge = next;
        continue;
      }
      edge->fNext = next->fNext;
      next->fNext = edge;
      before->fNext = next;
      again = again || before->fX > next->fX;
      before = next;
    }
  } while (again);
}

// Merges the edges from `fresh` on that start on row y into the run behind head, which ends where they begin. A
// starting edge goes before one at the same X.
void Merge(hsEdge* head, hsEdge* fresh, int32_t y) {
  hsEdge* const stop = fresh;
  hsEdge** link = &head->fNext;
  hsEdge* edge = head->fNext;
  while (edge != stop && fresh && fresh->fFirstY <= y) {
    hsEdge*& first = edge->fX < fresh->fX ? edge : fresh;
    *link = first;
    link = &first->fNext;
    first = first->fNext;
  }
  if (edge != stop) {
    *link = edge;
    while (edge->fNext != stop) edge = edge->fNext;
    link = &edge->fNext;
  }
  *link = fresh;
}

// Readies the list for row y: head to stop are the active edges, stop the first that hasn't started. Gives whether
// there was anything to do.
bool Resort(bool needSort, hsEdge* head, hsEdge* stop, int32_t y) {
  const bool starting = stop && stop->fFirstY <= y;
  if (needSort) {
    BubbleSort(head, stop);
    hsAssert(IsOrdered(head->fNext, stop ? stop->fFirstY - 1 : INT32_MAX), "bubble sort failed");
  }
  if (starting) {
    Merge(head, stop, y);
    hsAssert(IsOrdered(head->fNext, y), "insertion sort failed");
  }
  return needSort || starting;
}

template <typename Clip>
void Walk(hsEdge* first, int32_t top, int32_t bottom, int32_t mask, const Clip& clip) {
  constexpr bool checksOrder = std::is_same_v<Clip, hsSpansInRect>;
  hsEdge head;
  head.fNext = first;
  head.fX = kNegInfinity32;  // so that no edge needs a case for being the first
  if (checksOrder) hsAssert(IsOrdered(first, top), "unordered edges going in");
  for (int32_t y = top; y < bottom; ++y) {
    hsEdge* prev = &head;
    hsEdge* curr = head.fNext;
    if (!hsAssert(curr, kFailed)) return;
    int32_t left = kLeftmost, winding = 0;
    hsFixed lastX = kNegInfinity32;
    bool needSort = false;
    while (curr && curr->fFirstY <= y) {
      if (!hsAssert(curr->fCount >= 1, kFailed)) curr->fCount = 1;
      const int32_t x = curr->fX >> 16;
      const bool wasInside = (winding & mask) != 0;
      winding += curr->fWinding;
      if (!wasInside) {
        hsAssert(x >= left, "unordered edges");
        left = x;
      } else if ((winding & mask) == 0) {
        hsAssert(x >= left, "unordered edges");
        if (left < x) clip.Blit(y, left, x);
        left = x;
      }
      curr->fX = hsWrapAdd(curr->fX, curr->fDX);
      hsEdge* const next = curr->fNext;
      if (--curr->fCount == 0 && !curr->Advance(clip.Bounds())) {
        prev->fNext = next;
      } else {
        needSort = needSort || curr->fX < lastX;
        lastX = curr->fX;
        prev = curr;
      }
      curr = next;
    }
    const bool changed = Resort(needSort, &head, curr, y + 1);
    if (checksOrder && changed) hsAssert(IsOrdered(head.fNext, y + 1), "unordered edges coming out");
  }
}

}  // namespace

void HSScan::FillScaledPath(const hsPath& path, int32_t scale, const hsRegion* clip, hsGBlitter* blitter) {
  if (path.IsEmpty() || (clip && clip->IsEmpty())) return;
  hsEdgeList edges(path, scale, clip ? &clip->Bounds() : nullptr);
  if (edges.IsEmpty()) return;
  const int32_t mask = path.FillType() == hsPath::kEvenOddFill ? 1 : -1;
  int32_t top, bottom;
  edges.GetRows(&top, &bottom);
  hsEdge* const first = edges.Sort();
  // The edges were cut to the clip's rows, so none starts above it.
  if (clip) bottom = std::min(bottom, clip->Bounds().fBottom);
  hsWithSpans(clip, blitter, [&](const auto& spans) { Walk(first, top, bottom, mask, spans); });
}

void HSScan::FillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter) {
  hsThrowIfNilParam(path);
  hsThrowIfNilParam(blitter);
  FillScaledPath(*path, 1, clip, blitter);
}
