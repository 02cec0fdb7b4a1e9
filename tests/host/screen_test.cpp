#include "host/screen.h"

#include <gtest/gtest.h>

#include <random>

#include "host/color.h"

namespace {

TEST(ScreenSurface, ConvertsTheRectangleAloneAtEachDepth) {
  ScreenSurface screen;
  screen.create(4, 3, 8);
  const uint32_t colors[] = {0xEB808000, 0x51F05B00};
  screen.setPalette(colors, 2);
  const std::vector<uint8_t> indexed(12, 1);
  screen.convert(indexed.data(), 1, 1, 2, 1);
  for (int i = 0; i < 12; ++i) EXPECT_EQ(screen.dibBits[size_t(i)], i == 5 || i == 6 ? yCrCbToRgb(colors[1]) : 0) << i;

  screen.create(4, 3, 16);
  std::vector<uint16_t> words(12);
  std::mt19937 random(7);
  for (auto& word : words) word = uint16_t(random());
  screen.convert(words.data(), 0, 0, 4, 3);
  for (size_t i = 0; i < 12; ++i) EXPECT_EQ(screen.dibBits[i], yCrCbToRgb(widenPixel16(words[i])));
}

TEST(ScreenSurface, OfThirtyTwoBitsOnlyTheFirstRowComesOut) {
  ScreenSurface screen;
  screen.create(2, 2, 32);
  const std::vector<uint32_t> white(4, 0xEB808000);
  screen.convert(white.data(), 0, 0, 2, 2);
  EXPECT_EQ(screen.dibBits, (std::vector<uint32_t>{0xFFFFFF, 0xFFFFFF, 0, 0}));
}

TEST(ScreenSurface, CutsWhatLiesOutside) {
  ScreenSurface screen;
  screen.create(2, 2, 8);
  const uint32_t white = 0xEB808000;
  screen.setPalette(&white, 1);
  const std::vector<uint8_t> zeros(4);
  screen.convert(zeros.data(), -5, -5, 6, 6);
  EXPECT_EQ(screen.dibBits, (std::vector<uint32_t>{0xFFFFFF, 0, 0, 0}));
  screen.convert(zeros.data(), 1, 1, 100, 100);
  EXPECT_EQ(screen.dibBits, (std::vector<uint32_t>{0xFFFFFF, 0, 0, 0xFFFFFF}));
  EXPECT_EQ(screen.take().size(), 4u);
  screen.convert(zeros.data(), 0, 0, 2, 2);  // after that all is outside
  EXPECT_TRUE(screen.dibBits.empty());
}

}  // namespace
