// Text and number widgets, from keys and events to pixels.
#include "engine/widgets/text.h"
#include "engine/text/textmeasure.h"

#include <random>

#include "blockspage.h"
#include "engine/events/value.h"
#include "engine/widgets/linebreak.h"
#include "engine/widgets/number.h"

namespace {

class TextTest : public BlocksTest {
 protected:
  TextWidget* text(const std::string& attributes) {
    EXPECT_TRUE(loadTexts("{name: w, type: text, x: 100, y: 100, width: 100, height: 30, " + attributes + "}"));
    return static_cast<TextWidget*>(widget("w"));
  }
  static std::string valueOf(Widget* w) {
    KuiValue value;
    EXPECT_EQ(eventSendSimple(w, kGetValue, 0, &value), 1);
    EXPECT_EQ(value.kind, KuiValue::kString);
    return std::string(value.string);
  }
  void setValue(Widget* w, std::string_view text) {
    KuiValue value{KuiValue::kString, text};
    EXPECT_EQ(eventSendSimple(w, kSetValue, 0, &value), 1);
    desktop.settle();
  }
};

TEST_F(TextTest, IsAlignedInsideAndStartsAtTheCornerWhenTooLarge) {
  const std::tuple<const char*, const char*, const char*, Box> cases[] = {
      {"left", "top", "aa", {101, 102, 111, 109}},
      {"center", "center", "aa", {145, 112, 155, 119}},
      {"right", "bottom", "aa", {189, 122, 199, 129}},
      {"!string middle", "!string middle", "aa", {101, 102, 111, 109}},  // no such words
      {"right", "center", "bbbbbbbbbbb", {100, 112, 209, 119}},          // 110 wide
      {"center", "top", "aaaaaaaaaaaaaaaa", {103, 102, 197, 109}},       // 96 wide: 4 / 2 to the right
      {"center",
       "top",
       "\xC3\xA9"
       "aaaaaaaaaaaaaaaa",
       {102, 102, 198, 109}},  // 98 wide
  };
  for (const auto& [align, valign, value, box] : cases) {
    text(std::string("textStyle: plain, align: ") + align + ", valign: " + valign + ", value: " + value);
    EXPECT_EQ(inked(), box) << align << ' ' << valign << ' ' << value;
  }
  text("value: aa, textStyle: nowhere, highlightTextStyle: bright");
  EXPECT_EQ(log(), "Unknown text style 'nowhere'\n");
  EXPECT_EQ(inkedIn(kBright), (Box{101, 102, 111, 109}));
  text("value: aa");  // without a style
  EXPECT_EQ(inked(), kNothing);
}

TEST_F(TextTest, DigitsAreTypedUpToTheLengthAndCleared) {
  TextWidget* w = text("textStyle: plain, maxLength: 3, value: aaaaa");
  EXPECT_EQ(valueOf(w), "aaa");
  key("1");  // full: eaten
  EXPECT_EQ(valueOf(w), "aaa");
  key("Clear");
  EXPECT_EQ(inked(), kNothing);
  for (const char* digit : {"1", "0", "9", "5"}) key(digit);
  EXPECT_EQ(valueOf(w), "109");
  EXPECT_EQ(inked(), (Box{100, 104, 117, 109}));
  EXPECT_EQ(focusName(), "w");                     // no digit has moved the focus
  EXPECT_EQ(eventSendSimple(w, kDigitKey, 7), 1);  // without the flag it is the frame's, which has a focus
  EXPECT_EQ(valueOf(w), "109");

  w = text("textStyle: plain, maxLength: 0");
  key("1");
  EXPECT_EQ(valueOf(w), "");
  w = text("textStyle: plain, value: aa");
  key("1");
  key("Clear");
  EXPECT_EQ(valueOf(w), "aa");
}

TEST_F(TextTest, ReadFromTheRightItGivesTheBuffersEnd) {
  TextWidget* w = text("maxLength: 4, fromRight: true, value: ab");
  EXPECT_EQ(valueOf(w), std::string("\0\0", 2));
  key("1");
  EXPECT_EQ(valueOf(w), std::string("b1\0", 3));
  key("2");
  EXPECT_EQ(valueOf(w), "ab12");
  EXPECT_EQ(valueOf(text("fromRight: true, value: abc")), "abc");
}

TEST_F(TextTest, AnEchoHidesWhatIsTypedAndIsAlignedByIt) {
  text("textStyle: plain, maxLength: 4, echoChar: bx, align: right");
  key("1");
  key("2");
  // Two digits measure 12, so the two wide echoes, 10 each, begin at 88 and stick out.
  EXPECT_EQ(inked(), (Box{188, 102, 207, 109}));
  // What the page gave has no echo: it shows as two zero bytes.
  text("textStyle: plain, maxLength: 4, echoChar: b, value: aa");
  EXPECT_EQ(inked(), (Box{100, 104, 111, 109}));
}

TEST_F(TextTest, AWidgetFitsTheValueThatIsSet) {
  TextWidget* w = text("textStyle: plain, value: a");
  setValue(w, "bbb");
  EXPECT_EQ(inked(), (Box{100, 102, 129, 109}));
  setValue(w, "");
  EXPECT_EQ(valueOf(w), "");
}

TEST_F(TextTest, AnyLengthThatIsNotNegativeCanBeTypedInto) {
  EXPECT_FALSE(loadTexts("{name: w, type: text, maxLength: !int -1}"));
  TextWidget* w = text("textStyle: plain, maxLength: 2147483647, fromRight: true");
  key("7");
  EXPECT_EQ(valueOf(w), std::string(1, '\0'));  // the last byte of the buffer was never written
}

TEST_F(TextTest, ATextWhoseMemoryWasFreedByAScriptIsEmptyAndSafe) {
  for (const char* attributes : {"maxLength: 3, echoChar: x, value: aa", "value: aa", "multiline: true, value: a a"}) {
    TextWidget* w = text(std::string("textStyle: plain, fromRight: true, ") + attributes);
    EXPECT_EQ(eventSendSimple(w, kWidgetDestroyed, 0), 1);
    EXPECT_EQ(valueOf(w), "");
    key("1");
    key("Clear");
    widgetInvalidate(w);
    desktop.settle();
    EXPECT_EQ(inked(), kNothing);
    setValue(w, "b");
    EXPECT_EQ(valueOf(w), w->editable ? "" : "b");
  }
}

TEST_F(TextTest, LinesWrapAndAreAlignedOneByOne) {
  // 100 wide: "bbbb bbbb" is 83, with the third word 126. Lines of 10: 30 is full, so two begin 5 from the top.
  text("textStyle: plain, multiline: true, valign: center, align: right, value: bbbb  bbbb bbbb");
  EXPECT_EQ(inked(), (Box{114, 107, 199, 124}));  // two spaces: 86 wide
  EXPECT_NE(pixel(160, 120), pixel(161, 114)) << "the second line is 40 wide";
  // 4 lines of 10 in 30 pixels stay at the top.
  text("textStyle: plain, multiline: true, valign: bottom, value: bbbbbbbbbb bbbbbbbbbb bbbbbbbbbb bbbbbbbbbb");
  EXPECT_EQ(inked(), (Box{100, 102, 199, 139}));
  // A word of 15 is broken where fewer than 100 pixels are full.
  text("textStyle: plain, multiline: true, value: bbbbbbbbbbbbbbb");
  EXPECT_EQ(inked(), (Box{100, 102, 189, 119}));
}

// ---- breaking against the plain rule: measuring every piece, taking one byte off at a time

int32_t measured(const TextStyle& style, std::string_view text) {
  int32_t width, height;
  textMeasure(style, text.data(), uint32_t(text.size()), &width, &height, nullptr);
  return width;
}

// A letter of UTF-8 that is cut measures as the whole one.
size_t wholeLetters(const TextStyle& style, std::string_view text, size_t end) {
  while (style.encoding == 1 && end < text.size() && (text[end] & 0xC0) == 0x80) ++end;
  return end;
}

std::vector<TextLine> plainBreak(const TextStyle& style, std::string_view text, int32_t width) {
  std::vector<std::pair<size_t, size_t>> words;
  bool inWord = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool space = text[i] == ' ' || (text[i] >= 9 && text[i] <= 13);
    if (!space && !inWord) {
      if (words.size() == 100) break;
      words.push_back({i, i});
    }
    inWord = !space;
    if (inWord) words.back().second = i + 1;
  }
  std::vector<TextLine> lines;
  size_t begin = 0, word = 0;
  bool pending = false;
  for (size_t w = 0; w < words.size() && lines.size() < 20;) {
    if (!pending) begin = words[w].first, word = w;
    const int32_t wide = measured(style, text.substr(begin, words[w].second - begin));
    if (wide <= width) {
      pending = true;
      ++w;
    } else if (w != word) {
      const std::string_view piece = text.substr(begin, words[w - 1].second - begin);
      lines.push_back({piece, measured(style, piece)});
      pending = false;
    } else {
      size_t end = words[w].second;
      int32_t now;
      do now = measured(style, text.substr(begin, wholeLetters(style, text, --end) - begin));
      while (now >= width && end > begin);
      lines.push_back({text.substr(begin, end - begin), now});
      begin = end;
      pending = true;
    }
  }
  if (pending && lines.size() < 20 && word < words.size()) {
    const std::string_view piece = text.substr(begin, words.back().second - begin);
    lines.push_back({piece, measured(style, piece)});
  }
  return lines;
}

TEST_F(TextTest, LinesBreakAsThePlainRuleSays) {
  ASSERT_TRUE(loadTexts(""));
  const TextStyle plain = *styleFind(topFrame(), "plain");
  std::mt19937 random(1);
  const std::string_view pieces[] = {"a",  "b",  "\xC3\xA9", " ",    " ",
                                     "\t", "\n", "1",        "\xE9", std::string_view("\0", 1)};
  for (int turn = 0; turn < 2000; ++turn) {
    TextStyle style = plain;
    style.encoding = uint16_t(turn % 3);
    if (turn % 5 == 0) style.letterExtra = int32_t(random() % 0x200000) - 0x100000;
    if (turn % 7 == 0) style.spaceExtra = int32_t(random() % 0x200000) - 0x100000;
    if (turn % 11 == 0) style.horScale = int32_t(random() % 0x20000);
    const int variety = turn % 4 == 0 ? 10 : 8;  // now and then with bytes that don't decode
    std::string text;
    for (uint32_t i = random() % (turn % 50 ? 60 : 400); i > 0; --i) text += pieces[random() % uint32_t(variety)];
    const int32_t width = turn % 13 ? int32_t(random() % 150) : -int32_t(random() % 9);
    const std::vector<TextLine> lines = breakLines(style, text, width), plainly = plainBreak(style, text, width);
    ASSERT_EQ(lines.size(), plainly.size()) << turn;
    for (size_t i = 0; i < lines.size(); ++i) {
      ASSERT_EQ(lines[i].text.data() - text.data(), plainly[i].text.data() - text.data()) << turn << ' ' << i;
      ASSERT_EQ(lines[i], plainly[i]) << turn << ' ' << i;
    }
  }
}

TEST_F(TextTest, ASpaceTakesItsOwnExtraWhenATextIsFitted) {
  ASSERT_TRUE(loadTexts(""));
  TextStyle style = *styleFind(topFrame(), "plain");
  style.spaceExtra = 5 << 16;
  int32_t width = 0;
  EXPECT_EQ(textFit(style, "a a", 3, 15, &width), 2u);
  EXPECT_EQ(width, 6 + 3 + 5);
}

TEST_F(TextTest, OnlySoManyWordsAndLinesShow) {
  ASSERT_TRUE(loadTexts(""));
  const TextStyle style = *styleFind(topFrame(), "plain");
  std::string words;
  for (int i = 0; i < 130; ++i) words += "a ";
  EXPECT_EQ(breakLines(style, words, 10000).front().text.size(), 199u);  // 100 words
  EXPECT_EQ(breakLines(style, words, 6).size(), 20u);
  EXPECT_EQ(breakLines(style, words, 0), std::vector<TextLine>(20, {std::string_view(words).substr(0, 0), 0}));
  EXPECT_TRUE(breakLines(style, " \n ", 0).empty());
  // 128 KB without a space is measured in one walk a line. In 65,536ths of a pixel an advance is 600 units of 655,
  // which with the extra leaves 6550.
  TextStyle dense = style;
  dense.letterExtra = 6550 - 600 * 655;
  const std::string text(1 << 17, 'a');
  const std::vector<TextLine> lines = breakLines(dense, text, 600);
  ASSERT_EQ(lines.size(), 20u);
  EXPECT_EQ(lines[19].text.size(), 5998u);  // below 599.5 pixels
}

// ---- numbers

class NumberTest : public BlocksTest {
 protected:
  NumberWidget* number(const std::string& attributes) {
    EXPECT_TRUE(
        loadTexts("{name: other, type: text, x: 0, y: 0}, {name: w, type: number, x: 100, y: 100, width: 100, "
                  "height: 30, left: other, " +
                  attributes + "}"));
    return static_cast<NumberWidget*>(widget("w"));
  }
};

TEST_F(NumberTest, ShowsAtLeastSoManyFigures) {
  const std::pair<const char*, Box> cases[] = {
      {"value: 7", {100, 104, 105, 109}},
      {"value: 7, size: 3", {100, 104, 117, 109}},
      {"min: -50, value: -42, size: 4", {100, 104, 123, 109}},  // -042
      {"value: 7, size: -3", {100, 104, 105, 109}},             // spaces after it
      {"value: 7, size: 255", {100, 104, 720, 109}},
      {"value: 7, size: -255", {100, 104, 105, 109}},
      {"value: 7, size: 256", {100, 104, 720, 109}},  // cut: all zeros
      {"value: 7, size: 2147483647", {100, 104, 720, 109}},
      {"value: 7, size: -2147483648", {100, 104, 105, 109}},
  };
  for (const auto& [attributes, box] : cases) {
    number(std::string("highlightTextStyle: plain, ") + attributes);
    EXPECT_EQ(inked(), box) << attributes;
  }
}

TEST_F(NumberTest, DisappearsWithTheFocusUnlessItHasAStyleForIt) {
  number("textStyle: plain");
  EXPECT_EQ(inked(), kNothing);
  key("Left");  // not its own key: the focus goes
  EXPECT_EQ(focusName(), "other");
  EXPECT_EQ(inked(), (Box{100, 104, 105, 109}));
}

TEST_F(NumberTest, KeysWrapAndRunOnChange) {
  NumberWidget* w = number(
      "highlightTextStyle: plain, min: 8, max: 10, navigate: upDown, immediate: true, "
      "onChange: 'stdout.Display(widgets.w.value, \"\\n\");'");
  EXPECT_EQ(w->value, 8);
  key("Down");
  EXPECT_EQ(inked(), (Box{100, 104, 111, 109}));  // 10
  key("Up");
  EXPECT_EQ(log(), "10\n8\n");
  EXPECT_EQ(eventSendSimple(w, kSetMaximum, 8), 1);
  key("Up");  // stays 8: no script
  EXPECT_EQ(log(), "10\n8\n");
}

}  // namespace
