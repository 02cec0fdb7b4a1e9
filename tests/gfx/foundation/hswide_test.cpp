#include "gfx/foundation/hswide.h"

#include <gtest/gtest.h>

#include <random>

#include "gfx/halt.h"

namespace {

hsWide W(int64_t value) { return hsWide::Of(value); }
constexpr int64_t kMax64 = 0x7FFFFFFFFFFFFFFF, kMin64 = -kMax64 - 1;

#ifdef __SIZEOF_INT128__  // which 32-bit machines don't have
using Big = __int128;

TEST(Wide, QuotientsAgreeWithLongArithmetic) {
  std::mt19937_64 random(3);
  for (int i = 0; i < 20000; ++i) {
    const int64_t a = int64_t(random()) >> (random() % 64);
    const int32_t b = int32_t(random()) >> (random() % 32);
    if (b == 0) continue;
    const Big half = (b < 0 ? -Big{b} : Big{b}) / 2,
              magnitude = ((a < 0 ? -Big{a} : Big{a}) + half) / (b < 0 ? -Big{b} : Big{b});
    EXPECT_EQ(W(a).Div(b).Value(), int64_t((a < 0) != (b < 0) ? -magnitude : magnitude)) << a << " / " << b;
    const Big product = Big{a} * b;
    const hsWide limit = product < 0 ? kNegInfinity64 : kPosInfinity64;
    const bool fits = product <= kMax64 && product >= -Big{kMax64};
    EXPECT_EQ(W(a).Mul(b), fits ? W(int64_t(product)) : limit) << a << " * " << b;
  }
}
#endif

TEST(Wide, SumsShiftsAndRoots) {
  const std::pair<hsWide, int64_t> cases[] = {
      {W(kMax64).Add(1), kMin64},      {W(kMin64).Sub(W(1)), kMax64},
      {W(kMin64).Negate(), kMin64},    {W(-1).ShiftLeft(63), kMin64},
      {W(3).ShiftLeft(64), 0},         {W(-5).ShiftRight(1), -3},
      {W(kMin64).ShiftRight(90), -1},  {W(-3).RoundRight(1), -1},
      {W(3).RoundRight(1), 2},         {W(7).RoundRight(0), 7},
      {W(W(1 << 20).Sqrt()), 1 << 10}, {W(W(kMax64).Sqrt()), 0x7FFFFFFF},
      {W(W(-1).Sqrt()), 0x7FFFFFFF},  // the bits count as unsigned
      {W(W(-27).CubeRoot()), -3},      {W(W(kMax64).CubeRoot()), 2097151},
      {W(W(kMin64).CubeRoot()), 0},  // its only bit is the sign's
  };
  for (const auto& [result, expected] : cases) EXPECT_EQ(result, W(expected)) << expected;
}

TEST(Wide, GoesBackTo32BitsWithAReportOnlyWhenItMust) {
  EXPECT_FALSE(W(-0x80000000LL).IsWide());
  EXPECT_TRUE(W(0x80000000LL).IsWide());
  EXPECT_TRUE(W(-0x80000001LL).IsWide());
  EXPECT_EQ(W(-0x80000000LL).AsLong(), -0x7FFFFFFF - 1);
  EXPECT_EQ(W(-0x8000).AsFixed(), 0);
  EXPECT_EQ(W(int64_t{3} << 29).AsFract(), 2);
  for (int64_t value : {0x80000000LL, -0x80000001LL}) {
    EXPECT_EQ(ReportOf([&] { W(value).AsLong(); }), "Math overflow: 0");
    ReturnOnHalt halt;
    EXPECT_EQ(W(value).AsLong(), value < 0 ? -0x7FFFFFFF : 0x7FFFFFFF);
  }
}

TEST(Wide, DivisionByZeroReportsBySign) {
  EXPECT_EQ(ReportOf([] { W(0).Div(0); }), "Math overflow: 0");
  EXPECT_EQ(ReportOf([] { W(-1).Div(0); }), "Math underflow: 0");
  ReturnOnHalt halt;
  EXPECT_EQ(W(1).Div(0), kPosInfinity64);
  EXPECT_EQ(W(-1).Div(0), kNegInfinity64);
}

TEST(Wide, AWideDivisorIsRoundedTo32Bits) {
  // 0x1_0000_0003 needs two shifts to fit: (12 << 32 rounded by 2) / round(0x40000000.C) = 3 << 32 / 0x40000001.
  EXPECT_EQ(W(int64_t{12} << 32).Div(W(0x100000003)), W(12));
  hsWide same = W(int64_t{5} << 40);
  EXPECT_EQ(same.Div(same), W(1));
  // 0x3FFFFFFF_C0000000 needs 31 shifts and then rounds up to 0x80000000, which is wide again.
  EXPECT_EQ(ReportOf([] { W(1).Div(W(0x3FFFFFFFC0000000)); }), "Math overflow: 0");
}

TEST(Wide, ScaledQuotients) {
  EXPECT_EQ(W(1).FixDiv(W(3)), 21845);
  EXPECT_EQ(W(-1).FracDiv(W(2)), -0x20000000);
  EXPECT_EQ(W(int64_t{1} << 32).FracDiv(W(int64_t{1} << 33)), 0x20000000);  // one spare bit short of 30
  EXPECT_EQ(W(int64_t{3} << 60).FixDiv(W(int64_t{3} << 61)), 0x8000);
  EXPECT_EQ(W(int64_t{-3} << 60).FracDiv(W(int64_t{3} << 60)), -kFract1);
}

}  // namespace
