// The walk over a path's edges, row by row.
//
// One list holds all edges: the active ones in front, by X, the others behind them, by first row. Each row is one pass
// over the active ones that makes the spans and at the same time readies the list for the next row. Sorting is
// needed only when that pass has seen an edge overtake another.
#include "gfx/vector/hsscan_fillpath.h"

#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsscan_clips.h"
#include "gfx/vector/hsscan_edgelist.h"

namespace {

constexpr const char kFailed[] = "HSScan assert failed";
constexpr int32_t kLeftmost = -32767;
constexpr hsFixed kBelowAll = INT32_MIN;  // of the list's head, so that no edge needs a case for being the first

// The edges before stop.
bool IsOrdered(const hsEdge* edge, const hsEdge* stop) {
  for (const hsEdge* next; (next = edge->fNext) != stop; edge = next)
    if (edge->fX > next->fX) return false;
  return true;
}

// Brings the run behind head, up to stop, into order and gives its last edge. It is in order up to `sorted`. Equal
// edges stay as they were.
hsEdge* SortActive(hsEdge* head, hsEdge* sorted, const hsEdge* stop) {
  for (hsEdge* edge; (edge = sorted->fNext) != stop;) {
    if (sorted->fX <= edge->fX) {
      sorted = edge;
      continue;
    }
    sorted->fNext = edge->fNext;
    hsEdge* before = head;
    while (before->fNext->fX <= edge->fX) before = before->fNext;
    edge->fNext = before->fNext;
    before->fNext = edge;
  }
  return sorted;
}

// Takes the edges from `fresh` on that start on row y into the run from behind head to last; both are in order. A
// starting edge goes before one at the same X.
void Merge(hsEdge* head, hsEdge* last, hsEdge* fresh, int32_t y) {
  hsEdge* before = head;
  while (fresh && fresh->fFirstY <= y) {
    while (before != last && before->fNext->fX < fresh->fX) before = before->fNext;
    if (before == last) break;  // the others follow as they stand
    hsAssert(before->fX <= fresh->fX, "insertion sort is failing");
    hsEdge* const next = fresh->fNext;
    fresh->fNext = before->fNext;
    before = before->fNext = fresh;
    fresh = next;
  }
  last->fNext = fresh;
}

// Readies the list for row y. The active edges run from behind head to last; stop, behind them, is the first that
// hasn't started. sorted is nil when the active edges are in order; otherwise the last before one that has been
// overtaken. What the walk has seen in order and doesn't change here isn't looked at again.
void Resort(hsEdge* sorted, hsEdge* head, hsEdge* last, hsEdge* stop, int32_t y) {
  if (sorted) {
    last = SortActive(head, sorted, stop);
    hsAssert(IsOrdered(head->fNext, stop), "bubble sort failed");
  }
  if (stop && stop->fFirstY <= y) Merge(head, last, stop, y);
}

template <typename Clip>
void Walk(hsEdge* first, int32_t top, int32_t bottom, int32_t mask, const Clip& clip) {
  hsEdge head;
  head.fNext = first;
  head.fX = kBelowAll;
  for (int32_t y = top; y < bottom; ++y) {
    hsEdge* prev = &head;
    hsEdge* curr = head.fNext;
    if (!hsAssert(curr, kFailed)) return;
    int32_t left = kLeftmost, winding = 0;
    hsFixed lastX = kBelowAll;
    hsEdge* sorted = nullptr;
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
        if (curr->fX < lastX && !sorted) sorted = prev;
        lastX = curr->fX;
        prev = curr;
      }
      curr = next;
    }
    Resort(sorted, &head, prev, curr, y + 1);
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
