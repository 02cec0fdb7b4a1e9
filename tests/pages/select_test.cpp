// Selects, from keys and events to pixels.
#include "engine/widgets/select.h"

#include "blockspage.h"
#include "engine/events/value.h"

namespace {

class SelectTest : public BlocksTest {
 protected:
  SelectWidget* select(const std::string& attributes) {
    EXPECT_TRUE(loadTexts("{name: w, type: select, x: 100, y: 100, width: 100, height: 40, " + attributes + "}"));
    return static_cast<SelectWidget*>(widget("w"));
  }
  static int valueOf(Widget* w) {
    KuiValue value;
    return eventSendSimple(w, kGetValue, 0, &value) && value.kind == KuiValue::kInteger ? value.integer : -1;
  }
};

constexpr char kBoth[] = "textStyle: plain, highlightTextStyle: bright, ";

TEST_F(SelectTest, ChoicesAreWhatStandsBetweenTheSeparators) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"'|a||b'", {"a", "b"}}, {"',a,b,'", {"a", "b"}}, {"'|'", {}}, {"''", {}}, {"'||||'", {}}, {"abac", {"b", "c"}},
  };
  for (const auto& [choices, texts] : cases) {
    const SelectWidget* w = select(std::string("choices: ") + choices);
    std::vector<std::string> found;
    for (const SelectChoice& choice : w->choices) found.push_back(choice.text);
    EXPECT_EQ(found, texts) << choices;
  }
}

TEST_F(SelectTest, KeysMoveForwardsOrInAColumnBackwards) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"navigate: leftRight", "Right", "Left"}, {"vertical: true, navigate: upDown", "Down", "Up"}};
  for (const auto& [attributes, next, previous] : cases) {
    SelectWidget* w = select(std::string(kBoth) + "showAll: true, choices: '|a|b|1', " + attributes);
    const std::pair<const char*, int> moves[] = {{next, 1}, {next, 2}, {next, 0}, {previous, 2}};
    for (const auto& [name, value] : moves) {
      key(name);
      EXPECT_EQ(valueOf(w), value) << name;
    }
  }
}

TEST_F(SelectTest, OneChoiceEatsItsKeysWithoutARedraw) {
  SelectWidget* w = select("choices: '|a', navigate: both, immediate: true, onChange: 'stdout.Display(1);'");
  EXPECT_EQ(eventSendSimple(w, kDirectionKey, kDirectionDown), 1);
  EXPECT_FALSE(desktop.shell.busy());
  w = select("navigate: both");
  for (const char* name : {"Down", "UpRight", "Up"}) key(name);
  EXPECT_EQ(valueOf(w), -1);
  KuiValue value{KuiValue::kInteger, {}, 0};
  EXPECT_EQ(eventSendSimple(w, kSetValue, 0, &value), 0);
  EXPECT_EQ(log(), "");
}

TEST_F(SelectTest, ShowsTheCurrentOneInTheStyleOfTheMoment) {
  select(std::string(kBoth) + "choices: '|aa|b', align: center, valign: bottom");
  EXPECT_EQ(inked(), (Box{145, 132, 155, 139}));
  EXPECT_EQ(inked(), inkedIn(kBright));
  key("0");  // the focus stays on the first widget of the page: itself
  widgetFocus(topFrame(), nullptr);
  desktop.settle();
  EXPECT_EQ(inked(), inkedIn(kPlain));
  select("textStyle: plain, choices: '|aa'");  // highlighted without a style for it
  EXPECT_EQ(inked(), kNothing);
}

TEST_F(SelectTest, AChoiceKeepsTheSizeThatItWasFirstMeasuredIn) {
  // Measured as big: 24 wide, so plain text, 12 wide, still begins at 76.
  select("textStyle: plain, highlightTextStyle: big, choices: '|aa', align: right");
  EXPECT_EQ(inked(), (Box{178, 103, 198, 117}));
  widgetFocus(topFrame(), nullptr);
  desktop.settle();
  EXPECT_EQ(inked(), (Box{177, 110, 187, 117}));  // on the big one's baseline
}

TEST_F(SelectTest, ARowShowsAllAndErasesNothing) {
  select(std::string(kBoth) + "showAll: true, choices: '|a|b|a', align: center, valign: center, navigate: leftRight");
  // 6 + 10 + 6 and two separators of 3 + 6 + 3: 46 wide, so it begins at 127, its baseline at 123.
  EXPECT_EQ(inked(), (Box{128, 117, 172, 124}));
  EXPECT_EQ(inkedIn(kBright), (Box{128, 117, 132, 124}));
  EXPECT_NE(pixel(138, 119), pixel(138, 118));  // the stroke, 5 high
  key("Right");
  EXPECT_EQ(inkedIn(kBright), (Box{145, 117, 154, 124}));
  // Text is painted over text: a shorter one would leave what it doesn't cover.
  widget("w")->bounds.x += 1;
  widgetInvalidate(widget("w"));
  desktop.settle();
  EXPECT_EQ(inked(), (Box{128, 117, 173, 124}));
}

TEST_F(SelectTest, ARowIsAsHighAsItsHighestChoice) {
  // The big a, 14 high, is on the baseline of a text 20 high at the bottom; the others are on that of one 10 high.
  select("textStyle: plain, highlightTextStyle: big, showAll: true, choices: '|a|b', valign: bottom");
  EXPECT_EQ(inked(), (Box{102, 122, 133, 137}));
}

TEST_F(SelectTest, AColumnIsPlacedByItsFirstChoice) {
  select(
      "textStyle: plain, highlightTextStyle: big, showAll: true, vertical: true, choices: '|b|aa', align: right, "
      "valign: bottom, bgColor: 0x30808000, navigate: upDown");
  // The first is 20 wide and high, so the block counts as 40; the second's row is 10 high.
  EXPECT_EQ(inkedIn(kPlain), (Box{180, 103, 199, 129}));
  key("Down");
  // Their sizes stay: the first, now plain, on the same baseline; the second, now big, in its row of 10.
  EXPECT_EQ(inkedIn(kPlain), (Box{180, 110, 210, 129}));
}

TEST_F(SelectTest, AllChoicesNeedBothStyles) {
  for (const char* styles :
       {"textStyle: plain", "highlightTextStyle: plain", "textStyle: plain, highlightTextStyle: x"})
    EXPECT_FALSE(loadTexts(std::string("{name: w, type: select, showAll: !bool true, choices: '|a', ") + styles + "}"));
  EXPECT_EQ(log().find("Both 'textStyle' and 'highlightTextStyle' must be present when 'showAll' is true\n"), 0u);
  EXPECT_TRUE(loadTexts("{name: w, type: select, showAll: true, " + std::string(kBoth) + "vertical: true}"));
  EXPECT_EQ(inked(), kNothing);
}

TEST_F(SelectTest, ComplaintsAboutValuesGoToTheStandardOutput) {
  SelectWidget* w = select("choices: '|a|b'");
  testing::internal::CaptureStdout();
  for (KuiValue value : {KuiValue{KuiValue::kInteger, {}, 1}, KuiValue{KuiValue::kInteger, {}, 2},
                         KuiValue{KuiValue::kInteger, {}, -1}, KuiValue{KuiValue::kString, "b"}})
    EXPECT_EQ(eventSendSimple(w, kSetValue, 0, &value), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "New value out of range: 2\nNew value out of range: -1\nExpecting integer value\n");
  EXPECT_EQ(valueOf(w), 1);
  EXPECT_EQ(log(), "");
}

TEST_F(SelectTest, ChoicesCanBeAddedAndAreCountedByTheAnswer) {
  SelectWidget* w = select(kBoth);
  int32_t untouched = 77;
  KuiValue value{KuiValue::kString, "b"};
  for (const int maximum : {-1, 0, 1, 2}) {
    EXPECT_EQ(eventSendSimple(w, kGetMaximum, 0, &untouched), maximum);
    EXPECT_EQ(eventSendSimple(w, kAddChoice, 0, &value), 1);
  }
  EXPECT_EQ(untouched, 77);
  desktop.settle();
  EXPECT_EQ(inked(), (Box{100, 102, 109, 109}));
  EXPECT_EQ(eventSendSimple(w, kWidgetDestroyed, 0), 1);  // by a script
  widgetInvalidate(w);
  desktop.settle();
  EXPECT_EQ(inked(), kNothing);
}

}  // namespace
