// Styles of a page, down to pixels, with the font of blocks.
#include <array>
#include <cstring>

#include "blockspage.h"
#include "engine/screen/display.h"
#include "engine/text/textmeasure.h"
#include "engine/text/textstyle.h"
#include "host/color.h"

namespace {

class TextStyleTest : public BlocksTest {
 protected:
  TextStyleTest() { WriteFile("broken.ttf", {'n', 'o', ' ', 'f', 'o', 'n', 't'}); }
  bool loadStyles(const std::string& styles) {
    return load("flags: 16bit\npage: {width: 720, height: 480, type: group, bgColor: 0x10808000, textStyles: [" +
                styles + "]}");
  }
  static TextStyle style(const char* name) {
    const TextStyle* found = styleFind(topFrame(), name);
    return found ? *found : TextStyle{};
  }
  static int32_t width(const TextStyle& style, const std::string& text) {
    int32_t width, height;
    textMeasure(style, text.data(), uint32_t(text.size()), &width, &height, nullptr);
    return width;
  }
  static void draw(const TextStyle& style, const std::string& text, int x, int top) {
    textDrawAt(style, text.data(), uint32_t(text.size()), x, top);
  }
};

TEST_F(TextStyleTest, AttributesAreReadInOrder) {
  ASSERT_TRUE(loadStyles(
      "{}, {name: one, font: blocks.ttf, size: 10, tracking: 16, letterExtra: 16, encoding: utf16, underline: true},"
      "{name: two, font: BLOCKS.ttf, letterExtra: 16, tracking: 16, encoding: ascii, antialias: true, gridfit: false},"
      "{name: two, size: 7, encoding: !string latin}, {name: none, font: nowhere.ttf}"));
  EXPECT_EQ(style("default").size, 24);
  EXPECT_EQ(style("default").encoding, 1);
  EXPECT_EQ(style("one").letterExtra, 16);
  EXPECT_EQ(style("one").spaceExtra, 0x10000);
  EXPECT_EQ(style("one").encoding, 2);
  EXPECT_EQ(style("one").styleFlags, uint32_t{kTextStyleUnderline});
  EXPECT_EQ(style("two").letterExtra, 0x10000);
  EXPECT_EQ(style("two").encoding, 0);
  EXPECT_EQ(style("two").styleFlags, uint32_t{kTextStyleAntialias});
  EXPECT_EQ(style("two").size, 24);  // the first of that name
  EXPECT_NE(style("one").font, nullptr);
  EXPECT_EQ(style("one").font, style("two").font);
  EXPECT_EQ(style("none").font, nullptr);
  EXPECT_NE(desktop.log.find("Error loading font 'nowhere.ttf'"), std::string::npos);
}

TEST_F(TextStyleTest, MeasuresAndDrawsToTheScreen) {
  ASSERT_TRUE(
      loadStyles("{name: body, font: blocks.ttf, size: 10, color: 0xEB808000},"
                 "{name: wide, font: blocks.ttf, size: 10, horScale: 131072, color: 0xEB808000},"
                 "{name: boxed, font: blocks.ttf, size: 10, bgColor: 0x60808000}"));
  int32_t width, height, ascent, descent;
  textMeasure(style("body"), "a a", 3, &width, &height, &ascent);
  EXPECT_EQ(std::vector({width, height, ascent}), std::vector({15, 10, 8}));
  textMetrics(style("body"), &ascent, &descent);
  EXPECT_EQ(std::vector({ascent, descent}), std::vector({8, 2}));

  draw(style("body"), "a", 100, 50);  // the baseline at 58
  EXPECT_EQ(inked(), (std::array{101, 52, 105, 59}));

  // A scale of 1.0 keeps the one before it.
  draw(style("wide"), "a", 100, 50);
  EXPECT_EQ(inked(), (std::array{101, 52, 110, 59}));
  draw(style("body"), "a", 120, 50);
  EXPECT_EQ(inked(), (std::array{101, 52, 130, 59}));

  draw(style("boxed"), " ", 200, 100);
  EXPECT_EQ(inked(), (std::array{101, 52, 206, 110}));
}

TEST_F(TextStyleTest, TextIsCutToWhatDecodes) {
  ASSERT_TRUE(
      loadStyles("{name: utf8, font: blocks.ttf, size: 10}, {name: bytes, font: blocks.ttf, size: 10, "
                 "encoding: ascii}, {name: utf16, font: blocks.ttf, size: 10, encoding: utf16}"));
  for (const char* bad : {"\xC3", "\x80", "\xF0\x9F\x98\x80", "\xE2\x82", "\xC3\x28"}) {
    EXPECT_EQ(width(style("utf8"), std::string("a") + bad + "a"), 6);
    draw(style("utf8"), std::string("a") + bad, 10, 10);
    draw(style("bytes"), std::string("a") + bad, 10, 10);  // still with the strike of the style before
    textWarm(style("utf8"), bad, uint32_t(std::strlen(bad)));
  }
  EXPECT_EQ(width(style("utf8"), "\xC3\xA9"), 2);
  EXPECT_EQ(width(style("bytes"), "\xE9\xA9"), 2 + 6);
  EXPECT_EQ(width(style("utf16"), std::string("a\0\xFF\xFF\xE9", 5)), 12);
}

TEST_F(TextStyleTest, WhatHasNoFontAndWhatLiesOffTheScreenDrawsNothing) {
  ASSERT_TRUE(
      loadStyles("{name: broken, font: broken.ttf}, {name: again, font: Broken.ttf}, {name: none},"
                 "{name: body, font: blocks.ttf, size: 10}, {name: huge, font: blocks.ttf, size: 30000},"
                 "{name: over, font: blocks.ttf, size: 65535, horScale: 2147483647, letterExtra: 2147483647}"));
  for (const char* name : {"broken", "again", "none"}) EXPECT_EQ(width(style(name), "abc"), 0) << name;
  for (const char* name : {"broken", "again", "none", "huge", "over"}) {
    draw(style(name), "abc", 10, 10);
    textWarm(style(name), "abc", 3);
  }
  draw(style("body"), "a", 8001, 10);
  draw(style("body"), "a", -70000, 10);
  EXPECT_EQ(inked(), kNothing);
  EXPECT_EQ(desktop.log.find("Error loading font"), std::string::npos) << "the file is there";
}

}  // namespace
