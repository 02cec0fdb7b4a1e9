#include "t2k/hinter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <numeric>

#include "t2k/fontbuilder.h"
#include "t2k/openfont.h"

namespace {

constexpr int kHinted = kT2KGridFit | kT2KKeepGlyph;

// An E with its arms at 0 to 90, 305 to 395 and 610 to 700, its stem at 60 to 160.
const FontContour kE = {{60, 0},    {60, 700},  {460, 700}, {460, 610}, {160, 610}, {160, 395},
                        {400, 395}, {400, 305}, {160, 305}, {160, 90},  {460, 90},  {460, 0}};
const FontContour kZ = {{40, 0},    {40, 80},  {300, 420}, {40, 420}, {40, 500},
                        {400, 500}, {140, 80}, {400, 80},  {400, 0}};

// A round contour with its extremes at these places.
FontContour Oval(int left, int bottom, int right, int top) {
  const int x = (left + right) / 2, y = (bottom + top) / 2;
  return {{left, y},  {left, top, false},     {x, top},    {right, top, false},
          {right, y}, {right, bottom, false}, {x, bottom}, {left, bottom, false}};
}

SfntBuilder LettersFont() {
  SfntBuilder builder;
  builder.AddGlyph({}, 500, 0);
  const auto add = [&](char letter, const std::vector<FontContour>& contours) {
    builder.characters[letter] = builder.AddContours(contours, 520);
  };
  add('E', {kE});
  add('H', {RectContour(50, 0, 150, 700), RectContour(150, 300, 350, 390), RectContour(350, 0, 450, 700)});
  add('z', {kZ});
  add('o', {Oval(30, -10, 480, 510), Reversed(Oval(130, 75, 380, 425))});
  add('p', {RectContour(50, -210, 150, 500), RectContour(150, 0, 400, 80), RectContour(150, 420, 400, 500)});
  add('b', {RectContour(50, 0, 150, 760)});
  add('#', {RectContour(50, -5, 175, 700)});
  add('=', {{{50, 250}, {50, 350}, {450, 350}, {450, 290}, {250, 290}, {250, 250}}});
  return builder;
}

std::vector<int> DistinctY(const GlyphClass* glyph) {
  std::vector<int> y(glyph->y, glyph->y + glyph->pointCount);
  std::sort(y.begin(), y.end());
  y.erase(std::unique(y.begin(), y.end()), y.end());
  return y;
}

TEST(Hinter, LearnsTheFontsHeightsAndStems) {
  OpenFont f(LettersFont(), 12);
  const HintGlobals& globals = f.t->hintHandle->globals;
  std::vector<std::tuple<int, int, bool>> zones;
  for (int i = 0; i < globals.zoneCount; ++i) {
    zones.push_back({globals.zone[i].flat, globals.zone[i].round, globals.zone[i].isTop});
  }
  EXPECT_EQ(zones, (decltype(zones){
                       {0, -10, false}, {500, 510, true}, {700, 700, true}, {760, 760, true}, {-210, -210, false}}));
  EXPECT_EQ(globals.stem[kHintY], 90);
  EXPECT_EQ(globals.stem[kHintX], 100);
}

// 13 pixels: 500 is 6.5 and goes to 7, 700 is 9.1, stems of 90 are 1.17. The middle bar of the E, 3.965 to 5.135, has
// its middle at 4.55 and keeps it as the ends spread, so its lower edge goes to 4.
TEST(Hinter, HeightsAndStemsGetWholePixels) {
  OpenFont f(LettersFont(), 13);
  ASSERT_TRUE(f.Render('E', 3, kHinted));
  EXPECT_EQ(DistinctY(f.t->glyph), (std::vector{0, 64, 4 * 64, 5 * 64, 8 * 64, 9 * 64}));
  ASSERT_TRUE(f.Render('z', 3, kHinted));
  EXPECT_EQ(DistinctY(f.t->glyph), (std::vector{0, 64, 6 * 64, 7 * 64}));
  // Overshoots of an eighth of a pixel aren't shown.
  ASSERT_TRUE(f.Render('o', 3, kHinted));
  const std::vector<int> y = DistinctY(f.t->glyph);
  EXPECT_EQ(y.front(), 0);
  EXPECT_EQ(y.back(), 7 * 64);
  f.SetSize(100);  // but those of a whole one are
  ASSERT_TRUE(f.Render('o', 3, kHinted));
  EXPECT_EQ(DistinctY(f.t->glyph).front(), -64);
  EXPECT_EQ(DistinctY(f.t->glyph).back(), 51 * 64);
  ASSERT_TRUE(f.Render('#', 3, kHinted));  // halfway between flat and round counts as flat
  EXPECT_EQ(DistinctY(f.t->glyph).front(), 0);
}

TEST(Hinter, AStemIsAnEdgeAndTheNearestAcross) {
  OpenFont f(LettersFont().Build());
  // At 13 pixels the edges lie at 208, 241 and 291. The upper two are a stem of one pixel with its middle at 266; the
  // lowest, whose way up leads to a top that has a nearer partner, moves along with it by 15.
  f.SetSize(13);
  ASSERT_TRUE(f.Render('=', 3, kHinted));
  EXPECT_EQ(DistinctY(f.t->glyph), (std::vector{223, 256, 320}));
  // A stem of 125 differs from the usual 100 by a quarter of that, no more, so it gets 2 pixels and not 2.5.
  f.SetSize(20);
  ASSERT_TRUE(f.Render('#', 0, kHinted));
  EXPECT_EQ(f.t->glyph->x[2] - f.t->glyph->x[0], 128);
}

TEST(Hinter, WithoutRoundingNothingIsFitted) {
  OpenFont f(LettersFont(), 13);
  ASSERT_TRUE(f.Render('E', 3, kT2KKeepGlyph | kT2KNoRounding));
  const std::vector<int> plain = DistinctY(f.t->glyph);
  ASSERT_TRUE(f.Render('E', 3, kHinted | kT2KNoRounding));
  EXPECT_EQ(DistinctY(f.t->glyph), plain);
}

TEST(Hinter, GreyKeepsXAndMonochromeFitsVerticalStems) {
  OpenFont f(LettersFont().Build());
  for (int size = 7; size < 40; ++size) {
    f.SetSize(size);
    ASSERT_TRUE(f.Render('H', 3, kT2KKeepGlyph));
    const std::vector<int> unhinted(f.t->glyph->x, f.t->glyph->x + 14);
    const hsFixed advance = f.t->xAdvanceWidth16Dot16;
    ASSERT_TRUE(f.Render('H', 3, kHinted));
    EXPECT_EQ(std::vector<int>(f.t->glyph->x, f.t->glyph->x + 14), unhinted);
    ASSERT_TRUE(f.Render('H', 0, kHinted));
    EXPECT_EQ(f.t->xAdvanceWidth16Dot16, advance);
    const int32_t* x = f.t->glyph->x;
    const int left = x[2] - x[0], right = x[10] - x[8];
    EXPECT_EQ(left, right) << size;
    EXPECT_EQ(left % 64, 0);
    EXPECT_EQ(x[0] % 64, 0);
    EXPECT_EQ(left, std::max(64, (size * 64 / 10 + 32) / 64 * 64));
  }
}

TEST(Hinter, CubicOutlinesAreFittedAlike) {
  OpenFont quadratic(LettersFont().Build());
  Type1Builder builder;
  const auto program = [](const FontContour& contour) {
    std::string text = "0 520 hsbw ";
    FontPoint last{0, 0};
    for (const FontPoint& p : contour) {
      text += std::to_string(p.x - last.x) + " " + std::to_string(p.y - last.y) +
              (&p == &contour[0] ? " rmoveto " : " rlineto ");
      last = p;
    }
    return Type1Builder::Program(text + "closepath endchar");
  };
  // Type 1 contours run against the clock.
  for (const auto& [name, contour] : {std::pair{"E", kE}, {"z", kZ}}) {
    builder.glyphs.push_back({name, program(Reversed(contour))});
  }
  OpenFont cubic(builder.Build(), kFontType1);
  for (int size : {9, 13, 14, 21}) {
    quadratic.SetSize(size);
    cubic.SetSize(size);
    for (char letter : {'E', 'z'}) {
      ASSERT_TRUE(quadratic.Render(letter, 2, kHinted));
      ASSERT_TRUE(cubic.Render(letter, 2, kHinted));
      EXPECT_EQ(DistinctY(quadratic.t->glyph), DistinctY(cubic.t->glyph)) << letter << size;
    }
  }
}

Bytes Stored(const HintGlobals& globals) {
  Bytes record = {'V', 'H', 'G', '1'};
  const auto put16 = [&](int value) { record.insert(record.end(), {uint8_t(value >> 8), uint8_t(value)}); };
  put16(globals.zoneCount);
  for (int16_t stem : globals.stem) put16(stem);
  for (int i = 0; i < globals.zoneCount; ++i)
    for (int value : {int(globals.zone[i].flat), int(globals.zone[i].round), int(globals.zone[i].isTop)}) put16(value);
  record.resize(kHintRecordBytes);
  return record;
}

TEST(Hinter, StoredSettingsAreTakenIfTheyCarryTheStamp) {
  SfntBuilder builder = LettersFont();
  OpenFont source(builder, 13);
  HinterClass settings = *source.t->hintHandle;
  settings.globals.zone[2].flat = 660;  // capitals 8.58 pixels high, so 9 as before at 13, but 7 at 11
  settings.globals.zone[2].round = 660;
  Bytes record = Stored(settings.globals);

  HinterClass loaded{};
  ASSERT_TRUE(LoadHintGlobals(&loaded, record.data(), kHintRecordBytes));
  EXPECT_EQ(loaded.globals.zoneCount, 5);
  EXPECT_EQ(loaded.globals.zone[4].flat, -210);
  EXPECT_EQ(loaded.globals.stem[kHintY], 90);
  EXPECT_FALSE(LoadHintGlobals(&loaded, record.data(), kHintRecordBytes - 1));

  const auto capsIn = [&](const Bytes& table) {
    builder.tables["T2KG"] = table;
    OpenFont f(builder, 13);
    return f.t->hintHandle->globals.zone[2].flat;
  };
  EXPECT_EQ(capsIn(record), 660);
  record[0] ^= 1;
  EXPECT_EQ(capsIn(record), 700);
  EXPECT_EQ(capsIn(Bytes().U32(7)), 700);
}

TEST(Hinter, ADamagedLetterDoesNoHarm) {
  SfntBuilder builder = LettersFont();
  builder.characters['x'] = builder.AddGlyph(Bytes().Words({0, 0, 0, 0, 0}), 500, 0);
  builder.characters['e'] = 999;
  OpenFont f(builder, 13);
  EXPECT_EQ(f.err, 0);
  EXPECT_TRUE(f.Render('E', 0, kHinted));
  EXPECT_EQ(f.t->hintHandle->globals.zone[1].flat, 500);
  EXPECT_EQ(f.Close(), 0);
}

// Whatever a glyph looks like, hinting maps heights by one rising function.
TEST(Hinter, KeepsTheOrderOfPointsInARealFont) {
  const char* path = "/usr/share/fonts/truetype/liberation/LiberationSerif-Regular.ttf";
  if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " isn't installed";
  OpenFont f(ReadFontFile(path));
  for (int size : {7, 12, 19}) {
    f.SetSize(size);
    for (int glyph = 0; glyph < f.t->numGlyphs; ++glyph) {
      ASSERT_TRUE(f.Render(glyph, 0, kT2KKeepGlyph | kT2KByIndex));
      const int count = f.t->glyph->pointCount;
      const std::vector<int> before(f.t->glyph->y, f.t->glyph->y + count);
      ASSERT_TRUE(f.Render(glyph, 0, kHinted | kT2KByIndex));
      if (f.Glyph(glyph)->contourCount < 0) continue;  // each part is fitted by itself
      std::vector<int> order(static_cast<size_t>(count));
      std::iota(order.begin(), order.end(), 0);
      std::sort(order.begin(), order.end(), [&](int a, int b) { return before[size_t(a)] < before[size_t(b)]; });
      for (int i = 0; i + 1 < count; ++i) {
        const int a = order[size_t(i)], b = order[size_t(i + 1)];
        ASSERT_LE(f.t->glyph->y[a], f.t->glyph->y[b]) << "glyph " << glyph << " size " << size;
      }
    }
  }
}

}  // namespace
