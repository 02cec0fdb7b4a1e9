#include "gfx/foundation/hsfixed.h"

#include <gtest/gtest.h>

#include <random>

#include "gfx/foundation/hsmath.h"
#include "gfx/halt.h"

namespace {

constexpr int32_t kMin = -0x7FFFFFFF - 1;

TEST(Fixed, RoundsHalvesUpAndWrapsAtTheEndsOfTheRange) {
  struct Case {
    hsFixed value;
    int floor, round, ceil;
  };
  const Case cases[] = {{0x7FFF, 0, 0, 1},
                        {0x8000, 0, 1, 1},
                        {-0x8000, -1, 0, 0},
                        {-0x8001, -1, -1, 0},
                        {-0x10000, -1, -1, -1},
                        {0x7FFFFFFF, 0x7FFF, -0x8000, -0x8000},
                        {-0x7FFF0000, -0x7FFF, -0x7FFF, -0x7FFF},
                        {kMin, 0x8000, -0x8000, 0x8000}};
  for (const Case& c : cases) {
    EXPECT_EQ(hsFixedFloor(c.value), c.floor) << c.value;
    EXPECT_EQ(hsFixedRound(c.value), c.round) << c.value;
    EXPECT_EQ(hsFixedCeil(c.value), c.ceil) << c.value;
  }
  EXPECT_EQ(hsFixedAverage(0x7FFFFFFF, 1), -0x40000000);
  EXPECT_EQ(hsIntToFixed(0x12345), 0x23450000);
  const std::pair<hsScalar, int> units[] = {
      {-5, 0}, {0x7FFF, 0x7FFF}, {0x8000, 0x7FFF}, {0x10000, 0xFFFF}, {0x20000, 0xFFFF}};
  for (const auto& [unit, bits] : units) EXPECT_EQ(hsScalarTo16Bit(unit), bits) << unit;
}

using Big = int64_t;

Big RoundedUp(Big a, int bits) { return (a + (Big{1} << (bits - 1))) >> bits; }
// Halves go away from zero.
Big Quotient(Big a, Big b) {
  const Big half = (b < 0 ? -b : b) / 2, magnitude = ((a < 0 ? -a : a) + half) / (b < 0 ? -b : b);
  return (a < 0) != (b < 0) ? -magnitude : magnitude;
}

// Against long arithmetic. What doesn't fit is reported and saturates; the silent forms saturate alike.
TEST(Fixed, ProductsRoundHalvesUpAndQuotientsAwayFromZero) {
  struct {
    int32_t (*call)(int32_t, int32_t);
    Big (*exact)(Big, Big);
  } const operations[] = {
      {hsFixMul, [](Big a, Big b) { return RoundedUp(a * b, 16); }},
      {hsFracMul, [](Big a, Big b) { return RoundedUp(a * b, 30); }},
      {hsFracDiv, [](Big a, Big b) { return Quotient(a << 30, b); }},
      {[](int32_t a, int32_t b) { return hsMulDiv(a, 12345, b); }, [](Big a, Big b) { return Quotient(a * 12345, b); }},
  };
  std::mt19937 random(1);
  ReturnOnHalt halt;
  for (int i = 0; i < 20000; ++i) {
    const int32_t a = int32_t(random()) >> (random() % 32), b = int32_t(random()) >> (random() % 32) | 1;
    for (const auto& operation : operations) {
      halt.Reports().clear();
      const Big exact = operation.exact(a, b);
      const bool fits = exact >= kMin && exact <= 0x7FFFFFFF;
      ASSERT_EQ(operation.call(a, b), fits ? int32_t(exact) : exact < 0 ? -0x7FFFFFFF : 0x7FFFFFFF) << a << ", " << b;
      ASSERT_EQ(halt.Reports(), std::vector<std::string>(fits ? 0 : 1, "Math overflow: 0"));
    }
    ASSERT_EQ(hsFixMulSat(a, b), hsFixMul(a, b));
    ASSERT_EQ(hsMagnitudeSat(a, b), hsMagnitude(a, b));
  }
  EXPECT_EQ(hsFracDiv(-2, 1), kMin);  // just fits
  EXPECT_EQ(hsMulDiv(kMin, kMin, kMin), kMin);
  EXPECT_EQ(hsMagnitude(0x7FFFFFFF, 0x7FFFFFFF), 0x7FFFFFFF);
  EXPECT_EQ(halt.Reports().back(), "Math overflow: 0");
}

TEST(Fixed, HsFixDivRoundsAndSaturatesInSilence) {
  ThrowOnHalt halt;
  const int32_t cases[][3] = {
      {1, 3, 21845},
      {1, 0x20000, 1},  // a half, away from zero
      {-1, 0x20000, -1},
      {kFixed1, 0, 0x7FFFFFFF},
      {0, 0, 0x7FFFFFFF},
      {-1, 0, -0x7FFFFFFF},
      {0x10000000, -1, -0x7FFFFFFF},
      // The high words are compared as signed ones, so that the largest magnitude is no divisor at all...
      {1, kMin, -0x7FFFFFFF},
      {-1, kMin, 0x7FFFFFFF},
      // ...and a quotient of 32 bits passes: 0x7FFF0000.0000 / 0x9000 is 0xE38C71C7.1C...
      {0x7FFF0000, 0x9000, int32_t(0xE38C71C7)},
  };
  for (const auto& [a, b, quotient] : cases) EXPECT_EQ(hsFixDiv(a, b), quotient) << a << ", " << b;
}

#ifdef __SIZEOF_INT128__  // which 32-bit machines don't have
// The root r of x as the definition has it: r^n <= x < (r + 1)^n.
TEST(Math, RootsAreExactAtTheirEdges) {
  std::mt19937_64 random(2);
  const auto check = [](uint64_t x) {
    using Wide = unsigned __int128;
    const Wide root = hsSqrt64(x), cube = hsCubeRoot63(x);
    EXPECT_TRUE(root * root <= x && (root + 1) * (root + 1) > x) << x;
    const uint64_t low = x & ~(uint64_t{1} << 63);
    EXPECT_TRUE(cube * cube * cube <= low && (cube + 1) * (cube + 1) * (cube + 1) > low) << x;
    const Wide small = hsSqrt32(uint32_t(x));
    EXPECT_TRUE(small * small <= uint32_t(x) && (small + 1) * (small + 1) > uint32_t(x)) << uint32_t(x);
  };
  for (uint64_t x : {uint64_t{0}, uint64_t{1}, ~uint64_t{0}, uint64_t{1} << 63}) check(x);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t r = random() >> (32 + random() % 32);
    for (uint64_t x : {r * r - 1, r * r, r * r + 1, random() >> (random() % 64)}) check(x);
  }
  EXPECT_EQ(hsCubeRoot32(27), 3u);
  EXPECT_EQ(hsCubeRoot32(26), 2u);
  EXPECT_EQ(hsCubeRoot32(0xFFFFFFFF), 1625u);
}
#endif

TEST(Math, FractRoots) {
  EXPECT_EQ(hsFractSqrt(kFract1), kFract1);
  EXPECT_EQ(hsFractSqrt(kFract1 / 4), kFract1 / 2);
  EXPECT_EQ(hsFractSqrt(-1), 0x7FFFFFFF);  // just under 4.0 as bits
  EXPECT_EQ(hsFractCubeRoot(kFract1 / 8), kFract1 / 2);
  EXPECT_EQ(hsFractCubeRoot(-kFract1), -kFract1);
  EXPECT_EQ(hsFractCubeRoot(kMin), -1352829926);  // the cube root of 2, cut
}

}  // namespace
