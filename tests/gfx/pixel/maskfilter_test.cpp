// Paths through a mask filter: coverage, filter, blitter.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/pixel/spreadfilter.h"

namespace {

// The path covers columns 3.5 to 14 of rows 1 to 3; the mask ends at the clip's right edge.
TEST(MaskFilter, DrawsAPathsCoverageChangedOrNot) {
  Random random(1);
  for (bool works : {false, true}) {
    Surface surface(hsGBitmap::kConfig_Alpha8, 20, 6, random);
    for (int i = 0; i < 20 * 6; ++i) surface.Set(i % 20, i / 20, 0);
    Surface model(surface);
    const hsMatrix matrix;
    hsRegion clip(hsIntRect{0, 0, 12, 6});
    hsGAttribute attr;
    hsGRawDraw raw;
    raw.fBitmap = &surface.bitmap;
    raw.fMatrix = &matrix;
    raw.fAttr = &attr;
    raw.fClip = &clip;
    const auto filter = hsMake<SpreadFilter>();
    filter->works = works;
    const hsRect rect{3 * kFixed1 + kFixedHalf, kFixed1, 14 * kFixed1, 4 * kFixed1};
    hsPath path;
    path.AddRect(&rect);
    hsGMaskFilter::DrawPath(raw, path, matrix, filter.get());
    EXPECT_EQ(filter->seen, (hsIntRect{3, 1, 12, 4}));
    const int spread = works ? 1 : 0;
    for (int y = 1 - spread; y < 4 + spread; ++y) {
      // Half a pixel is 8 samples of 16, less one of the first row's span that begins there.
      EXPECT_EQ(surface.Get(3 - spread, y), 127u);
      model.Set(3 - spread, y, 127);
      for (int x = 4 - spread; x < 12; ++x) model.Set(x, y, 255);
    }
    EXPECT_EQ(surface, model);
    EXPECT_EQ(AssertOf([&] { hsGMaskFilter::DrawPath(raw, path, matrix, nullptr); }), "need filter");
  }
}

TEST(MaskFilter, TheWidestMask) {
  Random random(2);
  Surface surface(hsGBitmap::kConfig_Alpha8, 4, 1, random);
  const hsMatrix matrix;
  const hsRegion clip(hsIntRect{-32767, 0, 32767, 1});
  hsGAttribute attr;
  hsGRawDraw raw;
  raw.fBitmap = &surface.bitmap;
  raw.fMatrix = &matrix;
  raw.fAttr = &attr;
  raw.fClip = &clip;
  const auto filter = hsMake<SpreadFilter>();
  const hsRect rect{-32764 * kFixed1, 0, 32765 * kFixed1, kFixed1};  // 65,529 pixels, one too many
  hsPath path;
  path.AddRect(&rect);
  hsGMaskFilter::DrawPath(raw, path, matrix, filter.get());
  EXPECT_EQ(filter->seen, (hsIntRect{0, 0, 0, 0}));
}

}  // namespace
