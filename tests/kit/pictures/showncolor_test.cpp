// Colours of 16-bit pages: hues, and how to keep one.
#include <gtest/gtest.h>

#include <cmath>

#include "kit/pictures/showncolor.h"

namespace {

double away(double a, double b) { return std::min(std::fabs(a - b), 360 - std::fabs(a - b)); }

TEST(ShownColor, HuesGoAroundTheCircle) {
  EXPECT_EQ(hueOf(0xFF0000), 0);
  EXPECT_EQ(hueOf(0x808000), 60);
  EXPECT_EQ(hueOf(0x00FF00), 120);
  EXPECT_EQ(hueOf(0x0000FF), 240);
  EXPECT_EQ(hueOf(0xFF00FF), 300);
  EXPECT_EQ(hueOf(0x7F7F7F), -1);
}

TEST(ShownColor, TheAdviceKeepsTheHueOrComesNearer) {
  int better = 0;
  for (uint32_t i = 1; i < 200; ++i) {
    const uint32_t rgb = i * 0x9E3779B1u >> 8, shown = shownColor(rgb), advised = shownColor(colorOfSameHue(rgb));
    if (hueOf(rgb) < 0 || hueOf(shown) < 0) continue;
    const double before = away(hueOf(shown), hueOf(rgb)), after = away(hueOf(advised), hueOf(rgb));
    EXPECT_LE(after, std::max(before, 6.0)) << std::hex << rgb;
    better += after < before;
  }
  EXPECT_GT(better, 50);
  EXPECT_EQ(colorOfSameHue(0x808080), 0x808080u);  // it shows as a grey already, and nothing shows nearer
}

}  // namespace
