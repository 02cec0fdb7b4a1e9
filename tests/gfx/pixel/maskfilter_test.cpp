// Paths through a mask: coverage or a rasterizer's, filter, clip, blitter.
#include <gtest/gtest.h>

#include <cstring>

#include "gfx/halt.h"
#include "gfx/pixel/hsgrasterizer.h"
#include "gfx/pixel/hsgrawdraw.h"
#include "gfx/pixel/pixelmodel.h"
#include "gfx/pixel/spreadfilter.h"
#include "gfx/vector/pathtext.h"

namespace {

// Coverage of 20 x 6 pixels, none at first.
struct MaskTest : testing::Test {
  MaskTest() {
    surface.bitmap.Erase({});
    raw.fBitmap = &surface.bitmap;
    raw.fMatrix = &matrix;
    raw.fAttr = &attr;
    raw.fClip = &clip;
  }
  Random random{1};
  Surface surface{hsGBitmap::kConfig_Alpha8, 20, 6, random};
  const hsMatrix matrix;
  hsRegion clip;
  hsRef<SpreadFilter> filter = hsMake<SpreadFilter>();
  hsGAttribute attr;
  hsGRawDraw raw;
};

// The path covers columns 3.5 to 14 of rows 1 to 3; the mask ends at the clip's right edge.
TEST_F(MaskTest, AFilterChangesAPathsCoverageOrNot) {
  const hsPath path = PathOf("M 3.5 1 L 14 1 L 14 4 L 3.5 4 Z");
  clip.SetRect(0, 0, 12, 6);
  for (bool works : {false, true}) {
    Surface model(surface);
    filter->works = works;
    hsGMaskFilter::DrawPath(raw, path, matrix, filter.get());
    EXPECT_EQ(filter->seen, (hsIntRect{3, 1, 12, 4}));
    const int spread = works ? 1 : 0;
    for (int y = 1 - spread; y < 4 + spread; ++y) {
      // Half a pixel is 8 samples of 16, less one of the first row's span that begins there.
      model.Set(3 - spread, y, 127);
      for (int x = 4 - spread; x < 12; ++x) model.Set(x, y, 255);
    }
    EXPECT_EQ(surface, model);
  }
  EXPECT_EQ(AssertOf([&] { hsGMaskFilter::DrawPath(raw, path, matrix, nullptr); }), "need filter");
}

TEST_F(MaskTest, NoMaskIsTooWideForItsRows) {
  clip.SetRect(-32767, 0, 32767, 1);
  const hsPath path = PathOf("M -32764 0 L 32765 0 L 32765 1 L -32764 1 Z");  // 65,529 pixels, one too many
  hsGMaskFilter::DrawPath(raw, path, matrix, filter.get());
  EXPECT_EQ(filter->seen, (hsIntRect{0, 0, 0, 0}));
}

struct BlockRasterizer : hsGRasterizer {
  bool ComputeBounds(const hsPath&, const hsMatrix&, hsIntRect* bounds) override {
    *bounds = {2, 1, 8, 4};
    return true;
  }
  bool Rasterize(const hsPath& path, const hsMatrix& m, hsGMask* mask) override {
    ComputeBounds(path, m, &mask->fBounds);
    mask->fMaskType = kMask_Alpha;
    mask->fRowBytes = uint16_t(mask->fBounds.Width());
    mask->AllocImage();
    std::memset(mask->fImage, 0xFF, mask->ImageSize());
    return true;
  }
};

TEST_F(MaskTest, ARasterizersMaskIsFilteredAndClipped) {
  attr.SetRasterizer(hsMake<BlockRasterizer>().get());
  const struct {
    hsIntRect clip, drawn;
    bool filters;
  } cases[] = {{{0, 0, 20, 6}, {2, 1, 8, 4}, false},
               {{4, 2, 6, 9}, {4, 2, 6, 4}, false},
               {{9, 0, 20, 6}, {0, 0, 0, 0}, false},
               {{0, 0, 20, 6}, {1, 0, 9, 5}, true}};
  for (const auto& c : cases) {
    surface.bitmap.Erase({});
    clip.SetRect(c.clip.fLeft, c.clip.fTop, c.clip.fRight, c.clip.fBottom);
    attr.SetMaskFilter(c.filters ? filter.get() : nullptr);
    raw.DrawPath(PathOf("M 0 0 L 9 9"));
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 20; ++x) EXPECT_EQ(surface.Get(x, y), c.drawn.Contains(x, y) ? 255u : 0u) << x << "," << y;
  }
}

}  // namespace
