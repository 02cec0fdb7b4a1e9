#include "checkfixture.h"
#include "support/blockfont.h"

namespace {

// Texts in a font that has the space, 3 pixels wide at size 10, a (6), b (10) and an accented e.
class CheckedTextsTest : public CheckTest {
 protected:
  CheckedTextsTest() { WriteFile("blocks.ttf", BlockFontFile()); }

  // On a black page. The first of the widgets is in line 14.
  Found checkTexts(const std::string& widgets, const std::vector<std::string>& allowed = {}) {
    return check(
        "page:\n  type: group\n  width: 720\n  height: 480\n  bgColor: black\n  textStyles:\n"
        "    - {name: s, font: blocks.ttf, size: 10, color: white}\n"
        "    - {name: big, font: blocks.ttf, size: 20, color: white}\n"
        "    - {name: ascii, font: blocks.ttf, size: 11, color: white, encoding: ascii}\n"
        "    - {name: soft, font: blocks.ttf, size: 10, color: white, antialias: true}\n"
        "    - {name: softer, font: blocks.ttf, size: 10, color: '#808080', antialias: true}\n"
        "    - {name: grey, font: blocks.ttf, size: 10, color: '#808080'}\n"
        "  children:\n" +
            widgets,
        allowed);
  }

  // With that width and height.
  static std::string text(const std::string& size, const std::string& value, const std::string& more = "") {
    return "    - {type: text, x: 72, y: 48, " + size + ", textStyle: s, value: '" + value + "'" + more + "}\n";
  }
};

TEST_F(CheckedTextsTest, TextsThatRunOutOfTheirWidgets) {
  EXPECT_EQ(checkTexts(text("width: 22", "bab") + text("width: 26", "bab") + text("height: 9", "bab")),
            Found{"14 text-overflow"});
  EXPECT_EQ(checkTexts(text("width: 26", "bab", ", highlightTextStyle: big")), Found{"14 text-overflow"});
  const std::string lines = ", multiline: true";
  EXPECT_EQ(
      checkTexts(text("width: 27, height: 19", "aa aa aa", lines) + text("width: 27, height: 20", "aa aa aa", lines)),
      Found{"14 text-overflow"});
  EXPECT_EQ(checkTexts("    - {type: number, x: 72, y: 48, width: 17, textStyle: s, min: 1, max: 100}\n"
                       "    - {type: number, x: 72, y: 48, width: 18, textStyle: s, min: 1, max: 100}\n",
                       {"missing-glyph"}),
            Found{"14 text-overflow"});
}

TEST_F(CheckedTextsTest, ChoicesAndLinesThatRunOut) {
  const std::string select =
      "    - {type: select, x: 72, y: 48, textStyle: s, highlightTextStyle: s, choices: '|ab|a', ";
  EXPECT_EQ(checkTexts(select + "width: 15}\n" + select + "width: 16}\n" + select + "width: 33, showAll: true}\n" +
                       select + "width: 34, showAll: true}\n" + select + "width: 16, showAll: true, vertical: true}\n"),
            (Found{"14 text-overflow", "16 text-overflow"}));
  EXPECT_EQ(checkTexts("    - type: textContainer\n      x: 72\n      y: 48\n      width: 26\n      height: 60\n"
                       "      children:\n"
                       "        - {x: 10, y: 20, style: s, content: ab}\n"
                       "        - {x: 11, y: 40, style: s, content: ab}\n"),
            Found{"21 text-overflow"});
}

TEST_F(CheckedTextsTest, TextsThatScriptsSetAsThePageOpens) {
  const std::string widget = "    - {type: text, name: t, x: 72, y: 48, width: 20, textStyle: s, value: a}\n";
  EXPECT_EQ(checkTexts(widget), Found{});
  EXPECT_EQ(checkTexts(widget + "  onLoad: widgets.t.value = \"bbb\";\n"), Found{"14 text-overflow"});
}

TEST_F(CheckedTextsTest, WrappedTextsThatAreNotShownAsTheyAre) {
  const std::string lines = ", multiline: true";
  std::string words;
  for (int i = 0; i < 100; ++i) words += "a ";
  EXPECT_EQ(checkTexts(text("width: 500", words, lines)), Found{});
  EXPECT_EQ(checkTexts(text("width: 500", words + "a", lines)), Found{"14 text-cut"});
  EXPECT_EQ(checkTexts(text("width: 6", words.substr(0, 40), lines)), Found{});
  EXPECT_EQ(checkTexts(text("width: 6", words.substr(0, 42), lines)), Found{"14 text-cut"});
  EXPECT_EQ(checkTexts(text("width: 12", "aaa a", lines) + text("width: 18", "aaa a", lines)), Found{"14 broken-word"});
}

TEST_F(CheckedTextsTest, CharactersThatDontArrive) {
  EXPECT_EQ(checkTexts(text("width: 90", "ac") + text("width: 90", "a\xC3\xA9 b")), Found{"14 missing-glyph"});
  EXPECT_EQ(checkTexts(text("width: 90", "a\xF0\x9F\x98\x80") + text("width: 90", "a")), Found{"14 undecodable"});
  EXPECT_EQ(checkTexts("    - {type: text, x: 72, y: 48, textStyle: ascii, value: a\xC3\xA9}\n"
                       "    - {type: text, x: 72, y: 48, textStyle: ascii, value: ab}\n",
                       {"missing-glyph"}),
            Found{"14 undecodable"});
}

TEST_F(CheckedTextsTest, TextThatFadesIntoItsGround) {
  const auto styled = [](const char* style, const char* more) {
    return std::string("    - {type: text, x: 72, y: 48, width: 90, height: 20, value: ab, textStyle: ") + style +
           more + "}\n";
  };
  EXPECT_EQ(checkTexts(styled("soft", "") + styled("softer", "") + styled("grey", "") +
                       styled("soft", ", bgColor: '#C0C0C0'")),
            (Found{"15 faint-text", "17 faint-text"}));
}

TEST_F(CheckedTextsTest, TextsThatTelevisionsCutOff) {
  EXPECT_EQ(checkTexts("    - {type: text, x: 72, y: 48, textStyle: s, value: ab}\n"
                       "    - {type: text, x: 0, width: 720, y: 421, textStyle: s, align: center, value: ab}\n"
                       // A list scrolls to its last lines.
                       "    - {type: textContainer, x: 72, y: 48, width: 99, height: 99, layout: column, children: "
                       "[{repeat: 50, content: ab, style: s}]}\n"),
            Found{});
  for (const char* place : {"x: 71, y: 48", "x: 72, y: 47", "x: 633, y: 48", "x: 72, y: 423"})
    EXPECT_EQ(checkTexts(std::string("    - {type: text, ") + place + ", textStyle: s, value: ab}\n"),
              Found{"2 title-safe"})
        << place;
}

}  // namespace
