#include "t2k/hintedges.h"

#include <algorithm>

namespace {

constexpr int kFlatness = 12;          // a piece this many times as long as it is high runs along the axis
constexpr int kShortestShare = 64;     // of an em: shorter pieces are no edges
constexpr int kSameHeightShare = 100;  // of an em: how far pieces of one edge lie apart
constexpr int kThickestShare = 4;      // of an em: anything thicker is no stem

// Twice the area inside, positive if contours run against the clock.
int64_t SignedArea(const GlyphClass& glyph) {
  int64_t area = 0;
  for (int c = 0; c < glyph.contourCount; ++c) {
    for (int i = glyph.sp[c]; i <= glyph.ep[c]; ++i) {
      const int j = i == glyph.ep[c] ? glyph.sp[c] : i + 1;
      area += int64_t{glyph.oox[i]} * glyph.ooy[j] - int64_t{glyph.oox[j]} * glyph.ooy[i];
    }
  }
  return area;
}

std::vector<HintEdge> FindPieces(const GlyphClass& glyph, HintAxis axis, int upem) {
  // Ink lies to the right of a contour that runs with the clock: below one that runs in X, beyond one that runs in Y.
  const bool forwardIsTop = (SignedArea(glyph) < 0) == (axis == kHintY);
  const int16_t* place = axis == kHintY ? glyph.ooy : glyph.oox;
  const int16_t* along = axis == kHintY ? glyph.oox : glyph.ooy;
  const int shortest = std::max(1, upem / kShortestShare);
  std::vector<HintEdge> pieces;
  for (int c = 0; c < glyph.contourCount; ++c) {
    for (int i = glyph.sp[c]; i <= glyph.ep[c]; ++i) {
      const int j = i == glyph.ep[c] ? glyph.sp[c] : i + 1;
      const int run = along[j] - along[i], rise = place[j] - place[i];
      if (std::abs(run) < shortest || std::abs(rise) * kFlatness > std::abs(run)) continue;
      const auto [low, high] = std::minmax(place[i], place[j]);
      const auto [left, right] = std::minmax(along[i], along[j]);
      pieces.push_back({low, high, left, right, (run > 0) == forwardIsTop, !glyph.onCurve[i] || !glyph.onCurve[j]});
    }
  }
  return pieces;
}

std::vector<HintEdge> JoinPieces(std::vector<HintEdge> pieces, int upem) {
  std::stable_sort(pieces.begin(), pieces.end(), [](const HintEdge& a, const HintEdge& b) { return a.low < b.low; });
  std::vector<HintEdge> edges;
  const int reach = upem / kSameHeightShare;
  for (const HintEdge& piece : pieces) {
    const auto same = std::find_if(edges.rbegin(), edges.rend(), [&](const HintEdge& edge) {
      return edge.isTop == piece.isTop && edge.isRound == piece.isRound && piece.high - edge.low <= reach;
    });
    if (same == edges.rend()) {
      if (edges.size() == kMaxHintEdges) return {};
      edges.push_back(piece);
      continue;
    }
    same->high = std::max(same->high, piece.high);
    same->left = std::min(same->left, piece.left);
    same->right = std::max(same->right, piece.right);
  }
  return edges;
}

bool SpanOverlaps(const HintEdge& a, const HintEdge& b) { return a.left < b.right && b.left < a.right; }

// The nearest edge of the other kind across ink, or -1. step is 1 upwards and -1 downwards.
int FindAcross(const std::vector<HintEdge>& edges, int from, int step, int thickest) {
  for (int i = from + step; i >= 0 && i < int(edges.size()); i += step) {
    if (edges[i].isTop == edges[from].isTop || !SpanOverlaps(edges[i], edges[from])) continue;
    return std::abs(edges[i].low - edges[from].low) <= thickest ? i : -1;
  }
  return -1;
}

void PairStems(std::vector<HintEdge>& edges, int upem) {
  const int thickest = upem / kThickestShare;
  for (int i = 0; i < int(edges.size()); ++i) {
    if (edges[i].isTop) continue;
    const int top = FindAcross(edges, i, 1, thickest);
    if (top < 0 || FindAcross(edges, top, -1, thickest) != i) continue;
    edges[i].partner = top;
    edges[top].partner = i;
  }
}

}  // namespace

std::vector<HintEdge> FindHintEdges(const GlyphClass& glyph, HintAxis axis, int upem) {
  std::vector<HintEdge> edges = JoinPieces(FindPieces(glyph, axis, upem), upem);
  PairStems(edges, upem);
  return edges;
}
