#include "gfx/vector/hsregioniter.h"

#include <algorithm>

namespace {

constexpr int16_t S = hsRegion::kRunTypeSentinel;

// From the slot of a band's bottom to that of the band above, or to the region's top.
const int16_t* SlotAbove(const int16_t* bottom, const int16_t* first) {
  const int16_t* slot = bottom - 1;
  if (slot == first) return slot;
  do --slot;
  while (slot - 1 != first && slot[-1] != S);
  return slot;
}

const int16_t* SentinelOf(const int16_t* bottom) {
  while (*++bottom != S) ++bottom;
  return bottom;
}

}  // namespace

hsRegionRectIter::hsRegionRectIter(const hsRegion& region)
    : fRuns(region.Runs()), fRect(region.Bounds()), fDone(region.IsEmpty()) {
  if (!fRuns) return;
  fRect.fTop = fRuns[0];
  fRect.fBottom = fRuns[1];
  fRuns += 2;
  Next();
}

void hsRegionRectIter::Next() {
  if (!fRuns) {
    fDone = true;
    return;
  }
  while (*fRuns == S) {
    if (*++fRuns == S) {
      fDone = true;
      fRuns = nullptr;
      return;
    }
    fRect.fTop = fRect.fBottom;
    fRect.fBottom = *fRuns++;
  }
  fRect.fLeft = *fRuns++;
  fRect.fRight = *fRuns++;
}

hsRegionClipRectIter::hsRegionClipRectIter(const hsRegion& region, const hsIntRect& clip) : fIter(region), fClip(clip) {
  while (!fIter.IsDone() && fIter.Rect().fBottom <= fClip.fTop) fIter.Next();
  Next();
}

void hsRegionClipRectIter::Next() {
  for (; !fIter.IsDone(); fIter.Next()) {
    fRect = fIter.Rect();
    hsAssert(fRect.fBottom > fClip.fTop, "rect is too high");
    if (fRect.fTop >= fClip.fBottom) break;
    if (!fRect.Intersect(fClip) || fRect.IsEmpty()) continue;
    fIter.Next();
    return;
  }
  fDone = true;
}

hsRegionRowIter::hsRegionRowIter(const hsRegion& region) {
  hsThrowIfNilParam(region.Runs());
  fY = region.Runs()[0];
  fBottom = region.Runs() + 1;
  fSpan = fBottom + 1;
}

bool hsRegionRowIter::Next(int32_t* y, int32_t* left, int32_t* right) {
  if (*fBottom == S) return false;
  while (*fSpan == S) {
    // The same spans again on the next row, or the next band.
    const bool isEmpty = fSpan == fBottom + 1;
    if (!isEmpty && ++fY < *fBottom) {
      fSpan = fBottom + 1;
      continue;
    }
    fY = *fBottom;
    fBottom = fSpan + 1;
    if (*fBottom == S) return false;
    fSpan = fBottom + 1;
  }
  *y = fY;
  *left = *fSpan++;
  *right = *fSpan++;
  return true;
}

hsRegionReverseRowIter::hsRegionReverseRowIter(const hsRegion& region) : fFirst(region.Runs()) {
  hsThrowIfNilParam(fFirst);
  EnterBand(SlotAbove(fFirst + region.CountRuns() - 1, fFirst));
}

void hsRegionReverseRowIter::EnterBand(const int16_t* bottom) {
  fBottom = bottom;
  if (fBottom == fFirst) return;  // above the first band
  fEnd = fSpan = SentinelOf(fBottom);
  fTop = *SlotAbove(fBottom, fFirst);
  fY = *fBottom - 1;
}

bool hsRegionReverseRowIter::Next(int32_t* y, int32_t* left, int32_t* right) {
  while (fBottom != fFirst && fSpan == fBottom + 1) {
    const bool isEmpty = fSpan == fEnd;
    if (!isEmpty && --fY >= fTop)
      fSpan = fEnd;
    else
      EnterBand(SlotAbove(fBottom, fFirst));
  }
  if (fBottom == fFirst) return false;
  *y = fY;
  *right = *--fSpan;
  *left = *--fSpan;
  return true;
}

hsRegionSpanClipper::hsRegionSpanClipper(const hsRegion* region)
    : fRegion(region), fTop(region->Runs()), fBottom(region->Runs() + 1) {}

bool hsRegionSpanClipper::IsOver(const hsRegion* region) const {
  const int16_t* first = region->Runs();
  return fRegion == region && first <= fTop && fTop < fBottom && fBottom < first + region->CountRuns();
}

bool hsRegionSpanClipper::Seek(int32_t y) {
  const hsIntRect& bounds = fRegion->Bounds();
  if (y < bounds.fTop || y >= bounds.fBottom) return false;
  const int16_t* first = fRegion->Runs();
  while (y >= *fBottom) {
    const int16_t* next = SentinelOf(fBottom) + 1;
    if (*next == S) return false;
    fTop = fBottom;
    fBottom = next;
  }
  while (y < *fTop && fTop != first) {
    fBottom = fTop;
    fTop = SlotAbove(fBottom, first);
  }
  return fBottom[1] != S;
}

bool hsRegionSpanClipper::ClipSpan(int32_t y, int32_t* left, int32_t* right) {
  if (!hsAssert(*left < *right, "bad left-right for clipSpan")) return false;
  if (!hsIsRunType(y) || !hsIsRunType(*left) || !hsIsRunType(*right)) return false;
  if ((y < *fTop || y >= *fBottom) && !Seek(y)) return false;
  for (const int16_t* span = fBottom + 1; *span < *right; span += 2) {  // the sentinel ends it too
    if (span[1] <= *left) continue;
    *left = std::max(*left, int32_t{span[0]});
    *right = std::min(*right, int32_t{span[1]});
    return true;
  }
  return false;
}
