#include "gfx/vector/hssuperblitter.h"

#include <algorithm>

#include "gfx/vector/coveragesum.h"
#include "gfx/vector/hsregion.h"

hsSuperBlitter::hsSuperBlitter(const hsIntRect& bounds, const hsRegion* clip, hsGBlitter* realBlitter)
    : fBounds(bounds),
      fClip(clip),
      fRealBlitter(realBlitter),
      fCovered(realBlitter),
      fSuperLeft(bounds.fLeft * kSamples),
      fSuperTop(bounds.fTop * kSamples),
      fSuperWidth(bounds.Width() * kSamples),
      fSuperHeight(bounds.Height() * kSamples),
      fRowPixels((bounds.Width() + 2 + hsCoverageLanes - 1) / hsCoverageLanes * hsCoverageLanes) {
  if (fRowPixels > kInlinePixels) {
    fManyChanges.reset(new int16_t[size_t(fRowPixels)]);
    fManyCoverage.reset(new uint8_t[size_t(fRowPixels)]);
    fChanges = fManyChanges.get();
    fCoverage = fManyCoverage.get();
  }
  std::fill_n(fChanges, fRowPixels, int16_t{0});
  if (!fClip) fRealBlitter->fAlpha = fCoverage;
}

void hsSuperBlitter::Finish() {
  if (fCurrY != kNoRow) Flush();
  fCurrY = kNoRow;
}

void hsSuperBlitter::Flush() {
  hsSumUpCoverage(fChanges, fCoverage, fRowPixels);
  const int32_t left = fBounds.fLeft, right = fBounds.fRight;
  if (!fClip) {
    fRealBlitter->BlitH(fCurrY, left, right - left);
  } else if (hsAssert(left < right, "HSScan assert failed")) {
    int32_t l = left, r = right;
    while (fClip->ClipSpan(fCurrY, &l, &r)) {
      fRealBlitter->fAlpha = fCoverage + (l - left);
      fRealBlitter->BlitH(fCurrY, l, r - l);
      if (r + 1 >= right) break;  // the pixel after a piece is never in the region
      l = r + 1;
      r = right;
    }
  }
}
