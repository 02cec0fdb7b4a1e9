// Every glyph of real fonts at ten sizes, monochrome and grey: no error, nothing left allocated, and the bitmap that a
// plain conversion of the outline makes.
#include <gtest/gtest.h>

#include <filesystem>

#include "t2k/openfont.h"
#include "t2k/plainscan.h"
#include "t2k/scanbitmap.h"

namespace {

constexpr int kSizes[] = {6, 9, 10, 12, 15, 20, 24, 33, 48, 96};

struct SystemFont {
  friend void PrintTo(const SystemFont& font, std::ostream* out) { *out << font.path; }

  const char* path;
  int fontType;
};

constexpr SystemFont kFonts[] = {
    {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", kFontTypeSfnt},
    {"/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf", kFontTypeSfnt},
    {"/usr/share/fonts/type1/urw-base35/NimbusSans-Regular.t1", kFontType1},
    {"/usr/share/fonts/type1/urw-base35/NimbusSans-Bold.t1", kFontType1},
    {"/usr/share/fonts/type1/urw-base35/NimbusSans-Italic.t1", kFontType1},
    {"/usr/share/fonts/type1/urw-base35/NimbusSans-BoldItalic.t1", kFontType1},
};

// The scaled outline of the last glyph.
std::vector<FontContour> ContoursOf(const GlyphClass* glyph) {
  std::vector<FontContour> contours(static_cast<size_t>(glyph->contourCount));
  for (int c = 0; c < glyph->contourCount; ++c)
    for (int i = glyph->sp[c]; i <= glyph->ep[c]; ++i)
      contours[size_t(c)].push_back({glyph->x[i], glyph->y[i], glyph->onCurve[i] != 0});
  return contours;
}

class EveryGlyph : public testing::TestWithParam<SystemFont> {};

// Each size of a glyph has another level, plain and fitted.
TEST_P(EveryGlyph, IsConvertedAsPlainlyAsItsOutlineSays) {
  if (!std::filesystem::exists(GetParam().path)) GTEST_SKIP() << GetParam().path << " isn't installed";
  OpenFont f(ReadFontFile(GetParam().path), GetParam().fontType);
  ASSERT_EQ(f.err, 0);
  int compared = 0;
  for (size_t s = 0; s < std::size(kSizes); ++s) {
    f.SetSize(kSizes[s]);
    for (int i = 0; i < f.t->numGlyphs * 2; ++i) {
      const int glyph = i / 2, cmd = kT2KBitmap | kT2KByIndex | kT2KKeepGlyph | (i % 2 ? kT2KGridFit : 0);
      const int level = (glyph + int(s)) % (kMaxGreyLevel + 1);
      ASSERT_TRUE(f.Render(glyph, level, cmd)) << "glyph " << glyph << " size " << kSizes[s] << " error " << f.err;
      if (!f.t->glyph->pointCount) continue;
      ASSERT_EQ(PixelText(f.t->baseAddr, f.t->width, f.t->height, f.t->rowBytes, level > 0),
                PlainScan(ContoursOf(f.t->glyph), f.t->glyph->curveType, level).Pixels())
          << "glyph " << glyph << " size " << kSizes[s] << " level " << level;
      ++compared;
    }
    T2K_PurgeMemory(f.t, 1, &f.err);
  }
  EXPECT_GT(compared, f.t->numGlyphs * 17);  // of 20; the rest are blanks
  EXPECT_EQ(f.Close(), 0);
}

INSTANTIATE_TEST_SUITE_P(SystemFonts, EveryGlyph, testing::ValuesIn(kFonts));

}  // namespace
