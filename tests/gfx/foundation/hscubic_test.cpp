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

TEST(Cubic, ARatioLiesStrictlyBetween0And1) {
  const hsFixed cases[][3] = {{0, 5, 0},       {5, 5, 0},        {-1, 5, 0},       {1, 4 * kFixed1, 0},  // rounds to 0
                              {1, kFixed1, 1}, {-1, -4, F(.25)}, {-3, -4, F(0.75)}};
  for (const auto& [numerator, denominator, ratio] : cases) {
    hsFixed t = 0;
    EXPECT_EQ(hsCubic::FindValidRatio(numerator, denominator, &t), ratio != 0) << numerator;
    EXPECT_EQ(t, ratio) << numerator;
  }
}

TEST(Cubic, QuadraticsWithTwoOneAndNoRoots) {
  struct {
    int32_t a, b, c;
    std::vector<hsFixed> roots;
  } const cases[] = {{8, -6, 1, {F(0.25), F(0.5)}},  // (4t - 1)(2t - 1)
                     {4, -4, 1, {F(0.5)}},           // (2t - 1)^2
                     {0, 4, -1, {F(0.25)}},
                     {1, 0, 1, {}},
                     {0, 0, 0, {}}};
  for (const auto& c : cases) {
    hsFixed t[2];
    const int count = hsCubic::SolveQuadratic(c.a, c.b, c.c, t);
    EXPECT_EQ(std::vector<hsFixed>(t, t + count), c.roots) << c.a << ", " << c.b << ", " << c.c;
  }
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
  EXPECT_EQ(std::vector<hsPoint>(dst, dst + 5),
            (std::vector<hsPoint>{{0, 0}, {F(1), F(2)}, {F(2), F(2)}, {F(3), F(2)}, {F(4), 0}}));
  hsCubic::QuadToCubic(q, dst);
  EXPECT_EQ(dst[1], (hsPoint{87380, 174760}));  // 43690 / 65536, not two thirds
  const hsPoint c[] = {{0, 0}, {0, F(8)}, {F(8), F(8)}, {F(8), 0}};
  hsCubic::ChopCubicAt(c, dst, F(0.25));
  EXPECT_EQ(dst[3], (hsPoint{F(1.25), F(4.5)}));
  for (hsFixed t : {0, kFixed1, -1}) EXPECT_EQ(AssertOf([&] { hsCubic::ChopCubicAt(c, dst, t); }), "bad t");
  const hsPoint monotonic[] = {{0, 0}, {0, 0}, {0, F(1)}, {0, F(1)}};
  EXPECT_EQ(hsCubic::ChopCubicAtYExtrema(monotonic, dst), 0);
}

TEST(ClipLine, BringsEndsToTheEdge) {
  struct {
    hsPoint a, b;
    std::vector<hsPoint> want;
  } const cases[] = {{{F(-10), F(5)}, {F(30), F(5)}, {{0, F(5)}, {F(10), F(5)}}},
                     {{F(1), F(1)}, {F(2), F(2)}, {{F(1), F(1)}, {F(2), F(2)}}},
                     {{F(-10), F(5)}, {F(-1), F(5)}, {}},
                     {{F(-10), F(40)}, {F(40), F(60)}, {}}};
  for (const auto& [a, b, want] : cases) {
    hsPoint out[2];
    const bool meets = hsClipLine::ClipLine(a, b, {0, 0, F(10), F(10)}, out);
    EXPECT_EQ(meets ? std::vector<hsPoint>(out, out + 2) : std::vector<hsPoint>(), want) << a.fX;
  }
}

TEST(ClipLine, SegmentsMeetAtTheirEndsToo) {
  const hsPoint a[] = {{0, 0}, {F(10), F(10)}};
  struct {
    hsPoint b[2];
    bool meets;
    hsPoint where;
  } const cases[] = {{{{0, F(10)}, {F(10), 0}}, true, {F(5), F(5)}},
                     {{{F(10), F(10)}, {F(20), 0}}, true, {F(10), F(10)}},
                     {{{F(1), 0}, {F(11), F(10)}}, false, {}},    // parallel
                     {{{F(11), F(10)}, {F(20), 0}}, false, {}}};  // beyond its end
  for (const auto& c : cases) {
    hsPoint p{};
    EXPECT_EQ(hsClipLine::IntersectLines(a, c.b, &p), c.meets);
    EXPECT_TRUE(!c.meets || p == c.where);
  }
}

}  // namespace
