#include "t2k/t2ksc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "t2k/fontbuilder.h"
#include "t2k/greysweep.h"
#include "t2k/plainscan.h"
#include "t2k/t2kpaint.h"

namespace {

class ScanConverter : public testing::Test {
 protected:
  tsiMemObject* mem = tsi_NewMemhandler(nullptr);
  ~ScanConverter() override { tsi_DeleteMemhandler(mem); }

  // A scaled glyph of contours in 26.6.
  GlyphClass* Make(const std::vector<FontContour>& contours, int curveType = 2) {
    GlyphClass* glyph = NewGlyph(mem);
    int points = 0;
    for (const FontContour& contour : contours) points += int(contour.size());
    ReserveContours(glyph, int(contours.size()));
    ReservePoints(glyph, points);
    glyph->curveType = curveType;
    glyph->pointCount = int16_t(points);
    AllocScaledPoints(glyph);
    int at = 0;
    for (const FontContour& contour : contours) {
      glyph->sp[glyph->contourCount] = int16_t(at);
      for (const FontPoint& p : contour) {
        glyph->x[at] = p.x;
        glyph->y[at] = p.y;
        glyph->onCurve[at++] = p.on;
      }
      glyph->ep[glyph->contourCount++] = int16_t(at - 1);
    }
    return glyph;
  }

  // The place of the bitmap and its pixels as text. The bounds alone must be those of the bitmap, and so must the whole
  // pixels of one that needn't know them better.
  std::string Draw(const std::vector<FontContour>& contours, int greyLevel, int curveType = 2) {
    const GlyphHolder glyph(Make(contours, curveType));
    const tsiScanConv sc = ScanConvert(*glyph.get(), {greyLevel, false, false});
    const std::string text = PixelText(sc.baseAddr, sc.Width(), sc.Height(), sc.rowBytes, greyLevel > 0);
    ScanConvOptions whole{greyLevel};
    whole.wholePixels = true;
    const tsiScanConv same = ScanConvert(*glyph.get(), whole);
    EXPECT_EQ(PixelText(same.baseAddr, same.Width(), same.Height(), same.rowBytes, greyLevel > 0), text);
    EXPECT_EQ((std::array{same.left, same.bottom, same.xmin >> 6, same.ymax >> 6}),
              (std::array{sc.left, sc.bottom, sc.xmin >> 6, sc.ymax >> 6}));
    tsi_DeAllocMem(mem, same.baseAddr);
    tsi_DeAllocMem(mem, sc.baseAddr);
    const tsiScanConv bounds = ScanConvert(*glyph.get(), {greyLevel, true, false});
    EXPECT_EQ(bounds.baseAddr, nullptr);
    EXPECT_EQ((std::array{bounds.left, bounds.right, bounds.bottom, bounds.top, bounds.xmin, bounds.ymax}),
              (std::array{sc.left, sc.right, sc.bottom, sc.top, sc.xmin, sc.ymax}));
    return std::to_string(sc.left) + "," + std::to_string(sc.bottom) + "\n" + text;
  }
};

// Ends are forced odd, so a rectangle on the grid reaches one 64th into the next pixel to the right and above.
TEST_F(ScanConverter, ARectangleOnTheGrid) {
  const std::vector<FontContour> rect = {RectContour(0, 0, 128, 64)};
  EXPECT_EQ(Draw(rect, 0), "0,0\n...\n##.\n");
  // Level 1, unit 60: 63 * 60 / 64 is 59 for a pixel that a span enters, 60 - 59 for the one that it leaves.
  EXPECT_EQ(Draw(rect, 1), "0,0\n1 1 0 \n118 119 1 \n");
}

TEST_F(ScanConverter, NothingToCross) {
  for (int level : {0, 3}) {
    EXPECT_EQ(Draw({{{5, 5}}}, level), "0,0\n");
    EXPECT_EQ(Draw({RectContour(1, 1, 10, 10)}, level == 3 ? 1 : 0), "0,0\n");
  }
}

TEST_F(ScanConverter, CubicPointsComeInTwos) {
  const FontContour good = {{0, 0}, {0, 500, false}, {500, 500, false}, {500, 0}};
  EXPECT_NE(Draw({good}, 0, 3), "0,0\n");
  for (const FontContour& bad :
       {FontContour{{0, 0}, {0, 500, false}, {500, 0}},
        FontContour{{0, 0}, {0, 9, false}, {9, 9, false}, {9, 0, false}}, FontContour{{0, 0, false}, {9, 9, false}}}) {
    EXPECT_THROW(Draw({bad}, 0, 3), tsiError);
  }
}

TEST_F(ScanConverter, BeyondTheLargestBitmapThereAreBoundsOnly) {
  const auto convert = [&](int width, int height, int level) {
    const GlyphHolder glyph(Make({RectContour(0, 0, width, height)}));
    const tsiScanConv sc = ScanConvert(*glyph.get(), {level, false, false});
    const bool hasBits = sc.baseAddr;
    tsi_DeAllocMem(mem, sc.baseAddr);
    return std::tuple(sc.Width(), sc.rowBytes, hasBits);
  };
  // 64 MB: 8192 * 8192 bytes, or eight times as many bits.
  EXPECT_EQ(convert(8192 * 64 - 1, 8192 * 64 - 1, 1), std::tuple(8192, 8192, true));
  EXPECT_EQ(convert(8192 * 64 - 1, 8192 * 64, 1), std::tuple(8192, 8192, false));
  EXPECT_EQ(convert(8192 * 64 - 1, 8192 * 64, 0), std::tuple(8192, 1024, true));
  EXPECT_EQ(convert(60000 * 64, 640, 3), std::tuple(60001, 60001, true));
  EXPECT_EQ(convert(INT32_MAX - 64, 640, 1), std::tuple(33554431, 33554431, false));
}

TEST_F(ScanConverter, SharpeningTakesFromSharedEdges) {
  uint8_t bits[] = {60, 60, 90, 120, 120, 1, 120};
  tsiScanConv sc{};
  sc.right = 7;
  sc.top = 1;
  sc.rowBytes = 7;
  sc.baseAddr = bits;
  SharpenGrey(sc);
  // 60 + 60 is full and no more. 60 + 90: excess 30 >> 2 is 7, and 3 more. 80 + 120: 20 and 10. 90 + 120: 22 and 11.
  // 87 + 1 is too little; 1 + 120: 0.
  EXPECT_EQ(std::vector<int>(bits, bits + 7), (std::vector<int>{60, 50, 50, 57, 87, 1, 120}));
}

FontContour RandomContour(std::mt19937& random, bool cubic, int reach, int grain) {
  const auto coordinate = [&] { return (int(random() % unsigned(2 * reach)) - reach) / grain * grain; };
  FontContour contour;
  const int pieces = 1 + int(random() % 9);
  for (int i = 0; i < pieces; ++i) {
    if (!cubic) {
      contour.push_back({coordinate(), coordinate(), random() % 2 == 0});
      continue;
    }
    contour.push_back({coordinate(), coordinate()});
    if (random() % 2) continue;
    contour.push_back({coordinate(), coordinate(), false});
    contour.push_back({coordinate(), coordinate(), false});
  }
  return contour;
}

// Some rows of a glyph are made without the others; the largest are summed in strips.
TEST_F(ScanConverter, RowsAloneAreThoseOfTheWhole) {
  std::mt19937 random(7);
  for (int iteration = 0; iteration < 400; ++iteration) {
    const int reach = iteration == 0 ? 64 * 700 : 64 * (1 << iteration % 7);
    const GlyphHolder glyph(Make({RandomContour(random, false, reach, 1), RandomContour(random, false, reach, 9)}));
    ScanConvOptions options{iteration % 6, false, iteration % 4 == 0};
    const tsiScanConv whole = ScanConvert(*glyph.get(), options);
    if (!whole.baseAddr) continue;
    options.rows.first = int(random() % unsigned(whole.Height()));
    options.rows.limit = options.rows.first + 1 + int(random() % unsigned(whole.Height()));
    const tsiScanConv part = ScanConvert(*glyph.get(), options);
    EXPECT_EQ(part.Height(), whole.Height());
    const int count = std::min(options.rows.limit, whole.Height()) - options.rows.first;
    const uint8_t* same = whole.baseAddr + options.rows.first * whole.rowBytes;
    ASSERT_EQ(std::vector(part.baseAddr, part.baseAddr + count * part.rowBytes),
              std::vector(same, same + count * whole.rowBytes))
        << iteration;
    tsi_DeAllocMem(mem, whole.baseAddr);
    tsi_DeAllocMem(mem, part.baseAddr);
  }
}

// Random shapes, many of them overlapping themselves. A coarse grain makes edges that touch, and so crossings that
// share a place; a great reach makes large bitmaps; many contours make lines with more crossings than their first
// space, and very many ones with more than their second.
TEST_F(ScanConverter, AgreesWithThePlainConversionOnRandomShapes) {
  std::mt19937 random(20);
  for (int round = 0; round < 1500; ++round) {
    const bool cubic = random() % 3 == 0;
    const int grain = random() % 2 ? 1 : 48;
    const int reach = random() % 20 ? 700 : 12000;
    const unsigned most = round % 10 ? 3 : round % 100 ? 12 : 150;
    std::vector<FontContour> contours(1 + random() % most);
    for (FontContour& contour : contours) contour = RandomContour(random, cubic, reach, grain);
    const int level = int(random() % 6);
    ASSERT_EQ(Draw(contours, level, cubic ? 3 : 2), PlainScan(contours, cubic ? 3 : 2, level).Draw()) << round;
  }
}

// A ring of points around a middle, which overlaps nothing, with a hole like it: most such shapes need no sorting. The
// smallest are narrower than a pixel in places, the largest just too large.
TEST_F(ScanConverter, TidyShapesAreSummedWithoutSorting) {
  std::mt19937 random(3);
  int summed = 0;
  for (int round = 0; round < 400; ++round) {
    const int size = 64 << round % 6;
    const auto ring = [&](int least, bool clockwise) {
      FontContour contour;
      for (int i = 0; i < 12; ++i) {
        const double angle = (clockwise ? -i : i) * 3.14159265 / 6, radius = least + int(random() % unsigned(least));
        contour.push_back({int(radius * std::cos(angle)), int(radius * std::sin(angle)) - 100, random() % 2 == 0});
      }
      return contour;
    };
    const bool cubic = round % 5 == 4;  // whose contours run the other way
    std::vector<FontContour> contours{ring(size / 2, !cubic), ring(size / 8, cubic)};
    if (cubic)
      for (FontContour& contour : contours)
        for (FontPoint& point : contour) point.on = true;
    const int level = 2 + round % 4;
    ASSERT_EQ(Draw(contours, level, cubic ? 3 : 2), PlainScan(contours, cubic ? 3 : 2, level).Draw()) << round;
    if (level != 3) continue;
    const GlyphHolder glyph(Make(contours, cubic ? 3 : 2));
    const PixelBox reach{-32, -32, 32, 32};
    if (size <= 1024) summed += GreySweep<3>(*glyph.get(), reach).Sum();
  }
  EXPECT_GT(summed, 50);
}

// The slope of a long line is computed so coarsely that its last crossing lies a pixel below both of its ends.
TEST_F(ScanConverter, ALongLineMayCrossBeyondItsEnds) {
  const FontContour wedge = {{0, 62}, {130000, 0}, {130000, 62}};
  for (int level = 0; level <= 5; ++level) EXPECT_EQ(Draw({wedge}, level), PlainScan({wedge}, 2, level).Draw());
  EXPECT_EQ(Draw({wedge}, 5).substr(0, 5), "0,-1\n");
}

}  // namespace
