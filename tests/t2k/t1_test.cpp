#include "t2k/t1.h"

#include <gtest/gtest.h>

#include <string>

#include "t2k/fontbuilder.h"
#include "t2k/openfont.h"

namespace {

// Operators by their bytes; those of two bytes with 12 in front.
constexpr int kVmoveto = 4, kRlineto = 5, kHlineto = 6, kVlineto = 7, kRrcurveto = 8, kClosepath = 9, kCallsubr = 10;
constexpr int kReturn = 11, kHsbw = 13, kEndchar = 14, kRmoveto = 21, kHmoveto = 22, kVhcurveto = 30, kHvcurveto = 31;
constexpr int kSeac = 6, kSbw = 7, kDiv = 12, kCallothersubr = 16, kPop = 17, kSetcurrentpoint = 33;

Bytes Op(std::initializer_list<int> numbersThenOperator) { return Type1Builder::Program(numbersThenOperator); }
Bytes Escaped(std::initializer_list<int> numbers, int code) {
  Bytes program;
  for (int v : numbers) program.Add(Type1Builder::Number(v));
  return program.U8(12).U8(code);
}
Bytes Join(std::initializer_list<Bytes> parts) {
  Bytes all;
  for (const Bytes& part : parts) all.Add(part);
  return all;
}

std::string Describe(const GlyphClass* glyph) {
  std::string text;
  int contour = 0;
  for (int i = 0; i < glyph->pointCount + 2; ++i) {
    if (i == glyph->pointCount) text += "| ";
    text += std::to_string(glyph->oox[i]) + "," + std::to_string(glyph->ooy[i]);
    if (i < glyph->pointCount && !glyph->onCurve[i]) text += "*";
    text += ' ';
    if (contour < glyph->contourCount && glyph->ep[contour] == i && ++contour < glyph->contourCount) text += "/ ";
  }
  text.pop_back();
  return text;
}

std::string OutlineOf(OpenFont& f, int index) {
  uint16_t aw;
  int err = 0;
  std::string text;
  tsi_Enter(f.mem, &err, [&] {
    const GlyphHolder glyph(GetGlyphByIndex(f.font, index, false, &aw));
    text = Describe(glyph.get());
  });
  return err ? "error " + std::to_string(err) : text;
}

// Runs a program after "20 500 hsbw".
std::string Outline(const Bytes& program, const std::vector<Bytes>& subrs = {}, const std::string& privateHead = "") {
  Type1Builder builder;
  builder.subrs = subrs;
  builder.privateHead += privateHead;
  builder.glyphs = {{"A", Join({Op({20, 500, kHsbw}), program, Op({kEndchar})})}};
  OpenFont f(builder.Build(), kFontType1);
  return f.t ? OutlineOf(f, 0) : "error " + std::to_string(f.err);
}

const Bytes kBox =
    Join({Op({10, 0, kRmoveto}), Op({700, kVlineto}), Op({100, kHlineto}), Op({0, -700, kRlineto}), Op({kClosepath})});

Type1Builder SmallFont() {
  Type1Builder builder;
  builder.glyphs = {{".notdef", Join({Op({0, 250, kHsbw}), Op({kEndchar})})},
                    {"A", Join({Op({20, 500, kHsbw}), kBox, Op({kEndchar})})},
                    {"acute", Join({Op({40, 300, kHsbw}), Op({600, kVmoveto}), Op({50, kVlineto}), Op({60, kHlineto}),
                                    Op({kClosepath}), Op({kEndchar})})},
                    {"Aacute", Join({Op({20, 510, kHsbw}), Escaped({40, 130, 200, 65, 194}, kSeac)})}};
  return builder;
}

constexpr const char* kBoxPoints = "30,0 30,700 130,700 130,0 | 0,0 500,0";

TEST(Type1, OpensInEveryForm) {
  Type1Builder builder = SmallFont();
  const auto outline = [](const Bytes& bytes, bool throughCallback = false) {
    OpenFont f(bytes, kFontType1, throughCallback);
    return f.t ? OutlineOf(f, 1) : "error " + std::to_string(f.err);
  };
  EXPECT_EQ(outline(builder.Build()), kBoxPoints);
  EXPECT_EQ(outline(builder.Build(), true), kBoxPoints);
  EXPECT_EQ(outline(builder.BuildPC()), kBoxPoints);
  builder.mark = "-|";
  builder.lenIV = 0;
  EXPECT_EQ(outline(builder.Build()), kBoxPoints);
  builder.hexadecimal = true;
  EXPECT_EQ(outline(builder.Build()), kBoxPoints);
}

TEST(Type1, SegmentsComeOutInPlace) {
  Type1Builder builder = SmallFont();
  Bytes bytes = builder.BuildPC();
  const Bytes plain = builder.Build();
  auto length = uint32_t(bytes.size());
  ASSERT_EQ(ExtractPureT1FromPCType1(bytes.data(), &length), bytes.data());
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + length), plain);

  Bytes wrongMark = Bytes().U8(128).U8(1).U32(0).U8(7);
  length = 7;
  EXPECT_EQ(ExtractPureT1FromPCType1(wrongMark.data(), &length), nullptr);
  Bytes tooLong = Bytes().U8(128).U8(1).U32(0x05000000).U8(7);
  length = 7;
  EXPECT_EQ(ExtractPureT1FromPCType1(tooLong.data(), &length), nullptr);
}

TEST(Type1, WhatMustBeThere) {
  EXPECT_EQ(OpenFont(Bytes().Text("%!PS no private part"), kFontType1).err, 10030);
  Bytes cut = SmallFont().Build();
  cut.resize(cut.size() - 140);  // within the last program
  EXPECT_EQ(OpenFont(cut, kFontType1).err, 10030);
  Type1Builder longName = SmallFont();
  longName.glyphs[1].first = std::string(63, 'n');
  EXPECT_EQ(OpenFont(longName.Build(), kFontType1).err, 0);
  longName.glyphs[1].first += 'n';
  EXPECT_EQ(OpenFont(longName.Build(), kFontType1).err, 10030);
}

TEST(Type1, CodesByStandardNamesOrByItsOwnArray) {
  Type1Builder builder = SmallFont();
  OpenFont standard(builder.Build(), kFontType1);
  EXPECT_EQ(T2K_GetGlyphIndex(standard.t, 65), 1);
  EXPECT_EQ(T2K_GetGlyphIndex(standard.t, 194), 2);
  EXPECT_EQ(standard.font->T1->charCode[3], 65535);
  EXPECT_EQ(T2K_GetGlyphIndex(standard.t, 65535), 0);
  EXPECT_EQ(T2K_GetGlyphIndex(standard.t, 66), 0);

  builder.encoding =
      "/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\n"
      "dup 7 /Aacute put\ndup 9 /A put\ndup 10 /A put\nreadonly def\n";
  OpenFont own(builder.Build(), kFontType1);
  EXPECT_EQ(T2K_GetGlyphIndex(own.t, 7), 3);
  EXPECT_EQ(T2K_GetGlyphIndex(own.t, 9), 1);
  EXPECT_EQ(T2K_GetGlyphIndex(own.t, 10), 0);  // the first entry of a name counts
  EXPECT_EQ(T2K_GetGlyphIndex(own.t, 194), 0);
  EXPECT_EQ(own.font->T1->adobeCode[1], 9);
}

TEST(Type1, MetricsFromTextAndFromLetters) {
  const auto metricsOf = [](const Type1Builder& builder) {
    OpenFont f(builder.Build(), kFontType1);
    std::vector<int32_t> m(6);
    GetFontMetrics(f.font, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5]);
    m.push_back(GetUPEM(f.font));
    m.push_back(GetMaxPoints(f.font));
    return m;
  };
  Type1Builder builder = SmallFont();
  EXPECT_EQ(metricsOf(builder), (std::vector<int32_t>{750, -250, 0, 510, 65536, 0, 1000, 4}));
  builder.glyphs[1].first = "f";
  builder.glyphs[2].first = "g";
  EXPECT_EQ(metricsOf(builder), (std::vector<int32_t>{700, 600, 900, 510, 65536, 0, 1000, 4}));
  // An angle of -30 degrees is 30 * 1143 = 34290, of 102943 in 255 steps the 85th: half.
  builder.head += "/em 2000 def /ascent 900 def /descent 300 def /ItalicAngle -30 def\n";
  const std::vector<int32_t> m = metricsOf(builder);
  EXPECT_EQ((std::vector<int32_t>{m[0], m[1], m[2], m[6]}), (std::vector<int32_t>{900, -300, 800, 2000}));
  EXPECT_EQ(m[5], -32768);
  builder.glyphs[0].second = Join({Op({0, -250, kHsbw}), Op({kEndchar})});
  EXPECT_EQ(metricsOf(builder)[3], 510);  // the negative width isn't the widest
}

TEST(Type1, TheThirdNumberOfTheMatrixShears) {
  Type1Builder builder = SmallFont();
  builder.head = "%!PS\n/FontMatrix [0.001 0 2.5e-4 0.001 0 0] readonly def\n";
  OpenFont f(builder.Build(), kFontType1);
  EXPECT_EQ(f.font->T1->italicShear, 16384);
  f.SetSize(1000.0 / 64);  // 15.6 pixels: scales as 16, by 1.024
  ASSERT_TRUE(f.Render(1, 0, kT2KByIndex | kT2KKeepGlyph));
  EXPECT_EQ(f.t->glyph->y[1], 717);
  EXPECT_EQ(f.t->glyph->x[1], 31 + 179);
  EXPECT_EQ(f.t->glyph->x[0], 31);
  // An accented character leans in its parts and again as a whole: 31 + 179 + 179; and (41 + 154, 614) goes by the
  // rounded offset (128, 192) and leans by 202 more.
  ASSERT_TRUE(f.Render(3, 0, kT2KByIndex | kT2KKeepGlyph));
  EXPECT_EQ(f.t->glyph->x[1], 389);
  EXPECT_EQ(f.t->glyph->x[4], 525);
  EXPECT_EQ(f.t->glyph->y[4], 806);
}

TEST(Type1, PathOperators) {
  EXPECT_EQ(Outline(kBox), kBoxPoints);
  EXPECT_EQ(Outline(Join({Op({100, kVmoveto}), Op({5, kHmoveto}), Op({1, 2, 3, 4, 5, 6, kRrcurveto}), Op({kClosepath}),
                          Op({1, 2, 3, 4, kVhcurveto}), Op({1, 2, 3, 4, kHvcurveto}), Op({kClosepath})})),
            "25,100 26,102* 29,106* 34,112 / 34,112 34,113* 36,116* 40,116 41,116* 43,119* 43,123 | 0,0 500,0");
  // A contour that is left open ends with the glyph.
  EXPECT_EQ(Outline(Op({5, 6, kRlineto})), "20,0 25,6 | 0,0 500,0");
  EXPECT_EQ(Outline(Escaped({3, 4, 700, 8}, kSbw)), "| -3,0 697,0");
  EXPECT_EQ(Outline({}), "| -20,0 480,0");
}

TEST(Type1, NumbersDivisionAndTheFullStack) {
  EXPECT_EQ(Outline(Join({Op({-107, 108, kRlineto}), Op({1131, -1131, kRlineto}), Op({-108, 20000, kRlineto})})),
            "20,0 -87,108 1044,-1023 936,18977 | 0,0 500,0");
  EXPECT_EQ(Outline(Join({Escaped({-7, 2}, kDiv), Escaped({9, 0}, kDiv), Op({kRlineto})})), "20,0 17,0 | 0,0 500,0");
  // 31 numbers, a 32nd for the subroutine, a 33rd that is dropped.
  Bytes crowd;
  for (int i = 0; i < 31; ++i) crowd.Add(Type1Builder::Number(i + 1));
  const Bytes line = Join({Op({kRlineto}), Op({kReturn})});
  EXPECT_EQ(Outline(Join({crowd, Op({0, 77, kCallsubr})}), {line}), "20,0 21,2 | 0,0 500,0");
}

TEST(Type1, SubroutinesTenDeepAndNoDeeper) {
  std::vector<Bytes> chain;
  for (int i = 0; i < 11; ++i) chain.push_back(Join({Op({1, kHlineto}), Op({i + 1, kCallsubr}), Op({kReturn})}));
  EXPECT_EQ(Outline(Op({0, kCallsubr}), chain), "20,0 21,0 22,0 23,0 24,0 25,0 26,0 27,0 28,0 29,0 30,0 | 0,0 500,0");
  EXPECT_EQ(Outline(Join({Op({99, kCallsubr}), Op({-1, kCallsubr}), kBox}), chain), kBoxPoints);
  // endchar within a subroutine ends the glyph.
  EXPECT_EQ(Outline(Join({Op({0, kCallsubr}), kBox}), {Op({kEndchar})}), "| -20,0 480,0");
  // A program that calls itself over and over runs out of steps.
  Bytes bomb;
  for (int i = 0; i < 200; ++i) bomb.Add(Op({0, kCallsubr}));
  EXPECT_EQ(Outline(Op({0, kCallsubr}), {bomb}), "error 10030");
}

TEST(Type1, FlexAddsSixPoints) {
  const std::vector<Bytes> subrs = {Join({Escaped({3, 0}, kCallothersubr), Escaped({}, kPop), Escaped({}, kPop),
                                          Escaped({}, kSetcurrentpoint), Op({kReturn})}),
                                    Join({Escaped({0, 1}, kCallothersubr), Op({kReturn})}),
                                    Join({Escaped({0, 2}, kCallothersubr), Op({kReturn})})};
  const auto point = [](int dx, int dy) { return Join({Op({dx, dy, kRmoveto}), Op({2, kCallsubr})}); };
  EXPECT_EQ(Outline(Join({Op({0, kVmoveto}), Op({1, kCallsubr}), point(50, 0), point(-30, 1), point(20, 2),
                          point(10, 3), point(10, -3), point(20, -2), point(20, -1), Op({50, 120, 0, 0, kCallsubr}),
                          Op({7, kVlineto}), Op({kClosepath})}),
                    subrs),
            "20,0 40,1* 60,3* 70,6 80,3* 100,1* 120,0 120,7 | 0,0 500,0");
}

TEST(Type1, HintReplacementGivesItsSubroutineBack) {
  const std::vector<Bytes> subrs = {{}, {}, {}, {}, Join({Op({9, kHlineto}), Op({kReturn})})};
  EXPECT_EQ(Outline(Join({Escaped({4, 1, 3}, kCallothersubr), Escaped({}, kPop), Op({kCallsubr})}), subrs),
            "20,0 29,0 | 0,0 500,0");
  EXPECT_EQ(Outline(Escaped({1, 2, 2, 77}, kCallothersubr)), "error 10030");
}

TEST(Type1, MastersBlend) {
  const std::string weights = "/WeightVector [0.25 0.5 0.25 ] def\n";
  // 100 + 40 * 0.5 + 8 * 0.25 and -50 + 10 * 0.5 + 3 * 0.25, each product rounded by itself.
  const Bytes blend = Join(
      {Escaped({100, -50, 40, 8, 10, 3, 6, 15}, kCallothersubr), Escaped({}, kPop), Escaped({}, kPop), Op({kRlineto})});
  EXPECT_EQ(Outline(blend, {}, weights), "20,0 142,-44 | 0,0 500,0");
  EXPECT_EQ(Outline(Escaped({100, 40, 8, 3, 15}, kCallothersubr), {}, weights), "error 10030");
}

TEST(Type1, AccentsAreComposites) {
  OpenFont f(SmallFont().Build(), kFontType1);
  f.SetSize(1000.0 / 64);
  T2KMatrix matrix{1000 << 16, 0, 0, 1000 << 16};
  T2K_NewTransformation(f.t, true, 72, 72, &matrix, &f.err);
  ASSERT_TRUE(f.Render(3, 0, kT2KByIndex | kT2KKeepGlyph));
  const GlyphClass* glyph = f.t->glyph;
  ASSERT_EQ(glyph->contourCount, 2);
  EXPECT_EQ(glyph->curveType, 3);
  EXPECT_EQ(glyph->x[0], 30 * 64);
  // The accent's own left edge is at 40, its bearing; it goes to the base's bearing and 130 more.
  EXPECT_EQ(glyph->x[4], 150 * 64);
  EXPECT_EQ(glyph->y[4], 800 * 64);
  EXPECT_EQ(f.t->xAdvanceWidth16Dot16, 510 << 16);
}

}  // namespace
