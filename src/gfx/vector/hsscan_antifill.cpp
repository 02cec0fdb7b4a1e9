// Anti-aliased fills: the ordinary ones, four times too large, into a blitter that counts samples.
#include "gfx/foundation/hsdebug.h"
#include "gfx/vector/hspath.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/hsscan_fillpath.h"
#include "gfx/vector/hssuperblitter.h"

namespace {

constexpr int32_t kSamples = 1 << hsSuperBlitter::kShift;  // to a pixel, either way

// Calls fill(clip in samples, blitter for samples) for a shape within bounds.
template <typename Fill>
void Supersample(const hsRect& shape, const hsRegion* clip, hsGBlitter* blitter, const Fill& fill) {
  hsIntRect bounds;
  shape.RoundOut(&bounds);
  bool needSuperClip = false;
  if (clip) {
    // A rectangle cuts the samples; nothing is left for the rows to do then. A complex region cuts the rows.
    const hsIntRect grown{bounds.fLeft - 1, bounds.fTop - 1, bounds.fRight + 1, bounds.fBottom + 1};
    needSuperClip = !clip->IsRect() || !clip->Bounds().Contains(grown);
    if (!bounds.Intersect(clip->Bounds())) return;
  }
  if (bounds.IsEmpty()) return;
  hsRegion superClip;
  if (needSuperClip)
    superClip.SetRect(bounds.fLeft * kSamples, bounds.fTop * kSamples, bounds.fRight * kSamples,
                      bounds.fBottom * kSamples);
  hsSuperBlitter super(bounds, clip && !clip->IsRect() ? clip : nullptr, blitter);
  fill(needSuperClip ? &superClip : nullptr, &super);
  super.Finish();
}

}  // namespace

void HSScan::AntiFillPath(const hsPath* path, const hsRegion* clip, hsGBlitter* blitter, int32_t) {
  hsThrowIfNilParam(path);
  hsThrowIfNilParam(blitter);
  if (path->IsEmpty() || (clip && clip->IsEmpty())) return;
  hsRect shape;
  path->ComputeBounds(&shape, false);
  Supersample(shape, clip, blitter, [&](const hsRegion* superClip, hsSuperBlitter* super) {
    hsFillScaledPath(*path, kSamples, superClip, super);
  });
}

void HSScan::AntiFillQuad(const hsPoint points[4], const hsRegion* clip, hsGBlitter* blitter) {
  if (!hsAssert(points && blitter, "bad params")) return;
  if (clip && clip->IsEmpty()) return;
  hsRect shape;
  shape.Set(4, points);
  hsPoint scaled[4];
  for (int i = 0; i < 4; ++i)
    scaled[i] = {hsWrapShl(points[i].fX, hsSuperBlitter::kShift), hsWrapShl(points[i].fY, hsSuperBlitter::kShift)};
  Supersample(shape, clip, blitter,
              [&](const hsRegion* superClip, hsGBlitter* super) { FillQuad(scaled, superClip, super); });
}
