#include "gfx/text/textfixture.h"

namespace {

class GlyphCacheTest : public TextTest {
 protected:
  hsGStrike* StrikeOfSize(int size) {
    fAttr.SetTextSize(size * kFixed1);
    hsPoint advance, offset;
    hsDescriptor* desc = fAttr.MakeStrikeDesc(nullptr, &advance, &offset);
    hsGStrike* strike = hsGStrike::FindOrCreate(desc);
    hsDescriptor::Delete(desc);
    return strike;
  }
  static int32_t Count() { return hsGGlyphCache::Instance()->Count(); }
};

TEST_F(GlyphCacheTest, OneStrikeTooManyEmptiesTheListButForThoseHeld) {
  hsGStrike* held = StrikeOfSize(200);
  for (int size = 1; size <= 128; ++size) StrikeOfSize(size)->Release();
  EXPECT_EQ(Count(), 128);
  hsGStrike* again = StrikeOfSize(7);
  EXPECT_EQ(Count(), 127);
  again->Release();
  StrikeOfSize(129)->Release();
  EXPECT_EQ(Count(), 1);
  EXPECT_EQ(held->GetGlyph('a')->fAdvanceX, 120_px);
  held->Release();
  EXPECT_EQ(Count(), 2);
  EXPECT_TRUE(hsGGlyphCache::Instance()->Purge());
  EXPECT_FALSE(hsGGlyphCache::Instance()->Purge());
}

TEST_F(GlyphCacheTest, AnImageIsRenderedOnceAndAgainAfterAPurge) {
  Draw("aaa", 5_px, 20_px);
  const uint32_t bytes = hsGGlyphCache::ImageBytes();
  EXPECT_EQ(bytes, 8u);  // rows of one byte; the edge at 7 pixels touches an eighth row
  Draw("aa", 5_px, 20_px);
  EXPECT_EQ(hsGGlyphCache::ImageBytes(), bytes);

  const auto context = hsAdopt(fAttr.GetTextContext(nullptr));
  context->SetText(2, "aa");
  hsGGlyph* glyphs = context->GetGlyphs();
  EXPECT_NE(glyphs[0].fImage, nullptr);
  context->Purge();
  EXPECT_EQ(glyphs[0].fImage, nullptr);
  EXPECT_EQ(glyphs[0].fAdvanceX, 6_px);
  EXPECT_EQ(context->GetImage(&glyphs[1])[1], 0xF0);
  EXPECT_EQ(hsGGlyphCache::ImageBytes(), 2 * bytes);

  StrikeOfSize(20)->Release();
  StrikeOfSize(30)->Release();
  context->Purge();  // lets go of the strikes that nobody holds, too
  EXPECT_EQ(Count(), 0);

  fAttr.SetTextSize(3000_px);  // 1,200 pixels wide and 2,100 high: passed over, wherever it would be seen
  Draw("a", -600 * kFixed1, 20_px);
  EXPECT_EQ(hsGGlyphCache::ImageBytes(), 2 * bytes);
}

TEST_F(GlyphCacheTest, CodesThatShareALowByteTurnEachOtherOut) {
  fAttr.SetTextEncoding(hsGAttribute::kSingleBytes);
  hsGStrike* strike = StrikeOfSize(10);
  hsGGlyph* glyph = strike->GetGlyph('a');
  EXPECT_EQ(glyph->fAdvanceX, 6_px);
  EXPECT_EQ(strike->GetGlyph(0x100 + 'a'), glyph);
  EXPECT_EQ(glyph->fCharCode, 0x161);
  EXPECT_EQ(AssertOf([&] { strike->GetGlyph16('a'); }), "cache is not 16bit");
  strike->Release();
}

TEST_F(GlyphCacheTest, EachImageBeyondTheBudgetIsReported) {
  fAttr.SetFlags(fAttr.Flags() | hsGAttribute::kAntiAlias);
  hsGStrike* strike = StrikeOfSize(400);  // a: 161 x 281 bytes, b: 121 x 201
  const auto printed = [&](uint16_t code) {
    testing::internal::CaptureStdout();
    EXPECT_NE(strike->GetImage(strike->GetGlyph(code)), nullptr);
    return testing::internal::GetCapturedStdout();
  };
  EXPECT_EQ(printed('a'), "");
  EXPECT_EQ(printed('b'), "");
  // The blank box of an unknown character, 201 x 201: 109,963 bytes. The one strike is in use, so none is in the list.
  EXPECT_EQ(printed('x'), "glyph cache exceeded 1ad8bH bytes with 0 elements\n");
  EXPECT_EQ(printed('x'), "");
  EXPECT_EQ(printed('y'), "glyph cache exceeded 24b5cH bytes with 0 elements\n");
  strike->Release();
}

}  // namespace
