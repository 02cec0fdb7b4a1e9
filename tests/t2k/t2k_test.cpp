#include "t2k/t2k.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "t2k/fontbuilder.h"
#include "t2k/openfont.h"

namespace {

constexpr int kA = 1, kI = 2;
constexpr int kOutline = kT2KByIndex | kT2KKeepGlyph;

std::string ScaledPoints(const T2K* t) { return PointsOf(t->glyph, true); }

TEST(Transformation, SizesAndMetrics) {
  OpenFont f(TwoLetters(), 12);
  const T2K& t = *f.t;
  EXPECT_TRUE(t.is_Identity && t.xPixelsPerEm == 12 && t.numGlyphs == 3 && t.font->preferedPlatformID == 65535);
  // By 12 / 1000, 786 in 16.16.
  EXPECT_EQ((std::vector{t.yAscender, t.yDescender, t.yLineGap, t.xMaxLinearAdvanceWidth, t.xAscender, t.caretDy}),
            (std::vector{800 * 786, -200 * 786, 90 * 786, 1234 * 786, 0, 32768}));
  const T2KMatrix matrix{12 << 16, 0, 0, 12 << 16};
  T2K_NewTransformation(f.t, false, 96, 36, &matrix, &f.err);
  EXPECT_EQ(t.xPixelsPerEm16Dot16, 12 * 87381);  // 96 / 72 cut to 16 bits before it multiplies
  EXPECT_TRUE(t.is_Identity && t.xPixelsPerEm == 16 && t.yPixelsPerEm == 6);
}

TEST(Transformation, WhatRemainsTurnsOutlinesAdvancesAndMetrics) {
  OpenFont f(TwoLetters().Build());
  f.SetMatrix({0, -12 << 16, 12 << 16, 0});  // a quarter turn against the clock
  EXPECT_FALSE(f.t->is_Identity);
  EXPECT_EQ(f.t->t10, 0x10000);
  EXPECT_EQ(f.t->t01, -0x10000);
  EXPECT_EQ(f.t->xAscender, -800 * 786);
  EXPECT_EQ(f.t->yAscender, 0);
  EXPECT_EQ(f.t->yMaxLinearAdvanceWidth, 1234 * 786);
  EXPECT_EQ(f.t->caretDx, -32768);
  ASSERT_TRUE(f.Render(kA, 0, kOutline));
  EXPECT_EQ(ScaledPoints(f.t), "0,38 -538,38 -538,346 0,346 | 0,0 0,448");
  EXPECT_EQ(f.t->xAdvanceWidth16Dot16, 0);
  EXPECT_EQ(f.t->yAdvanceWidth16Dot16, 7 << 16);
  EXPECT_EQ(f.t->yLinearAdvanceWidth16Dot16, 600 * 786);
}

TEST(Render, WhatHasNoBitmap) {
  SfntBuilder builder = TwoLetters();
  OpenFont f(builder, 12);
  ASSERT_TRUE(f.Render(' ', 3, kT2KBitmap | kT2KGridFit));
  EXPECT_EQ(f.t->baseAddr, nullptr);
  EXPECT_EQ(f.t->width, 0);
  EXPECT_EQ(f.t->xAdvanceWidth16Dot16, 6 << 16);
  f.SetSize(0.4);  // below half a pixel everything is zero
  EXPECT_EQ(f.t->t00, 0);
  ASSERT_TRUE(f.Render('A', 3, kT2KBitmap | kT2KGridFit));
  EXPECT_EQ(f.t->width, 0);
  EXPECT_EQ(f.t->xAdvanceWidth16Dot16, 0);

  builder.characters.clear();
  OpenFont unmapped(builder, 12);
  EXPECT_TRUE(unmapped.Render(kA, 3, kT2KBitmap | kT2KByIndex | kT2KGridFit));
  EXPECT_FALSE(unmapped.Render('A', 3, kT2KBitmap));
}

TEST(Render, ScalesByWholePixelsAnEmAndRoundsThePhantoms) {
  SfntBuilder builder = TwoLetters();
  builder.characters['-'] = builder.AddContours({RectContour(-50, -70, 50, 70)}, 100);
  const std::string letter = "38,0 38,538 346,538 346,0 | 0,0 ";
  struct {
    const char* rule;
    double size;
    int code, xFraction, yFraction, cmd;
    std::string points;
    hsFixed advance, linear;
  } const cases[] = {
      {"12 pixels", 12, 'A', 0, 0, 0, letter + "448,0", 7 << 16, 600 * 786},
      {"not rounded", 12, 'A', 0, 0, kT2KNoRounding, letter + "461,0", 461 << 10, 600 * 786},
      {"11.6 scales as 12, its linear advance as 11.6", 11.6, 'A', 0, 0, 0, letter + "448,0", 7 << 16, 600 * 760},
      {"cut toward zero", 12, '-', 0, 0, 0, "-37,-53 -37,54 38,54 38,-53 | 0,0 64,0", 1 << 16, 100 * 786},
      {"the pen's fraction moves points, no phantoms", 12, 'i', 10, 5, 0, "18,-5 18,379 233,379 233,-5 | 0,0 256,0",
       4 << 16, 300 * 786},
  };
  for (const auto& c : cases) {
    OpenFont f(builder, c.size);
    T2K_RenderGlyph(f.t, c.code, c.xFraction, c.yFraction, 0, kT2KKeepGlyph | c.cmd, &f.err);
    EXPECT_EQ(ScaledPoints(f.t), c.points) << c.rule;
    EXPECT_EQ(f.t->xAdvanceWidth16Dot16, c.advance) << c.rule;
    EXPECT_EQ(f.t->xLinearAdvanceWidth16Dot16, c.linear) << c.rule;
  }
}

TEST(Render, CommandsSayWhatIsLeft) {
  OpenFont f(TwoLetters(), 12);
  ASSERT_TRUE(f.Render('A', 0, kT2KBitmap));
  EXPECT_EQ(f.t->glyph, nullptr);
  ASSERT_NE(f.t->baseAddr, nullptr);
  EXPECT_EQ((std::vector{f.t->width, f.t->height, f.t->rowBytes}), (std::vector{6, 9, 1}));
  // The highest crossing is at 539: its low bits go. The lowest x is 39.
  EXPECT_EQ((std::vector{f.t->fLeft26Dot6, f.t->fTop26Dot6}), (std::vector{0, 512}));

  ASSERT_TRUE(f.Render('A', 2, kT2KBitmap | kT2KKeepGlyph));
  EXPECT_EQ(f.t->rowBytes, 6);
  EXPECT_NE(f.t->glyph, nullptr);
  T2K_PurgeMemory(f.t, 0, &f.err);
  EXPECT_EQ(f.t->glyph, nullptr);
  EXPECT_NE(f.t->baseAddr, nullptr);
  T2K_PurgeMemory(f.t, 1, &f.err);
  EXPECT_EQ(f.t->baseAddr, nullptr);
  T2K_PurgeMemory(f.t, 2, &f.err);
  EXPECT_EQ(f.t->hintHandle, nullptr);
  EXPECT_EQ(f.t->ag_xPixelsPerEm, -1);

  ASSERT_TRUE(f.Render('A', 2, kT2KBitmap | kT2KBoundsOnly));
  EXPECT_EQ((std::vector{f.t->width, f.t->height, f.t->rowBytes}), (std::vector{6, 9, 6}));
  EXPECT_EQ(f.t->baseAddr, nullptr);
}

TEST(Composite, PartsLieWhereTheirEntriesSay) {
  const std::string a = "38,0 38,538 346,538 346,0 / ";
  struct {
    const char* rule;
    std::vector<int> entries;
    double size;
    std::string outline;  // 900 wide
    hsFixed advance = 691 << 10;
    int cmd = 0;
  } const cases[] = {
      // 310 is 238.08 and -20 is -15.36: the latter, half a unit added, cuts to -14.
      {"offsets are scaled", {0x23, kA, 0, 0, 3, kI, 310, -20}, 12, a + "246,-14 246,370 461,370 461,-14 | 0,0 691,0"},
      {"and rounded on demand", {0x23, kA, 0, 0, 7, kI, 310, -20}, 12, a + "264,0 264,384 479,384 479,0 | 0,0 691,0"},
      // (-2, 127) is -1 and 98 (-1.036, 98.036).
      {"packed ones are signed", {0x22, kA, 0, 2, kI, 0xFE7F}, 12, a + "7,98 7,482 222,482 222,98 | 0,0 691,0"},
      {"a part alone", {3, kI, 100, 0}, 12, "85,0 85,384 300,384 300,0 | 0,0 691,0"},
      // Point 0 of the part, (8, 0), on point 2 of the result, (346, 538). The packed numbers are unsigned.
      {"points meet", {0x22, kA, 0, 0, kI, 0x0200}, 12, a + "346,538 346,922 561,922 561,538 | 0,0 691,0"},
      {"if they exist", {0x22, kA, 0, 0, kI, 0xC800}, 12, "error 10030"},
      // Half of 13 is 6.5 pixels an em, which scale as 7.
      {"half as large", {0x0A, kI, 0, 0x2000}, 13, "4,0 4,224 130,224 130,0 | 0,0 749,0", 749 << 10},
      {"twice as wide", {0x42, kI, 0, 0x7FFF, 0x4000}, 12, "15,0 15,384 445,384 445,0 | 0,0 691,0"},
      // Against the clock: y from x is 1, x from y is -1.
      {"a quarter turn", {0x82, kI, 0, 0, 0x4000, -0x4000, 0}, 12, "0,8 -384,8 -384,223 0,223 | 0,0 691,0"},
      {"grid fitting rounds the advance", {2, kI, 0}, 12, "8,0 8,384 223,384 223,0 | 0,0 704,0", 11 << 16, kT2KGridFit},
      {"the last part's advance", {0x22, kA, 0, 0x202, kI, 0}, 12, a + "8,0 8,384 223,384 223,0 | 0,0 256,0", 4 << 16},
      {"the first part's", {0x222, kA, 0, 2, kI, 0}, 12, a + "8,0 8,384 223,384 223,0 | 0,0 448,0", 7 << 16},
  };
  for (const auto& c : cases) {
    SfntBuilder builder = TwoLetters();
    Bytes entries;
    for (int word : c.entries) entries.U16(word);
    const int index = builder.AddGlyph(CompositeGlyph(entries), 900, 0);
    OpenFont f(builder, c.size);
    const bool drawn = f.Render(index, 0, kOutline | c.cmd);
    EXPECT_EQ(drawn ? ScaledPoints(f.t) : "error " + std::to_string(f.err), c.outline) << c.rule;
    if (!drawn) continue;
    EXPECT_EQ(f.t->xAdvanceWidth16Dot16, c.advance) << c.rule;
    EXPECT_EQ(f.t->glyph->ep[f.t->glyph->contourCount - 1], f.t->glyph->pointCount - 1) << c.rule;
  }
}

TEST(Composite, TheWholeIsTransformedOnce) {
  SfntBuilder builder = TwoLetters();
  const Bytes entries = Bytes().Words({0x22, kI, 0}).Words({0x8A, kI, 0x6400, 0x2000});
  const int index = builder.AddGlyph(CompositeGlyph(entries), 900, 0);
  const int nested = builder.AddGlyph(CompositeGlyph(Bytes().Words({2, index, 0})), 900, 0);
  OpenFont f(builder.Build());
  f.SetMatrix({0, -12 << 16, 12 << 16, 0});
  const std::string turned = "0,8 -384,8 -384,223 0,223 / 0,81 -192,81 -192,188 0,188 | 0,0 0,691";
  ASSERT_TRUE(f.Render(index, 0, kOutline));
  EXPECT_EQ(ScaledPoints(f.t), turned);
  ASSERT_TRUE(f.Render(nested, 0, kOutline));
  EXPECT_EQ(ScaledPoints(f.t), turned);
  EXPECT_EQ(f.t->t10, 0x10000);
}

TEST(Composite, ThePlaceOfItsBitmapIsInWholePixelsFromItsPen) {
  SfntBuilder builder;
  builder.upem = 64;
  const int box = builder.AddContours({RectContour(0, 0, 8, 12)}, 10);
  const int blank = builder.AddGlyph({}, 10, 3);
  const int index = builder.AddGlyph(CompositeGlyph(Bytes().Words({0x22, box, 0}).Words({0x202, blank, 0})), 10, 0);
  OpenFont f(builder.Build());
  f.SetMatrix({0, -16 << 16, 16 << 16, 0});
  // The blank's pen is at (-47, 0), turned (0, -47). The turned box's crossings reach from x -191 up to y 129.
  ASSERT_TRUE(f.Render(index, 0, kOutline | kT2KBitmap | kT2KNoRounding));
  EXPECT_EQ(ScaledPoints(f.t), "0,0 -192,0 -192,128 0,128 | 0,-47 0,112");
  EXPECT_EQ((std::vector{f.t->fLeft26Dot6, f.t->fTop26Dot6}), (std::vector{-192, 128}));
}

TEST(Composite, NestingAndNumbersHaveBounds) {
  SfntBuilder builder = TwoLetters();
  int last = kI;
  for (int i = 0; i < 17; ++i) last = builder.AddGlyph(CompositeGlyph(Bytes().Words({2, last, 0})), 100, 0);
  const int itself = builder.AddGlyph(CompositeGlyph(Bytes().Words({2, last + 1, 0})), 100, 0);
  // Sixteen levels of forty parts each.
  int wide = 0;
  for (int level = 0; level < 16; ++level) {
    Bytes entries;
    for (int i = 0; i < 40; ++i) entries.Words({i < 39 ? 0x22 : 2, wide, 0});
    wide = builder.AddGlyph(CompositeGlyph(entries), 100, 0);
  }
  const auto render = [&](int index) {
    OpenFont f(builder, 12);
    f.Render(index, 0, kOutline);
    const int err = f.err;
    EXPECT_EQ(f.Close(), 0);
    return err;
  };
  EXPECT_EQ(render(last - 1), 0);  // sixteen deep
  EXPECT_EQ(render(last), 10005);
  EXPECT_EQ(render(itself), 10005);
  EXPECT_EQ(render(wide), 10005);
}

TEST(Errors, EachEndsTheFontAndStays) {
  struct Case {
    int expected;
    void (*fail)(OpenFont&);
  };
  const Case cases[] = {
      {10001, [](OpenFont& f) { T2K_NewTransformation(f.t, true, 72, 72, nullptr, &f.err); }},
      {10002,
       [](OpenFont& f) {
         const T2KMatrix matrix{};
         T2K_NewTransformation(f.t, true, 72, 0, &matrix, &f.err);
       }},
      {10003, [](OpenFont& f) { T2K_RenderGlyph(f.t, 'A', 0, 0, 6, 0, &f.err); }},
      {10004, [](OpenFont& f) { T2K_RenderGlyph(f.t, 'A', 64, 0, 0, 0, &f.err); }},
      {10004, [](OpenFont& f) { T2K_RenderGlyph(f.t, 'A', 0, -1, 0, 0, &f.err); }},
      {10005, [](OpenFont& f) { T2K_RenderGlyph(f.t, 3, 0, 0, 0, kT2KByIndex, &f.err); }},
      {10005, [](OpenFont& f) { T2K_RenderGlyph(f.t, -1, 0, 0, 0, kT2KByIndex, &f.err); }},
  };
  for (const Case& c : cases) {
    OpenFont f(TwoLetters(), 12);
    ASSERT_TRUE(f.Render('A', 3, kT2KBitmap | kT2KKeepGlyph));
    c.fail(f);
    EXPECT_EQ(f.err, c.expected);
    EXPECT_EQ(f.mem->numPointers, 3);  // stream, font and scaler
    EXPECT_EQ(f.t->baseAddr, nullptr);
    EXPECT_FALSE(f.Render('A', 0, 0));
    EXPECT_EQ(f.err, c.expected);
    T2K_PurgeMemory(f.t, 2, &f.err);
    EXPECT_EQ(f.err, c.expected);
    EXPECT_EQ(T2K_GetGlyphIndex(f.t, 'A'), 0);
    EXPECT_EQ(f.Close(), 0);
  }
}

TEST(Errors, StampsAndNulls) {
  OpenFont f(TwoLetters().Build()), g(TwoLetters().Build());
  f.t->stamp2 ^= 1;
  DeleteT2K(std::exchange(f.t, nullptr), &f.err);
  EXPECT_EQ(f.err, 10007);
  EXPECT_EQ(f.Close(), 0);
  g.mem->state ^= 1;
  EXPECT_FALSE(g.Render('A', 0, 0));
  EXPECT_EQ(g.err, 10019);
  int err = 0;
  EXPECT_EQ(NewT2K(nullptr, nullptr, &err), nullptr);
  EXPECT_EQ(err, 10000);
  T2K_RenderGlyph(nullptr, 'A', 0, 0, 0, 0, &err);
  EXPECT_EQ(err, 10000);
  DeleteT2K(nullptr, &err);
  EXPECT_EQ(err, 0);
}

TEST(Measure, SumsAdvancesAndKerningThroughTheCache) {
  SfntBuilder builder = TwoLetters();
  builder.tables["kern"] = SfntBuilder::KernTable({{0, 1, -11}, {1, 2, 30}, {2, 1, -7}});
  OpenFont f(builder, 12);
  const uint16_t text[] = {'A', 'i', 'A'};
  for (int round = 0; round < 2; ++round) {
    int16_t kern[3] = {};
    EXPECT_EQ(T2K_MeasureTextInX(f.t, text, kern, 3), (600 - 11 + 300 + 30 + 600 - 7) * 786);
    EXPECT_EQ((std::vector<int>(kern, kern + 3)), (std::vector{-11, 30, -7}));
  }
  // The first is known, the second isn't and needs the glyph of the first.
  const uint16_t more[] = {'A', 'A', 'i'};
  EXPECT_EQ(T2K_MeasureTextInX(f.t, more, nullptr, 3), (589 + 600 + 330) * 786);
  EXPECT_EQ(T2K_MeasureTextInX(f.t, more, nullptr, 0), 0);
}

// Bytes of a sound font changed at random: whatever happens, it ends with a code and nothing left allocated.
TEST(Damage, ChangedBytesEndInACodeAndNoLeak) {
  std::mt19937 random(8);
  SfntBuilder builder = TwoLetters();
  builder.AddContours({{{0, 0}, {100, 900, false}, {300, 200, false}, {500, 0}}, RectContour(30, 10, 90, 60)}, 520);
  builder.AddGlyph(CompositeGlyph(Bytes().Words({0x23, kA, 5, 5}).Words({0x8A, 3, 0x1020, 0x3000})), 700, 0);
  builder.tables["kern"] = SfntBuilder::KernTable({{0, 1, -11}, {1, 2, 30}});
  int failures = 0;
  for (int round = 0; round < 4000; ++round) {
    builder.glyphDataFormat = round % 4 ? 0 : 2000;
    Bytes bytes = builder.Build();
    for (unsigned i = 0; i <= random() % 6; ++i)
      bytes[random() % bytes.size()] = uint8_t(random() % 3 ? random() : 0xFF);
    if (round % 5 == 0) bytes.resize(random() % bytes.size());
    OpenFont f(bytes, kFontTypeSfnt, round % 2);
    if (f.t) f.SetSize(9 + round % 30);
    for (int glyph = 0; !f.err && glyph < f.t->numGlyphs && glyph < 8; ++glyph) {
      f.Render(glyph, round % 6, kT2KBitmap | kT2KByIndex | (round & 1));
    }
    if (!f.err) f.Render('A', 0, kT2KBitmap);
    failures += f.err != 0;
    EXPECT_TRUE(f.err == 0 || (f.err >= 10000 && f.err <= 10031)) << f.err;
    EXPECT_EQ(f.Close(), 0);
  }
  EXPECT_GT(failures, 1000);
  EXPECT_LT(failures, 3900);
}

}  // namespace
