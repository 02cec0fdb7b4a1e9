#include "host/videorows.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "host/color.h"

namespace {

using Convert = void (*)(const uint16_t*, uint32_t*, int);

class VideoRows : public testing::TestWithParam<Convert> {};
INSTANTIATE_TEST_SUITE_P(Both, VideoRows, testing::Values(convertVideoRow, convertVideoRowPlain));

TEST_P(VideoRows, GiveEveryPixelTheColourOfTheRule) {
  std::vector<uint16_t> pixels(65536);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint16_t(i);
  std::vector<uint32_t> colors(pixels.size());
  GetParam()(pixels.data(), colors.data(), int(pixels.size()));
  for (uint32_t p = 0; p < 65536; ++p) ASSERT_EQ(colors[p], yCrCbToRgb(widenPixel16(uint16_t(p)))) << p;
}

// Runs of all lengths, so that pixels are copied from their neighbours here and not there, and rows that end anywhere.
TEST_P(VideoRows, TakeRunsAndRowsOfAnyLengthAndWriteNoFurther) {
  std::mt19937 random(5);
  for (int count = 0; count < 200; ++count) {
    std::vector<uint16_t> pixels(size_t(count) + 3);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = i > 0 && random() % 40 ? pixels[i - 1] : uint16_t(random());
    std::vector<uint32_t> colors(pixels.size() + 1, 0xABCDEF01);
    GetParam()(pixels.data() + 3, colors.data(), count);
    for (size_t i = 0; i < size_t(count); ++i)
      ASSERT_EQ(colors[i], yCrCbToRgb(widenPixel16(pixels[i + 3]))) << count << " " << i;
    EXPECT_EQ(colors[size_t(count)], 0xABCDEF01u);
  }
}

TEST(IndexedRows, TakeColoursFromThePalette) {
  std::mt19937 random(6);
  std::array<uint32_t, 256> palette;
  for (uint32_t& color : palette) color = uint32_t(random());
  for (int count = 0; count < 100; ++count) {
    std::vector<uint8_t> pixels(static_cast<size_t>(count));
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = i > 0 && random() % 20 ? pixels[i - 1] : uint8_t(random());
    std::vector<uint32_t> colors(pixels.size() + 1, 7);
    convertIndexedRow(pixels.data(), colors.data(), count, palette.data());
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(colors[i], palette[pixels[i]]) << count << " " << i;
    EXPECT_EQ(colors.back(), 7u);
  }
}

}  // namespace
