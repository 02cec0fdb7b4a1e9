// The registry's own reading of font files: maps, names, embedded bitmaps.
#include "gfx/text/hssfnt.h"
#include "gfx/text/textfixture.h"

namespace {

uint16_t MapOne(const Bytes& map, uint16_t code) {
  uint16_t glyph = 0xABCD;
  hsSfnt::MapChars(map, 2, &code, true, &glyph);
  return glyph;
}

void ExpectMap(const Bytes& map, const std::map<uint16_t, uint16_t>& glyphs) {
  for (const auto& [code, glyph] : glyphs) EXPECT_EQ(MapOne(map, code), glyph) << code;
}

TEST(Sfnt, MapsByFormat) {
  Bytes format0 = Bytes().Words({0, 0x106, 0});
  for (int i = 0; i < 256; ++i) format0.U8(i / 2);
  ExpectMap(format0, {{0x41, 0x20}, {0x141, 0}});
  format0[3] = 7;
  EXPECT_EQ(AssertOf([&] { MapOne(format0, 0x41); }), "bad length");

  const Bytes format6 = Bytes().Words({6, 16, 0, 0x30, 3, 7, 8, 9});
  ExpectMap(format6, {{0x2F, 0}, {0x32, 9}, {0x33, 0}});

  // Segments 0x20..0x22 by delta, 0x30..0x31 by the glyph array (of which one is 0), and the last.
  const Bytes format4 = Bytes().Words({4,     0,    0,      6, 0, 0, 0,  //
                                       0x22,  0x31, 0xFFFF, 0,           // ends
                                       0x20,  0x30, 0xFFFF,              // starts
                                       -0x1D, 5,    1,                   // deltas
                                       0,     4,    0,                   // range offsets
                                       0,     40});
  ExpectMap(format4, {{0x21, 4}, {0x25, 0}, {0x30, 0}, {0x31, 45}, {0xFFFF, 0}});

  // High byte 0x81 has sub-header 1: second bytes 0x40 and 0x41, delta 10, glyphs after the sub-headers.
  Bytes format2 = Bytes().Words({2, 0, 0});
  for (int i = 0; i < 256; ++i) format2.U16(i == 0x81 ? 8 : 0);
  format2.Words({0, 0, 0, 0}).Words({0x40, 2, 10, 2}).Words({3, 0});
  ExpectMap(format2, {{0x8140, 13}, {0x8141, 0}, {0x8142, 0}, {0x8240, 0}});

  EXPECT_EQ(MapOne(Bytes().Words({12, 0, 0}), 5), 0xABCD);
  uint16_t out;
  EXPECT_EQ(AssertOf([&] { hsSfnt::MapChars(format6, 3, "abc", true, &out); }), "odd length for unicode text");
}

TEST_F(TextTest, FontsAreFoundByName) {
  SfntBuilder font = BlockFont();
  Bytes name = Bytes().Words({0, 3, 6 + 3 * 12});
  name.Words({1, 0, 0, 1, 6, 0}).Words({1, 0, 0, 4, 9, 6}).Words({3, 1, 0x409, 6, 8, 15});
  name.Text("BlocksBlocks Go");
  for (char c : std::string("PSnm")) name.U8(0).U8(c);
  font.tables["name"] = name;
  const uint32_t id = Register(font.Build());
  EXPECT_EQ(hsGFontRegistry::FindFontID(kFontName_Family, "bLOCKS"), id);
  EXPECT_EQ(hsGFontRegistry::FindFontID(kFontName_Style, "Blocks"), 0u);
  EXPECT_EQ(hsGFontRegistry::FindFontID(kFontName_Any, "PSNM"), id);
  char buffer[16] = {};
  EXPECT_EQ(hsGFontRegistry::GetFontName(id, kFontName_Any, buffer), 9u);
  EXPECT_STREQ(buffer, "Blocks Go");
  hsGFontScaler* scaler = hsGFontRegistry::GetFontByID(id);
  scaler->Acquire();
  EXPECT_EQ(ReportOf([&] { scaler->ReadData(scaler->GetDataSize() - 4, 5, buffer); }), "bad param: 0");
  scaler->Release();

  EXPECT_EQ(hsGFontRegistry::GetFontByID(999)->FontID(), fFont);
  static const char* const kPreferred[] = {"No Such", "Blocks", nullptr};
  hsGFontRegistry::SetPreferredNames(kPreferred);
  EXPECT_EQ(hsGFontRegistry::GetFontByID(999)->FontID(), id);
  hsGFontRegistry::SetPreferredNames(nullptr);
  hsGFontRegistry::UnregisterFont(id);
  EXPECT_FALSE(hsGFontRegistry::IsFontID(id));
  EXPECT_EQ(hsGFontRegistry::FindFontID(kFontName_Family, "blocks"), 0u);
}

// ---- embedded bitmaps

struct BitmapStrike {
  int ppem;
  Bytes subtable;  // for glyphs 1 and 2
};

class BitmapFontTest : public TextTest {
 protected:
  void UseFont(const std::vector<BitmapStrike>& strikes, const Bytes& data) {
    const int headers = 8 + 0x30 * int(strikes.size());
    Bytes location = Bytes().U32(0x20000).U32(uint32_t(strikes.size()));
    Bytes arrays;
    for (const BitmapStrike& strike : strikes) {
      location.U32(uint32_t(headers) + uint32_t(arrays.size())).U32(0).U32(1).U32(0);
      location.U8(9).U8(-3);
      for (int i = 2; i < 24; ++i) location.U8(0);
      location.Words({1, 2}).U8(strike.ppem).U8(strike.ppem).U8(1).U8(1);
      arrays.Words({1, 2}).U32(8).Add(strike.subtable);
    }
    location.Add(arrays);
    SfntBuilder font = BlockFont();
    Bytes map = Bytes().Words({0, 0x106, 0});
    for (int i = 0; i < 256; ++i) map.U8(i == 'a' ? 1 : i == 'b' ? 2 : 0);
    font.tables["cmap"] = SfntBuilder::CmapTable({{{1, 0}, map}});
    font.tables["bloc"] = location;
    font.tables["bdat"] = data;
    fAttr.SetFontID(Register(font.Build(), kFontFormat_BitmapOnly));
  }
};

TEST_F(BitmapFontTest, PackedRowsMoveOnByTheirWidth) {
  // 9 x 3 pixels: a full row, its two ends, a full row.
  const Bytes data = Bytes().U32(0).U8(3).U8(9).U8(1).U8(3).U8(11).U8(0xFF).U8(0xC0).U8(0x7F).U8(0xE0);
  UseFont({{16, Bytes().Words({1, 2}).U32(0).U32(4).U32(13).U32(13)}}, data);
  fAttr.SetTextSize(16_px);
  Draw("aa", 5_px, 20_px);
  ExpectBlocks({{6, 17, 15, 18},
                {6, 18, 7, 19},
                {14, 18, 15, 19},
                {6, 19, 15, 20},  //
                {17, 17, 26, 18},
                {17, 18, 18, 19},
                {25, 18, 26, 19},
                {17, 19, 26, 20}});
  EXPECT_EQ(Width("ax"), 11_px);  // no bitmap, no advance
  hsPoint top, bottom;
  fAttr.MeasureText(0, nullptr, &top, &bottom);
  EXPECT_EQ(top.fY, -9 * kFixed1);
  EXPECT_EQ(bottom.fY, 3_px);
}

TEST_F(BitmapFontTest, TheNearestStrikeServesTheLaterOfTwo) {
  const auto strike = [](int advance) {
    // All glyphs alike, metrics in the location table, packed bits.
    return Bytes().Words({2, 5}).U32(0).U32(1).U8(2).U8(4).U8(0).U8(2).U8(advance).U8(0).U8(0).U8(0);
  };
  UseFont({{8, strike(10)}, {16, strike(24)}}, Bytes().U8(0xF9));
  fAttr.SetTextSize(12_px);
  EXPECT_EQ(Width("a"), 18_px);
  fAttr.SetTextSize(8_px);
  EXPECT_EQ(Width("b"), 10_px);
  Draw("b", 5_px, 20_px);
  ExpectBlocks({{5, 18, 9, 19}, {5, 19, 6, 20}, {8, 19, 9, 20}});

  // Twice the size, each pixel four.
  fAttr.SetTextSize(32_px);
  Draw("a", 5_px, 20_px);
  ExpectBlocks({{5, 16, 13, 18}, {5, 18, 7, 20}, {11, 18, 13, 20}});

  UseFont({{10, strike(24)}}, Bytes().U8(0xF9));
  fAttr.SetTextSize(10_px);
  EXPECT_EQ(Width("a"), 24 * 10 * 6554);  // by the rounded tenth of a pixel
}

TEST_F(BitmapFontTest, ASizeBetweenRoundsTheGlyphsSizeAndNotItsCorner) {
  // 3 x 1 pixels at (1, -1), the middle one clear. Half as large again they reach from 1.5 to 6 and from -1.5 to 0: 5
  // x 2.
  UseFont({{16, Bytes().Words({2, 5}).U32(0).U32(1).U8(1).U8(3).U8(1).U8(1).U8(4).U8(0).U8(0).U8(0)}},
          Bytes().U8(0xA0));
  fAttr.SetTextSize(24_px);
  Draw("a", 5_px, 20_px);
  ExpectBlocks({{7, 19, 9, 21}, {10, 19, 12, 21}});
}

TEST_F(BitmapFontTest, ListedGlyphsHaveTheirOwnPlaces) {
  // Glyph 2 alone is listed, at offset 1 of the images: one row of 5 pixels, 1 above the baseline.
  const Bytes listed = Bytes().Words({5, 5}).U32(4).U32(1).U8(1).U8(5).U8(0).U8(1).U8(6).U8(0).U8(0).U8(0);
  UseFont({{16, Bytes(listed).U32(1).Words({2, 1})}}, Bytes().U32(0).U8(0).U8(0xB8));
  fAttr.SetTextSize(16_px);
  EXPECT_EQ(Width("ab"), 6_px);
  Draw("ab", 5_px, 20_px);
  ExpectBlocks({{5, 19, 6, 20}, {7, 19, 10, 20}});
}

TEST_F(BitmapFontTest, DamagedTablesDrawNothing) {
  const Bytes bad[] = {Bytes().Words({1, 2}).U32(0xFFFFFFF0).U32(0xFFFFFFFF).U32(3),
                       Bytes().Words({4, 2}).U32(0).U32(0xFFFFFFFF).Words({1, 0}), Bytes().Words({5, 7}),
                       Bytes().Words({9, 1}).U32(0)};
  for (const Bytes& subtable : bad) {
    UseFont({{10, subtable}}, Bytes().U8(1));
    Draw("ab", 5_px, 20_px);
    ExpectBlocks({});
  }
}

}  // namespace
