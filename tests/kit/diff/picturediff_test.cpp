#include "kit/diff/picturediff.h"

#include <gtest/gtest.h>

namespace {

Picture plain(uint32_t width, uint32_t height, uint32_t color) {
  return {width, height, std::vector<uint32_t>(size_t{width} * height, color)};
}

TEST(PictureDiff, CountsAndBoundsWhatDiffersBeyondTheTolerance) {
  const Picture a = plain(8, 6, 0x102030);
  Picture b = a;
  b.pixels[1 * 8 + 2] = 0x102034;
  b.pixels[4 * 8 + 5] = 0x002030;
  const PictureDiff all = comparePictures(a, b);
  EXPECT_EQ(all.pixels, 2u);
  EXPECT_EQ(all.bounds, (Bounds{2, 1, 4, 4}));
  EXPECT_EQ(all.most, 16);
  EXPECT_EQ(differenceText(all, a, b), "2 pixels differ, in 4x4 at 2,1, by 16 of 255 at most");
  EXPECT_EQ(comparePictures(a, b, {4, {}}).bounds, (Bounds{5, 4, 1, 1}));
  EXPECT_EQ(comparePictures(a, b, {16, {}}).pixels, 0u);
  EXPECT_EQ(comparePictures(a, b, {0, {{0, 0, 3, 2}}}).bounds, (Bounds{5, 4, 1, 1}));
}

TEST(PictureDiff, WhatOnlyOneHasDiffers) {
  const Picture wide = plain(8, 2, 7), high = plain(4, 5, 7);
  const PictureDiff diff = comparePictures(wide, high, {255, {}});
  EXPECT_FALSE(diff.sameSize);
  EXPECT_EQ(diff.pixels, 4u * 2 + 4 * 3);
  EXPECT_EQ(diff.bounds, (Bounds{0, 0, 8, 5}));
  const Picture shown = pictureOfDifference(wide, high);
  EXPECT_EQ(shown.width, 8u);
  EXPECT_EQ(shown.height, 5u);
  EXPECT_EQ(shown.pixels[0 * 8 + 7], shown.pixels[4 * 8 + 0]);
  EXPECT_NE(shown.pixels[0], shown.pixels[7]);
  EXPECT_EQ(shown.pixels[4 * 8 + 7], 0xFFFFFFu);  // neither has it
}

TEST(PictureDiff, ACropIsBlackOutsideOfThePicture) {
  Picture p = plain(3, 3, 1);
  p.pixels[8] = 2;
  EXPECT_EQ(cropPicture(p, {2, 1, 2, 2}).pixels, (std::vector<uint32_t>{1, 0xFF000000, 2, 0xFF000000}));
}

}  // namespace
