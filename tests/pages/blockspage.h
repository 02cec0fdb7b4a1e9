// Pages whose text is set in a font of blocks, so that every pixel of it can be worked out by hand.
#pragma once

#include <algorithm>
#include <array>
#include <string>

#include "host/color.h"
#include "support/blockfont.h"
#include "support/pagefixture.h"

class BlocksTest : public PageTest {
 protected:
  using Box = std::array<int, 4>;  // left, top, right, bottom
  static constexpr Box kNothing = {720, 480, 0, 0};

  BlocksTest() { WriteFile("blocks.ttf", BlockFontFile()); }

  // A dark page with the styles `plain` (white), `bright` (grey), both of size 10, and `big` (white, size 20).
  bool loadTexts(const std::string& children, const std::string& root = "start: w") {
    return load("flags: 16bit\npage: {width: 720, height: 480, type: group, bgColor: 0x10808000, " + root +
                ", textStyles: [{name: plain, font: blocks.ttf, size: 10, color: 0xEB808000},"
                "{name: bright, font: blocks.ttf, size: 10, color: 0x80808000},"
                "{name: big, font: blocks.ttf, size: 20, color: 0xEB808000}], children: [" +
                children + "]}");
  }

  // What differs from the page's ground, or from nothing but one colour.
  Box inked() const {
    return boxOf([ground = pixel(719, 479)](uint32_t p) { return p != ground; });
  }
  Box inkedIn(uint32_t color) const {
    return boxOf([color](uint32_t p) { return p == color; });
  }

  // Of the styles, as the screen keeps them: two bits less of luma.
  const uint32_t kPlain = yCrCbToRgb(0xE8808000), kBright = yCrCbToRgb(0x80808000);

 private:
  template <class F>
  Box boxOf(F counts) const {
    Box box = kNothing;
    for (int y = 0; y < 480; ++y)
      for (int x = 0; x < 720; ++x)
        if (counts(pixel(x, y)))
          box = {std::min(box[0], x), std::min(box[1], y), std::max(box[2], x + 1), std::max(box[3], y + 1)};
    return box;
  }
};
