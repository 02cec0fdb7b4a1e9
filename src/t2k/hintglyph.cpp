// Fitting one glyph: its edges get whole pixels, and a rising map of heights carries all other points along.
#include <algorithm>
#include <vector>

#include "gfx/foundation/hsfixed.h"
#include "t2k/hintedges.h"
#include "t2k/hinter.h"
#include "t2k/unitscale.h"

namespace {

constexpr int kZoneShare = 80;  // of an em: how far from a zone its edges may lie

int32_t RoundToPixel(int32_t v) { return hsWrapAdd(v, 32) & ~63; }

// An edge with its heights scaled and the place it is fitted to, 26.6.
struct FittedEdge {
  int32_t low, high;
  int32_t place;
  bool fitted;
};

class GlyphFitter {
 public:
  GlyphFitter(const HinterClass* hinter, const GlyphClass& glyph, HintAxis axis)
      : hinter_(hinter), axis_(axis), edges_(FindHintEdges(glyph, axis, hinter->upem)) {
    for (const HintEdge& edge : edges_) fits_.push_back({Scale(edge.low), Scale(edge.high), 0, false});
  }

  // False if there is nothing to fit.
  bool Fit() {
    if (axis_ == kHintY) {
      SnapToZones();
      FitStemsInZones();
    }
    FitFreeStems();
    KeepOrder();
    return std::any_of(fits_.begin(), fits_.end(), [](const FittedEdge& fit) { return fit.fitted; });
  }

  // Where a height goes: between two fitted edges in proportion, beyond them along with the nearest.
  int32_t Map(int32_t y) const {
    const FittedEdge* below = nullptr;
    for (const FittedEdge& fit : fits_) {
      if (!fit.fitted) continue;
      if (y < fit.low) {
        if (!below) return hsWrapAdd(y, hsWrapSub(fit.place, fit.low));
        const int64_t gap = int64_t{fit.low} - below->high;
        if (gap <= 0) return below->place;
        return int32_t(below->place + (int64_t{y} - below->high) * (int64_t{fit.place} - below->place) / gap);
      }
      if (y <= fit.high) return fit.place;
      if (!below || fit.high > below->high) below = &fit;
    }
    return below ? hsWrapAdd(y, hsWrapSub(below->place, below->high)) : y;
  }

 private:
  int32_t Scale(int units) const { return ScaleUnits(units, hinter_->pixelsPerEm[axis_], hinter_->upem); }

  void SnapToZones() {
    const int reach = hinter_->upem / kZoneShare;
    for (size_t i = 0; i < edges_.size(); ++i) {
      const HintEdge& edge = edges_[i];
      const int height = edge.isTop ? edge.high : edge.low;
      int nearest = reach + 1;
      for (int z = 0; z < hinter_->globals.zoneCount; ++z) {
        const HintZone& zone = hinter_->globals.zone[z];
        if (zone.isTop != edge.isTop) continue;
        const int toFlat = std::abs(height - zone.flat), toRound = std::abs(height - zone.round);
        if (std::min(toFlat, toRound) >= nearest) continue;
        nearest = std::min(toFlat, toRound);
        fits_[i].place = toFlat <= toRound ? hinter_->zonePlace[z] : hinter_->zoneRound[z];
        fits_[i].fitted = true;
      }
    }
  }

  // Whole pixels, at least one; stems of about the usual thickness all get the same.
  int32_t StemWidth(int bottom, int top) const {
    const int units = edges_[size_t(top)].high - edges_[size_t(bottom)].low;
    const int usual = hinter_->globals.stem[axis_];
    const int share = hinter_->script == ag_ROMAN ? 4 : 8;
    if (usual && std::abs(units - usual) * share <= usual) return hinter_->stemWidth[axis_];
    return std::max(64, RoundToPixel(Scale(units)));
  }

  template <class Work>
  void ForEachStem(Work work) {
    for (int i = 0; i < int(edges_.size()); ++i) {
      if (!edges_[size_t(i)].isTop && edges_[size_t(i)].partner >= 0) work(i, edges_[size_t(i)].partner);
    }
  }

  void FitStemsInZones() {
    ForEachStem([&](int bottom, int top) {
      FittedEdge &low = fits_[size_t(bottom)], &high = fits_[size_t(top)];
      if (low.fitted && !high.fitted) {
        high.place = hsWrapAdd(low.place, StemWidth(bottom, top));
      } else if (high.fitted && !low.fitted) {
        low.place = hsWrapSub(high.place, StemWidth(bottom, top));
      }
      if (low.fitted || high.fitted) low.fitted = high.fitted = true;
    });
  }

  // Stems away from all zones keep their middle where the edges fitted so far take it. Without zones that is one stem
  // after the other, so that equal gaps stay equal.
  void FitFreeStems() {
    ForEachStem([&](int bottom, int top) {
      FittedEdge &low = fits_[size_t(bottom)], &high = fits_[size_t(top)];
      if (low.fitted) return;
      const int32_t width = StemWidth(bottom, top);
      const auto middle = int32_t((int64_t{Map(low.low)} + Map(high.high)) / 2);
      low.place = RoundToPixel(hsWrapSub(middle, width / 2));
      high.place = hsWrapAdd(low.place, width);
      low.fitted = high.fitted = true;
    });
  }

  // No edge below the one under it, and no stem thinner than a pixel.
  void KeepOrder() {
    const FittedEdge* below = nullptr;
    for (size_t i = 0; i < fits_.size(); ++i) {
      FittedEdge& fit = fits_[i];
      if (!fit.fitted) continue;
      if (below) fit.place = std::max(fit.place, below->place);
      below = &fit;
      if (edges_[i].isTop || edges_[i].partner < 0) continue;
      FittedEdge& top = fits_[size_t(edges_[i].partner)];
      top.place = std::max(top.place, hsWrapAdd(fit.place, 64));
    }
  }

  const HinterClass* hinter_;
  const HintAxis axis_;
  std::vector<HintEdge> edges_;
  std::vector<FittedEdge> fits_;
};

}  // namespace

void HintGlyph(const HinterClass* hinter, GlyphClass* glyph, const HintRequest& request) {
  const auto fit = [&](HintAxis axis, int32_t* places) {
    GlyphFitter fitter(hinter, *glyph, axis);
    if (!fitter.Fit()) return;
    for (int i = 0; i < glyph->pointCount; ++i) places[i] = fitter.Map(places[i]);
  };
  fit(kHintY, glyph->y);
  if (!request.isGrey) fit(kHintX, glyph->x);
}
