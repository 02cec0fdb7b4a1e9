#include "t2k/truetype.h"

#include <gtest/gtest.h>

#include "t2k/fontbuilder.h"
#include "t2k/openfont.h"

namespace {

// Reads one glyph of a font made of that glyph alone.
std::string ReadGlyph(const Bytes& data, int aw, int lsb, int glyphDataFormat = 0) {
  SfntBuilder builder;
  builder.glyphDataFormat = glyphDataFormat;
  builder.AddGlyph(data, aw, lsb);
  OpenFont f(builder.Build());
  uint16_t advance = 0;
  const std::string text = f.Outline(0, &advance);
  EXPECT_TRUE(f.err || advance == aw);
  return text;
}

TEST(SimpleGlyph, PointsAndWhatBreaksTheFormat) {
  struct Case {
    const char* rule;
    Bytes glyph;
    int aw, lsb;
    const char* expected;
  };
  const Case cases[] = {
      {"empty", {}, 250, 0, "| 0,0 250,0"},
      // Flags 0x33 twice by repetition (short positive x, y unchanged), 0x25 (long x, short negative y), 0x10 (x
      // unchanged, long y, off the curve).
      {"deltas, repeats and short forms",
       Bytes().Words({1, 5, -20, 300, 0, 3, 0}).Add({0x3B, 1, 5, 0x10, 5, 7, 1, 32, 20, 1, 44}), 400, 5,
       "5,0 12,0 300,-20 300,280* | 0,0 400,0"},
      {"a repeat past the last point stops", Bytes().Words({1, 0, 0, 2, 0, 1, 0}).Add({0x3B, 200, 1, 1}), 10, 0,
       "1,0 2,0 | 0,0 10,0"},
      {"moves to its side bearing", SimpleGlyph({{{30, 0}, {40, 50}, {60, 0, false}}}), 100, -7,
       "-7,0 3,50 23,0* | 0,0 100,0"},
      {"a contour may be empty", Bytes().Words({2, 1, 0, 1, 0, 0, 0, 0}).Add({0x37, 1, 2}), 10, 1, "1,2 / | 0,0 10,0"},
      {"no contours", Bytes().Words({0, 0, 0, 0, 0}), 10, 0, "error 10030"},
      {"ends fall", Bytes().Words({2, 0, 0, 0, 0, 5, 3, 0}), 10, 0, "error 10030"},
      {"32,001 points", Bytes().Words({1, 0, 0, 0, 0, 32000, 0}), 10, 0, "error 10006"},
      {"ends too early", Bytes().Words({1, 0, 0, 0, 0, 100, 0}), 10, 0, "error 10030"},
      {"instructions likewise", Bytes().Words({1, 0, 0, 0, 0, 0, 9999}), 10, 0, "error 10030"},
      {"component -1", CompositeGlyph(Bytes().Words({2, -1, 0})), 10, 0, "error 10005"},
      {"entry cut short", CompositeGlyph(Bytes().Words({0x23, 1, 0})), 10, 0, "error 10030"},
  };
  for (const Case& c : cases) EXPECT_EQ(ReadGlyph(c.glyph, c.aw, c.lsb), c.expected) << c.rule;
  EXPECT_EQ(ReadGlyph(SimpleGlyph({{{0, 0}}}), 10, 0, 1), "error 10030") << "unknown format";
}

TEST(SimpleGlyph, InstructionsAreSkippedOrKept) {
  SfntBuilder builder;
  builder.AddGlyph(Bytes().Words({1, 1, 0, 1, 0, 0, 3}).Add({9, 8, 7, 0x37, 1, 2}), 10, 1);
  OpenFont f(builder.Build());
  EXPECT_EQ(f.Glyph(0)->hintFragment, nullptr);
  const GlyphHolder with = f.Glyph(0, true);
  ASSERT_EQ(with->hintLength, 3);
  EXPECT_EQ(with->hintFragment[2], 7);
  EXPECT_EQ(PointsOf(with.get()), "1,2 | 0,0 10,0");
}

TEST(CompositeGlyph, KeepsItsEntriesRawHoweverMany) {
  Bytes entries;
  for (int i = 0; i < 700; ++i) entries.Words({0x22, 0, 0x0101});  // 2,100 words, beyond the first buffer
  entries.Words({0x83, 0, 1, 2, 3, 4, 5, 6});
  SfntBuilder builder;
  builder.AddGlyph(CompositeGlyph(entries), 10, 0);
  OpenFont f(builder.Build());
  const GlyphHolder glyph = f.Glyph(0);
  EXPECT_EQ(glyph->contourCount, -1);
  ASSERT_EQ(glyph->componentSize, 2108);
  EXPECT_EQ(glyph->componentData[2107], 6);
  builder.AddGlyph(CompositeGlyph(Bytes().Words({0x102, 0, 0x0101, 2}).Add({9, 8})), 10, 0);
  OpenFont withHints(builder.Build());
  const GlyphHolder hinted = withHints.Glyph(1, true);
  ASSERT_EQ(hinted->hintLength, 2);
  EXPECT_EQ(hinted->hintFragment[1], 8);
  EXPECT_EQ(PointsOf(glyph.get()), "| 0,0 10,0");
}

// The packed layout: each range's first and last word, every quadrant, both escapes.
TEST(PackedGlyph, PointRecords) {
  struct Case {
    Bytes record;
    int dx, dy;
    const char* kind;  // "*" off the curve
  };
  const Case cases[] = {
      {Bytes().Words({0x0000, -300, 77}), -300, 77, ""},  // escape, on
      {Bytes().Words({0x4000, 12, -5}), 12, -5, "*"},     // escape, off
      {Bytes().Words({0x8000}), 0, 0, ""},                // no escape
      {Bytes().Words({0xC000}), 0, 0, ""},                // nor this
      {Bytes().Words({0x0001}), 0, 0, "*"},               // X 1
      {Bytes().Words({2199}), 1099, 0, "*"},              // X 2199, a alone at its highest
      {Bytes().Words({0x8000 | 2198}), -1099, 0, ""},     // (-a, -b)
      {Bytes().Words({0x4000 | 7}), 0, 7, ""},            // (-b, a)
      {Bytes().Words({0xC000 | 7}), 0, -7, ""},           // (b, -a)
      {Bytes().Words({2200}), 0, 1, "*"},                 // n 0: a 1, b 1
      {Bytes().Words({0xC000 | 2303}), 1, -2, ""},        // n 103: a 2, b 2
      {Bytes().Words({0x4000 | 12603}), -51, 102, ""},    // n 10403: a 102, b 102
      {Bytes().Words({12604}).U8(0), 0, 1, "*"},          // n 0: a 1, b 1
      {Bytes().Words({14651}).U8(255), 362, 112, "*"},    // n 524287: a 725, b 112
      {Bytes().Words({0x8000 | 14652, 0}), 0, 0, ""},     // n 0: a 0, b 0
      {Bytes().Words({0x3FFF, 0xFFFF}), 5329, 651, ""},   // n 113508351: a 10658, b 651
  };
  for (const Case& c : cases) {
    const Bytes glyph = Bytes().U16(1).U8(1).Words({0, 0, 0}).Add(c.record);  // a first point at the origin
    const std::string point = std::to_string(c.dx) + "," + std::to_string(c.dy) + c.kind;
    EXPECT_EQ(ReadGlyph(glyph, 10, std::min(c.dx, 0), 2000), "0,0 " + point + " | 0,0 10,0");
  }
  // Without points the left edge is wherever the side bearing says.
  EXPECT_EQ(ReadGlyph(Bytes().U16(0), 44, 9, 2000), "| 0,0 44,0");
  EXPECT_EQ(ReadGlyph(Bytes().Words({-1, 0x102, 0, 0}), 44, 0, 2000), "| 0,0 44,0") << "no instructions follow";
  EXPECT_EQ(ReadGlyph(Bytes().U16(1).Add({0xFF, 0xFF, 0x7F}), 44, 0, 2000), "error 10006");
  EXPECT_EQ(ReadGlyph(Bytes().U16(1).U8(3).U16(4), 44, 0, 2000), "error 10030");
}

TEST(PackedGlyph, ContourSizesInSevenBitGroups) {
  Bytes glyph;
  glyph.U16(2).U8(0x80).U8(0x01).U8(0);  // 129 points and 1
  for (int i = 0; i < 130; ++i) glyph.U16(4);
  SfntBuilder builder;
  builder.glyphDataFormat = 2000;
  builder.AddGlyph(glyph, 10, 8);
  OpenFont f(builder.Build());
  const GlyphHolder holder = f.Glyph(0);
  EXPECT_EQ(holder->ep[0], 128);
  EXPECT_EQ(holder->sp[1], 129);
  EXPECT_EQ(holder->pointCount, 130);
  EXPECT_EQ(holder->oox[0], 8);  // moved from 2
  EXPECT_EQ(holder->oox[129], 266);
}

TEST(Font, OpensTheSameFromMemoryAndThroughACallback) {
  for (bool throughCallback : {false, true}) {
    OpenFont f(TwoLetters().Build(), kFontTypeSfnt, throughCallback);
    EXPECT_EQ(
        (std::vector{f.err, int(GetUPEM(f.font)), int(GetNumGlyphs(f.font)), int(GetSfntGlyphIndex(f.font, 'i'))}),
        (std::vector{0, 1000, 3, 2}));
    uint16_t aw;
    const GlyphHolder glyph(GetGlyphByCharCode(f.font, 'A', false, &aw));
    EXPECT_EQ(PointsOf(glyph.get()), "50,0 50,700 450,700 450,0 | 0,0 600,0");
  }
}

TEST(Font, FontTypes) {
  const Bytes bytes = TwoLetters().Build();
  EXPECT_NE(OpenFont(bytes, kFontTypeSfntInMemory).font, nullptr);
  EXPECT_EQ(OpenFont(bytes, 3).err, 10031);
  EXPECT_EQ(OpenFont({}, kFontTypeSfnt).err, 10030);
}

TEST(Font, ACollectionHoldsSeveral) {
  SfntBuilder second = TwoLetters();
  second.upem = 2000;
  Bytes file;
  file.Text("ttcf").U32(0x10000).U32(2).U32(20);
  const Bytes first = TwoLetters().Build(20);
  const auto where = uint32_t(20 + first.size());
  file.U32(where).Add(first).Add(second.Build(where));
  EXPECT_EQ(GetUPEM(OpenFont(file, kFontTypeSfnt, false, 0).font), 1000);
  EXPECT_EQ(GetUPEM(OpenFont(file, kFontTypeSfnt, true, 1).font), 2000);
  EXPECT_EQ(OpenFont(file, kFontTypeSfnt, false, 2).err, 10030);
  EXPECT_EQ(OpenFont(file, kFontTypeSfnt, false, -1).err, 10030);
}

TEST(Font, TablesThatSayMoreOrLess) {
  SfntBuilder builder = TwoLetters();
  builder.numberOfHMetrics = 1;  // the last advance repeats, the bearings don't
  builder.longLoca = false;      // offsets in pairs
  builder.tables["maxp"] = Bytes().U32(0x10000).Words({3, 4, 1, 9, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  OpenFont f(builder.Build());
  EXPECT_EQ(GetAdvance(f.font, 0), 500);
  EXPECT_EQ(f.Outline(2), "10,0 10,500 290,500 290,0 | 0,0 500,0");
  EXPECT_EQ(f.font->hmtx->lsb[1], 50);
  EXPECT_EQ(GetMaxPoints(f.font), 9);  // of simple or composite glyphs
}

TEST(Font, MissingTablesMatterWhereTheyAreNeeded) {
  const auto errorWithout = [](const char* tag) {
    SfntBuilder builder = TwoLetters();
    builder.tables[tag] = {};
    OpenFont f(builder.Build());
    if (f.err) return f.err;
    f.SetSize(20);
    if (f.err) return f.err;
    f.Render('A', 0, 0);
    return f.err;
  };
  for (const char* tag : {"head", "hhea", "maxp", "hmtx", "loca", "glyf", "cmap"}) {
    EXPECT_EQ(errorWithout(tag), 10030) << tag;
  }
  EXPECT_EQ(errorWithout("kern"), 0);
}

TEST(Font, StylingChangesMetricsAndGlyphs) {
  T2KStyling styling{};
  styling.params[2] = 30;
  styling.StyleMetricsFunc = [](hmtxClass* hmtx, tsiMemObject*, int upem, const int32_t* params) {
    for (int i = 0; i < hmtx->numGlyphs; ++i) hmtx->aw[i] = uint16_t(hmtx->aw[i] + params[2] + upem);
  };
  styling.StyleFunc = [](GlyphClass* glyph, tsiMemObject*, int, const int32_t* params) {
    for (int i = 0; i < glyph->pointCount; ++i) glyph->ooy[i] = int16_t(glyph->ooy[i] + params[2]);
  };
  OpenFont f(TwoLetters().Build(), kFontTypeSfnt, false, 0, &styling);
  uint16_t aw;
  EXPECT_EQ(f.Outline(1, &aw), "50,30 50,730 450,730 450,30 | 0,0 1630,0");
  EXPECT_EQ(aw, 1630);
}

TEST(FontMetrics, TheCaretSlopeDoublesWhileBothFit) {
  const auto caretOf = [](int rise, int run) {
    SfntBuilder builder = TwoLetters();
    builder.caretRise = rise;
    builder.caretRun = run;
    OpenFont f(builder.Build());
    int32_t ascent, descent, lineGap, maxAdvance, outRise, outRun;
    GetFontMetrics(f.font, &ascent, &descent, &lineGap, &maxAdvance, &outRise, &outRun);
    EXPECT_EQ((std::vector{ascent, descent, lineGap, maxAdvance}), (std::vector{800, -200, 90, 1234}));
    return std::pair(outRise, outRun);
  };
  EXPECT_EQ(caretOf(1, 0), std::pair(32768, 0));
  EXPECT_EQ(caretOf(1000, -5000), std::pair(8000, -40000));
  EXPECT_EQ(caretOf(0, 0), std::pair(0, 0));
}

// Which map is read, by what it makes of one character.
TEST(Cmap, ChoosesByRounds) {
  const auto format0 = [](int glyph) {
    Bytes map;
    map.Words({0, 262, 0});
    for (int i = 0; i < 256; ++i) map.U8(i == 'A' ? glyph : 0);
    return map;
  };
  const auto format6 = [](int glyph) { return Bytes().Words({6, 12, 0, 'A', 1, glyph}); };
  const auto format4 = [](int glyph) { return SfntBuilder::CmapFormat4({{'A', glyph}}); };
  const Bytes format2 = Bytes().Words({2, 8, 0, 0});
  using Records = std::vector<std::pair<std::pair<int, int>, Bytes>>;
  const std::pair<Records, int> cases[] = {
      {{{{1, 0}, format0(1)}, {{3, 1}, format4(2)}}, 2},
      {{{{0, 3}, format4(1)}, {{1, 0}, format0(2)}}, 2},  // format 0 before a foreign format 4
      {{{{0, 3}, format4(1)}, {{1, 0}, format6(2)}}, 2},
      {{{{3, 0}, format4(1)}, {{0, 3}, format4(2)}}, 1},
      {{{{3, 1}, format2}, {{3, 0}, format4(2)}}, 2},
      {{{{3, 1}, format2}, {{3, 0}, format2}}, 10021},
      {{}, 10030},
  };
  for (const auto& [records, glyph] : cases) {
    SfntBuilder builder = TwoLetters();
    builder.tables["cmap"] = SfntBuilder::CmapTable(records);
    OpenFont f(builder.Build());
    EXPECT_EQ(T2K_GetGlyphIndex(f.t, 'A') + f.mem->failedCode, glyph);
  }
}

TEST(Cmap, FormatsHaveEndsAndHoles) {
  Bytes format0 = Bytes().Words({0, 262, 0});
  for (int i = 0; i < 256; ++i) format0.U8(i ^ 1);
  // Two segments by glyph array with delta 5, one of them to a zero entry; one segment by delta alone.
  Bytes format4 = Bytes().Words({4, 44, 0, 6, 0, 0, 0});
  format4.Words({20, 40, 0xFFFF, 0});  // ends
  format4.Words({18, 30, 0xFFFF});     // starts
  format4.Words({5, 100, 1});          // deltas
  format4.Words({6, 0, 0});            // ranges: the array lies 6 bytes after the first of them
  format4.Words({7, 0, 65534});        // glyphs of 18, 19, 20
  struct Case {
    int platform;
    Bytes map;
    std::vector<std::pair<uint32_t, int>> glyphs;
  };
  const Case cases[] = {
      {1, format0, {{255, 254}, {256, 0}}},
      {1, Bytes().Words({6, 14, 0, 300, 2, 8, 9}), {{299, 0}, {300, 8}, {301, 9}, {302, 0}}},
      {3,
       format4,
       {{17, 0}, {18, 12}, {19, 5}, {20, 3}, {21, 0}, {30, 130}, {40, 140}, {41, 0}, {0xFFFF, 0}, {0x10000, 0}}},
  };
  for (const Case& c : cases) {
    SfntBuilder builder = TwoLetters();
    builder.tables["cmap"] = SfntBuilder::CmapTable({{{c.platform, c.platform == 3}, c.map}});
    OpenFont f(builder.Build());
    for (const auto& [code, glyph] : c.glyphs) EXPECT_EQ(T2K_GetGlyphIndex(f.t, code), glyph) << code;
  }
}

TEST(Cmap, FiguresAreTheGlyphsOfTheDigits) {
  SfntBuilder builder = TwoLetters();
  builder.characters['0'] = 1;
  builder.characters['9'] = 2;
  OpenFont f(builder.Build());
  EXPECT_EQ((std::vector{IsFigure(f.font, 0), IsFigure(f.font, 1), IsFigure(f.font, 2)}),
            (std::vector{false, true, true}));
  EXPECT_EQ(f.font->cmap->figIndex[1], 65535);
}

int KernOf(const Bytes& table, int left, int right, bool variable = false) {
  SfntBuilder builder = TwoLetters();
  builder.tables["kern"] = table;
  if (variable) builder.tables["fvar"] = Bytes().U32(0);
  OpenFont f(builder.Build());
  if (f.err) return f.err;
  int32_t x, y;
  GetKernPair(f.font, uint16_t(left), uint16_t(right), &x, &y);
  EXPECT_EQ(y, 0);
  return x;
}

TEST(Kern, FindsPairsInBothLayouts) {
  const Bytes pairs = SfntBuilder::KernTable({{1, 1, -50}, {1, 2, 30}, {2, 1, -7}, {300, 1, 9}});
  EXPECT_EQ(KernOf(pairs, 1, 1), -50);
  EXPECT_EQ(KernOf(pairs, 1, 2), 30);
  EXPECT_EQ(KernOf(pairs, 300, 1), 9);
  EXPECT_EQ(KernOf(pairs, 2, 2), 0);
  EXPECT_EQ(KernOf(pairs, 1, 2, true), 0);  // with fvar

  Bytes longLayout;
  longLayout.U32(0x10000).U32(1).U32(22).U16(0).U16(0).Words({1, 0, 0, 0, 1, 2, -33});
  EXPECT_EQ(KernOf(longLayout, 1, 2), -33);
}

TEST(Kern, OnlyTheFirstSubTableCounts) {
  const Bytes second = Bytes().Words({0, 20, 1, 1, 0, 0, 0, 1, 2, 44});
  EXPECT_EQ(KernOf(Bytes().Words({0, 2, 0, 8, 0x0201, 0}).Add(second), 1, 2), 0);  // the first has format 2
  EXPECT_EQ(KernOf(Bytes().Words({0, 1, 0, 20, 1, 900, 0, 0, 0}), 1, 2), 10030);   // more pairs than there are
}

}  // namespace
