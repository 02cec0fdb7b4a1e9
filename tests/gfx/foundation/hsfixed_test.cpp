#include "gfx/foundation/hsfixed.h"

#include <gtest/gtest.h>

#include <random>

#include "gfx/foundation/hsmath.h"
#include "gfx/halt.h"

namespace {

constexpr int32_t kMin = -0x7FFFFFFF - 1;

TEST(Fixed, RoundsHalvesUpAndFloorsDown) {
  EXPECT_EQ(hsFixedRound(0x7FFF), 0);
  EXPECT_EQ(hsFixedRound(0x8000), 1);
  EXPECT_EQ(hsFixedRound(-0x8000), 0);
  EXPECT_EQ(hsFixedRound(-0x8001), -1);
  EXPECT_EQ(hsFixedFloor(-1), -1);
  EXPECT_EQ(hsFixedFloor(-0x10000), -1);
  EXPECT_EQ(hsFixedFloor(0xFFFF), 0);
  EXPECT_EQ(hsFixedCeil(-1), 0);
  EXPECT_EQ(hsFixedCeil(-0x10000), -1);
  EXPECT_EQ(hsFixedCeil(1), 1);
}

TEST(Fixed, RoundingWrapsAtTheEndsOfTheRange) {
  EXPECT_EQ(hsFixedRound(0x7FFFFFFF), -0x8000);
  EXPECT_EQ(hsFixedCeil(0x7FFFFFFF), -0x8000);
  EXPECT_EQ(hsFixedFloor(kMin), 0x8000);
  EXPECT_EQ(hsFixedFloor(-0x7FFF0000), -0x7FFF);
  EXPECT_EQ(hsFixedCeil(kMin), 0x8000);
  EXPECT_EQ(hsFixedAverage(0x7FFFFFFF, 1), -0x40000000);
  EXPECT_EQ(hsIntToFixed(0x12345), 0x23450000);
}

TEST(Fixed, UnitValuesBecomeSixteenBits) {
  EXPECT_EQ(hsScalarTo16Bit(-5), 0);
  EXPECT_EQ(hsScalarTo16Bit(0x7FFF), 0x7FFF);
  EXPECT_EQ(hsScalarTo16Bit(0x8000), 0x7FFF);
  EXPECT_EQ(hsScalarTo16Bit(0x10000), 0xFFFF);
  EXPECT_EQ(hsScalarTo16Bit(0x20000), 0xFFFF);
}

TEST(Fixed, ProductsRoundHalvesUp) {
  EXPECT_EQ(hsFixMul(1, 0x8000), 1);
  EXPECT_EQ(hsFixMul(-1, 0x8000), 0);
  EXPECT_EQ(hsFixMul(-1, 0x8001), -1);
  EXPECT_EQ(hsFracMul(1, 0x20000000), 1);
  EXPECT_EQ(hsFracMul(-1, 0x20000000), 0);
  for (int32_t x : {0, 1, -1, 123456789, 0x7FFFFFFF, kMin}) {
    EXPECT_EQ(hsFixMul(kFixed1, x), x);
    EXPECT_EQ(hsFracMul(x, kFract1), x);
  }
}

TEST(Fixed, QuotientsRoundHalvesAwayFromZero) {
  EXPECT_EQ(hsFixDiv(1, 3), 21845);
  EXPECT_EQ(hsFixDiv(2, 3), 43691);
  EXPECT_EQ(hsFixDiv(1, 0x20000), 1);
  EXPECT_EQ(hsFixDiv(-1, 0x20000), -1);
  EXPECT_EQ(hsMulDiv(-7, 1, 2), -4);
  EXPECT_EQ(hsMulDiv(7, 1, 2), 4);
  EXPECT_EQ(hsMulDiv(kMin, kMin, kMin), kMin);
  EXPECT_EQ(hsFracDiv(1, 3), 357913941);
  EXPECT_EQ(hsFracDiv(-1, 2), -0x20000000);
}

TEST(Fixed, HsFixDivSaturatesInSilence) {
  ThrowOnHalt halt;
  EXPECT_EQ(hsFixDiv(kFixed1, 0), 0x7FFFFFFF);
  EXPECT_EQ(hsFixDiv(0, 0), 0x7FFFFFFF);
  EXPECT_EQ(hsFixDiv(-1, 0), -0x7FFFFFFF);
  EXPECT_EQ(hsFixDiv(0x10000000, -1), -0x7FFFFFFF);
  // The high words are compared as signed ones, so that the largest magnitude is no divisor at all...
  EXPECT_EQ(hsFixDiv(1, kMin), -0x7FFFFFFF);
  EXPECT_EQ(hsFixDiv(-1, kMin), 0x7FFFFFFF);
  // ...and a quotient of 32 bits passes: 0x7FFF0000.0000 / 0x9000 is 0xE38C71C7.1C...
  EXPECT_EQ(hsFixDiv(0x7FFF0000, 0x9000), int32_t(0xE38C71C7));
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
    EXPECT_EQ(hsFracMulSat(a, b), hsFracMul(a, b));
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
