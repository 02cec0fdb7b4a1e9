// Pictures on pages: the cache, tiles, offsets and what a picture does to the screen's colours.
#include "engine/images/imagedraw.h"
#include "engine/images/imageload.h"

#include "engine/screen/clut.h"
#include "engine/screen/display.h"
#include "host/color.h"
#include "support/pagefixture.h"

namespace {

class ImageTest : public PageTest {
 protected:
  // A .kpx of one index a pixel, counting up from the left and the top, without a colour table.
  void writeKpx(const std::string& name, int width, int height, const std::string& clut = "") {
    std::string bytes = {0, 0, char(width >> 8), char(width), char(height >> 8), char(height), 0, 1, 0, 0, 0, 0};
    if (!clut.empty()) {
      bytes[10] = char(clut.size());
      bytes[11] = clut[0];
      bytes += clut.substr(1) + '\0';
    }
    for (int y = 0; y < height; ++y)
      for (int x = 0; x < width; ++x) bytes += char(x + 16 * y);
    writeText(name, bytes);
  }
  // A table of `count` greys: entry n has luma 16 + n / 2.
  void writeClut(const std::string& name, int count) {
    std::string bytes(1, 0);
    for (int i = 0; i < count; ++i) bytes += std::string{char(16 + i / 2), char(128), char(128), 0};
    writeText(name, bytes);
  }
  static uint32_t shown(int index) { return yCrCbToRgb(uint32_t(16 + index / 2) << 24 | 0x808000); }
  std::string logged() { return std::exchange(desktop.log, {}); }
};

TEST_F(ImageTest, TheOneUsedLongestAgoGoesFirst) {
  for (const char* name : {"a.kpx", "b.kpx", "c.kpx", "d.kpx", "e.kpx"}) writeKpx(name, 320, 320);  // 102,400 bytes
  for (const char* name : {"a.kpx", "b.kpx", "c.kpx", "d.kpx", "e.kpx"}) EXPECT_TRUE(imagePreload(name));
  EXPECT_TRUE(imagePreload("A.KPX"));  // found under any case, and used last now
  EXPECT_TRUE(imagePreload("a.kpx"));
  logged();
  writeKpx("big.kpx", 400, 384);  // 153,600 bytes: two must go
  EXPECT_TRUE(imagePreload("big.kpx"));
  logged();
  imageCacheDump();
  EXPECT_EQ(logged(), "d.kpx 320x320\ne.kpx 320x320\na.kpx 320x320\nbig.kpx 400x384\n");

  writeKpx("huge.kpx", 1000, 700);
  EXPECT_FALSE(imagePreload("huge.kpx"));
  EXPECT_EQ(logged(), "Loading image 'huge.kpx'\nImage 'huge.kpx' too big for image cache\n");
  imageCacheDump();
  EXPECT_EQ(logged(), "");  // everything went before that was known

  // A name that is a byte longer needs a byte more than the first one frees, so another goes, though its place is
  // enough.
  for (const char* name : {"a.kpx", "b.kpx", "c.kpx", "d.kpx", "e.kpx"}) EXPECT_TRUE(imagePreload(name));
  writeKpx("ff.kpx", 320, 320);
  EXPECT_TRUE(imagePreload("ff.kpx"));
  logged();
  imageCacheDump();
  EXPECT_EQ(logged(), "c.kpx 320x320\nd.kpx 320x320\ne.kpx 320x320\nff.kpx 320x320\n");
}

TEST_F(ImageTest, FilesThatAreNoPicturesSayWhyOnce) {
  writeText("short.kpx", "abc");
  writeKpx("clut.kpx", 2, 2, "none.clut");
  writeText("pixels.kpx", std::string("\0\0\0\2\0\2\0\1\0\0\0\0abc", 15));
  writeText("seek.kpx", std::string("\0\0\0\2\0\2\0\1\7\0\0\0abc", 15));
  writeText("format.kpx", std::string("\0\0\0\2\0\2\0\2\0\0\0\0abcd", 16));
  const std::pair<const char*, const char*> cases[] = {
      {"none", "Can't find: none\n"},
      {"short.png", "Failed to read header\n"},  // another extension reads the .kpx of that stem
      {"format.kpx", "Invalid image format\n"},
      {"clut.kpx", "Loading CLUT 'none.clut'\nCan't find: none.clut\nCan't load CLUT 'none.clut'\n"},
      {"pixels.kpx", "Error reading pixel data\n"},
      {"seek.kpx", "Error seeking pixels\n"},
      {"none.gif", "Can't find: none.gif\n"},
  };
  for (const auto& [name, message] : cases) {
    EXPECT_FALSE(imagePreload(name));
    EXPECT_EQ(logged(), "Loading image '" + std::string(name) + "'\n" + message);
  }
  imageCacheDump();
  EXPECT_EQ(logged(), "");
}

TEST_F(ImageTest, TilesStartAtTheOffsetAndAreCutAtTheEnd) {
  writeClut("c.clut", 240);
  writeKpx("t.kpx", 3, 2);
  ASSERT_TRUE(load("flags: 8bit\npage: {width: 720, height: 480, colorTable: c.clut, bgColor: 200}"));
  Bounds rect = {10, 20, 7, 3};
  EXPECT_EQ(imageDraw("t.kpx", 4, 1, &rect, true), 1);  // starts at column 1, row 1 of the picture
  const int expected[3][7] = {{17, 18, 16, 17, 18, 16, 17}, {1, 2, 0, 1, 2, 0, 1}, {17, 18, 16, 17, 18, 16, 17}};
  for (int y = 0; y < 3; ++y)
    for (int x = 0; x < 7; ++x) EXPECT_EQ(pixel(10 + x, 20 + y), shown(expected[y][x])) << x << "," << y;
  EXPECT_EQ(pixel(17, 20), shown(200));
  EXPECT_EQ(pixel(10, 23), shown(200));

  rect = {-1000000, 0, 2000000, 480};  // tiles far outside are passed over
  EXPECT_EQ(imageDraw("t.kpx", 0, 0, &rect, true), 1);

  rect = {100, 100, 0, 0};
  EXPECT_EQ(imageDraw("t.kpx", -1, 0, &rect, false), 1);  // begins left of the picture: it moves along
  EXPECT_EQ(rect, (Bounds{100, 100, 4, 2}));
  EXPECT_EQ(pixel(100, 100), shown(200 - 200 + int((1000000 + 100) % 3)));
  EXPECT_EQ(pixel(101, 100), shown(0));
  EXPECT_EQ(pixel(104, 100), shown((1000000 + 104) % 3));  // nothing after the picture's three columns
}

TEST_F(ImageTest, AColourThatIsCutOffIsNoColour) {
  writeText("cut.clut", std::string(1 + 2 * 4 + 3, '\x40'));
  ASSERT_NE(clutLoad("cut.clut"), nullptr);
  EXPECT_EQ(clutLoad("cut.clut")->count, 2);
}

TEST_F(ImageTest, AnImageWidgetTakesThePicturesSizeAndShowsItsOtherOneWhileHighlighted) {
  writeClut("c.clut", 240);
  writeKpx("a.kpx", 5, 4, "c.clut");
  writeKpx("b.kpx", 9, 8, "c.clut");
  ASSERT_TRUE(
      load("flags: 16bit\npage: {width: 720, height: 480, type: group, start: other, children: [\n"
           "  {x: 10, y: 10, type: image, name: i, src: a.png, highlightSrc: b.kpx, up: other},\n"
           "  {name: other, down: i}]}"));
  EXPECT_EQ(widget("i")->bounds, (Bounds{10, 10, 5, 4}));  // for good
  EXPECT_EQ(pixel(10, 10), yCrCbToRgb(widenPixel16(4 << 10 | 16 << 5 | 16)));
  key("Down");
  EXPECT_EQ(pixel(14, 13), yCrCbToRgb(widenPixel16(uint16_t((16 + 52 / 2) >> 2 << 10 | 16 << 5 | 16))));
  EXPECT_EQ(pixel(15, 10), 0x008700u);  // cut to the widget
}

}  // namespace
