// How well few colours represent many.
#include "kit/pictures/quantize.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "host/color.h"
#include "kit/pictures/dither.h"
#include "kit/pictures/enginecolors.h"

namespace {

constexpr int kSize = 128;

// Two soft ramps, a small bright patch in colours of its own, and noise: what photographs have.
std::vector<uint32_t> testPicture() {
  std::mt19937 random(7);
  Picture picture{kSize, kSize, {}};
  for (int y = 0; y < kSize; ++y) {
    for (int x = 0; x < kSize; ++x) {
      int r = x, g = y + x / 4, b = 200 - y;
      if (x > 100 && y > 100) r = 255 - y / 4, g = 30 + x / 2, b = 20;
      for (int* c : {&r, &g, &b}) *c = std::clamp(*c + int(random() % 9) - 4, 0, 255);
      picture.pixels.push_back(0xFF000000 | uint32_t(r) << 16 | uint32_t(g) << 8 | uint32_t(b));
    }
  }
  return toEngineColors(picture, {});
}

// Root of the mean squared distance.
double error(const std::vector<uint32_t>& pixels, const std::vector<uint32_t>& palette, bool dither = false) {
  const auto numbers = mapToPalette(pixels, kSize, NearestColor(palette), dither);
  double sum = 0;
  for (size_t i = 0; i < pixels.size(); ++i)
    sum += colorDistance(EngineColor(pixels[i]), EngineColor(palette[numbers[i]]));
  return std::sqrt(sum / double(pixels.size()));
}

// The usual poor choices: a fixed cube, and the colours that occur most.
std::vector<uint32_t> cube() {
  std::vector<uint32_t> palette;
  for (uint32_t r = 0; r < 6; ++r)
    for (uint32_t g = 0; g < 6; ++g)
      for (uint32_t b = 0; b < 6; ++b) palette.push_back(rgbToYCrCb(r * 51 << 24 | g * 51 << 16 | b * 51 << 8));
  return palette;
}

std::vector<uint32_t> popular(const std::vector<uint32_t>& pixels, size_t most) {
  auto colors = countColors(pixels);
  std::stable_sort(colors.begin(), colors.end(), [](const auto& a, const auto& b) { return a.count > b.count; });
  std::vector<uint32_t> palette;
  for (size_t i = 0; i < most; ++i) palette.push_back(colors[i].color);
  return palette;
}

TEST(Quantize, StaysWellBelowPoorPalettes) {
  const auto pixels = testPicture();
  const auto ours = [&](size_t most) { return error(pixels, choosePalette(countColors(pixels), {}, most)); };
  EXPECT_LT(ours(216), error(pixels, cube()) / 5);
  EXPECT_LT(ours(216), error(pixels, popular(pixels, 216)) / 2);
  EXPECT_LT(ours(16), error(pixels, popular(pixels, 16)) / 2);
  EXPECT_LT(ours(8), 15);  // boxes alone, their colours not moved to where the pixels are, leave 15.4
}

TEST(Quantize, FewColoursStayExactlyAndGivenOnesAreNotChosenAgain) {
  const std::vector<uint32_t> pixels = {0x40808000, kTransparentPixel, 0x10808000, 0x40808000, 0x50708000};
  EXPECT_EQ(choosePalette(countColors(pixels), {0x10808000}, 2), (std::vector<uint32_t>{0x40808000, 0x50708000}));
  EXPECT_EQ(choosePalette(countColors(pixels), {}, 3).size(), 3u);
  EXPECT_TRUE(choosePalette({}, {}, 5).empty());
  // Three pixels of 0x40 and 0x44 and one far off: two colours are the mean of the first and the last.
  EXPECT_EQ(choosePalette({{0x40808000, 2}, {0x44808000, 2}, {0xC0808000, 1}}, {}, 2),
            (std::vector<uint32_t>{0x42808000, 0xC0808000}));
}

// Palettes of all densities: with hundreds of colours around a point, ties among them, and with few far from it.
TEST(NearestColor, AgreesWithAWalkOverAllColours) {
  std::mt19937 random(5);
  for (const size_t size : {1, 3, 64, 200, 255})
    for (const uint32_t bits : {0x03030300u, 0x0F0F0F00u, 0x3F3F3F00u, 0xFFFFFF00u}) {
      std::vector<uint32_t> palette;
      for (size_t i = 0; i < size; ++i) palette.push_back(uint32_t(random()) & bits);
      const NearestColor nearest(palette);
      for (int i = 0; i < 1000; ++i) {
        const EngineColor color(uint32_t(random()) & (i % 2 ? bits : 0xFFFFFF00));
        size_t best = 0;
        for (size_t n = 1; n < size; ++n)
          if (colorDistance(EngineColor(palette[n]), color) < colorDistance(EngineColor(palette[best]), color))
            best = n;
        ASSERT_EQ(nearest.find(color), best) << size << ' ' << std::hex << bits << ' ' << i;
      }
    }
}

TEST(Dither, SharesWhatAPixelMissesBySixteenths) {
  const std::vector<uint32_t> palette = {0x40808000, 0x80808000};  // 96 is halfway and goes to the first, 97 doesn't
  const NearestColor nearest(palette);
  const std::tuple<size_t, int> shares[] = {{2, 7}, {3, 3}, {4, 5}, {5, 1}};  // to the right, and in the row below
  for (const auto& [place, share] : shares) {
    for (const auto& [luma, gain] : {std::pair(80, 16), std::pair(112, -16)}) {
      for (int over = 0; over < 2; ++over) {
        std::vector<uint32_t> pixels(6, kTransparentPixel);
        pixels[1] = uint32_t(luma) << 24 | 0x808000;
        pixels[place] = uint32_t(96 + over - share * gain / 16) << 24 | 0x808000;
        EXPECT_EQ(mapToPalette(pixels, 3, nearest, true)[place], uint32_t(over)) << place << ' ' << gain;
      }
    }
  }
}

TEST(Dither, KeepsTheMeanOfAnAreaAndLeavesHolesAlone) {
  // A flat colour, three quarters of the way from one entry to the other.
  const std::vector<uint32_t> palette = {0x40808000, 0x80808000};
  std::vector<uint32_t> pixels(64 * 64, 0x70808000);
  pixels[70] = kTransparentPixel;
  const auto numbers = mapToPalette(pixels, 64, NearestColor(palette), true);
  EXPECT_EQ(numbers[70], kNoEntry);
  for (size_t y = 0; y < 64; y += 8) {
    for (size_t x = 0; x < 64; x += 8) {
      int bright = 0;
      for (size_t n = 0; n < 64; ++n) bright += numbers[(y + n / 8) * 64 + x + n % 8] == 1;
      EXPECT_NEAR(bright, 48, 4) << x << "," << y;
    }
  }
}

}  // namespace
