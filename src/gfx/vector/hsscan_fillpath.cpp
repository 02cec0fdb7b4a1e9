// The walk over a path's edges, row by row.
//
// One list holds all edges: the active ones in front, by X, the others after them, by first row. Each row is one pass
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

// Where a run stops being in order: up to `last` it is, and the edge after that belongs farther in front.
struct Overtaken {
  hsEdge* beforeLast;
  hsEdge* last = nullptr;  // null for a run that is in order
};

// Brings the run after head, up to stop, into order and returns its last edge. Equal edges stay as they were.
hsEdge* SortActive(hsEdge* head, Overtaken sorted, const hsEdge* stop) {
  for (hsEdge* edge; (edge = sorted.last->fNext) != stop;) {
    if (sorted.last->fX <= edge->fX) {
      sorted = {sorted.last, edge};
      continue;
    }
    sorted.last->fNext = edge->fNext;
    // Most often it has passed one edge only.
    const bool passedOne = sorted.beforeLast->fX <= edge->fX;
    hsEdge* before = passedOne ? sorted.beforeLast : head;
    while (before->fNext->fX <= edge->fX) before = before->fNext;
    edge->fNext = before->fNext;
    before->fNext = edge;
    hsAssert(before->fX <= edge->fX && edge->fX <= edge->fNext->fX, "bubble sort failed");
    if (passedOne) sorted.beforeLast = edge;
  }
  return sorted.last;
}

// Takes the edges from `fresh` on that start on row y into the run from the one after head to last; both are in order.
// A starting edge goes before one at the same X.
void Merge(hsEdge* head, hsEdge* last, hsEdge* fresh, int32_t y) {
  hsEdge* before = head;
  while (fresh && fresh->fFirstY <= y) {
    while (before != last && before->fNext->fX < fresh->fX) before = before->fNext;
    if (before == last) break;  // the others follow as they are
    hsAssert(before->fX <= fresh->fX, "insertion sort is failing");
    hsEdge* const next = fresh->fNext;
    fresh->fNext = before->fNext;
    before = before->fNext = fresh;
    fresh = next;
  }
  last->fNext = fresh;
}

// Readies the list for row y. The active edges run from the one after head to last; stop, after them, is the first that
// hasn't started. What the walk has seen in order and doesn't change here isn't looked at again.
void Resort(const Overtaken& sorted, hsEdge* head, hsEdge* last, hsEdge* stop, int32_t y) {
  if (sorted.last) last = SortActive(head, sorted, stop);
  if (stop && stop->fFirstY <= y) Merge(head, last, stop, y);
}

// Spans of a row are noted first and drawn together: whether an edge ends one is a toss-up that is better counted than
// branched on.
struct Span {
  int32_t left, right;
};
constexpr int32_t kManySpans = 64;

template <typename Clip>
void DrawSpans(const Clip& clip, int32_t y, const Span spans[], int32_t count) {
  for (const Span* const end = spans + count; spans != end; ++spans) clip.Blit(y, spans->left, spans->right);
}

// a or b, without a branch.
int32_t Select(bool first, int32_t a, int32_t b) { return b ^ ((a ^ b) & -int32_t{first}); }

// At the end of an edge's line: false when nothing follows it.
template <typename Clip>
bool GoesOn(hsEdge* edge, const Clip& clip) {
  hsAssert(edge->fCount == 0, kFailed);
  return edge->Advance(clip.Bounds());
}

template <typename Clip>
void Walk(hsEdge* first, int32_t top, int32_t bottom, int32_t mask, const Clip& clip) {
  hsEdge head;
  head.fNext = first;
  head.fX = kBelowAll;
  Span spans[kManySpans];
  for (int32_t y = top; y < bottom; ++y) {
    hsEdge* beforePrev = &head;
    hsEdge* prev = &head;
    hsEdge* curr = head.fNext;
    if (!hsAssert(curr, kFailed)) return;
    // The edges are in order, so the first one decides for all.
    hsAssert(curr->fFirstY > y || curr->fX >> 16 >= kLeftmost, "unordered edges");
    int32_t left = 0, winding = 0;
    hsFixed lastX = kBelowAll;
    Overtaken sorted{};
    int32_t count = 0;
    while (curr && curr->fFirstY <= y) {
      const int32_t x = curr->fX >> 16;
      const bool wasInside = (winding & mask) != 0;
      winding += curr->fWinding;
      const bool isInside = (winding & mask) != 0;
      left = Select(wasInside, left, x);
      spans[count] = {left, x};
      count += wasInside & !isInside & (left < x);
      if (count == kManySpans) [[unlikely]] {
        DrawSpans(clip, y, spans, count);
        count = 0;
      }
      curr->fX = hsWrapAdd(curr->fX, curr->fDX);
      hsEdge* const next = curr->fNext;
      if (--curr->fCount <= 0 && !GoesOn(curr, clip)) [[unlikely]] {
        prev->fNext = next;
      } else {
        if (curr->fX < lastX && !sorted.last) [[unlikely]]
          sorted = {beforePrev, prev};
        lastX = curr->fX;
        beforePrev = prev;
        prev = curr;
      }
      curr = next;
    }
    DrawSpans(clip, y, spans, count);
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
