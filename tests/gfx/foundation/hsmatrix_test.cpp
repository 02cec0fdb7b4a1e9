#include "gfx/foundation/hsmatrix.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "gfx/foundation/hstrig.h"
#include "gfx/halt.h"

namespace {

constexpr hsFixed F(double value) { return hsFixed(value * 65536); }

struct Random {
  std::mt19937 source{11};
  hsFixed operator()(hsFixed limit) { return std::uniform_int_distribution<hsFixed>(-limit, limit)(source); }
  hsPoint Point(hsFixed limit) { return {(*this)(limit), (*this)(limit)}; }
};

hsMatrix RandomMatrix(Random& random, uint32_t type) {
  hsMatrix m;
  if (type & hsMatrix::kTranslateType) m.fMap[0][2] = random(F(500)), m.fMap[1][2] = random(F(500));
  if (type & hsMatrix::kScaleType) m.fMap[0][0] = random(F(4)), m.fMap[1][1] = random(F(4));
  if (type & hsMatrix::kAffineType) m.fMap[0][1] = random(F(2)), m.fMap[1][0] = random(F(2));
  if (type & hsMatrix::kPerspectiveType) m.fMap[2][0] = random(kFract1 >> 12), m.fMap[2][1] = random(kFract1 >> 12);
  return m;
}

// The products of one output, each rounded to nearest with halves up, in arithmetic that can't overflow.
hsFixed Row(const int32_t row[3], hsPoint p) {
  const auto product = [](int64_t a, int64_t b) { return (a * b + 0x8000) >> 16; };
  return hsFixed(product(row[0], p.fX) + product(row[1], p.fY) + row[2]);
}

TEST(Matrix, MapsPointsAsLongArithmeticDoesForEveryType) {
  Random random;
  for (uint32_t type = 0; type < 8; ++type) {
    for (int i = 0; i < 200; ++i) {
      const hsMatrix m = RandomMatrix(random, type);
      hsPoint src[4], dst[4], want[4];
      for (int k = 0; k < 4; ++k) {
        src[k] = random.Point(F(700));
        want[k] = {Row(m.fMap[0], src[k]), Row(m.fMap[1], src[k])};
      }
      m.MapPoints(4, src, dst, m.GetType());
      m.MapPoints(4, src, src);
      for (int k = 0; k < 4; ++k) {
        ASSERT_EQ(dst[k], want[k]) << type;
        ASSERT_EQ(src[k], want[k]) << type;
      }
    }
  }
}

TEST(Matrix, PerspectiveDividesAndLeavesPointsAtInfinityAlone) {
  hsMatrix m;
  m.fMap[2][0] = kFract1 / 100;  // z = 1 + x / 100
  hsPoint src[2] = {{F(100), F(50)}, {F(-100), F(50)}}, dst[2] = {{1, 2}, {3, 4}};
  m.fMap[2][2] = kFract1;
  m.MapPoints(2, src, dst);
  EXPECT_NEAR(dst[0].fX, F(50), 8);
  EXPECT_NEAR(dst[0].fY, F(25), 8);
  m.fMap[2][0] = kFract1 / 128;  // now exactly 0 at -128
  src[0].fX = F(-128);
  src[1].fX = F(128);
  dst[0] = {3, 4};
  m.MapPoints(2, src, dst);
  EXPECT_EQ(dst[0], (hsPoint{3, 4}));
  EXPECT_EQ(dst[1], (hsPoint{F(64), F(25)}));
}

TEST(Matrix, ConcatAppliesTheRightOneFirstAlsoWhenAliased) {
  Random random;
  for (uint32_t type = 0; type < 16; ++type) {
    const hsMatrix a = RandomMatrix(random, type), b = RandomMatrix(random, 15 - type);
    hsMatrix product, left = a, right = b;
    product.SetConcat(a, b);
    left.SetConcat(left, b);
    right.SetConcat(a, right);
    EXPECT_EQ(left, product);
    EXPECT_EQ(right, product);
    if ((type & 8) || !(type & 7)) continue;
    hsPoint p = random.Point(F(30)), q = p;
    b.MapPoints(1, &p, &p);
    a.MapPoints(1, &p, &p);
    product.MapPoints(1, &q, &q);
    // Far away a perspective divides by little, and what that was rounded by grows with the distance.
    EXPECT_NEAR(p.fX, q.fX, F(0.1) + std::abs(p.fX) / 1000) << type;
    EXPECT_NEAR(p.fY, q.fY, F(0.1) + std::abs(p.fY) / 1000) << type;
  }
}

TEST(Matrix, InverseBringsPointsBack) {
  Random random;
  int inverted = 0;
  for (uint32_t type = 0; type < 16; ++type) {
    for (int i = 0; i < 50; ++i) {
      hsMatrix m = RandomMatrix(random, type), inverse;
      if (type & hsMatrix::kScaleType && std::abs(m.Determinant()) < F(0.5)) continue;
      if (!(type & hsMatrix::kScaleType) && type & hsMatrix::kAffineType) m.fMap[1][0] = 0;
      hsPoint p = random.Point(F(100));
      const hsPoint before = p;
      m.MapPoints(1, &p, &p);
      if (std::abs(p.fX) > F(2000) || std::abs(p.fY) > F(2000) || !m.Invert(&inverse)) continue;
      inverse.MapPoints(1, &p, &p);
      EXPECT_NEAR(p.fX, before.fX, F(1.5)) << type;
      EXPECT_NEAR(p.fY, before.fY, F(1.5)) << type;
      ++inverted;
    }
  }
  EXPECT_GT(inverted, 500);
}

TEST(Matrix, OnlyASingularSkewFailsToInvert) {
  hsMatrix m, result;
  m.fMap[0][0] = 0;
  EXPECT_TRUE(m.Invert(&result));  // a scale of 0 isn't looked at
  EXPECT_EQ(result.fMap[0][0], kPosInfinity32);
  m = hsMatrix();
  m.fMap[0][1] = m.fMap[1][0] = kFixed1;
  const hsMatrix before = result;
  EXPECT_FALSE(m.Invert(&result));
  EXPECT_EQ(result, before);
}

TEST(Matrix, MovesAboutAPoint) {
  hsMatrix m;
  hsPoint p[2] = {{F(10), F(20)}, {F(11), F(20)}};
  m.SetRotate(F(90), F(10), F(20));
  m.MapPoints(2, p, p);
  EXPECT_EQ(p[0], (hsPoint{F(10), F(20)}));
  EXPECT_NEAR(p[1].fX, F(10), 600);  // the table's steps are a third of a degree
  EXPECT_NEAR(p[1].fY, F(21), 600);
  m.SetScale(F(2), F(3), F(10), F(20));
  const hsRect r{F(9), F(20), F(12), F(22)};
  hsRect mapped;
  m.MapRect(&r, &mapped);
  EXPECT_EQ(mapped, (hsRect{F(8), F(20), F(14), F(26)}));
  hsPoint v{F(1), F(-1)};
  m.MapVectors(1, &v, &v, m.GetType());
  EXPECT_EQ(v, (hsPoint{F(2), F(-3)}));
  m.SetScale(-kFixed1, kFixed1, 0, 0);
  m.MapRect(&r, &mapped);
  EXPECT_EQ(mapped, (hsRect{F(-12), F(20), F(-9), F(22)}));
  m.SetScale(kFixed1, -kFixed1, 0, 0);
  m.MapRect(&r, &mapped);
  EXPECT_EQ(mapped, (hsRect{F(9), F(-22), F(12), F(-20)}));
}

TEST(Matrix, PolygonsGoWhereTheyAreSent) {
  const hsPoint square[] = {{0, 0}, {0, F(100)}, {F(100), F(100)}, {F(100), 0}};
  const hsPoint kite[] = {{F(10), F(5)}, {F(-20), F(90)}, {F(130), F(140)}, {F(120), F(-10)}};
  for (int count = 1; count <= 4; ++count) {
    hsMatrix m;
    ASSERT_TRUE(m.SetPolyToPoly(square, kite, count));
    hsPoint mapped[4];
    m.MapPoints(4, square, mapped);
    for (int i = 0; i < count; ++i) {
      EXPECT_NEAR(mapped[i].fX, kite[i].fX, F(0.1)) << count << " " << i;
      EXPECT_NEAR(mapped[i].fY, kite[i].fY, F(0.1)) << count << " " << i;
    }
  }
  ThrowOnHalt halt;  // points that span nothing are refused, not divided by
  hsMatrix m;
  const hsPoint line[] = {{0, 0}, {F(1), F(1)}, {F(2), F(2)}, {F(3), F(3)}}, dot[4] = {};
  EXPECT_FALSE(m.SetPolyToPoly(dot, kite, 2));
  EXPECT_FALSE(m.SetPolyToPoly(line, kite, 3));
  EXPECT_FALSE(m.SetPolyToPoly(square, line, 4));
  EXPECT_FALSE(m.SetPolyToPoly(square, kite, 5));
  EXPECT_FALSE(m.SetPolyToPoly(square, kite, -1));
  EXPECT_EQ(m, hsMatrix());
}

TEST(Trig, IsExactAtTheQuarters) {
  const std::pair<hsFixed, hsFixed> sines[] = {
      {0, 0}, {kHalfPi, kFixed1}, {-kHalfPi, -kFixed1}, {3 * kHalfPi, -kFixed1}, {kHalfPi / 3, F(0.5)}};
  for (const auto& [angle, sine] : sines) EXPECT_EQ(hsFixedSin(angle), sine) << angle;
  EXPECT_EQ(hsFixedCos(0), kFixed1);
  EXPECT_EQ(hsFixedASin(F(2)), kHalfPi);
  EXPECT_EQ(hsFixedASin(-0x7FFFFFFF - 1), -kHalfPi);
  EXPECT_EQ(hsFixedACos(0), kHalfPi);
  EXPECT_NEAR(hsFixedASin(F(0.5)), 65536 * std::asin(128 / 255.0), 2);  // 127.5 steps of 255 round up
  for (hsFixed a = -3 * kTwoPi; a < 3 * kTwoPi; a += 77) {
    ASSERT_EQ(hsFixedSin(-a), -hsFixedSin(a)) << a;
    ASSERT_NEAR(hsFixedSin(a), 65536 * std::sin(a / 65536.0), 250) << a;  // half a step, 1/2040 of a circle
    ASSERT_NEAR(hsFixedCos(a), 65536 * std::cos(a / 65536.0), 250) << a;
  }
}

}  // namespace
