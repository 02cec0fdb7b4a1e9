// Coverage: the rule of its bytes, and the area that it means.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/vector/coverageblitter.h"
#include "gfx/vector/coveragesum.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/hssuperblitter.h"
#include "gfx/vector/scanmodel.h"

namespace {

// Random spans, four rows to the pixel, against the sum of the rule pixel by pixel.
TEST(SuperBlitter, SumsEachSpanByTheRule) {
  Random random(21);
  ThrowOnHalt halt;
  for (int i = 0; i < 4000; ++i) {
    const int left = int(random() % 5), right = left + 1 + int(random() % unsigned(kModelSize - 5));
    int want[kModelSize] = {};
    CoverageBlitter blitter;
    {
      hsSuperBlitter super({left, 2, right, 4}, nullptr, &blitter);
      for (int subRow = 0; subRow < 4; ++subRow)
        for (int x = 4 * left + int(random() % 20); x < 4 * right;) {
          const int most = 4 * right - x, width = 1 + int(random() % unsigned(random() % 3 ? std::min(most, 9) : most));
          for (int s = x; s < x + width; ++s) want[s / 4] += 16;
          // One is taken off the pixel that a span of the first row begins in, and off those that it fills.
          if (subRow == 0)
            for (int pixel = x / 4; pixel <= (x + width - 1) / 4; ++pixel)
              if (pixel == x / 4 || 4 * pixel + 4 <= x + width) --want[pixel];
          super.BlitH(12 + subRow, x, width);
          x += width + int(random() % 40);
        }
      super.Finish();
    }
    for (int x = 0; x < kModelSize; ++x) ASSERT_EQ(blitter.covered[3][x], want[x]) << i << " at " << x;
  }
}

TEST(SuperBlitter, ARowMayBeWiderThanAnyScreen) {
  struct WideRow : hsGBlitter {
    void BlitH(int32_t, int32_t x, int32_t width) override {
      bytes.assign(fAlpha, fAlpha + width);
      left = x;
    }
    std::vector<int> bytes;
    int32_t left = 0;
  } row;
  hsSuperBlitter super({-3, 0, 4997, 1}, nullptr, &row);
  super.BlitH(1, -10, 19991);  // from the third sample to the first of the last pixel but one
  super.BlitH(2, 19980, 8);    // the last two pixels
  super.Finish();
  EXPECT_EQ(row.left, -3);
  std::vector<int> want(5000, 64);
  want[0] = 32;
  want[4998] = 16 + 64;
  EXPECT_EQ(row.bytes, want);
}

// By the widest registers that there are and by the plain ones: changes far apart and close together.
TEST(CoverageSum, AddsUpWhatChanges) {
  Random random(30);
  ThrowOnHalt halt;
  for (int i = 0; i < 3000; ++i)
    for (const auto sumUp : {hsSumUpCoverage, hsSumUpCoveragePlain}) {
      const size_t count = hsCoverageLanes * (1 + random() % 20), apart = 1 + random() % (random() % 2 ? 4 : 100);
      std::vector<int16_t> changes(count);
      std::vector<uint8_t> want(count), coverage(count + 1, 77);
      int sum = 0;
      for (size_t x = 0; x < count; ++x) {
        const int next = random() % apart ? sum : int(random() % 3 ? random() % 256 : random() % 2 * 255);
        changes[x] = int16_t(next - sum);
        want[x] = uint8_t(sum = next);
      }
      want.push_back(77);
      sumUp(changes.data(), coverage.data(), int32_t(count));
      ASSERT_EQ(coverage, want) << i;
      ASSERT_EQ(changes, std::vector<int16_t>(count)) << i;
    }
  for (const auto sumUp : {hsSumUpCoverage, hsSumUpCoveragePlain}) {
    std::vector<int16_t> changes(hsCoverageLanes * 2);
    std::vector<uint8_t> coverage(changes.size());
    changes[18] = 300;
    changes[19] = -200;
    EXPECT_EQ(AssertOf([&] { sumUp(changes.data(), coverage.data(), int32_t(changes.size())); }), "bad 8");
  }
}

TEST(SuperBlitter, ReportsWhatCannotBe) {
  CoverageBlitter blitter;
  hsSuperBlitter super({0, 0, 8, 2}, nullptr, &blitter);
  EXPECT_EQ(AssertOf([&] { super.BlitH(8, 0, 4); }), "HSScan assert failed");
  EXPECT_EQ(AssertOf([&] { super.BlitH(0, 30, 4); }), "HSScan assert failed");
  EXPECT_EQ(AssertOf([&] {
              for (int i = 0; i < 5; ++i) super.BlitH(1, 4, 4);
              super.Finish();
            }),
            "bad 16");
}

// Polygons: each byte counts the samples, 4 by 4 to the pixel, that lie inside. An edge's X is cut, so a sample right
// beside one may fall either way.
TEST(AntiFill, CoverageCountsTheSamplesInside) {
  Random random(8);
  ThrowOnHalt halt;
  for (int i = 0; i < 120; ++i) {
    const hsPoint points[4] = {RandomPoint(random), RandomPoint(random), RandomPoint(random), points[2]};
    hsPath path;
    path.AddPoly(3, points, true);
    const Outline outline(path, true);
    CoverageBlitter ofPath, ofQuad;
    HSScan::AntiFillPath(&path, nullptr, &ofPath);
    HSScan::AntiFillQuad(points, nullptr, &ofQuad);
    ASSERT_FALSE(ofPath.fAlpha || ofQuad.fAlpha) << "coverage left over";
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x) {
        const bool isCut = outline.DistanceTo(CentreOf(x, y)) < 1;
        int inside = !isCut && outline.Contains(CentreOf(x, y)) ? 16 : 0, doubtful = 0;
        for (int sample = 0; isCut && sample < 16; ++sample) {
          const Dot dot{x + (sample % 4 + 0.5) / 4, y + (sample / 4 + 0.5) / 4};
          inside += outline.Contains(dot);
          doubtful += outline.DistanceTo(dot) < 0.002;
        }
        const int margin = 4 + 16 * doubtful;  // the first row's spans lose one
        ASSERT_NEAR(ofPath.covered[y][x], 16 * inside - inside / 16, margin) << i << " at " << x << "," << y;
        ASSERT_NEAR(ofQuad.covered[y][x], 16 * inside - inside / 16, margin + 33) << i << " at " << x << "," << y;
        ASSERT_TRUE(inside < 16 || doubtful || ofPath.covered[y][x] == 255) << i << " at " << x << "," << y;
      }
  }
}

// A clip takes pixels away and changes none. Edges begin anew at its top, so a sample may fall the other way.
TEST(AntiFill, ClipsTakeWholePixels) {
  Random random(14);
  ThrowOnHalt halt;
  for (int i = 0; i < 400; ++i) {
    const hsPath path = RandomPath(random, i % 2 == 0);
    const PixelModel clip = RandomModel(random);
    const hsRegion region = clip.Region();
    CoverageBlitter whole, clipped;
    HSScan::AntiFillPath(&path, nullptr, &whole);
    HSScan::AntiFillPath(&path, &region, &clipped);
    int differences = 0;
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x) {
        const int want = clip.At(x, y) ? whole.covered[y][x] : 0;
        if (want == 0 && !clip.At(x, y)) {
          ASSERT_EQ(clipped.covered[y][x], 0) << i;
        }
        ASSERT_NEAR(clipped.covered[y][x], want, 17) << i << " at " << x << "," << y;
        differences += clipped.covered[y][x] != want;
      }
    ASSERT_LE(differences, 12) << i;
  }
}

}  // namespace
