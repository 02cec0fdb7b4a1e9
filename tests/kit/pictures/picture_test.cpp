// Reading PNG and GIF pictures, whole and broken ones.
#include "kit/pictures/picture.h"

#include <gtest/gtest.h>
#include <png.h>

#include "kit/errors.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/png.h"

namespace {

struct PngKind {
  int bits, type, interlace;
  std::vector<uint8_t> row;        // the same for each of two rows
  std::vector<uint32_t> expected;  // of one row
};

std::vector<uint8_t> makePng(uint32_t width, const PngKind& kind) {
  std::vector<uint8_t> file;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_set_write_fn(
      png, &file,
      [](png_structp p, png_bytep bytes, size_t size) {
        auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(p));
        out->insert(out->end(), bytes, bytes + size);
      },
      nullptr);
  png_set_IHDR(png, info, width, 2, kind.bits, kind.type, kind.interlace, 0, 0);
  png_color colors[4] = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {250, 0, 0}};
  uint8_t alphas[2] = {255, 64};
  if (kind.type == PNG_COLOR_TYPE_PALETTE) {
    png_set_PLTE(png, info, colors, 4);
    png_set_tRNS(png, info, alphas, 2, nullptr);
  }
  png_write_info(png, info);
  uint8_t* rows[2] = {const_cast<uint8_t*>(kind.row.data()), const_cast<uint8_t*>(kind.row.data())};
  png_write_image(png, rows);
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

std::string errorOf(const std::vector<uint8_t>& bytes) {
  try {
    isGif(bytes) ? decodeGif("f", bytes) : decodePng("f", bytes);
    return "";
  } catch (const KitError& e) {
    return e.what();
  }
}

TEST(Picture, EveryKindOfPngComesAsEightBitsWithAlpha) {
  const PngKind kinds[] = {
      {1, PNG_COLOR_TYPE_GRAY, 0, {0x40}, {0xFF000000, 0xFFFFFFFF, 0xFF000000}},
      {2, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_ADAM7, {0x34}, {0xFF010203, 0xFFFA0000, 0x40040506}},
      {16,
       PNG_COLOR_TYPE_GRAY_ALPHA,
       0,
       {1, 0, 0xFF, 0xFF, 0x80, 0x80, 0, 0, 0xFF, 0xFF, 0x80, 0x80},
       {0xFF010101, 0x00808080, 0x80FFFFFF}},
      {8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_ADAM7, {1, 2, 3, 4, 5, 6, 7, 8, 9}, {0xFF010203, 0xFF040506, 0xFF070809}},
  };
  for (const PngKind& kind : kinds) {
    const Picture picture = decodePng("f", makePng(3, kind));
    EXPECT_EQ(picture.width, 3u);
    std::vector<uint32_t> expected = kind.expected;
    expected.insert(expected.end(), kind.expected.begin(), kind.expected.end());
    EXPECT_EQ(picture.pixels, expected) << kind.type;
  }
}

// Every number of colours at which the form changes, and one that hashes of colours meet in.
TEST(Picture, WhatIsWrittenIsReadBackWhateverTheNumberOfColors) {
  for (const uint32_t colors : {1u, 2u, 3u, 4u, 5u, 16u, 17u, 256u, 257u, 540u}) {
    std::vector<uint32_t> pixels(9 * 60);
    for (uint32_t i = 0; i < pixels.size(); ++i) pixels[i] = 0xFF000000 | ((i % colors) * 0x400040u % 0xFFFFFF);
    for (const PngForm form : {PngForm::smallest, PngForm::trueColor}) {
      const std::vector<uint8_t> file = encodePng(9, 60, pixels, form);
      EXPECT_EQ(decodePng("f", file).pixels, pixels) << colors;
      EXPECT_EQ(file[25], form == PngForm::smallest && colors <= 256 ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB);
      EXPECT_TRUE(isKitPng(file));
    }
  }
}

TEST(Picture, ABrokenPngIsNamedAndNeverHalfRead) {
  const std::vector<uint8_t> good = makePng(3, {8, PNG_COLOR_TYPE_RGB, 0, {1, 2, 3, 4, 5, 6, 7, 8, 9}, {}});
  ASSERT_EQ(errorOf(good), "");
  for (size_t size = 8; size < good.size(); ++size)
    EXPECT_EQ(errorOf({good.begin(), good.begin() + long(size)}), "f: it is cut off") << size;
  for (size_t at : {size_t{8}, size_t{20}, good.size() - 20}) {  // a length, the width, the pixels' check
    std::vector<uint8_t> bad = good;
    bad[at] ^= 0x40;
    EXPECT_TRUE(errorOf(bad).starts_with("f: ")) << at;
  }
}

TEST(Picture, SizesThatNoPictureCanHaveAreRefusedBeforeTheirPixelsAreRead) {
  EXPECT_EQ(errorOf(makePng(70000, {8, PNG_COLOR_TYPE_GRAY, 0, std::vector<uint8_t>(70000), {}})),
            "f: 70000 x 2 pixels are too many; width and height are at most 65535");
  EXPECT_THROW(checkPictureSize("f", 65535, 65535), KitError);
  EXPECT_THROW(checkPictureSize("f", 0, 9), KitError);
  EXPECT_NO_THROW(checkPictureSize("f", 65535, 1));
}

// 3 x 2 with a global table of two greys; a control block makes index 1 transparent; an image of 2 x 1 at (1, 1) with a
// table of its own, indices 0 1; then one that covers all with index 0.
std::vector<uint8_t> smallGif() {
  return {'G', 'I', 'F', '8', '9', 'a', 3, 0, 2, 0, 0x80, 0, 0, 50, 50, 50, 60, 60, 60, 0x21, 0xF9, 4, 1, 0, 0, 1, 0,
          0x2C, 1, 0, 1, 0, 2, 0, 1, 0, 0x80, 10, 20, 30, 40, 50, 60,
          // codes of three bits: clear 4, 0, 1, end 5: 101 001 000 100
          2, 2, 0x44, 0x0A, 0, 0x2C, 0, 0, 0, 0, 3, 0, 2, 0, 0,
          // clear, 0 six times with a clear after each two, end: 100 000 000 100 000 000 100 000 000 101
          2, 4, 0x04, 0x08, 0x10, 0x28, 0, 0x3B};
}

TEST(Picture, AGifGivesItsFirstImageInItsOwnColoursWhereItLies) {
  const Picture picture = decodeGif("f", smallGif());
  EXPECT_EQ(picture.pixels, (std::vector<uint32_t>{0, 0, 0, 0, 0xFF0A141E, 0}));
  const GifSummary summary = summarizeGif("f", smallGif());
  EXPECT_EQ(summary.images, 2);
  EXPECT_EQ(summary.colors, 2);
  EXPECT_EQ(summary.transparent, 1);
}

TEST(Picture, ABrokenGifIsNamed) {
  const std::vector<uint8_t> good = smallGif();
  EXPECT_EQ(errorOf({good.begin(), good.begin() + 8}), "f: a description of its size is cut off");
  EXPECT_EQ(errorOf({good.begin(), good.begin() + 15}), "f: its colour table is cut off");
  EXPECT_EQ(errorOf({good.begin(), good.begin() + 19}), "f: there is no image in it");
  EXPECT_EQ(errorOf({good.begin(), good.begin() + 45}), "f: it is cut off");
  std::vector<uint8_t> bad = good;
  bad[43] = 12;
  EXPECT_EQ(errorOf(bad), "f: bad code size");
}

}  // namespace
