#include "gfx/vector/hsscan_edgelist.h"

#include <algorithm>

#include "gfx/vector/hsmonotone.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"

namespace {

// The clip and one pixel around it. A curve wholly beyond a side isn't worth its differences.
struct Guard {
  explicit Guard(const hsIntRect& clip)
      : left(Edge(clip.fLeft - int64_t{1})),
        top(Edge(clip.fTop - int64_t{1})),
        right(Edge(clip.fRight + int64_t{1})),
        bottom(Edge(clip.fBottom + int64_t{1})) {}
  // A clip can be larger than the numbers of a path.
  static hsFixed Edge(int64_t pixel) { return hsSaturate(pixel * kFixed1); }

  hsFixed left, top, right, bottom;
};

template <int count>
bool AllAtMost(const hsPoint pts[], hsScalar hsPoint::*axis, hsFixed edge) {
  return std::all_of(pts, pts + count, [&](const hsPoint& p) { return p.*axis <= edge; });
}
template <int count>
bool AllAtLeast(const hsPoint pts[], hsScalar hsPoint::*axis, hsFixed edge) {
  return std::all_of(pts, pts + count, [&](const hsPoint& p) { return p.*axis >= edge; });
}
template <int count>
bool IsAboveOrBelow(const Guard& guard, const hsPoint pts[]) {
  return AllAtMost<count>(pts, &hsPoint::fY, guard.top) || AllAtLeast<count>(pts, &hsPoint::fY, guard.bottom);
}
template <int count>
bool IsBeside(const Guard& guard, const hsPoint pts[]) {
  return AllAtMost<count>(pts, &hsPoint::fX, guard.left) || AllAtLeast<count>(pts, &hsPoint::fX, guard.right);
}

// An edge and its place in the order, first row and X in one number.
struct Entry {
  explicit Entry(hsEdge* e)
      : key(uint64_t(uint16_t(e->fFirstY ^ 0x8000)) << 32 | (uint32_t(e->fX) ^ 0x80000000)), edge(e) {}
  Entry() = default;

  uint64_t key;
  hsEdge* edge;
};

// Lets the entry at `root` sink to its place in heap[1] to heap[count].
void SiftDown(Entry heap[], int32_t root, int32_t count) {
  const Entry entry = heap[root];
  for (int32_t child; (child = 2 * root) <= count; root = child) {
    if (child < count && heap[child].key < heap[child + 1].key) ++child;
    if (entry.key >= heap[child].key) break;
    heap[root] = heap[child];
  }
  heap[root] = entry;
}

// Of heap[1] to heap[count].
void HeapSort(Entry heap[], int32_t count) {
  for (int32_t root = count / 2; root > 0; --root) SiftDown(heap, root, count);
  for (int32_t last = count; last > 1;) {
    std::swap(heap[1], heap[last]);
    SiftDown(heap, 1, --last);
  }
}

}  // namespace

hsEdgeList::hsEdgeList(const hsPath& path, int32_t scale, const hsIntRect* clip) {
  // No segment makes more edges than it stores points, and the line that closes a contour is paid for by its move.
  if (path.CountPoints() > kInlineCount) {
    fMore.reset(new hsEdge[size_t(path.CountPoints())]);
    fEdges = fMore.get();
  }
  Build(path, scale, clip);
}

void hsEdgeList::Build(const hsPath& path, int32_t scale, const hsIntRect* clip) {
  hsPathIter iter(path, true);
  hsPoint pts[4];
  for (hsPath::Verb verb; (verb = iter.Next(pts)) != hsPath::kDoneVerb;) {
    if (verb == hsPath::kMoveVerb || verb == hsPath::kCloseVerb) continue;
    if (scale != 1) {
      for (hsPoint* p = pts; p <= pts + hsPointsOfVerb(verb); ++p)
        *p = {hsFixMul(p->fX, hsIntToFixed(scale)), hsFixMul(p->fY, hsIntToFixed(scale))};
    }
    if (verb == hsPath::kLineVerb) AddLine(pts[0], pts[1], clip);
    if (verb == hsPath::kQuadVerb) AddQuad(pts, clip);
    if (verb == hsPath::kCurveVerb) AddCubic(pts, clip);
  }
}

void hsEdgeList::AddLine(hsPoint p0, hsPoint p1, const hsIntRect* clip) {
  hsEdge* edge = NextFree();
  edge->fCurveCount = 0;
  if (edge->SetLine(p0, p1, 1, clip)) ++fCount;
}

void hsEdgeList::AddQuad(const hsPoint pts[3], const hsIntRect* clip) {
  if (clip) {
    const Guard guard(*clip);
    if (IsAboveOrBelow<3>(guard, pts)) return;
    if (IsBeside<3>(guard, pts)) return AddLine(pts[0], pts[2], clip);
  }
  hsPoint pieces[5];
  const int32_t count = hsChopQuadMonotone(pts, pieces);
  for (int32_t i = 0; i < count; ++i) {
    NextFree()->SetQuad(pieces + 2 * i);
    if (NextFree()->Advance(clip)) ++fCount;
  }
}

void hsEdgeList::AddCubic(const hsPoint pts[4], const hsIntRect* clip) {
  if (clip) {
    const Guard guard(*clip);
    if (IsAboveOrBelow<4>(guard, pts)) return;
    if (IsBeside<4>(guard, pts)) return AddLine(pts[0], pts[3], clip);
  }
  hsPoint pieces[10];
  const int32_t count = hsChopCubicMonotone(pts, pieces);
  for (int32_t i = 0; i < count; ++i) {
    NextFree()->SetCubic(pieces + 3 * i);
    if (NextFree()->Advance(clip)) ++fCount;
  }
}

hsEdge* hsEdgeList::Sort() {
  if (fCount < 1) return nullptr;
  Entry few[kInlineCount + 1];
  std::unique_ptr<Entry[]> many(fCount > kInlineCount ? new Entry[size_t(fCount) + 1] : nullptr);
  Entry* const order = many ? many.get() : few;
  const auto fill = [&] {
    for (int32_t i = 0; i < fCount; ++i) order[i + 1] = Entry(fEdges + i);
  };
  fill();
  // How a heap leaves equal edges shows in how their spans meet. Without any, a faster sort gives the same.
  std::sort(order + 1, order + fCount + 1, [](const Entry& a, const Entry& b) { return a.key < b.key; });
  for (int32_t i = 1; i < fCount; ++i)
    if (order[i].key == order[i + 1].key) {
      fill();
      HeapSort(order, fCount);
      break;
    }
  for (int32_t i = 1; i < fCount; ++i) order[i].edge->fNext = order[i + 1].edge;
  order[fCount].edge->fNext = nullptr;
  return order[1].edge;
}

void hsEdgeList::GetRows(int32_t* top, int32_t* bottom) const {
  *top = INT32_MAX;
  *bottom = INT32_MIN;
  for (const hsEdge* edge = fEdges; edge != fEdges + fCount; ++edge) {
    *top = std::min<int32_t>(*top, edge->fFirstY);
    *bottom = std::max(*bottom, edge->fCurveCount == 0 ? edge->fFirstY + edge->fCount : hsFirstRow(edge->fEndY));
  }
}
