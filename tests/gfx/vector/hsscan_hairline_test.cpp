// Hairlines: which pixels, under which clip, and straight into a bitmap.
#include <gtest/gtest.h>

#include <set>

#include "gfx/halt.h"
#include "gfx/pixel/hsgbitmap.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/pathtext.h"
#include "gfx/vector/scanmodel.h"

namespace {

hsPoint At(double x, double y) { return {hsScalar(std::floor(x * 65536)), hsScalar(std::floor(y * 65536))}; }

std::string CallsOf(hsPoint a, hsPoint b, const hsRegion* clip = nullptr) {
  CallBlitter blitter;
  HSScan::HairLine(a, b, clip, &blitter);
  return blitter.calls;
}

TEST(HairLine, EndsAreLeftOut) {
  EXPECT_EQ(CallsOf(At(0, 0), At(3, 3)), "0,0,1 1,1,1 2,2,1");
  EXPECT_EQ(CallsOf(At(3, 3), At(0, 0)), "0,0,1 1,1,1 2,2,1");
  EXPECT_EQ(CallsOf(At(2.75, 1.5), At(2.75, 1.5)), "1,2,1");
  EXPECT_EQ(CallsOf(At(1.4, 5), At(1.6, 5)), "5,1,1");
  EXPECT_EQ(CallsOf(At(1.1, 5), At(1.4, 5)), "");
  EXPECT_EQ(CallsOf(At(7.9, 4.2), At(7.9, 1.2)), "R1,7,1,3");
}

struct PixelSet : hsGBlitter {
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    for (int32_t i = 0; i < width; ++i) pixels.insert({x + i, y});
  }
  std::set<std::pair<int, int>> pixels;
};

// Slanted lines: along the longer axis one pixel for each, the one that holds the line over the pixel's middle.
TEST(HairLine, StepsAlongTheLongerAxis) {
  Random random(6);
  for (int i = 0; i < 3000; ++i) {
    hsPoint a = RandomPoint(random), b = RandomPoint(random);
    if (a.fX == b.fX || a.fY == b.fY) continue;
    PixelSet drawn;
    HSScan::HairLine(a, b, nullptr, &drawn);
    const bool steep = std::abs(a.fX - b.fX) <= std::abs(a.fY - b.fY);
    if (steep) {
      std::swap(a.fX, a.fY);
      std::swap(b.fX, b.fY);
    }
    if (a.fX > b.fX) std::swap(a, b);
    const int first = a.fX >> 16, stop = (b.fX + 0xFFFF) >> 16;
    ASSERT_EQ(drawn.pixels.size(), size_t(stop - first)) << i;
    for (auto [x, y] : drawn.pixels) {
      if (steep) std::swap(x, y);
      ASSERT_TRUE(x >= first && x < stop) << i;
      const double at = a.fY / 65536.0 + (x + 0.5 - a.fX / 65536.0) * (b.fY - a.fY) / (b.fX - a.fX);
      ASSERT_TRUE(at > y - 0.002 && at < y + 1.002) << i << " at " << x;
    }
  }
}

// A clip lets nothing out, and lets everything through that lies more than a pixel within it.
TEST(HairLine, StaysInsideItsClip) {
  Random random(17);
  ThrowOnHalt halt;
  for (int i = 0; i < 4000; ++i) {
    const PixelModel model = RandomModel(random);
    const hsRegion clip = model.Region();
    const auto reach = [&] {
      return RandomPoint(random, 3 * kModelSize) - hsPoint{kModelSize << 16, kModelSize << 16};
    };
    const hsPoint a = reach(), b = i % 7 == 0 ? hsPoint{a.fX, reach().fY} : reach();
    PixelSet whole, clipped;
    HSScan::HairLine(a, b, nullptr, &whole);
    HSScan::HairLine(a, b, &clip, &clipped);
    for (const auto& [x, y] : clipped.pixels) ASSERT_TRUE(clip.Contains(x, y)) << i << " at " << x << "," << y;
    for (const auto& [x, y] : whole.pixels) {
      if (!clip.Contains({x - 1, y - 1, x + 2, y + 2})) continue;
      bool near = false;
      for (int d = -1; d <= 1; ++d) near |= clipped.pixels.count({x + d, y}) || clipped.pixels.count({x, y + d});
      ASSERT_TRUE(near) << i << " misses " << x << "," << y;
    }
  }
}

// Long lines add up their slope's last bit. The clip that just holds the line's box must hold its pixels too; one with
// space to spare changes nothing.
TEST(HairLine, LongLinesStrayOutOfTheirBoxButNotOutOfTheClip) {
  struct Last : hsGBlitter {
    void BlitH(int32_t y, int32_t x, int32_t) override { pixel = {x, y}; }
    hsIntPoint pixel{0, 0};
  };
  Random random(23);
  for (int i = 0; i < 400; ++i) {
    const hsPoint a{hsScalar(random() % 0x20000), hsScalar(random() % 0x20000)};
    // The last pixel's middle lies half a pixel after the end, and there the line half a pixel beside its box's edge.
    const hsPoint b{14002 * kFixed1 + hsScalar(random() % 256 + 1),
                    14000 * kFixed1 + 0x7FFF - hsScalar(random() % 256)};
    const hsRegion clip(
        hsIntRect{hsFixedRound(a.fX) - 1, hsFixedRound(a.fY) - 1, hsFixedRound(b.fX) + 1, hsFixedRound(b.fY) + 1});
    Last last, unclipped, roomy;
    HSScan::HairLine(a, b, &clip, &last);
    ASSERT_TRUE(clip.Contains(last.pixel.fX, last.pixel.fY)) << i;
    HSScan::HairLine(a, b, nullptr, &unclipped);
    const hsRegion wide(hsIntRect{-9, -9, 15000, 15000});
    HSScan::HairLine(a, b, &wide, &roomy);
    ASSERT_EQ(roomy.pixel, unclipped.pixel) << i;
  }
}

TEST(HairPath, DrawsEachSegmentAndLeavesContoursOpen) {
  const auto pixels = [](const char* text) {
    PixelSet set;
    const hsPath path = PathOf(text);
    HSScan::HairPath(&path, nullptr, &set);
    return set.pixels;
  };
  using Set = std::set<std::pair<int, int>>;
  EXPECT_EQ(pixels("M 0 0 L 3 0 L 3 2"), (Set{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}}));
  EXPECT_EQ(pixels("M 0 0 L 3 0 L 3 2 L 0 2 Z"),
            (Set{{0, 0}, {1, 0}, {2, 0}, {3, 0}, {3, 1}, {0, 2}, {1, 2}, {2, 2}, {0, 1}}));
  // Curves as straight as lines are drawn like those, in pieces.
  EXPECT_EQ(pixels("M 0 0 Q 4 4 8 8"), pixels("M 0 0 L 8 8"));
  EXPECT_EQ(pixels("M 0 0 C 3 3 6 6 9 9"), pixels("M 0 0 L 9 9"));
}

// Cubics keep to their curve. The model's curve is cut finely, a hairline's into up to 32 lines.
TEST(HairPath, CubicsFollowTheCurve) {
  Random random(2);
  for (int i = 0; i < 300; ++i) {
    hsPath path;
    path.MoveTo(RandomPoint(random));
    path.CurveTo(RandomPoint(random), RandomPoint(random), RandomPoint(random));
    PixelSet set;
    HSScan::HairPath(&path, nullptr, &set);
    const Outline outline(path, false);
    for (const auto& [x, y] : set.pixels)
      ASSERT_LT(outline.DistanceTo(CentreOf(x, y)), 2) << i << " at " << x << "," << y;
  }
}

// An opaque blitter on a bitmap, which leaves slanted lines to the converter.
template <typename Pixel>
struct DirectBlitter : hsGBlitter {
  explicit DirectBlitter(uint8_t config) : bitmap(config), pixels(kModelSize * (kModelSize + 3)) {
    bitmap.fImage = pixels.data();
    bitmap.fWidth = bitmap.fHeight = kModelSize;
    bitmap.fRowBytes = (kModelSize + 3) * sizeof(Pixel);
  }
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    std::fill_n(bitmap.Row<Pixel>(y) + x, width, Pixel{0x7E});
  }
  const hsGBitmap* GetDirectTarget(uint32_t* value) override {
    *value = 0x7E;
    return &bitmap;
  }
  hsGBitmap bitmap;
  std::vector<Pixel> pixels;
};

template <typename Pixel>
void CompareDirect(uint8_t config) {
  Random random(31);
  ThrowOnHalt halt;
  for (int i = 0; i < 1000; ++i) {
    // Every third line leaves the bitmap on all sides: what lies outside isn't stored.
    const int size = i % 3 ? kModelSize : 3 * kModelSize;
    const hsPoint offset = i % 3 ? hsPoint{0, 0} : hsPoint{kModelSize << 16, kModelSize << 16};
    const hsPoint a = RandomPoint(random, size) - offset, b = RandomPoint(random, size) - offset;
    if (a.fX == b.fX || a.fY == b.fY) continue;
    DirectBlitter<Pixel> direct(config);
    PixelSet plain;
    HSScan::HairLine(a, b, nullptr, &direct);
    HSScan::HairLine(a, b, nullptr, &plain);
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize + 3; ++x)
        ASSERT_EQ(direct.bitmap.template Row<Pixel>(y)[x] != 0, x < kModelSize && plain.pixels.count({x, y}) > 0)
            << i << " at " << x << "," << y;
  }
}

TEST(HairLine, StoresTheSamePixelsIntoABitmap) {
  CompareDirect<uint16_t>(hsGBitmap::kConfig_RGB16);
  CompareDirect<uint8_t>(hsGBitmap::kConfig_Index8);
  DirectBlitter<uint32_t> deep(hsGBitmap::kConfig_ARGB32);
  EXPECT_EQ(ReportOf([&] { HSScan::HairLine(At(1, 1), At(9, 4), nullptr, &deep); }), "bad device depth: 32");
}

}  // namespace
