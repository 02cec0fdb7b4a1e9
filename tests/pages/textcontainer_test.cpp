// Text containers, from keys and events to pixels.
#include "engine/widgets/textcontainer.h"

#include "blockspage.h"
#include "engine/events/value.h"

namespace {

class TextContainerTest : public BlocksTest {
 protected:
  // At (100, 100), 200 x 50, with `count` lines whose baselines are 10, 22, 34 and so on.
  TextContainerWidget* container(int count, const std::string& attributes) {
    std::string lines;
    for (int i = 0; i < count; ++i)
      lines += "{x: 5, y: " + std::to_string(10 + 12 * i) + ", style: plain, content: b},";
    EXPECT_TRUE(loadTexts("{name: w, type: textContainer, x: 100, y: 100, width: 200, height: 50, children: [" + lines +
                          "], " + attributes + "}"));
    return static_cast<TextContainerWidget*>(widget("w"));
  }
  // The rows in which a line's baseline can be seen, relative to the container; that of the selected one negative.
  std::vector<int> shown() const {
    std::vector<int> baselines;
    for (int y = 90; y < 170; ++y)
      if (pixel(105, y) != pixel(719, 479) && pixel(105, y + 1) == pixel(719, 479))
        baselines.push_back(pixel(105, y) == kBright ? 100 - y : y - 100);
    return baselines;
  }
  void press(const char* name, int times) {
    for (int i = 0; i < times; ++i) key(name);
  }
};

using Rows = std::vector<int>;

TEST_F(TextContainerTest, ALineShowsWithItsSizeAboveAndAQuarterBelow) {
  const std::pair<int, bool> baselines[] = {{9, false}, {10, true}, {47, true}, {48, false}};  // 47 + 2 is less than 50
  for (const auto& [y, shows] : baselines) {
    ASSERT_TRUE(
        loadTexts("{name: w, type: textContainer, x: 100, y: 100, width: 50, height: 50, children: [{x: 5, y: " +
                  std::to_string(y) + ", style: plain, content: b}]}"));
    EXPECT_EQ(inked(), shows ? (Box{105, 94 + y, 114, 101 + y}) : kNothing) << y;
  }
}

TEST_F(TextContainerTest, WithoutASelectionKeysScrollWithoutEnd) {
  TextContainerWidget* w = container(6, "scrollDelta: 12");
  const std::tuple<const char*, int, int, Rows> steps[] = {
      // key, times, offset and rows after it
      {"Up", 0, 0, {10, 22, 34, 46}}, {"Down", 1, 12, {10, 22, 34, 46}}, {"Down", 4, 60, {10}}, {"Down", 3, 96, {}},
      {"Up", 10, -24, {34, 46}},
  };
  for (const auto& [name, times, offset, rows] : steps) {
    press(name, times);
    EXPECT_EQ(w->scrollOffset, offset);
    EXPECT_EQ(shown(), rows) << offset;
  }
  KuiValue value;
  EXPECT_EQ(eventSendSimple(w, kGetValue, 0, &value), 1);
  EXPECT_EQ(value.integer, 0);
  w = container(0, "");
  key("Down");
  EXPECT_EQ(w->scrollOffset, 1);
}

TEST_F(TextContainerTest, TheSelectionScrollsByPages) {
  TextContainerWidget* w = container(10, "selectTextStyle: bright, selectedLine: 1");
  EXPECT_EQ(w->scrollDelta, 10);
  const std::tuple<const char*, int, int, int, Rows> steps[] = {
      // key, times; line, offset and rows after it
      {"Up", 0, 1, 0, {-10, 22, 34, 46}},
      {"Down", 3, 4, 0, {10, 22, 34, -46}},
      // Line 5 (58) is out of view: line 4 comes to the top, its baseline one size down: offset 46 - 10.
      {"Down", 1, 5, 36, {10, -22, 34, 46}},
      {"Down", 2, 7, 36, {10, 22, 34, -46}},
      // Line 8 (94) is out of view, line 7 (82) would come up to 72, but the last line is 118: 118 + 2 - 50 + 1.
      {"Down", 1, 8, 71, {11, -23, 35, 47}},
      {"Down", 5, 10, 71, {11, 23, 35, -47}},
      // Back up: line 6 (70) is out of view, and line 7 (82) goes to the bottom: 82 + 2 - 50.
      {"Up", 4, 6, 34, {12, 24, -36}},
      {"Up", 9, 1, 0, {-10, 22, 34, 46}},
  };
  for (const auto& [name, times, line, offset, rows] : steps) {
    press(name, times);
    EXPECT_EQ(w->selectedLine, line);
    EXPECT_EQ(w->scrollOffset, offset) << line;
    EXPECT_EQ(shown(), rows) << line;
  }
}

struct Counter : EventHandler {
  explicit Counter(int* n) : EventHandler(kMoveSelection), count(n) {}
  int fn(const Event* event) override { return *count += event != nullptr, 1; }
  int* count;
};

TEST_F(TextContainerTest, KeysAskForAMoveOnlyWhereThereIsALine) {
  const std::tuple<const char*, const char*, int> cases[] = {
      {"1", "Up", 0}, {"2", "Up", 1}, {"2", "Down", 1}, {"3", "Down", 0}};
  for (const auto& [selected, name, expected] : cases) {
    TextContainerWidget* w = container(3, std::string("selectTextStyle: bright, selectedLine: ") + selected);
    int moves = 0;
    handlerAdd(w, new Counter(&moves));
    key(name);
    EXPECT_EQ(moves, expected) << selected << name;
    ASSERT_TRUE(loadTexts(""));  // the counter goes while it can still count
  }
}

TEST_F(TextContainerTest, WhatLeadsOutsideTheListChangesNothing) {
  TextContainerWidget* w = container(3, "selectTextStyle: bright, selectedLine: 2");
  for (const int delta : {2, -2, 2147483647, int(0x80000000)}) {
    EXPECT_EQ(eventSendSimple(w, kMoveSelection, uint32_t(delta)), 1);
    EXPECT_EQ(w->selectedLine, 2) << delta;
  }
  for (const char* outside : {"selectedLine: 9", "selectedLine: -3", "selectedLine: -2147483648", "selectedLine: 0"}) {
    w = container(3, std::string("selectTextStyle: bright, ") + outside);
    const int32_t before = w->selectedLine;
    press("Down", 2);
    eventSendSimple(w, kMoveSelection, 1);
    eventSendSimple(w, kMoveSelection, uint32_t(-1));
    EXPECT_EQ(w->selectedLine, before) << outside;
  }
  w = container(3, "selectedLine: 1");  // no style for the selected line
  key("Down");
  EXPECT_EQ(w->selectedLine, 1);
}

TEST_F(TextContainerTest, LinesThatLackSomethingAreKept) {
  ASSERT_TRUE(
      loadTexts("{name: w, type: textContainer, x: 100, y: 100, width: 200, height: 50, selectTextStyle: bright, "
                "selectedLine: 2, scrollDelta: 3, children: [{x: 5, y: 10, content: b}, {x: 5, y: 22, style: "
                "nowhere, content: b}, {x: 5, y: 34, style: plain}, {x: 5, y: 46, style: plain, content: b}, "
                "{x: 5, y: 200, style: plain, content: b}]}"));
  EXPECT_EQ(log(), "Missing 'style' attribute\nUnknown text style 'nowhere'\nMissing 'content' attribute\n");
  auto* w = static_cast<TextContainerWidget*>(widget("w"));
  EXPECT_EQ(w->lines.size(), 5u);
  EXPECT_EQ(shown(), (Rows{46}));
  key("Down");
  EXPECT_EQ(w->selectedLine, 3);
  // From a line without a style there is no size to scroll by.
  eventSendSimple(w, kMoveSelection, uint32_t(-2));
  EXPECT_EQ(w->selectedLine, 1);
  eventSendSimple(w, kMoveSelection, 4);
  EXPECT_EQ(w->selectedLine, 1);
}

TEST_F(TextContainerTest, OtherKeysAreTheFrames) {
  ASSERT_TRUE(loadTexts("{name: other}, {name: w, type: textContainer, right: other, selectedLine: 1}"));
  key("Right");
  EXPECT_EQ(focusName(), "other");
}

}  // namespace
