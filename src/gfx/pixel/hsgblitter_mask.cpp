// What every blitter does with a mask unless it knows better.
#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/maskwalk.h"
#include "gfx/vector/hsgblitter.h"

namespace {

// One coverage byte for each bit, rows of whole eights.
hsGMask Expanded(const hsGMask& bits) {
  hsGMask bytes;
  bytes.fBounds = bits.fBounds;
  bytes.fMaskType = kMask_Alpha;
  bytes.fRowBytes = uint16_t((bits.fBounds.Width() + 7) & ~7);
  bytes.AllocImage();
  hsWalkBits(bits, nullptr, [&](int32_t y, int32_t x) {
    bytes.fImage[size_t(y - bits.fBounds.fTop) * bytes.fRowBytes + size_t(x - bits.fBounds.fLeft)] = 0xFF;
  });
  return bytes;
}

}  // namespace

void hsGBlitter::BlitMask(const hsGMask& mask, const hsRegion* clip) {
  if (mask.fMaskType == kMask_Bit) {
    if (mask.fBounds.Width() <= hsGMask::kMaxWidth) BlitMask(Expanded(mask), clip);
    return;
  }
  const hsGCoverageScope covered(this);
  hsWalkMaskSpans(mask.fBounds, clip, [&](int32_t y, int32_t x, int32_t width) {
    fAlpha = mask.Row(y) + (x - mask.fBounds.fLeft);
    BlitH(y, x, width);
  });
}

void hsGBlitter::BlitLCDMask(const hsGMask& mask, const hsRegion* clip, int32_t lcdOffset) {
  if (!hsAssert(mask.fMaskType == kMask_LCD, "need lcd mask")) return;
  if (!hsAssert(lcdOffset >= 0 && lcdOffset <= 2, "bad lcd offset")) return;
  BlitMask(mask, clip);
}
