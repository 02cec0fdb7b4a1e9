#include "engine/screen/display.h"

#include "gfx/halt.h"
#include "gfx/nomemory.h"
#include "host/host.h"
#include "support/pagefixture.h"

namespace {

constexpr uint32_t kGreen = 0x008700;  // 0 in video colours, which is what transparent is on a 16-bit screen

class FirstDisplayTest : public PageTest {};  // 8 bits, before a page is there

class DisplayTest : public PageTest {
 protected:
  DisplayTest() { load("flags: 16bit\npage: {width: 720, height: 480}"); }
};

TEST_F(DisplayTest, DepthsOtherThanEightAndSixteenAreRefused) {
  displayFillRect({0, 0, 1, 1}, 0xEB808000);
  EXPECT_EQ(displaySetDepth(32), 0);
  EXPECT_EQ(displaySetDepth(16), 1);  // the present one: the pixels stay
  displayFlush();
  EXPECT_NE(pixel(0, 0), kGreen);
  EXPECT_EQ(displaySetDepth(8), 1);
  EXPECT_EQ(standardColor(kColorTransparent), 237u);
}

TEST_F(FirstDisplayTest, WithoutMemoryForItsPixelsTheScreenStopsAsItWas) {
  ReturnOnHalt halt;
  {
    NoMemory none(600000);  // 16 bits take 691,200
    EXPECT_EQ(displaySetDepth(16), 0);
  }
  EXPECT_EQ(halt.Reports(), std::vector<std::string>{""});
  EXPECT_NE(log().find("Out of memory\n"), std::string::npos);
  EXPECT_EQ(currentDisplay().depth(), 8);
  const uint32_t palette[] = {0x80808000, 0xEB808000};
  hostSetPalette(palette, 2);
  displayFillRect({0, 0, 1, 1}, 1);
  EXPECT_NE(pixel(0, 0), pixel(1, 0));
}

TEST_F(DisplayTest, EdgesWrapAt16BitsAndEitherOrderFills) {
  const uint32_t white = 0xEB808000;
  displayFillRect({10, 10, -4, 3}, white);  // covers 6 to 10
  EXPECT_EQ(pixel(5, 10), kGreen);
  EXPECT_NE(pixel(6, 12), kGreen);
  EXPECT_NE(pixel(9, 10), kGreen);
  EXPECT_EQ(pixel(10, 10), kGreen);
  displayFillRect({65536 + 20, 20, 2, 2}, white);
  EXPECT_NE(pixel(21, 21), kGreen);
  displayFillRect({-32768, 30, 32768 + 50, 2}, white);  // an edge that is no number
  EXPECT_EQ(pixel(0, 30), kGreen);
}

TEST_F(DisplayTest, AnEmptyFillPresentsTheWholeScreenAndOneOutsideNothing) {
  displaySetDepth(8);  // the frame buffer is zeros now, the window still shows the old picture
  const uint32_t grey = 0x80808000;
  hostSetPalette(&grey, 1);
  displayFillRect({-50, -50, 20, 20}, 5);
  EXPECT_EQ(pixel(0, 0), kGreen);
  displayFillRect({5, 5, 0, 10}, 5);
  EXPECT_NE(pixel(719, 479), kGreen);
}

}  // namespace
