// Bitmaps and colour tables.
#include <gtest/gtest.h>

#include <array>

#include "gfx/halt.h"
#include "gfx/pixel/pixelmodel.h"

namespace {

TEST(Bitmap, EraseFillsRowsAndNothingElse) {
  Random random(1);
  Palette palette(random, 200);
  const hsGColor color{0x80FF, 0xFFFF, 0x1234, 0x9ABC};
  // Premultiplied by 0x81: 0xFF -> 0x80, 0x12 -> 9, 0x9A -> 0x4D.
  const uint32_t expected[] = {Join16(0x80 >> 2, 9 >> 3, 0x4D >> 3), palette.Nearest(0xFF, 0x12, 0x9A), 0x80};
  const uint8_t configs[] = {hsGBitmap::kConfig_RGB16, hsGBitmap::kConfig_Index8, hsGBitmap::kConfig_Alpha8};
  for (int i = 0; i < 3; ++i) {
    for (int width : {1, 7, 8, 16, 17, 33}) {
      Surface surface(configs[i], width, 3, random, &palette), model(surface);
      surface.bitmap.Erase(color);
      for (int y = 0; y < 3; ++y)
        for (int x = 0; x < width; ++x) model.Set(x, y, expected[i]);
      EXPECT_EQ(surface, model) << i << " " << width;
    }
  }
}

TEST(Bitmap, EraseRefusesInItsOrder) {
  Random random(2);
  ReturnOnHalt halt;
  hsGBitmap empty(hsGBitmap::kConfig_ARGB32);
  empty.Erase({});  // no area: neither the image nor the config matters
  empty.fWidth = empty.fHeight = 5;
  empty.Erase({});  // reported, without a halt
  EXPECT_TRUE(ReturnOnHalt::Reports().empty());

  Surface deep(hsGBitmap::kConfig_RGB32, 4, 4, random), before(deep);
  EXPECT_THROW(deep.bitmap.Erase({}), hsException);
  EXPECT_EQ(ReturnOnHalt::Reports().back().rfind("unknown config", 0), 0u);
  EXPECT_EQ(deep, before);
  Surface bare(hsGBitmap::kConfig_Index8, 4, 4, random);
  EXPECT_EQ(AssertOf([&] { bare.bitmap.Erase({}); }), "need colortable");
  EXPECT_EQ(ReportOf([] { hsGBitmap::PixelSize(7); }), "throw error: 4");
}

TEST(Bitmap, AddressesAreChecked) {
  Random random(3);
  Surface surface(hsGBitmap::kConfig_RGB16, 5, 4, random);
  EXPECT_EQ(surface.bitmap.GetAddr16(4, 3), surface.bitmap.Row<uint16_t>(3) + 4);
  EXPECT_EQ(AssertOf([&] { surface.bitmap.GetAddr16(5, 0); }), "bad XY");
  EXPECT_EQ(AssertOf([&] { surface.bitmap.GetAddr16(0, 4); }), "bad XY");
  EXPECT_EQ(AssertOf([&] { surface.bitmap.GetAddr32(0, 0); }), "pixelSize mismatch");
}

TEST(Bitmap, KeepsItsTableOnlyWhileItHasAPalette) {
  const auto table = hsMake<hsGColorTable>();
  {
    hsGBitmap a(hsGBitmap::kConfig_Index8);
    a.SetColorTable(table.get());
    hsGBitmap b = a;
    EXPECT_EQ(table->RefCount(), 3);
    b = *&b;
    EXPECT_EQ(table->RefCount(), 3);
    b.SetConfig(hsGBitmap::kConfig_Alpha8);
    EXPECT_FALSE(b.fColorTable);
    a.SetFlags(0xFF);
    EXPECT_EQ(a.fFlags, 7);
  }
  EXPECT_EQ(table->RefCount(), 1);
}

TEST(Bitmap, OnlyBitmapsWithAKeyAreEverEqual) {
  hsGBitmap a(hsGBitmap::kConfig_Index8), b = a;
  EXPECT_FALSE(hsGBitmap::Equal(a, a));
  a.SetFlags(hsGBitmap::kHasTransparent);
  b.SetFlags(hsGBitmap::kHasTransparent);
  b.fImage = &b;  // pixels don't count
  EXPECT_TRUE(hsGBitmap::Equal(a, b));
  b.fOwnerWord = 1;
  EXPECT_FALSE(hsGBitmap::Equal(a, b));
  b.fOwnerWord = 0;
  b.fTransparentIndex = 1;
  EXPECT_FALSE(hsGBitmap::Equal(a, b));
}

TEST(ColorTable, NearestIndexIsTheFirstOfTheNearest) {
  Random random(4);
  for (uint32_t count : {0u, 1u, 16u, 256u}) {
    Palette palette(random, count);
    if (count == 16) {  // duplicates
      for (uint32_t i = 8; i < 16; ++i) palette.colors[i] = palette.colors[i - 8];
      palette.table->SetColors(0, 16, palette.colors.data());
    }
    const uint8_t* inverse = palette.table->GetInverseTable();
    for (int cell = 0; cell < 4096; ++cell)
      ASSERT_EQ(inverse[cell], count ? palette.Nearest(cell / 256 * 16, cell / 16 % 16 * 16, cell % 16 * 16) : 0)
          << cell;
  }
}

TEST(ColorTable, ChangesDropTheInverseUnlessItIsFixed) {
  const hsGColor32 black[2] = {0, 0}, blackWhite[2] = {0, 0xFFFFFF};
  const hsGColor white{0, 0xFFFF, 0xFFFF, 0xFFFF};
  hsGColorTable table;
  table.SetCount(2);
  table.SetColors(0, 2, black);
  EXPECT_EQ(table.ColorToIndex(white), 0);
  table.SetColors(0, 2, blackWhite);
  EXPECT_EQ(table.ColorToIndex(white), 1);
  table.SetCount(2);  // no change
  EXPECT_EQ(*table.IndexToColor(1), 0xFFFFFFu);

  std::array<uint8_t, 4096> given;
  given.fill(77);
  hsGColorTable fixed(given.data());
  fixed.SetCount(2);
  fixed.SetColors(0, 2, blackWhite);
  EXPECT_EQ(fixed.ColorToIndex(white), 77);

  ReturnOnHalt halt;
  table.SetCount(300);
  EXPECT_EQ(table.GetCount(), 256u);
  EXPECT_TRUE(ReturnOnHalt::Reports().empty());
  EXPECT_EQ(AssertOf([&] { table.SetColors(255, 2, blackWhite); }), "bad params in ColorTable::SetColors");
  EXPECT_EQ(AssertOf([&] { table.IndexToColor(256); }), "bad IndexToColor param");
}

TEST(ColorTable, DefaultPalettes) {
  hsGColorTable cube, cube2, fast;
  cube.SetDefaultCube();
  cube2.SetDefaultCube();
  EXPECT_TRUE(hsGColorTable::Equal(&cube, &cube2));
  EXPECT_FALSE(hsGColorTable::Equal(&cube, &fast));
  const std::pair<int, hsGColor32> entries[] = {
      {0, 0xFF000000},   {1, 0xFF000033},   {6, 0xFF003300},   {36, 0xFF330000},  {215, 0xFFFFFFFF}, {216, 0xFF190000},
      {219, 0xFF191900}, {221, 0xFF001919}, {245, 0xFF00E5E5}, {246, 0xFF111111}, {247, 0xFF222222}, {255, 0xFFEEEEEE}};
  for (auto [index, color] : entries) EXPECT_EQ(*cube.IndexToColor(uint32_t(index)), color) << index;

  fast.SetDefault332();
  EXPECT_EQ(*fast.IndexToColor(0x25), 0xFF242455u);  // 001 001 01
  EXPECT_EQ(*fast.IndexToColor(0xFF), 0xFFFFFFFFu);
  EXPECT_EQ(fast.ColorToIndex({0, 0xFFFF, 0, 0x4000}), 0xE1);  // the cell's bits, cut: no search
}

}  // namespace
