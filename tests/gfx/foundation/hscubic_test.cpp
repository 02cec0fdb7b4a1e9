#include "gfx/foundation/hscubic.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "gfx/foundation/hsclipline.h"
#include "gfx/halt.h"

namespace {

constexpr hsFixed F(double value) { return hsFixed(value * 65536); }

bool IsMonotonic(const hsPoint* p, int count) {
  const auto up = [](hsPoint a, hsPoint b) { return a.fY < b.fY; };
  return std::is_sorted(p, p + count, up) ||
         std::is_sorted(p, p + count, [&](hsPoint a, hsPoint b) { return up(b, a); });
}

TEST(Cubic, RatiosCountOnlyStrictlyBetweenTheEnds) {
  hsFixed t = -1;
  for (const auto& [numerator, denominator] : {std::pair{0, 5}, {5, 5}, {-1, 5}, {1, 0x40000}})  // the last rounds to 0
    EXPECT_EQ(hsCubic::FindValidRatio(numerator, denominator, &t), 0) << numerator;
  EXPECT_EQ(hsCubic::FindValidRatio(-1, -4, &t), 1);
  EXPECT_EQ(t, F(0.25));
}

TEST(Cubic, QuadraticsWithTwoOneAndNoRoots) {
  hsFixed t[2];
  EXPECT_EQ(hsCubic::SolveQuadratic(8, -6, 1, t), 2);  // (4t - 1)(2t - 1)
  EXPECT_EQ(t[0], F(0.25));
  EXPECT_EQ(t[1], F(0.5));
  EXPECT_EQ(hsCubic::SolveQuadratic(4, -4, 1, t), 1);  // (2t - 1)^2
  EXPECT_EQ(t[0], F(0.5));
  EXPECT_EQ(hsCubic::SolveQuadratic(0, 4, -1, t), 1);
  EXPECT_EQ(t[0], F(0.25));
  EXPECT_EQ(hsCubic::SolveQuadratic(1, 0, 1, t), 0);
  EXPECT_EQ(hsCubic::SolveQuadratic(0, 0, 0, t), 0);
}

// The reason for the splits: each piece is monotonic to the bit, and level at the split.
TEST(Cubic, PiecesBetweenExtremaAreMonotonic) {
  std::mt19937 random(7);
  std::uniform_int_distribution<hsFixed> coordinate(F(-400), F(400));
  int splits[3] = {};
  for (int i = 0; i < 20000; ++i) {
    hsPoint c[10];
    for (int k = 0; k < 4; ++k) c[k] = {coordinate(random), coordinate(random)};
    hsPoint q[5] = {c[0]};
    if (hsCubic::ChopQuadAtYExtrema(c, q + 1)) {
      q[4] = c[2];
      ASSERT_TRUE(IsMonotonic(q, 3) && IsMonotonic(q + 2, 3)) << i;
      ASSERT_TRUE(q[1].fY == q[2].fY && q[3].fY == q[2].fY);
    } else {
      ASSERT_TRUE(IsMonotonic(c, 3) || std::abs(c[1].fY - c[0].fY) < 4 || std::abs(c[1].fY - c[2].fY) < 4) << i;
    }
    hsPoint pieces[10] = {c[0]};
    const int count = hsCubic::ChopCubicAtYExtrema(c, pieces + 1);
    ++splits[count];
    for (int k = 1; k <= count; ++k) {
      const hsPoint* split = pieces + 3 * k;
      ASSERT_TRUE(split[-1].fY == split[0].fY && split[1].fY == split[0].fY) << i;
    }
  }
  EXPECT_GT(splits[1], 1000);
  EXPECT_GT(splits[2], 100);
}

TEST(Cubic, ChoppingInTheMiddle) {
  const hsPoint q[] = {{0, 0}, {F(2), F(4)}, {F(4), 0}};
  hsPoint dst[7];
  hsCubic::ChopQuadAt(q, dst, F(0.5));
  const std::vector<hsPoint> quad{{0, 0}, {F(1), F(2)}, {F(2), F(2)}, {F(3), F(2)}, {F(4), 0}};
  EXPECT_TRUE(std::equal(quad.begin(), quad.end(), dst));
  hsCubic::QuadToCubic(q, dst);
  EXPECT_EQ(dst[1], (hsPoint{87380, 174760}));  // 43690 / 65536, not two thirds
  const hsPoint c[] = {{0, 0}, {0, F(8)}, {F(8), F(8)}, {F(8), 0}};
  hsCubic::ChopCubicAt(c, dst, F(0.25));
  EXPECT_EQ(dst[3], (hsPoint{F(1.25), F(4.5)}));
  for (hsFixed t : {0, kFixed1, -1}) EXPECT_EQ(AssertOf([&] { hsCubic::ChopCubicAt(c, dst, t); }), "bad t");
}

TEST(Cubic, ARatioLiesBetween0And1) {
  hsFixed t = 7;
  EXPECT_EQ(hsCubic::FindValidRatio(1, kFixed1, &t), 1);
  EXPECT_EQ(t, 1);
  EXPECT_EQ(hsCubic::FindValidRatio(-3, -4, &t), 1);
  EXPECT_EQ(t, F(0.75));
  for (int32_t numer : {0, 4, 5, -1}) EXPECT_EQ(hsCubic::FindValidRatio(numer, 4, &t), 0) << numer;
  EXPECT_EQ(hsCubic::FindValidRatio(1, 4 * kFixed1, &t), 0);  // as good as 0
}

TEST(Cubic, AMonotonicCubicIsNotSolved) {
  const hsPoint c[] = {{0, 0}, {0, 0}, {0, F(1)}, {0, F(1)}};
  hsPoint dst[8];
  EXPECT_EQ(hsCubic::ChopCubicAtYExtrema(c, dst), 0);
}

TEST(ClipLine, BringsEndsToTheEdge) {
  const hsRect r{0, 0, F(10), F(10)};
  hsPoint out[2];
  EXPECT_TRUE(hsClipLine::ClipLine({F(-10), F(5)}, {F(30), F(5)}, r, out));
  EXPECT_EQ(out[0], (hsPoint{0, F(5)}));
  EXPECT_EQ(out[1], (hsPoint{F(10), F(5)}));
  EXPECT_TRUE(hsClipLine::ClipLine({F(1), F(1)}, {F(2), F(2)}, r, out));
  EXPECT_EQ(out[0], (hsPoint{F(1), F(1)}));
  EXPECT_FALSE(hsClipLine::ClipLine({F(-10), F(5)}, {F(-1), F(5)}, r, out));
  EXPECT_FALSE(hsClipLine::ClipLine({F(-10), F(40)}, {F(40), F(60)}, r, out));
}

TEST(ClipLine, SegmentsMeetAtTheirEndsToo) {
  const hsPoint a[] = {{0, 0}, {F(10), F(10)}};
  hsPoint p;
  const hsPoint crossing[] = {{0, F(10)}, {F(10), 0}}, touching[] = {{F(10), F(10)}, {F(20), 0}};
  const hsPoint parallel[] = {{F(1), 0}, {F(11), F(10)}}, beyond[] = {{F(11), F(10)}, {F(20), 0}};
  EXPECT_TRUE(hsClipLine::IntersectLines(a, crossing, &p));
  EXPECT_EQ(p, (hsPoint{F(5), F(5)}));
  EXPECT_TRUE(hsClipLine::IntersectLines(a, touching, &p));
  EXPECT_EQ(p, (hsPoint{F(10), F(10)}));
  EXPECT_FALSE(hsClipLine::IntersectLines(a, parallel, &p));
  EXPECT_FALSE(hsClipLine::IntersectLines(a, beyond, &p));
}

}  // namespace
