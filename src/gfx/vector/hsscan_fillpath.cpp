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
bool GoesOn(hsEdge* edge, const Clip& clip, int32_t* quiet) {
  *quiet = 0;
  hsAssert(edge->fCount == 0, kFailed);
  return edge->Advance(clip.Bounds());
}

// Rows on which no edge begins or ends: which edges bound a span is worked out once, and remains so until one overtakes
// another.
constexpr int32_t kSteadyEdges = 16;  // at the most
constexpr int32_t kSteadyRows = 8;    // from which on it pays
constexpr int32_t kQuietRows = 3;     // that let hope for so many

template <typename Clip>
class SteadyRows {
 public:
  // From row y on, for which the edges after head are ready.
  SteadyRows(hsEdge* head, int32_t y, int32_t bottom, int32_t mask, const Clip& clip)
      : fHead(head), fY(y), fRows(bottom - y), fClip(clip) {
    int32_t winding = 0, left = 0;
    hsEdge* edge = head->fNext;
    for (; edge && edge->fFirstY <= y; edge = edge->fNext) {
      // The last row of a line, and the one before another edge begins, are left to the walk.
      fRows = std::min(fRows, fCount < kSteadyEdges ? edge->fCount - 1 : 0);
      if (fRows < kSteadyRows) break;
      const int32_t i = fCount++;
      fEdges[i] = edge;
      fX[i] = edge->fX;
      const bool wasInside = (winding & mask) != 0;
      winding += edge->fWinding;
      if (!wasInside) left = i;
      if (wasInside && (winding & mask) == 0) fSpans[fSpanCount++] = {left, i};
    }
    if (edge) fRows = std::min(fRows, edge->fFirstY - y - 1);
    if (fRows < kSteadyRows || fCount == 0) fRows = 0;
  }

  // Draws these rows as long as the edges keep their order, and returns the row after them, for which all is ready.
  int32_t Draw() {
    const int32_t end = fY + fRows;
    int32_t y = fY;
    bool overtaken = false;
    while (y < end && !overtaken && fX[0] >> 16 >= kLeftmost) {
      for (int32_t i = 0; i < fSpanCount; ++i) {
        const int32_t left = fX[fSpans[i].left] >> 16, right = fX[fSpans[i].right] >> 16;
        if (left < right) fClip.Blit(y, left, right);
      }
      hsFixed last = kBelowAll;
      for (int32_t i = 0; i < fCount; ++i) {
        fX[i] = hsWrapAdd(fX[i], fEdges[i]->fDX);
        overtaken |= fX[i] < last;
        last = fX[i];
      }
      ++y;
    }
    if (y == fY) return y;
    for (int32_t i = 0; i < fCount; ++i) {
      fEdges[i]->fX = fX[i];
      fEdges[i]->fCount = int16_t(fEdges[i]->fCount - (y - fY));
    }
    if (overtaken) Sort();
    return y;
  }

 private:
  void Sort() {
    int32_t i = 1;
    while (fX[i - 1] <= fX[i]) ++i;
    SortActive(fHead, {i > 1 ? fEdges[i - 2] : fHead, fEdges[i - 1]}, fEdges[fCount - 1]->fNext);
  }

  hsEdge* const fHead;
  const int32_t fY;
  int32_t fRows;
  int32_t fCount = 0;
  const Clip& fClip;
  hsEdge* fEdges[kSteadyEdges];
  hsFixed fX[kSteadyEdges];
  Span fSpans[kSteadyEdges];  // the edges that bound each
  int32_t fSpanCount = 0;
};

template <typename Clip>
void Walk(hsEdge* first, int32_t top, int32_t bottom, int32_t mask, const Clip& clip) {
  hsEdge head;
  head.fNext = first;
  head.fX = kBelowAll;
  Span spans[kManySpans];
  int32_t quiet = 0;  // rows since a line has ended or an edge overtaken another
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
      if (--curr->fCount <= 0 && !GoesOn(curr, clip, &quiet)) [[unlikely]] {
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
    // A shape is worth a closer look when some rows have gone by and nothing has happened.
    if (sorted.last) quiet = 0;
    if (++quiet < kQuietRows) continue;
    quiet = 0;
    SteadyRows<Clip> steady(&head, y + 1, bottom, mask, clip);
    y = steady.Draw() - 1;
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
