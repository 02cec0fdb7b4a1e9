#include "t2k/t2ksc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "t2k/fontbuilder.h"
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

  // The bitmap as text, a line a row: "#" and "." or grey values.
  std::string Draw(const std::vector<FontContour>& contours, int greyLevel, int curveType = 2) {
    const GlyphHolder glyph(Make(contours, curveType));
    const tsiScanConv sc = ScanConvert(*glyph.get(), {greyLevel, false, false});
    std::string text = std::to_string(sc.left) + "," + std::to_string(sc.bottom) + "\n";
    for (int y = 0; sc.baseAddr && y < sc.Height(); ++y) {
      const uint8_t* row = sc.baseAddr + y * sc.rowBytes;
      for (int x = 0; x < sc.Width(); ++x) {
        if (greyLevel) {
          text += std::to_string(row[x]) + " ";
        } else {
          text += row[x >> 3] & (0x80 >> (x & 7)) ? '#' : '.';
        }
      }
      text += '\n';
    }
    tsi_DeAllocMem(mem, sc.baseAddr);
    return text;
  }
};

// Ends are forced odd, so a rectangle on the grid reaches one 64th into the next pixel to the right and above.
TEST_F(ScanConverter, ARectangleOnTheGrid) {
  const std::vector<FontContour> rect = {RectContour(0, 0, 128, 64)};
  EXPECT_EQ(Draw(rect, 0), "0,0\n...\n##.\n");
  // Level 1, unit 60: 63 * 60 / 64 is 59 for a pixel that a span enters, 60 - 59 for the one that it leaves.
  EXPECT_EQ(Draw(rect, 1), "0,0\n1 1 0 \n118 119 1 \n");
}

TEST_F(ScanConverter, DropoutControlKeepsThinStemsAndRoundsToTheCentre) {
  // Bounds are those of the crossings, and the last one is at 160.
  EXPECT_EQ(Draw({RectContour(40, 0, 60, 200)}, 0), "0,0\n#\n#\n#\n");
  // Lines from 121 to 135 cover no pixel's middle. Left of the centre the middle is (256 + 1) / 2, in pixel 2; right
  // of it, ten pixels on, (1536 - 2) / 2, in pixel 11 and not 12.
  const std::string rows = Draw({RectContour(121, 0, 135, 63), RectContour(761, 0, 775, 63)}, 0);
  EXPECT_EQ(rows, "1,0\n.#........#.\n");
  // The same for a thin bar, with rows for columns.
  const std::string columns = Draw({RectContour(0, 121, 63, 135), RectContour(0, 761, 63, 775)}, 0);
  EXPECT_EQ(columns, "0,1\n.\n#\n.\n.\n.\n.\n.\n.\n.\n.\n#\n.\n");
}

TEST_F(ScanConverter, OverlapsPaintOnceAndHolesStayOpen) {
  const FontContour big = RectContour(0, 0, 640, 640), small = RectContour(130, 130, 500, 500);
  for (int level : {0, 1, 3, 5}) {
    EXPECT_EQ(Draw({big, small}, level), Draw({big}, level));
    EXPECT_EQ(Draw({big, big, small}, level), Draw({big}, level));
    EXPECT_EQ(Draw({Reversed(big), Reversed(small)}, level), Draw({big}, level));
    EXPECT_NE(Draw({big, Reversed(small)}, level), Draw({big}, level));
  }
  const std::string ring = Draw({RectContour(0, 0, 319, 319), Reversed(RectContour(64, 64, 255, 255))}, 0);
  EXPECT_EQ(ring, "0,0\n#####\n#...#\n#...#\n#...#\n#####\n");
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
  const auto convert = [&](int width, int level) {
    const GlyphHolder glyph(Make({RectContour(0, 0, width, 640)}));
    const tsiScanConv sc = ScanConvert(*glyph.get(), {level, false, false});
    const bool hasBits = sc.baseAddr;
    tsi_DeAllocMem(mem, sc.baseAddr);
    return std::tuple(sc.Width(), sc.rowBytes, hasBits);
  };
  EXPECT_EQ(convert(2048 * 64 - 1, 5), std::tuple(2048, 2048, true));
  EXPECT_EQ(convert(2048 * 64, 5), std::tuple(2049, 2049, false));
  EXPECT_EQ(convert(20000 * 64, 0), std::tuple(20001, 2501, false));
  EXPECT_EQ(convert(INT32_MAX - 64, 1), std::tuple(33554431, 33554431, false));
}

TEST_F(ScanConverter, BoundsAloneAreThoseOfTheBitmap) {
  const GlyphHolder glyph(Make({{{100, -70}, {321, 999, false}, {700, 400}, {400, -300, false}}}));
  for (int level : {0, 1, 4}) {
    const tsiScanConv whole = ScanConvert(*glyph.get(), {level, false, false});
    const tsiScanConv bounds = ScanConvert(*glyph.get(), {level, true, false});
    EXPECT_EQ(bounds.baseAddr, nullptr);
    EXPECT_EQ((std::vector{bounds.left, bounds.right, bounds.bottom, bounds.top, bounds.xmin, bounds.ymax}),
              (std::vector{whole.left, whole.right, whole.bottom, whole.top, whole.xmin, whole.ymax}));
    tsi_DeAllocMem(mem, whole.baseAddr);
  }
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

// The whole conversion once more, as plainly as it can be said: one list of crossings, one sort, marks.
class PlainModel {
 public:
  PlainModel(const std::vector<FontContour>& contours, int curveType, int greyLevel)
      : cubic_(curveType == 3), level_(greyLevel), oversample_(std::max(greyLevel, 1)) {
    for (const FontContour& contour : contours) Walk(contour);
    Sort();
    Strike();
    for (Edge& e : edges_) e.x /= oversample_, e.y /= oversample_;
  }

  std::string Draw() {
    if (edges_.empty()) return "0,0\n";
    int xmin = edges_[0].x, xmax = xmin, ymin = edges_[0].y, ymax = ymin;
    for (const Edge& e : edges_) {
      xmin = std::min(xmin, e.x), xmax = std::max(xmax, e.x);
      ymin = std::min(ymin, e.y), ymax = std::max(ymax, e.y);
    }
    left_ = xmin >> 6, bottom_ = ymin >> 6;
    width_ = ((xmax + 64) >> 6) - left_, height_ = ((ymax + 64) >> 6) - bottom_;
    pixels_.assign(size_t(width_ * height_), 0);
    level_ ? PaintGrey() : PaintMono((xmin + xmax) >> 1, (ymin + ymax) >> 1);
    std::string text = std::to_string(left_) + "," + std::to_string(bottom_) + "\n";
    for (int row = 0; row < height_; ++row) {
      for (int x = 0; x < width_; ++x) {
        const int value = pixels_[size_t(row * width_ + x)];
        text += level_ ? std::to_string(value) + " " : value ? "#" : ".";
      }
      text += '\n';
    }
    return text;
  }

 private:
  struct Edge {
    int x, y, kind;
    bool IsRow() const { return kind >= 4; }
    auto Key() const { return IsRow() ? std::tuple(0, y, x) : std::tuple(1, x, y); }
  };

  static FontPoint Mid(FontPoint a, FontPoint b) { return {(a.x + b.x + 1) >> 1, (a.y + b.y + 1) >> 1}; }

  void Walk(FontContour c) {
    for (FontPoint& p : c) p.x *= oversample_, p.y *= oversample_;
    const auto on = std::find_if(c.begin(), c.end(), [](const FontPoint& p) { return p.on; });
    if (on == c.end()) {
      c.insert(c.begin(), Mid(c.back(), c.front()));
    } else {
      std::rotate(c.begin(), on, c.end());
    }
    c.push_back(c[0]);
    std::vector<FontPoint> curve = {c[0]};
    for (size_t i = 1; i < c.size(); ++i) {
      if (!cubic_ && !c[i].on && curve.size() == 2) {
        const FontPoint middle = Mid(curve[1], c[i]);
        curve.push_back(middle);
        Curve(curve);
        curve = {middle};
      }
      curve.push_back(c[i]);
      if (!c[i].on) continue;
      Curve(curve);
      curve = {c[i]};
    }
  }

  void Curve(const std::vector<FontPoint>& c) {
    if (c.size() == 2) return Line(c[0], c[1]);
    const auto error = [&](auto v) {
      if (c.size() == 3) return std::abs((v(0) - 2 * v(1) + v(2) + 2) >> 2);
      return std::abs(((v(1) + v(2) - v(0) - v(3)) * 3 + 4) >> 3);
    };
    int e = std::max(error([&](int i) { return c[size_t(i)].x; }), error([&](int i) { return c[size_t(i)].y; }));
    int depth = 0;
    while (e > 1) e >>= 2, ++depth;
    Split(c, depth);
  }

  static bool Crosses(std::vector<int> v) {
    const auto [lo, hi] = std::minmax_element(v.begin(), v.end());
    for (int line = (*lo & ~63) - 32; line <= *hi; line += 64) {
      if (line >= *lo) return true;
    }
    return false;
  }

  void Split(const std::vector<FontPoint>& c, int depth) {
    std::vector<int> xs, ys;
    for (const FontPoint& p : c) xs.push_back(p.x), ys.push_back(p.y);
    if (!Crosses(xs) && !Crosses(ys)) return;
    if (!depth) return Line(c.front(), c.back());
    std::vector<FontPoint> low, high, level = c;
    while (!level.empty()) {
      low.push_back(level.front());
      high.insert(high.begin(), level.back());
      for (size_t i = 0; i + 1 < level.size(); ++i) level[i] = Mid(level[i], level[i + 1]);
      level.pop_back();
    }
    Split(low, depth - 1);
    Split(high, depth - 1);
  }

  void Line(FontPoint p, FontPoint q) {
    p.x |= 1, p.y |= 1, q.x |= 1, q.y |= 1;
    Cross(p.x, p.y, q.x, q.y, [&](int line, int along, bool rises) { edges_.push_back({line, along, rises ? 1 : 2}); });
    Cross(p.y, p.x, q.y, q.x, [&](int line, int along, bool rises) { edges_.push_back({along, line, rises ? 4 : 8}); });
  }

  template <class Put>
  static void Cross(int a0, int b0, int a1, int b1, Put put) {
    const bool rises = a0 < a1;
    if (!rises) std::swap(a0, a1), std::swap(b0, b1);
    int64_t da = a1 - a0, db = b1 - b0;
    while (da > 32768) da >>= 1, db >>= 1;
    for (int line = (a0 & ~63) - 32; line < a1; line += 64) {
      if (line > a0) put(line, b0 + int(db * (line - a0) / da), rises);
    }
  }

  void Sort() {
    const int n = int(edges_.size());
    int h = 1;
    while (h <= n / 9) h = 3 * h + 1;
    for (; h > 0; h /= 3) {
      for (int i = h; i < n; ++i) {
        const Edge e = edges_[size_t(i)];
        int j = i;
        for (; j >= h && edges_[size_t(j - h)].Key() > e.Key(); j -= h) edges_[size_t(j)] = edges_[size_t(j - h)];
        edges_[size_t(j)] = e;
      }
    }
  }

  void Strike() {
    std::vector<bool> marked(edges_.size() + 1);
    int winding = 0;
    for (size_t i = 0; i < edges_.size(); ++i) {
      winding += edges_[i].kind == 1 || edges_[i].kind == 4 ? 1 : -1;
      if (std::abs(winding) > 1) marked[i] = marked[i + 1] = true;
    }
    std::vector<Edge> kept;
    for (size_t i = 0; i < edges_.size(); ++i) {
      if (!marked[i]) kept.push_back(edges_[i]);
    }
    edges_ = kept;
  }

  int& At(int x, int y) { return pixels_[size_t((height_ - 1 - ((y >> 6) - bottom_)) * width_ + (x >> 6) - left_)]; }

  void PaintMono(int xCentre, int yCentre) {
    for (int pass : {0, 1, 2}) {
      for (size_t i = 0; i + 1 < edges_.size(); i += 2) {
        const Edge a = edges_[i], b = edges_[i + 1];
        if (a.IsRow() != (pass < 2)) continue;
        if (pass == 0) {
          for (int x = (a.x + 32) >> 6; x < (b.x + 32) >> 6; ++x) At(x * 64, a.y) = 1;
          continue;
        }
        const int v0 = pass == 1 ? a.x : a.y, v1 = pass == 1 ? b.x : b.y, centre = pass == 1 ? xCentre : yCentre;
        if (v1 - v0 >= 64 || At(a.x, a.y) || At(b.x, b.y)) continue;
        const int middle = v0 <= centre ? (v0 + v1 + 1) >> 1 : (v0 + v1 - 2) >> 1;
        (pass == 1 ? At(middle, a.y) : At(a.x, middle)) = 1;
      }
    }
  }

  void PaintGrey() {
    const int unit = 120 / (2 * oversample_);
    for (size_t i = 0; i + 1 < edges_.size(); i += 2) {
      const Edge a = edges_[i], b = edges_[i + 1];
      const bool row = a.IsRow();
      const int v0 = row ? a.x : a.y, v1 = row ? b.x : b.y;
      At(a.x, a.y) += (64 - (v0 & 63)) * unit / 64;
      At(b.x, b.y) -= (64 - (v1 & 63)) * unit / 64;
      for (int v = (v0 >> 6) + 1; v <= v1 >> 6; ++v) (row ? At(v * 64, a.y) : At(a.x, v * 64)) += unit;
    }
  }

  bool cubic_;
  int level_, oversample_;
  std::vector<Edge> edges_;
  int left_ = 0, bottom_ = 0, width_ = 0, height_ = 0;
  std::vector<int> pixels_;
};

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

// Random shapes, many of them overlapping themselves. A coarse grain makes edges that touch, and so crossings that
// share a place; a great reach makes large bitmaps; many contours make lines with more crossings than their first
// space, and very many ones with more than their second.
TEST_F(ScanConverter, AgreesWithThePlainModelOnRandomShapes) {
  std::mt19937 random(20);
  for (int round = 0; round < 1500; ++round) {
    const bool cubic = random() % 3 == 0;
    const int grain = random() % 2 ? 1 : 48;
    const int reach = random() % 20 ? 700 : 12000;
    const unsigned most = round % 10 ? 3 : round % 100 ? 12 : 150;
    std::vector<FontContour> contours(1 + random() % most);
    for (FontContour& contour : contours) contour = RandomContour(random, cubic, reach, grain);
    const int level = int(random() % 6);
    ASSERT_EQ(Draw(contours, level, cubic ? 3 : 2), PlainModel(contours, cubic ? 3 : 2, level).Draw()) << round;
  }
}

// The slope of a long line is computed so coarsely that its last crossing lies a pixel below both of its ends.
TEST_F(ScanConverter, ALongLineMayCrossBeyondItsEnds) {
  const FontContour wedge = {{0, 62}, {130000, 0}, {130000, 62}};
  for (int level = 0; level <= 5; ++level) EXPECT_EQ(Draw({wedge}, level), PlainModel({wedge}, 2, level).Draw());
  EXPECT_EQ(Draw({wedge}, 5).substr(0, 5), "0,-1\n");
}

}  // namespace
