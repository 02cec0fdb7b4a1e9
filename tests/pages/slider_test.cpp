#include "engine/widgets/slider.h"

#include "support/pagefixture.h"

namespace {

class SliderTest : public PageTest {
 protected:
  // The slider at the screen's corner, in white and dark grey. The default colours are those of the screen as it was
  // before the page set its depth, so a page that changes it must say its own.
  SliderWidget* slider(const std::string& more) {
    EXPECT_TRUE(
        load("flags: 16bit\npage: {type: group, start: s, children: [{name: s, type: slider, fgColor: white, bgColor: "
             "0x40808000, " +
             more + "}]}"));
    return static_cast<SliderWidget*>(widget("s"));
  }
  bool isFill(int x, int y) const { return pixel(x, y) > 0xE0E0E0; }
  bool isRest(int x, int y) const { return pixel(x, y) == 0x383838; }
};

TEST_F(SliderTest, SizesAreComparedWithTheirBytesSwapped) {
  // 300 is 0x012C, swapped 0x2C01; 20 is swapped 0x1400: horizontal. Value 25 of 0 to 100 cuts at 75.
  slider("width: 300, height: 20, min: 0, value: 25");
  EXPECT_TRUE(isFill(74, 19) && isRest(75, 0) && isRest(299, 19));
  // 256 is swapped 1, so this wide bar is vertical: 20 is swapped 5120, of which a quarter is 1280 rows to fill. The
  // rest is 20 - 1280 rows from there, so it comes back up to row 20 and runs out of the screen.
  slider("width: 256, height: 20, min: 0, value: 25");
  EXPECT_TRUE(isFill(0, 0) && isFill(255, 19) && isRest(0, 20) && isRest(255, 479));
}

TEST_F(SliderTest, AVerticalBarOf200FillsUpwardFromItsTopAtTheMaximum) {
  // 200 is swapped 51200, which wraps to -14336 as an edge: what lies between it and the top fills.
  slider("y: 100, width: 16, height: 200, min: 0, max: 4, value: 4");
  EXPECT_TRUE(isFill(0, 0) && isFill(15, 99));
  EXPECT_FALSE(isFill(0, 100));
}

TEST_F(SliderTest, ASpanOfNothingFillsNothing) {
  slider("width: 300, height: 20, min: 5, max: 5, value: 5");
  EXPECT_FALSE(isFill(0, 0) || isRest(0, 0));
  // Position 1 << 31 over a span of -1 has no quotient.
  slider("width: 1, height: 0, min: 0, max: -1, value: -2147483648");
}

TEST_F(SliderTest, KeysMoveTheValueAndWrapAtTheEnds) {
  SliderWidget* s = slider("width: 300, height: 20, min: 0, max: 2, value: 1, navigate: leftRight");
  const std::pair<const char*, int> keys[] = {{"Right", 2},  {"Right", 0}, {"Left", 2},
                                              {"UpLeft", 1}, {"Up", 1},    {"DownRight", 2}};
  for (const auto& [name, value] : keys) {
    key(name);
    EXPECT_EQ(s->value, value) << name;
  }
  EXPECT_TRUE(isFill(299, 0));
}

TEST_F(SliderTest, BeginsAtItsMinimumAndANewRangeLeavesTheValue) {
  SliderWidget* s = slider("min: -5, max: 5");
  EXPECT_EQ(eventSendSimple(s, kSetMaximum, uint32_t(-9)), 1);
  int32_t maximum = 0;
  EXPECT_EQ(eventSendSimple(s, kGetMaximum, 0, &maximum), 1);
  EXPECT_EQ(maximum, -9);
  EXPECT_EQ(s->value, -5);
}

}  // namespace
