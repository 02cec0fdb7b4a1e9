#include "host/color.h"

#include <gtest/gtest.h>

namespace {

TEST(Color, VideoToDesktopClampsEachStep) {
  struct Case {
    uint32_t video, rgb;
  };
  // Worked out by hand from y = (Y - 16) / 219, cr, cb = (C - 128) / 224.
  for (const Case& c : {
           Case{0x10808000, 0x000000},  // black
           Case{0xEB808000, 0xFFFFFF},  // white
           Case{0x00000000, 0x008700},  // transparent: y 0, cr and cb -0.5: green (0.714 + 0.344) / 2 = 0.529
           Case{0xFFFFFF00, 0xFF78FF},  // y 1, cr and cb 0.5: green 1 - 0.529
           Case{0x10F08000, 0xB30000},  // cr 0.5: red 0.7
           Case{0x1080F000, 0x0000E2},  // cb 0.5: blue 0.886
       })
    EXPECT_EQ(yCrCbToRgb(c.video), c.rgb) << std::hex << c.video;
}

TEST(Color, DesktopToVideoRoundsChromaTowardZero) {
  EXPECT_EQ(rgbToYCrCb(0x00000000), 0x10808000u);
  EXPECT_EQ(rgbToYCrCb(0xFFFFFF00), 0xEB808000u);
  // Red: y 0.299 * 219 = 65.48, cr 0.5 * 224 = 112, cb -0.169 * 224 + 0.5 = -37.36, which truncates up to -37.
  EXPECT_EQ(rgbToYCrCb(0xFF000000), 0x51F05B00u);
  // Blue: y 0.114 * 219 = 24.97, cr -0.081 * 224 + 0.5 = -17.64, cb 112.
  EXPECT_EQ(rgbToYCrCb(0x0000FF00), 0x296FF000u);
}

TEST(Color, WideningKeepsLowBitsZero) {
  EXPECT_EQ(widenPixel16(0xFFFF), 0xFCF8F800u);
  EXPECT_EQ(widenPixel16(1 << 10 | 1 << 5 | 1), 0x04080800u);
}

}  // namespace
