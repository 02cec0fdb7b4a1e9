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

TEST(Fixed, ProductsRoundHalvesUpAndQuotientsAwayFromZero) {
  struct Case {
    int32_t (*call)(int32_t, int32_t);
    int32_t a, b, result;
  };
  const Case cases[] = {{hsFixMul, 1, 0x8000, 1},      {hsFixMul, -1, 0x8000, 0},      {hsFixMul, -1, 0x8001, -1},
                        {hsFracMul, 1, 0x20000000, 1}, {hsFracMul, -1, 0x20000000, 0}, {hsFixDiv, 1, 3, 21845},
                        {hsFixDiv, 2, 3, 43691},       {hsFixDiv, 1, 0x20000, 1},      {hsFixDiv, -1, 0x20000, -1},
                        {hsFracDiv, 1, 3, 357913941},  {hsFracDiv, -1, 2, -0x20000000}};
  for (const Case& c : cases) EXPECT_EQ(c.call(c.a, c.b), c.result) << c.a << ", " << c.b;
  EXPECT_EQ(hsMulDiv(-7, 1, 2), -4);
  EXPECT_EQ(hsMulDiv(7, 1, 2), 4);
  EXPECT_EQ(hsMulDiv(kMin, kMin, kMin), kMin);
  for (int32_t x : {0, 1, -1, 123456789, 0x7FFFFFFF, kMin}) {
    EXPECT_EQ(hsFixMul(kFixed1, x), x);
    EXPECT_EQ(hsFracMul(x, kFract1), x);
  }
}

TEST(Fixed, HsFixDivSaturatesInSilence) {
  ThrowOnHalt halt;
  const int32_t cases[][3] = {
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

TEST(Fixed, EverythingElseReportsOverflowAndSaturates) {
  struct Case {
    int32_t (*call)();
    int32_t result;
  };
  const Case cases[] = {
      {[] { return hsFixMul(0x7FFFFFFF, 0x20000); }, 0x7FFFFFFF},
      {[] { return hsFixMul(kMin, 0x20000); }, -0x7FFFFFFF},
      {[] { return hsFracMul(0x60000000, -0x60000000); }, -0x7FFFFFFF},
      {[] { return hsMulDiv(0x10000, 0x10000, 1); }, 0x7FFFFFFF},
      {[] { return hsFracDiv(-2, 1); }, kMin},  // just fits
      {[] { return hsFracDiv(2, 1); }, 0x7FFFFFFF},
      {[] { return hsMagnitude(0x7FFFFFFF, 0x7FFFFFFF); }, 0x7FFFFFFF},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ReportOf(c.call), c.result == kMin ? "" : "Math overflow: 0");
    ReturnOnHalt halt;
    EXPECT_EQ(c.call(), c.result);
  }
}

TEST(Fixed, TheSilentFormsAgreeWithTheReportingOnes) {
  std::mt19937 random(1);
  ReturnOnHalt halt;
  for (int i = 0; i < 20000; ++i) {
    const int32_t a = int32_t(random()) >> (random() % 32), b = int32_t(random()) >> (random() % 32);
    ReturnOnHalt::Reports().clear();
    EXPECT_EQ(hsFixMulSat(a, b), hsFixMul(a, b));
    EXPECT_EQ(hsMagnitudeSat(a, b), hsMagnitude(a, b));
  }
}

// The root r of x as the definition has it: r^n <= x < (r + 1)^n.
TEST(Math, RootsAreExactAtTheirEdges) {
  std::mt19937_64 random(2);
  const auto check = [](uint64_t x) {
    using Big = unsigned __int128;
    const Big root = hsSqrt64(x), cube = hsCubeRoot63(x);
    EXPECT_TRUE(root * root <= x && (root + 1) * (root + 1) > x) << x;
    const uint64_t low = x & ~(uint64_t{1} << 63);
    EXPECT_TRUE(cube * cube * cube <= low && (cube + 1) * (cube + 1) * (cube + 1) > low) << x;
    const Big small = hsSqrt32(uint32_t(x));
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

TEST(Math, FractRoots) {
  EXPECT_EQ(hsFractSqrt(kFract1), kFract1);
  EXPECT_EQ(hsFractSqrt(kFract1 / 4), kFract1 / 2);
  EXPECT_EQ(hsFractSqrt(-1), 0x7FFFFFFF);  // just under 4.0 as bits
  EXPECT_EQ(hsFractCubeRoot(kFract1 / 8), kFract1 / 2);
  EXPECT_EQ(hsFractCubeRoot(-kFract1), -kFract1);
  EXPECT_EQ(hsFractCubeRoot(kMin), -1352829926);  // the cube root of 2, cut
}

}  // namespace
