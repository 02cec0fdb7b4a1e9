// Paths through a mask filter: coverage, filter, blitter.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgmask.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/pixel/pixelmodel.h"

namespace {

// Shifts the mask and takes its complement, or leaves it alone.
class ShiftFilter : public hsGMaskFilter {
 public:
  ShiftFilter(bool works, int dx) : fWorks(works), fDx(dx) {}
  bool FilterMask(const hsGMask& src, const hsMatrix&, hsGMask* dst) override {
    seen = src.fBounds;
    if (!fWorks) return false;
    dst->fBounds = src.fBounds;
    dst->fBounds.fLeft += fDx;
    dst->fBounds.fRight += fDx;
    dst->fRowBytes = src.fRowBytes;
    dst->fMaskType = kMask_Alpha;
    dst->AllocImage();
    for (uint32_t i = 0; i < src.ImageSize(); ++i) dst->fImage[i] = uint8_t(255 - src.fImage[i]);
    return true;
  }
  void ComputeBounds(const hsMatrix&, hsIntRect*) override {}

  hsIntRect seen{0, 0, 0, 0};

 private:
  bool fWorks;
  int fDx;
};

TEST(MaskFilter, DrawsAPathsCoverageChangedOrNot) {
  Random random(1);
  for (bool works : {false, true}) {
    Surface surface(hsGBitmap::kConfig_Alpha8, 20, 6, random);
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 20; ++x) surface.Set(x, y, 0);
    Surface model(surface);
    const hsMatrix matrix;
    hsRegion clip(hsIntRect{0, 0, 12, 6});
    hsGAttribute attr;
    hsGRawDraw raw;
    raw.fBitmap = &surface.bitmap;
    raw.fMatrix = &matrix;
    raw.fAttr = &attr;
    raw.fClip = &clip;
    const auto filter = hsMake<ShiftFilter>(works, 2);
    // Columns 3.5 to 14 of rows 1 to 4; the mask ends at the clip's right edge.
    const hsRect rect{3 * kFixed1 + kFixedHalf, kFixed1, 14 * kFixed1, 4 * kFixed1};
    hsPath path;
    path.AddRect(&rect);
    hsGMaskFilter::DrawPath(raw, path, matrix, filter.get());
    EXPECT_EQ(filter->seen, (hsIntRect{3, 1, 12, 4}));
    for (int y = 1; y < 4; ++y) {
      if (!works) {
        // Half a pixel is 8 samples of 16, less one of the first row's span that begins there.
        model.Set(3, y, surface.Get(3, y));
        EXPECT_NEAR(int(surface.Get(3, y)), 127, 1);
        for (int x = 4; x < 12; ++x) model.Set(x, y, 255);
      } else {
        model.Set(5, y, surface.Get(5, y));
        EXPECT_NEAR(int(surface.Get(5, y)), 128, 1);
      }
    }
    EXPECT_EQ(surface, model);
    EXPECT_EQ(AssertOf([&] { hsGMaskFilter::DrawPath(raw, path, matrix, nullptr); }), "need filter");
  }
}

}  // namespace
