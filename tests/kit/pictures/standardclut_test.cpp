#include "kit/pictures/standardclut.h"

#include <gtest/gtest.h>

#include <set>

#include "host/color.h"
#include "kit/pictures/clutfile.h"

namespace {

TEST(ClutFile, HoldsWholeColoursUpTo240) {
  EXPECT_EQ(parseClut(std::vector<uint8_t>(1 + 4 * 2 + 3, 9)).size(), 2u);
  EXPECT_EQ(parseClut(std::vector<uint8_t>(1 + 4 * 240, 9)).size(), 240u);
  EXPECT_EQ(parseClut(std::vector<uint8_t>(1 + 4 * 241, 9)).size(), 240u);
}

TEST(StandardClut, HasTheFixedThreeACubeAndGreys) {
  const auto colors = standardClut();
  EXPECT_EQ(yCrCbToRgb(colors[235]), 0x000000u);
  EXPECT_EQ(yCrCbToRgb(colors[236]), 0xFFFFFFu);
  EXPECT_EQ(colors[237], 0u);
  EXPECT_EQ(colors[0], colors[235]);
  EXPECT_EQ(colors[215], colors[236]);
  EXPECT_EQ(colors[180], rgbToYCrCb(0xFF000000));  // five steps of red, none of the others

  std::set<uint32_t> greys;
  for (int i : {216, 225, 234, 238, 239}) {
    EXPECT_EQ(colors[size_t(i)] & 0x00FFFF00, 0x00808000u) << i;
    greys.insert(colors[size_t(i)]);
  }
  EXPECT_EQ(greys.size(), 5u);
}

}  // namespace
