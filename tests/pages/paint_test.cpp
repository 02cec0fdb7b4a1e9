// Backgrounds, highlight frames, hiding and timeouts, to the pixel.
#include "host/color.h"
#include "support/pagefixture.h"

namespace {

// Video greys that a 16-bit screen keeps apart.
uint32_t grey(int n) { return yCrCbToRgb(widenPixel16(uint16_t(n << 10 | 16 << 5 | 16))); }
std::string color(int n) { return std::to_string(uint32_t(n) << 26 | 0x808000); }
constexpr uint32_t kGreen = 0x008700;

class PaintTest : public PageTest {
 protected:
  bool loadChildren(const std::string& more, const std::string& children) {
    return load("flags: 16bit\npage: {width: 720, height: 480, type: group, " + more + ", children: [" + children +
                "]}");
  }
};

TEST_F(PaintTest, PositionsNestAndAWidgetWithoutBackgroundShowsWhatIsAround) {
  ASSERT_TRUE(
      loadChildren("bgColor: " + color(10),
                   "{x: 100, y: 50, width: 40, height: 40, type: group, children: [{x: 5, y: 6, width: 10, height: 10, "
                   "bgColor: " +
                       color(20) + "}, {x: 20, y: 20, width: 4, height: 4}]}"));
  EXPECT_EQ(pixel(105, 56), grey(20));
  EXPECT_EQ(pixel(104, 56), grey(10));
  EXPECT_EQ(pixel(122, 72), grey(10));

  ASSERT_TRUE(loadChildren("x: 0", "{x: 1, y: 1, width: 2, height: 2}"));
  EXPECT_EQ(pixel(1, 1), kGreen);  // nobody has a colour: transparent
}

TEST_F(PaintTest, TheHighlightFrameLiesOutsideAndGoesWithTheFocus) {
  ASSERT_TRUE(loadChildren("start: a, bgColor: " + color(10),
                           "{x: 100, y: 50, width: 40, height: 30, name: a, down: b, bgColor: " + color(20) +
                               ", highlightFrame: true, frameColor: " + color(30) + "}, {name: b}"));
  for (auto [x, y] : {std::pair{96, 46}, {143, 46}, {96, 83}, {143, 83}, {120, 49}, {99, 60}})
    EXPECT_EQ(pixel(x, y), grey(30)) << x << "," << y;
  EXPECT_EQ(pixel(100, 50), grey(20));
  EXPECT_EQ(pixel(95, 46), grey(10));
  key("Down");
  for (auto [x, y] : {std::pair{96, 46}, {143, 83}, {120, 49}, {99, 60}})
    EXPECT_EQ(pixel(x, y), grey(10)) << x << "," << y;
}

TEST_F(PaintTest, WhatSticksOutOnlyAboveIsNotRepaintedFromAround) {
  // Both boxes carry a lost highlight. To the left the page's colour is painted over the ring again; a ring that lies
  // only above that widget stays, since the top edge is never looked at.
  ASSERT_TRUE(
      loadChildren("start: a, bgColor: " + color(10),
                   "{x: 100, y: 100, width: 40, height: 40, type: group, bgColor: " + color(20) +
                       ", children: [{x: 4, y: 2, width: 10, height: 10, name: a, down: b, highlightFrame: true, "
                       "frameColor: " +
                       color(30) + "}]}, {name: b}"));
  EXPECT_EQ(pixel(106, 98), grey(30));  // above the group
  EXPECT_EQ(pixel(101, 105), grey(30));
  key("Down");
  EXPECT_EQ(pixel(106, 98), grey(30));
  EXPECT_EQ(pixel(101, 105), grey(20));
}

TEST_F(PaintTest, HiddenContentShowsTheBackgroundAndTimeoutsHide) {
  ASSERT_TRUE(
      loadChildren("bgColor: " + color(10),
                   "{x: 0, y: 0, width: 9, height: 9, name: gone, hidden: both, timeout: 3, bgColor: " + color(20) +
                       "}, {x: 20, y: 0, width: 300, height: 5, name: bar, type: slider, value: 100, timeout: 3, "
                       "fgColor: " +
                       color(40) + ", bgColor: " + color(20) + "}"));
  EXPECT_EQ(pixel(2, 2), grey(10));
  EXPECT_EQ(pixel(25, 2), grey(40));
  desktop.wait(2);
  EXPECT_EQ(pixel(25, 2), grey(40));
  desktop.wait(1);
  EXPECT_EQ(pixel(25, 2), grey(20));  // its content is hidden, its background isn't

  widgetShow(widget("gone"));
  widgetShowBackground(widget("gone"));
  desktop.settle();
  EXPECT_EQ(pixel(2, 2), grey(20));
  desktop.wait(3);
  EXPECT_TRUE(widget("gone")->flags & kWidgetContentHidden);  // the timer ran from its showing

  widgetShow(widget("bar"));
  EXPECT_TRUE(timerIsListed(widget("bar")->timeoutTimer));
  widgetHide(widget("bar"));
  EXPECT_FALSE(timerIsListed(widget("bar")->timeoutTimer));
}

TEST_F(PaintTest, APictureBehindHiddenContentHasItShown) {
  ASSERT_TRUE(
      loadChildren("x: 0",
                   "{name: a, hidden: content, background: none.gif}, {name: b, hidden: both, background: x.gif}, "
                   "{name: c, hidden: content}, {name: d, hidden: !string maybe}"));
  const auto hidden = [this](const char* name) { return (widget(name)->flags & kWidgetContentHidden) != 0; };
  EXPECT_FALSE(hidden("a"));
  EXPECT_TRUE(hidden("b"));
  EXPECT_TRUE(hidden("c"));
  EXPECT_FALSE(hidden("d"));
}

}  // namespace
