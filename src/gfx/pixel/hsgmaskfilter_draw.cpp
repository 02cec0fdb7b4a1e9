// Paths drawn through a mask filter.
#include "gfx/pixel/hsgmaskfilter.h"

#include <cstring>

#include "gfx/foundation/hsdebug.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/vector/hsscan.h"

namespace {

// Keeps the coverage that it is handed in a mask.
class MaskWriter : public hsGBlitter {
 public:
  explicit MaskWriter(const hsGMask& mask) : fMask(mask) {}

  void BlitH(int32_t y, int32_t x, int32_t width) override {
    if (!hsAssert(fAlpha, "need alpha")) return;
    std::memcpy(fMask.fImage + size_t(y) * fMask.fRowBytes + x, fAlpha, size_t(width));
  }

 private:
  const hsGMask& fMask;
};

}  // namespace

void hsGMaskFilter::DrawPath(const hsGRawDraw& raw, const hsPath& path, const hsMatrix& matrix, hsGMaskFilter* filter) {
  if (!hsAssert(filter, "need filter")) return;
  hsRegion storage;
  const hsRegion* clip = raw.ClipOrBitmap(&storage);
  hsRect bounds;
  hsGMask mask;
  path.ComputeBounds(&bounds, false);
  bounds.RoundOut(&mask.fBounds);
  if (!mask.fBounds.Intersect(clip->Bounds()) || mask.fBounds.Width() > hsGMask::kMaxWidth) return;
  mask.fMaskType = kMask_Alpha;
  mask.fRowBytes = hsGMask::RowBytes(kMask_Alpha, mask.fBounds.Width());
  mask.AllocImage();

  hsPath moved;
  moved.Offset(hsIntToFixed(-mask.fBounds.fLeft), hsIntToFixed(-mask.fBounds.fTop), &path);
  const hsRegion whole(hsIntRect{0, 0, mask.fBounds.Width(), mask.fBounds.Height()});
  MaskWriter writer(mask);
  HSScan::AntiFillPath(&moved, &whole, &writer);

  hsGMask filtered;
  const hsGMask& result = filter->FilterMask(mask, matrix, &filtered) ? filtered : mask;
  if (!result.fImage || !clip->Bounds().Intersects(result.fBounds)) return;
  const auto blitter = hsAdopt(raw.GetBlitter(result.fMaskType));
  blitter->BlitMask(result, clip);
}
