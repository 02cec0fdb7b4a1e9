// Pictures from the author's file to the player's screen.
#include "engine/images/imagedraw.h"
#include "engine/images/imageload.h"
#include "host/color.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/png.h"
#include "kpgfixture.h"

namespace {

using ImageCommandTest = KpgTest;

// What an 8-bit screen shows of a colour 0xRRGGBB.
uint32_t onScreen(uint32_t rgb) { return yCrCbToRgb(rgbToYCrCb(rgb << 8)); }

constexpr uint32_t kProgramme = 0x008700;  // what the previewer shows for transparent

const char* const kPage =
    "flags: 8bit\npage: {width: 720, height: 480, type: group, children: [{type: image, src: p.png}]}";

// 239 colours that the player can distinguish, black and white among them.
std::vector<uint32_t> manyColors() {
  std::vector<uint32_t> colors = {0x000000, 0xFFFFFF};
  for (uint32_t r = 0; r < 6; ++r)
    for (uint32_t g = 0; g < 7; ++g)
      for (uint32_t b = 0; b < 6 && colors.size() < 239; ++b)
        if ((r || g || b) && !(r == 5 && g == 6 && b == 5)) colors.push_back(r * 51 << 16 | g * 42 << 8 | b * 51);
  return colors;
}

TEST_F(ImageCommandTest, APictureOf239ColoursShowsExactlyAndItsHolesShowTheProgramme) {
  const std::vector<uint32_t> colors = manyColors();
  ASSERT_EQ(colors.size(), 239u);
  const int width = 61, height = 47;
  std::vector<uint32_t> pixels;
  for (uint32_t i = 0; i < uint32_t(width * height); ++i) {
    const uint32_t alpha = i % 7 == 3 ? 127 : i % 5 == 1 ? 128 : 255;  // from half on a pixel is opaque
    pixels.push_back(alpha << 24 | colors[i * 31 % 239]);
  }
  writePngWithAlpha("p.png", width, height, pixels);
  for (const char* dither : {"", " --dither"}) {
    ASSERT_EQ(kpg(std::string("image p.png -o p.kpx") + dither), 0) << err;
    ASSERT_TRUE(load(kPage));
    for (int i = 0; i < width * height; ++i) {
      const uint32_t expected = pixels[size_t(i)] >> 31 ? onScreen(pixels[size_t(i)] & 0xFFFFFF) : kProgramme;
      ASSERT_EQ(pixel(i % width, i / width), expected) << i << dither;
    }
  }
  const auto table = readClutFile("p.clut");
  ASSERT_EQ(table.size(), 240u);
  EXPECT_EQ(table[235], rgbToYCrCb(0));
  EXPECT_EQ(table[236], rgbToYCrCb(0xFFFFFF00));
  EXPECT_EQ(table[237], 0u);
}

TEST_F(ImageCommandTest, ABackgroundTakesThePlaceOfTransparency) {
  writePngWithAlpha("p.png", 3, 1, {0x00FF0000, 0x80FF0000, 0xFFFF0000});
  ASSERT_EQ(kpg("image p.png -o p.kpx --background '#0000FF'"), 0) << err;
  ASSERT_TRUE(load(kPage));
  EXPECT_EQ(pixel(0, 0), onScreen(0x0000FF));
  EXPECT_EQ(pixel(1, 0), onScreen(0x80007F));
  EXPECT_EQ(pixel(2, 0), onScreen(0xFF0000));
  EXPECT_EQ(kpg("image p.png -o p.kpx --background red"), 1);
  EXPECT_NE(err.find("'red' is no colour #RRGGBB"), std::string::npos) << err;
}

TEST_F(ImageCommandTest, AGivenTableIsNamedAndItsTransparentEntryIsNoColour) {
  // Entry 237 has what the picture asks for, but there it means transparent.
  std::vector<uint32_t> table(239, rgbToYCrCb(0xFF000000));
  table[5] = rgbToYCrCb(0x00F00000);
  table[237] = rgbToYCrCb(0x00FF0000);
  table[238] = 0;  // a colour like any other here: black is nearer to nothing below
  std::filesystem::create_directory("tables");
  writeClutFile("tables/t.clut", table);
  writePngWithAlpha("p.png", 3, 1, {0xFF00FF00, 0x00000000, 0xFFFF1010});
  ASSERT_EQ(kpg("image p.png -o p.kpx --clut tables/t.clut"), 0) << err;
  KpxFile made = parseKpx("p.kpx", readFile("p.kpx"));
  EXPECT_EQ(made.pixels, (std::vector<uint8_t>{5, 237, 0}));
  EXPECT_EQ(made.clut, "t.clut");

  ASSERT_EQ(kpg("image p.png -o p.kpx --clut tables/t.clut --clut-name tables/t.clut"), 0) << err;
  ASSERT_TRUE(load(kPage));
  EXPECT_EQ(pixel(0, 0), yCrCbToRgb(table[5]));
  EXPECT_EQ(pixel(1, 0), kProgramme);

  ASSERT_EQ(kpg("image p.png -o p.kpx --clut tables/t.clut --clut-name ''"), 0) << err;
  EXPECT_EQ(parseKpx("p.kpx", readFile("p.kpx")).clut, "");
  writeText("empty.clut", "x");
  EXPECT_EQ(kpg("image p.png -o p.kpx --clut empty.clut"), 1);
  EXPECT_EQ(err, "empty.clut: there is no colour in it\n");
}

TEST_F(ImageCommandTest, WhatThePlayersMemoryCannotHoldIsRefusedToTheByte) {
  // 524,288 bytes, less 148 of the heap, 12 of the block, 33 of the picture and 5 of its name: 524,090 = 10 x 52,409.
  writePng("most.png", 10, 52409, std::vector<uint32_t>(524090, 0x102030));
  ASSERT_EQ(kpg("image most.png -o p.kpx"), 0) << err;
  EXPECT_TRUE(imagePreload("p.kpx"));
  writePng("more.png", 10, 52410, std::vector<uint32_t>(524100, 0x102030));
  EXPECT_EQ(kpg("image more.png -o q.kpx"), 1);
  EXPECT_TRUE(err.starts_with("more.png: 10 x 52410 pixels take 524152 bytes; the player has 524140 ")) << err;
  EXPECT_FALSE(std::filesystem::exists("q.kpx"));
  writeKpxFile("q.kpx", {10, 52410, "", std::vector<uint8_t>(524100)});
  EXPECT_FALSE(imagePreload("q.kpx"));
}

TEST_F(ImageCommandTest, OneTableServesSeveralPictures) {
  writePng("a.png", 2, 1, {0x102030, 0x405060});
  writePng("b.png", 2, 1, {0xA0B0C0, 0x405060});
  ASSERT_EQ(kpg("clut a.png b.png -o t.clut"), 0) << err;
  const auto table = readClutFile("t.clut");
  EXPECT_EQ(table[0], rgbToYCrCb(0x10203000));
  EXPECT_EQ(table[1], rgbToYCrCb(0x40506000));
  EXPECT_EQ(table[2], rgbToYCrCb(0xA0B0C000));
  const std::pair<const char*, const char*> refused[] = {
      {"clut -o t.clut", "kpg clut: takes either pictures or --standard\n"},
      {"clut a.png --standard -o t.clut", "kpg clut: takes either pictures or --standard\n"},
      {"clut a.png --colors 2 -o t.clut", "--colors: Value 2 not in range"},
      {"image a.png b.png -o p.kpx", "kpg image: takes one picture and -o, or --list\n"},
      {"image a.png", "kpg image: takes one picture and -o, or --list\n"},
      {"image a.png -o p.kpx --clut t.clut --colors 9", "--clut excludes --colors"}};
  for (const auto& [arguments, message] : refused) {
    EXPECT_EQ(kpg(arguments), 1) << arguments;
    EXPECT_NE(err.find(message), std::string::npos) << arguments << "\n" << err;
  }
  EXPECT_EQ(kpg("image --list t.clut none.png"), 1);
  EXPECT_EQ(err, "none.png: No such file or directory\n");
}

TEST_F(ImageCommandTest, AListSaysWhatFilesHold) {
  writePngWithAlpha("p.png", 3, 2, {0xFF102030, 0xFF102030, 0, 0xFFFFFFFF, 0, 0});
  ASSERT_EQ(kpg("image p.png -o p.kpx"), 0);
  ASSERT_EQ(kpg("image --list p.png p.kpx p.clut"), 0) << err;
  const std::string start =
      "p.png: PNG, 3 x 2 pixels, 2 colours, 3 pixels transparent\n"
      "p.kpx: picture, 3 x 2 pixels, colour table 'p.clut', 2 colours, 3 pixels transparent, 56 bytes of picture "
      "memory\n"
      "p.clut: colour table, 240 colours\n"
      "    0  #";
  EXPECT_EQ(out.substr(0, start.size()), start);
  EXPECT_NE(out.find("\n  236  #FFFFFF  0xEB808000\n  237  #008700  0x00000000  transparent\n"), std::string::npos);

  EXPECT_NE(out.find("\n    1  #000000  0x10808000  up to 235\n"), std::string::npos) << out;
  EXPECT_NE(out.find("\n  238  #000000  0x10808000  up to 239\n4 different colours\n"), std::string::npos) << out;
  EXPECT_EQ(out.find('\x1b'), std::string::npos);  // swatches are for terminals

  writeText("photo.png", "\xFF\xD8\xFF\xE0 and so on");
  EXPECT_EQ(kpg("image photo.png -o photo.kpx"), 1);
  EXPECT_EQ(err, "photo.png: this is a JPEG picture; only PNG and GIF pictures can be read\n");
  writeText("bad.kpx", std::string("\0\0\0\2\0\2\0\1\0\0\0\0abc", 15));
  EXPECT_EQ(kpg("image --list bad.kpx"), 1);
  EXPECT_EQ(err, "bad.kpx: its pixels are cut off\n");
}

}  // namespace
