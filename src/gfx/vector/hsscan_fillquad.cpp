// Convex quadrilaterals, for rectangles that a matrix has turned: two sides and no list of edges.
#include <algorithm>

#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hsedge.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/hsscan_clips.h"

namespace {

struct hsQuadEdge {
  hsFixed fX;       // on the current row, with a half added
  hsFixed fDX;      // per row
  int32_t fFirstY;  // first row
  int32_t fCount;   // rows left

  bool IsLeftOf(const hsQuadEdge& other) const { return fX != other.fX ? fX < other.fX : fDX < other.fDX; }
  // False when it owns no row within the clip, if there is one.
  bool Set(hsPoint p0, hsPoint p1, const hsIntRect* clip);
};

bool hsQuadEdge::Set(hsPoint p0, hsPoint p1, const hsIntRect* clip) {
  if (p0.fY > p1.fY) std::swap(p0, p1);
  int32_t top = hsFirstRow(p0.fY), bottom = hsFirstRow(p1.fY);
  if (top == bottom) return false;
  fDX = hsFixDiv(hsWrapSub(p1.fX, p0.fX), hsWrapSub(p1.fY, p0.fY));
  fX = hsWrapAdd(hsFixMul(hsWrapSub(hsRowCentre(top), p0.fY), fDX), p0.fX);
  fX = hsWrapAdd(fX, kFixedHalf);
  if (clip) {
    const int32_t skipped = std::max(clip->fTop - top, 0);
    fX = hsWrapAdd(fX, hsWrapMul(fDX, int32_t(skipped)));
    top += skipped;
    bottom = std::min(bottom, clip->fBottom);
  }
  fFirstY = top;
  fCount = bottom - top;
  return fCount > 0;
}

// The edges of one side, from the top.
struct Side {
  void Add(const hsQuadEdge& edge) { edges[count++] = edge; }
  int32_t EndY() const { return edges[0].fFirstY + edges[0].fCount + (count > 1 ? edges[1].fCount : 0); }

  hsQuadEdge edges[2];
  int32_t count = 0;
};

void AddPair(const hsQuadEdge& a, const hsQuadEdge& b, Side* left, Side* right) {
  const bool aIsLeft = a.IsLeftOf(b) || !b.IsLeftOf(a);
  left->Add(aIsLeft ? a : b);
  right->Add(aIsLeft ? b : a);
}

bool MakeSides(hsQuadEdge edges[4], int32_t count, Side* left, Side* right) {
  for (int32_t end = count; end > 1; --end)
    for (int32_t i = 1; i < end; ++i)
      if (edges[i].fFirstY < edges[i - 1].fFirstY) std::swap(edges[i], edges[i - 1]);
  if (!hsAssert(count >= 2 && count <= 4, "bad edge count")) return false;
  if (!hsAssert(edges[0].fFirstY == edges[1].fFirstY, "bad edges")) return false;
  AddPair(edges[0], edges[1], left, right);
  if (count == 3) {
    if (!hsAssert(left->EndY() != right->EndY(), "bad 3rd edge")) return false;
    (left->EndY() < right->EndY() ? left : right)->Add(edges[2]);
  } else if (count == 4) {
    AddPair(edges[2], edges[3], left, right);
  }
  return count == 2 || hsAssert(left->EndY() == right->EndY(), "bad counts");
}

template <typename Spans>
void Walk(Side left, Side right, const Spans& spans) {
  hsQuadEdge* l = left.edges;
  hsQuadEdge* r = right.edges;
  hsQuadEdge* const leftEnd = l + left.count;
  hsQuadEdge* const rightEnd = r + right.count;
  int32_t y = l->fFirstY;
  hsAssert(!spans.Bounds() || y >= spans.Bounds()->fTop, "bad y");
  while (l != leftEnd) {
    if (!hsAssert(r != rightEnd, "edge mismatch")) return;
    const int32_t rows = std::min(l->fCount, r->fCount);
    if (!hsAssert(rows >= 1, "final count is <= 0")) return;
    if (!hsAssert(!spans.Bounds() || y + rows <= spans.Bounds()->fBottom, "bad yStop")) return;
    for (const int32_t end = y + rows; y < end; ++y) {
      const int32_t x0 = l->fX >> 16, x1 = r->fX >> 16;
      if (x0 < x1) spans.Blit(y, x0, x1);
      l->fX = hsWrapAdd(l->fX, l->fDX);
      r->fX = hsWrapAdd(r->fX, r->fDX);
    }
    if ((l->fCount -= rows) == 0) ++l;
    if ((r->fCount -= rows) == 0) ++r;
  }
  hsAssert(r == rightEnd, "edge mismatch");
}

}  // namespace

void HSScan::FillQuad(const hsPoint points[4], const hsRegion* clip, hsGBlitter* blitter) {
  if (!hsAssert(points && blitter, "bad params")) return;
  hsQuadEdge edges[4];
  int32_t count = 0;
  for (int i = 0; i < 4; ++i)
    if (edges[count].Set(points[i], points[(i + 1) & 3], clip ? &clip->Bounds() : nullptr)) ++count;
  Side left, right;
  if (count < 2 || !MakeSides(edges, count, &left, &right)) return;
  hsWithSpans(clip, blitter, [&](const auto& spans) { Walk(left, right, spans); });
}
