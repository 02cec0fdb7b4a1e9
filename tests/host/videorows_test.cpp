#include "host/videorows.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "host/color.h"

namespace {

using Convert = void (*)(const uint16_t*, uint32_t*, int, int, int);

class VideoRows : public testing::TestWithParam<Convert> {};
INSTANTIATE_TEST_SUITE_P(Both, VideoRows, testing::Values(convertVideoRows, convertVideoRowsPlain));

TEST_P(VideoRows, GiveEveryPixelTheColourOfTheRule) {
  std::vector<uint16_t> pixels(65536);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint16_t(i);
  std::vector<uint32_t> colors(pixels.size());
  GetParam()(pixels.data(), colors.data(), 65536, 65536, 1);
  for (uint32_t p = 0; p < 65536; ++p) ASSERT_EQ(colors[p], yCrCbToRgb(widenPixel16(uint16_t(p)))) << p;
}

// Greys may be converted by themselves, wherever a colour stands among them.
TEST_P(VideoRows, GiveGreysTheColourOfTheRule) {
  constexpr int kWidth = 300;
  for (int coloured = -1; coloured < kWidth; ++coloured) {
    std::vector<uint16_t> pixels(kWidth);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint16_t((i * 7 % 64) << 10 | 0x210);
    if (coloured >= 0) pixels[size_t(coloured)] ^= uint16_t(1 << coloured % 10);
    std::vector<uint32_t> colors(pixels.size());
    GetParam()(pixels.data(), colors.data(), kWidth, kWidth, 1);
    for (size_t i = 0; i < pixels.size(); ++i) ASSERT_EQ(colors[i], yCrCbToRgb(widenPixel16(pixels[i]))) << coloured;
  }
}

// Runs of all lengths, so that pixels are copied from their neighbours here and not there, and rows that end anywhere.
TEST_P(VideoRows, TakeRunsAndRowsOfAnyLengthAndWriteNoFurther) {
  constexpr int kStride = 260, kRows = 3;
  std::mt19937 random(5);
  for (int width = 0; width < 250; ++width) {
    std::vector<uint16_t> pixels(kStride * kRows);
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = i > 0 && random() % 90 ? pixels[i - 1] : uint16_t(random());
    std::vector<uint32_t> colors(pixels.size(), 0xABCDEF01);
    GetParam()(pixels.data() + 3, colors.data() + 3, kStride, width, kRows - 1);
    for (int i = 0; i < kStride * kRows; ++i) {
      const bool isInside = i % kStride >= 3 && i % kStride < 3 + width && i / kStride < kRows - 1;
      ASSERT_EQ(colors[size_t(i)], isInside ? yCrCbToRgb(widenPixel16(pixels[size_t(i)])) : 0xABCDEF01u)
          << width << " " << i;
    }
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
