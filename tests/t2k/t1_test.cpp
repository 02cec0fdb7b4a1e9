#include "t2k/t1.h"

#include <gtest/gtest.h>

#include <string>

#include "t2k/fontbuilder.h"
#include "t2k/openfont.h"

namespace {

Bytes Code(const std::string& text) { return Type1Builder::Program(text); }

// Runs a program after "20 500 hsbw".
std::string Outline(const std::string& program, const std::vector<std::string>& subrs = {},
                    const std::string& privateHead = "") {
  Type1Builder builder;
  for (const std::string& subr : subrs) builder.subrs.push_back(Code(subr));
  builder.privateHead += privateHead;
  builder.glyphs = {{"A", Code("20 500 hsbw " + program + " endchar")}};
  return OpenFont(builder.Build(), kFontType1).Outline(0);
}

const std::string kBox = " 10 0 rmoveto 700 vlineto 100 hlineto 0 -700 rlineto closepath ";
constexpr const char* kBoxPoints = "30,0 30,700 130,700 130,0 | 0,0 500,0";

Type1Builder SmallFont() {
  Type1Builder builder;
  builder.glyphs = {{".notdef", Code("0 250 hsbw endchar")},
                    {"A", Code("20 500 hsbw" + kBox + "endchar")},
                    {"acute", Code("40 300 hsbw 600 vmoveto 50 vlineto 60 hlineto closepath endchar")},
                    {"Aacute", Code("20 510 hsbw 40 130 200 65 194 seac")}};
  return builder;
}

TEST(Type1, OpensInEveryForm) {
  Type1Builder builder = SmallFont();
  const auto outline = [](const Bytes& bytes, bool throughCallback = false) {
    return OpenFont(bytes, kFontType1, throughCallback).Outline(1);
  };
  EXPECT_EQ(outline(builder.Build()), kBoxPoints);
  EXPECT_EQ(outline(builder.Build(), true), kBoxPoints);
  EXPECT_EQ(outline(builder.BuildPC()), kBoxPoints);
  builder.mark = "-|";
  builder.lenIV = 0;
  builder.hexadecimal = true;
  EXPECT_EQ(outline(builder.Build()), kBoxPoints);
}

TEST(Type1, SegmentsComeOutInPlace) {
  Type1Builder builder = SmallFont();
  Bytes bytes = builder.BuildPC();
  auto length = uint32_t(bytes.size());
  ASSERT_EQ(ExtractPureT1FromPCType1(bytes.data(), &length), bytes.data());
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + length), builder.Build());
  for (Bytes bad : {Bytes{128, 1, 0, 0, 0, 0, 7}, Bytes{128, 1, 5, 0, 0, 0, 7}}) {  // a wrong mark; too long
    length = 7;
    EXPECT_EQ(ExtractPureT1FromPCType1(bad.data(), &length), nullptr);
  }
}

TEST(Type1, WhatMustBeThere) {
  EXPECT_EQ(OpenFont(Bytes().Text("%!PS no private part"), kFontType1).err, 10030);
  EXPECT_EQ(OpenFont(Type1Builder().Build(), kFontType1).err, 10030);  // no glyphs
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
  const auto check = [](OpenFont& f, const std::map<uint32_t, int>& glyphs) {
    for (const auto& [code, glyph] : glyphs) EXPECT_EQ(T2K_GetGlyphIndex(f.t, code), glyph) << code;
  };
  Type1Builder builder = SmallFont();
  OpenFont standard(builder.Build(), kFontType1);
  check(standard, {{65, 1}, {194, 2}, {65535, 0}, {66, 0}});
  EXPECT_EQ(standard.font->T1->charCode[3], 65535);

  builder.encoding =
      "/Encoding 256 array\n0 1 255 {1 index exch /.notdef put} for\n"
      "dup 7 /Aacute put\ndup 8 xacute put\ndup 9 /A put\ndup 10 /A put\nreadonly def\n";
  OpenFont own(builder.Build(), kFontType1);
  check(own, {{7, 3}, {8, 0}, {9, 1}, {10, 0}, {194, 0}});  // a name begins with "/", and its first entry counts
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
  builder.head += "/em  2000 def /ascent 900 def /descent 300 def /ItalicAngle -30 def\n";
  builder.glyphs[0].second = Code("0 -250 hsbw endchar");  // the negative width isn't the widest
  const std::vector<int32_t> m = metricsOf(builder);
  EXPECT_EQ((std::vector{m[0], m[1], m[2], m[3], m[5], m[6]}), (std::vector{900, -300, 800, 510, -32768, 2000}));
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

TEST(Type1, Programs) {
  std::string crowd;  // 31 numbers, a 32nd for the subroutine, a 33rd that is dropped
  for (int i = 1; i <= 31; ++i) crowd += std::to_string(i) + " ";
  const std::string weights = "/WeightVector [0.25 0.5 0.25 ] def\n";
  struct Case {
    const char* rule;
    std::string program, outline;
    std::vector<std::string> subrs;
    std::string privateHead;
  };
  const Case cases[] = {
      {"lines", kBox, kBoxPoints, {}, ""},
      {"curves",
       "100 vmoveto 5 hmoveto 1 2 3 4 5 6 rrcurveto closepath 1 2 3 4 vhcurveto 1 2 3 4 hvcurveto closepath",
       "25,100 26,102* 29,106* 34,112 / 34,112 34,113* 36,116* 40,116 41,116* 43,119* 43,123 | 0,0 500,0",
       {},
       ""},
      {"an open contour ends with the glyph", "5 6 rlineto", "20,0 25,6 | 0,0 500,0", {}, ""},
      {"a bearing with a height", "3 4 700 8 sbw", "| -3,0 697,0", {}, ""},
      {"is where its outline begins", "3 4 700 8 sbw 1 2 rlineto", "3,4 4,6 | 0,0 700,8", {}, ""},
      {"nothing", "", "| -20,0 480,0", {}, ""},
      {"numbers of each length",
       "-107 108 rlineto 1131 -1131 rlineto -108 20000 rlineto",
       "20,0 -87,108 1044,-1023 936,18977 | 0,0 500,0",
       {},
       ""},
      {"division", "-7 2 div 9 0 div rlineto", "20,0 17,0 | 0,0 500,0", {}, ""},
      {"the full stack", crowd + "0 77 callsubr", "20,0 21,2 | 0,0 500,0", {"rlineto return"}, ""},
      {"pop in the 32nd place, where a 0 lies",
       crowd + "pop callsubr",
       "20,0 21,2 | 0,0 500,0",
       {"rlineto return"},
       ""},
      {"endchar within a subroutine", "0 callsubr" + kBox, "| -20,0 480,0", {"endchar"}, ""},
      {"flex adds six points",
       "0 vmoveto 1 callsubr 50 0 rmoveto 2 callsubr -30 1 rmoveto 2 callsubr 20 2 rmoveto 2 callsubr 10 3 rmoveto "
       "2 callsubr 10 -3 rmoveto 2 callsubr 20 -2 rmoveto 2 callsubr 20 -1 rmoveto 2 callsubr 50 120 0 0 callsubr "
       "7 vlineto closepath",
       "20,0 40,1* 60,3* 70,6 80,3* 100,1* 120,0 120,7 | 0,0 500,0",
       {"3 0 callothersubr pop pop setcurrentpoint return", "0 1 callothersubr return", "0 2 callothersubr return"},
       ""},
      {"hint replacement returns its subroutine",
       "4 1 3 callothersubr pop callsubr",
       "20,0 29,0 | 0,0 500,0",
       {"", "", "", "", "9 hlineto return"},
       ""},
      {"too few for a call", "1 2 2 77 callothersubr", "error 10030", {}, ""},
      // 100 + 40 * 0.5 + 8 * 0.25 and -50 + 10 * 0.5 + 3 * 0.25, each product rounded by itself.
      {"masters blend",
       "100 -50 40 8 10 3 6 15 callothersubr pop pop rlineto",
       "20,0 142,-44 | 0,0 500,0",
       {},
       weights},
      {"too few to blend", "100 40 8 3 15 callothersubr", "error 10030", {}, weights},
  };
  for (const Case& c : cases) EXPECT_EQ(Outline(c.program, c.subrs, c.privateHead), c.outline) << c.rule;
}

TEST(Type1, SubroutinesTenDeepAndNoDeeper) {
  std::vector<std::string> chain;
  for (int i = 1; i <= 11; ++i) chain.push_back("1 hlineto " + std::to_string(i) + " callsubr return");
  EXPECT_EQ(Outline("0 callsubr", chain), "20,0 21,0 22,0 23,0 24,0 25,0 26,0 27,0 28,0 29,0 30,0 | 0,0 500,0");
  EXPECT_EQ(Outline("99 callsubr -1 callsubr" + kBox, chain), kBoxPoints);
  // A program that calls itself over and over runs out of steps.
  std::string bomb;
  for (int i = 0; i < 200; ++i) bomb += "0 callsubr ";
  EXPECT_EQ(Outline("0 callsubr", {bomb}), "error 10030");
}

TEST(Type1, AccentsAreComposites) {
  OpenFont f(SmallFont().Build(), kFontType1);
  f.SetSize(1000);
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
