#include <cstring>

#include "gfx/pixel/hsgcreateproc.h"
#include "gfx/pixel/hsgmaskfilter.h"
#include "gfx/text/textfixture.h"
#include "gfx/vector/hsgpatheffect.h"

// A font unit at size 10, as the engine rounds it down to 16.16.
constexpr hsFixed kUnit = 655;

TEST_F(TextTest, GlyphsLieAtTheirPositionsOnTheBaseline) {
  const hsIntRect whole{0, 0, kWidth, kHeight};
  struct {
    const char* text;
    hsFixed x, y;
    std::vector<hsIntRect> blocks;
    hsIntRect clip;
    hsFixed alignment = 0;
  } const cases[] = {
      // a: 1 right of the pen, 7 rows; then 6 + 3 on to b, whose block reaches 2 rows below. Masks lie a row lower than
      // outlines, the lowest row of a on the row of the baseline itself.
      {"a b", 5_px, 20_px, {{6, 14, 10, 21}, {14, 18, 17, 23}}, whole},
      {"a", 5_px + 0x7FFF, 19_px + 0x8000, {{6, 14, 10, 21}}, whole},                 // starts on a whole pixel
      {"ab", 20_px, 20_px, {{16, 14, 20, 21}, {21, 18, 24, 23}}, whole, kFixedHalf},  // 10 wide, so it starts at 15
      {"a", 5_px, 20_px, {{6, 14, 8, 15}}, {0, 0, 8, 15}},
      {"a", -3 * kFixed1, 4_px, {{0, 0, 2, 5}}, whole},
  };
  for (const auto& c : cases) {
    const hsRegion clip(c.clip);
    fDraw.fClip = c.clip == whole ? nullptr : &clip;
    SetSpacing(c.alignment, 0, 0);
    Draw(c.text, c.x, c.y);
    ExpectBlocks(c.blocks);
  }
}

TEST_F(TextTest, EncodingsMakeTheSameRun) {
  Draw("\xC3\xA9\xE2\x82\xAC", 0, 10_px);  // e acute, euro
  ExpectBlocks({{1, 10, 2, 11}, {2, 9, 4, 11}});
  fAttr.SetTextEncoding(hsGAttribute::kUTF16);
  fAttr.SetTextSize(11_px);
  fAttr.SetTextSize(10_px);
  Draw(std::string("\xE9\x00\xAC\x20\x61", 5), 0, 10_px);  // the odd byte is dropped
  ExpectBlocks({{1, 10, 2, 11}, {2, 9, 4, 11}});
  EXPECT_EQ(fAttr.CountText(5, "12345"), 2u);
}

TEST_F(TextTest, AChangeOfEncodingAloneKeepsTheStrike) {
  EXPECT_EQ(Width("\xC3\xA9"), 2_px);
  fAttr.SetTextEncoding(hsGAttribute::kSingleBytes);
  EXPECT_EQ(Width("\xC3\xA9"), 2_px);
  fAttr.SetTextSize(20_px);
  EXPECT_EQ(Width("\xC3\xA9"), 24_px);  // two bytes, both unknown
}

TEST_F(TextTest, SpacingMovesEachCharacterByItsOwnExtraToo) {
  SetSpacing(0, 2_px, kFixed1);
  EXPECT_EQ(Positions("a b"), (std::vector<hsFixed>{1_px, 9_px, 13_px, 17_px}));
  EXPECT_EQ(Width("a b"), 17_px);
  EXPECT_EQ(Widths("a b"), (std::vector<hsFixed>{8_px, 4_px, 4_px}));
}

TEST_F(TextTest, JustifyingSpreadsWhatRemainsBeforeTheLastCharacter) {
  struct {
    const char* text;
    uint32_t flags;
    std::vector<hsFixed> positions;
  } const cases[] = {
      // b begins at 9, 11 short of 20: all of it into the one space.
      {"a b", 0, {0, 17_px, 20_px, 24_px}},
      {"a b ", hsGTextSpacing::kIgnoreTrailingSpaces, {0, 17_px, 20_px, 24_px + 0, 27_px}},
      // b begins at 6, 14 short: 7 to each character.
      {"ab", 0, {7_px, 20_px, 24_px}},
      {"  ", hsGTextSpacing::kIgnoreTrailingSpaces, {0, 3_px, 6_px}},
  };
  for (const auto& c : cases) {
    SetSpacing(-20 * kFixed1, 0, 0, c.flags);
    EXPECT_EQ(Positions(c.text), c.positions) << c.text;
  }
  Draw("ab", 5_px, 20_px);  // is not moved besides
  ExpectBlocks({{13, 14, 17, 21}, {25, 18, 28, 23}});
}

TEST_F(TextTest, KerningMovesEachSideByHalf) {
  EXPECT_EQ(Positions("aba"), (std::vector<hsFixed>{0, 6_px, 10_px, 16_px}));
  fAttr.SetFlags(fAttr.Flags() | hsGAttribute::kKernText);
  constexpr hsFixed kHalf = 100 * kUnit / 2;
  // The pair a, b kerns by 100 units; the pair b, a by none, so all that comes after it moves by all of it.
  EXPECT_EQ(Positions("aba"), (std::vector<hsFixed>{0, 6_px - kHalf, 10_px - 2 * kHalf, 16_px - 2 * kHalf}));
  EXPECT_EQ(Positions("ab"), (std::vector<hsFixed>{0, 6_px - kHalf, 10_px - kHalf}));
}

TEST_F(TextTest, MetricsAreTheFontsAndNothingHasNoWidth) {
  hsPoint top, bottom;
  EXPECT_EQ(fAttr.MeasureText(0, nullptr, &top, &bottom), 0);
  EXPECT_EQ(top, (hsPoint{0, -800 * kUnit}));
  EXPECT_EQ(bottom, (hsPoint{0, 200 * kUnit}));
}

TEST_F(TextTest, FaceScalesAdvancesAndDrawsTheUnderline) {
  hsGTextFace face;
  face.fScaleX = 2_px;
  face.fExtraAdvance = 4_px;  // half of it in front of the glyph
  fAttr.SetTextFace(&face);
  Draw("a", 0, 20_px);
  ExpectBlocks({{4, 14, 12, 21}});
  EXPECT_EQ(Width("aa"), 32_px);

  face = {};
  face.fUnderlineThickness = kFixed1 / 10;
  face.fUnderlinePosition = kFixed1 / 5;
  fAttr.SetTextFace(&face);
  hsRect rule{};
  fAttr.GetUnderline(2, "ab", &rule);
  EXPECT_EQ(hsFixedRound(rule.fTop), 2);
  EXPECT_EQ(rule.fRight, 10_px);
  Draw("a", 4_px, 20_px);
  ExpectBlocks({{5, 14, 9, 21}, {4, 22, 10, 23}});
  face.fUnderlineThickness = kFixed1 / 1000;  // still a row of pixels
  fAttr.SetTextFace(&face);
  Draw("a", 4_px, 20_px);
  ExpectBlocks({{5, 14, 9, 21}, {4, 22, 10, 23}});
}

TEST_F(TextTest, PathsDrawWhatMasksDraw) {
  fAttr.SetFlags(fAttr.Flags() | hsGAttribute::kTextAsPaths | hsGAttribute::kFrame);
  const uint32_t flags = fAttr.Flags();
  Draw("a b", 5_px, 20_px);
  EXPECT_EQ(fAttr.Flags(), flags);
  ExpectBlocks({{6, 13, 10, 20}, {14, 17, 17, 22}});
  hsPath path;
  hsRect bounds;
  fAttr.GetTextPath(3, "aab", 6_px, &path);  // advances are linear; the last glyph begins near 12
  path.ComputeBounds(&bounds, false);
  EXPECT_EQ(bounds, (hsRect{1_px, -7 * kFixed1, 5_px + 600 * kUnit, 0}));

  SfntBuilder font = BlockFont();  // a contour of three points counts, one of two doesn't
  font.characters['v'] = font.AddContours({{{0, 0}, {300, 500}, {600, 0}}, {{0, 0}, {900, 900}}}, 600);
  fAttr.SetFontID(Register(font.Build()));
  path.Rewind();
  fAttr.GetTextPath(1, "v", 6_px, &path);
  EXPECT_EQ(path.CountFirstContourSegments(false), 3);
  path.ComputeBounds(&bounds, false);
  EXPECT_EQ(bounds, (hsRect{0, -5 * kFixed1, 6_px, 0}));
}

TEST_F(TextTest, OutliningWidensGlyphs) {
  hsGTextFace face;
  face.fOutlineWidth = kFixed1 / 5;  // 2 pixels, 1 to each side
  fAttr.SetTextFace(&face);
  Draw("a", 5_px, 20_px);
  // The block's outline as a ring: 5..11 by 12..21 without 7..9 by 14..19.
  ExpectBlocks({{5, 12, 11, 14}, {5, 14, 7, 19}, {9, 14, 11, 19}, {5, 19, 11, 21}});
  EXPECT_EQ(Width("a"), 6_px);
}

TEST_F(TextTest, GreyGlyphsKeepTheEnginesCoverage) {
  fAttr.SetFlags(fAttr.Flags() | hsGAttribute::kAntiAlias);
  const auto context = hsAdopt(fAttr.GetTextContext(nullptr));
  context->SetText(1, "a");
  hsGGlyph* glyph = context->GetGlyphs();
  EXPECT_EQ(context->MaskType(), kMask_Alpha);
  const uint8_t* image = context->GetImage(glyph);
  EXPECT_EQ(image[3 * glyph->fRowBytes + 2], 120);  // deep inside the block
}

TEST_F(TextTest, PositionedTextTurnsWithItsDirections) {
  const hsPoint positions[] = {{5_px, 20_px}, {30_px, 20_px}};
  fDraw.DrawPosText(2, "ab", positions, nullptr);
  ExpectBlocks({{6, 14, 10, 21}, {30, 18, 33, 23}});
  const hsPoint directions[] = {{0, kFixed1}, {kFixed1, 0}};  // upright, then a quarter turn
  fDraw.DrawPosText(2, "ab", positions, directions);
  // A quarter turn takes (x, y) to (-y, x): right of the pen becomes below, below becomes left.
  ExpectBlocks({{6, 14, 10, 21}, {28, 21, 33, 24}});
}

TEST_F(TextTest, FastTextMovesThePoint) {
  const hsGUnderline rule = {3_px, kFixed1};
  hsPoint point = {5_px, 20_px};
  SetSpacing(0, 2_px, kFixed1);
  fDraw.DrawFastText(3, "a b", &point, &rule);
  EXPECT_EQ(point, (hsPoint{22_px, 20_px}));  // 6 + 1, 3 + 2, 4 + 1
  ExpectBlocks({{6, 14, 10, 21}, {17, 18, 20, 23}, {5, 23, 22, 24}});

  point = {5_px + 0x8000, 20_px + 0xC000};  // columns are rounded, rows cut
  fDraw.DrawFastText(1, "a", &point, nullptr);
  ExpectBlocks({{7, 14, 11, 21}});
  // What lies outside the clip's bounds isn't even rendered.
  const hsRegion clip(hsIntRect{0, 0, 64, 8});
  fDraw.fClip = &clip;
  const uint32_t images = hsGGlyphCache::ImageBytes();
  fDraw.DrawFastText(1, "b", &point, nullptr);
  fAttr.SetTextSize(9_px);
  fDraw.DrawFastText(1, "b", &point, nullptr);
  EXPECT_EQ(hsGGlyphCache::ImageBytes(), images);
}

namespace {

// Moves an outline to the right by its own size, if it is to be filled.
class ShiftEffect : public hsGPathEffect {
 public:
  explicit ShiftEffect(int32_t size) : hsGPathEffect(size) {}
  static hsGSizedFlattenable* Create(const void** cursor, int32_t size) {
    *cursor = static_cast<const char*>(*cursor) + 4;
    return new ShiftEffect(size);
  }
  uint32_t GetCreateProc() const override { return hsGRegisterCreateProc(Create); }
  bool FilterPath(const hsMatrix*, hsScalar* width, const hsPath* src, hsPath* dst) const override {
    if (*width >= 0) return false;
    dst->Offset(fStdSize, 0, src);
    return true;
  }
};

// A pixel of margin on each side, and full coverage everywhere.
class BoxFilter : public hsGMaskFilter {
 public:
  static hsGSizedFlattenable* Create(const void** cursor, int32_t) {
    *cursor = static_cast<const char*>(*cursor) + 4;
    return new BoxFilter;
  }
  uint32_t GetCreateProc() const override { return hsGRegisterCreateProc(Create); }
  bool FilterMask(const hsGMask& src, const hsMatrix& matrix, hsGMask* dst) override {
    dst->fBounds = src.fBounds;
    ComputeBounds(matrix, &dst->fBounds);
    dst->fMaskType = kMask_Alpha;
    dst->fRowBytes = hsGMask::RowBytes(kMask_Alpha, dst->fBounds.Width());
    dst->AllocImage();
    std::memset(dst->fImage, 0xFF, dst->ImageSize());
    return true;
  }
  void ComputeBounds(const hsMatrix&, hsIntRect* rect) override {
    *rect = {rect->fLeft - 1, rect->fTop - 1, rect->fRight + 1, rect->fBottom + 1};
  }
};

}  // namespace

TEST_F(TextTest, EffectsArePartOfTheStrike) {
  const auto effect = hsMake<ShiftEffect>(0);
  fAttr.SetPathEffect(effect.get());
  // Rebuilt for the text size, 10, it shifts by 10 pixels; drawn by its outline, the mask lies on the baseline.
  Draw("a", 5_px, 20_px);
  ExpectBlocks({{16, 13, 20, 20}});
  EXPECT_EQ(Width("a"), 6_px);
  // As a path it is moved in the outline, by 10, and again when that is drawn, by what the effect was made for: 3.
  const auto made = hsMake<ShiftEffect>(3_px);
  fAttr.SetPathEffect(made.get());
  fAttr.SetFlags(fAttr.Flags() | hsGAttribute::kTextAsPaths);
  Draw("a", 5_px, 20_px);
  ExpectBlocks({{19, 13, 23, 20}});
  fAttr.SetFlags(fAttr.Flags() & ~uint32_t{hsGAttribute::kTextAsPaths});

  fAttr.SetPathEffect(nullptr);
  const auto filter = hsMake<BoxFilter>();
  fAttr.SetMaskFilter(filter.get());
  Draw("b", 5_px, 20_px);
  ExpectBlocks({{4, 16, 10, 24}});  // grey: the touched fourth column and sixth row count, and the margin
  EXPECT_EQ(Width("b"), 4_px);
}

TEST_F(TextTest, BrokenUTF8IsReportedAndStaysInItsBytes) {
  for (const char* text : {"\xC3\x28", "\xE2\x82"})
    EXPECT_EQ(AssertOf([&] { Width(text); }), "bad middle UTF8") << text;
  EXPECT_EQ(AssertOf([&] { Width("a\xF0\x9F"); }), "bad UTF8 byte");
  EXPECT_EQ(Width("\x80\x80"), 0);  // no character at all
  ReturnOnHalt halt;
  EXPECT_EQ(Positions("\x80\x80\xC3").size(), 2u);
}

TEST_F(TextTest, AFontThatCannotBeOpenedDrawsNothing) {
  const std::vector<uint8_t> whole = BlockFont().Build();
  for (size_t length : {size_t{5}, size_t{40}, whole.size() / 2}) {
    fAttr.SetFontID(Register({whole.begin(), whole.begin() + std::ptrdiff_t(length)}));
    Draw("ab", 5_px, 20_px);
    ExpectBlocks({});
    EXPECT_EQ(Width("ab"), 0) << length;
  }
  fAttr.SetFontID(Register(whole, kFontFormat_Type1));
  EXPECT_EQ(Width("ab"), 0);
}
