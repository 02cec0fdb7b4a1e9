#include "checkfixture.h"

namespace {

TEST_F(CheckTest, BarsThatComeOutTheOtherWay) {
  EXPECT_EQ(checkChildren("    - {name: a, type: slider, width: 256, height: 20}\n"
                          "    - {type: slider, width: 20, height: 256}\n"
                          "    - {type: slider, width: 300, height: 20}\n"
                          "    - {type: slider, width: 20, height: 200}\n",
                          "a", {"bar-color"}),
            (Found{"7 slider-direction", "8 slider-direction"}));
}

TEST_F(CheckTest, WhatTheFocusMakesDisappear) {
  const auto page = [](const std::string& widget, int size) {
    return "page:\n  type: group\n  textStyles: [{name: s}, {name: t, size: " + std::to_string(size) +
           "}]\n  children:\n    - {textStyle: s, " + widget + "}\n";
  };
  EXPECT_EQ(check(page("type: number, navigate: both", 20), {"no-font"}), Found{"5 vanishes"});
  EXPECT_EQ(check(page("type: number", 20), {"no-font"}), Found{});
  EXPECT_EQ(check(page("type: select, navigate: both, highlightTextStyle: t", 20), {"no-font"}), Found{});
  EXPECT_EQ(check(page("type: select, showAll: true, highlightTextStyle: t", 20), {"no-font"}), Found{"5 two-sizes"});
  EXPECT_EQ(check(page("type: select, showAll: true, highlightTextStyle: t", 24), {"no-font"}), Found{});
}

TEST_F(CheckTest, WidgetsOutsideTheScreen) {
  EXPECT_EQ(checkChildren("    - {name: a, x: 718, y: 478, width: 2, height: 2}\n"
                          "    - {x: 720, width: 2, height: 2}\n"
                          "    - {y: 480, width: 2, height: 2}\n"
                          "    - {x: 719, width: 2, height: 2}\n"
                          "    - {y: 479, width: 2, height: 2}\n"
                          "    - {type: group, x: 719, width: 2, height: 2}\n"),
            (Found{"8 outside-screen", "9 outside-screen", "10 outside-screen", "11 outside-screen"}));
}

TEST_F(CheckTest, BarsThatDontShowTheirRange) {
  const char* const bar = "    - {name: a, type: slider, width: 300, height: 20, ";
  EXPECT_EQ(checkChildren(std::string(bar) + "fgColor: 0x10, bgColor: 0x20, max: 1}\n" + bar +
                              "fgColor: 0x10, bgColor: 0x20, min: 0, max: 1}\n" + bar + "fgColor: 0x10}\n",
                          "", {"name-twice"}),
            (Found{"7 empty-bar", "9 bar-color"}));
}

TEST_F(CheckTest, WhatPicturesAndValuesHide) {
  EXPECT_EQ(checkChildren("    - {name: a, hidden: content, background: b.kpx}\n"
                          "    - {hidden: both, background: b.kpx}\n"
                          "    - {hidden: content, bgColor: 1}\n",
                          "", {"missing-file"}),
            Found{"7 shown-anyway"});
  EXPECT_EQ(checkChildren("    - {type: image, src: b.kpx, master: a}\n"
                          "    - {name: a, type: image, src: b.kpx, highlightSrc: b.kpx, onClick: x = 1;}\n"
                          "    - {type: image, src: b.kpx}\n",
                          "", {"missing-file", "late-master"}),
            Found{"7 vanishes"});
  EXPECT_EQ(checkChildren("    - {type: text, maxLength: 4, echoChar: '*', value: '1'}\n"
                          "    - {type: text, maxLength: 4, echoChar: '*'}\n"
                          "    - {type: text, maxLength: 4, value: '1'}\n",
                          ""),
            Found{"7 echoed-value"});
}

TEST_F(CheckTest, ListsAndRowsThatDontFollowTheSelection) {
  const std::vector<std::string> others{"no-font", "missing-file"};
  EXPECT_EQ(checkChildren("    - {type: textContainer, selectedLine: 1}\n"
                          "    - {type: textContainer, selectedLine: 0}\n"
                          "    - {type: textContainer, selectedLine: 1, selectTextStyle: s}\n"
                          "  textStyles: [{name: s}]\n",
                          "", others),
            Found{"7 stuck-selection"});
  const auto row = [&](const std::string& style, const std::string& more) {
    return checkChildren("    - {type: select, showAll: true, textStyle: s, highlightTextStyle: " + style + more +
                             "}\n  textStyles: [{name: s}, {name: soft, antialias: true}]\n",
                         "", others);
  };
  EXPECT_EQ(row("s", ""), Found{});
  EXPECT_EQ(row("soft", ""), Found{"7 row-not-erased"});
  EXPECT_EQ(row("s", ", bgColor: 1"), Found{"7 row-not-erased"});
  EXPECT_EQ(row("soft", ", bgColor: 1, vertical: true"), Found{});
}

TEST_F(CheckTest, FramesThatStayWhenTheFocusGoes) {
  const auto page = [](int y, int neighbour) {
    return "    - {x: 0, y: 40, width: 720, height: 100, type: group, bgColor: 0x30808000, children: [\n"
           "        {name: a, x: 40, y: " +
           std::to_string(y) + ", width: 80, height: 20, highlightFrame: true, frameColor: 0xEB808000, right: c},\n" +
           "        {name: b, x: " + std::to_string(neighbour) +
           ", y: 50, width: 80, height: 20, bgColor: 0x60808000},\n"
           "        {name: c, x: 400, width: 80, height: 20, left: a}]}\n";
  };
  EXPECT_EQ(checkChildren(page(4, 124)), Found{});
  EXPECT_EQ(checkChildren(page(3, 124)), Found{"8 frame-trace"});
  EXPECT_EQ(checkChildren(page(50, 124)), Found{});
  EXPECT_EQ(checkChildren(page(50, 123)), Found{"8 frame-trace"});
  // And so it is.
  const auto loaded = [&](int y, int neighbour) {
    return load("flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  start: a\n  bgColor: 0x10808000\n" +
                std::string("  children:\n") + page(y, neighbour));
  };
  ASSERT_TRUE(loaded(3, 124));
  const uint32_t frame = pixel(60, 39), around = pixel(10, 39), edge = pixel(124, 100);
  key("Right");
  EXPECT_EQ(pixel(60, 39), frame);
  EXPECT_NE(frame, around);
  ASSERT_TRUE(loaded(50, 123));
  key("Right");
  EXPECT_NE(pixel(123, 100), edge);
}

TEST_F(CheckTest, StylesThatTakeAfterOthers) {
  const auto styles = [&](const std::string& list) { return check("page:\n  textStyles:\n" + list, {"missing-file"}); };
  EXPECT_EQ(styles("    - {name: a}\n    - {name: b, font: f.ttf}\n"), Found{"3 no-font"});
  EXPECT_EQ(styles("    - {name: a, font: f.ttf}\n    - {name: b, font: f.ttf, size: 9, horScale: 65535}\n"
                   "    - {name: c, font: f.ttf, size: 8, horScale: 65536}\n"),
            (Found{"3 inherited-scale", "5 inherited-scale"}));
  EXPECT_EQ(styles("    - {name: a, font: f.ttf}\n    - {name: b, font: f.ttf, size: 24, color: 9, encoding: ascii}\n"
                   "    - {name: c, font: f.ttf, size: 25, encoding: ascii}\n"),
            Found{"4 same-strike"});
}

}  // namespace
