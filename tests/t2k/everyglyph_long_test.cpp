// Every glyph of real fonts at ten sizes, monochrome and grey: no error, nothing left allocated, and as much ink as the
// outline has area.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

#include "t2k/openfont.h"
#include "t2k/t2ksc.h"

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

struct Place {
  double x, y;
};

// An outline in straight pieces, pixels.
class Shape {
 public:
  explicit Shape(const GlyphClass* glyph) {
    for (int c = 0; c < glyph->contourCount; ++c) AddContour(glyph, glyph->sp[c], glyph->ep[c] - glyph->sp[c] + 1);
  }

  double Length() const {
    double length = 0;
    for (const auto& [a, b] : pieces_) length += std::hypot(b.x - a.x, b.y - a.y);
    return length;
  }

  // What is inside by any winding, from sixteen lines a pixel.
  double Area() const {
    std::map<int, std::vector<std::pair<double, int>>> lines;
    for (const auto& [a, b] : pieces_) {
      const int winding = a.y < b.y ? 1 : -1;
      const Place &low = winding > 0 ? a : b, &high = winding > 0 ? b : a;
      for (int line = int(std::ceil(low.y * 16 - 0.5)); (line + 0.5) / 16 < high.y; ++line) {
        const double t = ((line + 0.5) / 16 - low.y) / (high.y - low.y);
        lines[line].push_back({low.x + (high.x - low.x) * t, winding});
      }
    }
    double area = 0;
    for (auto& [line, crossings] : lines) {
      std::sort(crossings.begin(), crossings.end());
      int winding = 0;
      for (size_t i = 0; i + 1 < crossings.size(); ++i) {
        winding += crossings[i].second;
        if (winding) area += (crossings[i + 1].first - crossings[i].first) / 16;
      }
    }
    return area;
  }

 private:
  void AddContour(const GlyphClass* glyph, int first, int count) {
    const auto at = [&](int k) {
      const int i = first + k % count;
      return Place{glyph->x[i] / 64.0, glyph->y[i] / 64.0};
    };
    const auto middle = [](Place a, Place b) { return Place{(a.x + b.x) / 2, (a.y + b.y) / 2}; };
    int start = 0;
    while (start < count && !glyph->onCurve[first + start]) ++start;
    const bool noneOn = start == count;
    const Place origin = noneOn ? middle(at(count - 1), at(0)) : at(start);
    std::vector<Place> curve = {origin};
    const auto finish = [&](Place p) {
      curve.push_back(p);
      AddCurve(curve);
      curve = {p};
    };
    for (int k = noneOn ? 0 : start + 1; k < (noneOn ? count : start + count); ++k) {
      if (glyph->onCurve[first + k % count]) {
        finish(at(k));
        continue;
      }
      if (glyph->curveType == 2 && curve.size() == 2) finish(middle(curve[1], at(k)));
      curve.push_back(at(k));
    }
    finish(origin);
  }

  void AddCurve(const std::vector<Place>& control) {
    const int steps = control.size() == 2 ? 1 : 12;
    Place last = control[0];
    for (int step = 1; step <= steps; ++step) {
      const double t = double(step) / steps;
      std::vector<Place> level = control;
      for (size_t n = level.size() - 1; n > 0; --n) {
        for (size_t i = 0; i < n; ++i) {
          level[i] = {level[i].x + (level[i + 1].x - level[i].x) * t, level[i].y + (level[i + 1].y - level[i].y) * t};
        }
      }
      pieces_.push_back({last, level[0]});
      last = level[0];
    }
  }

  std::vector<std::pair<Place, Place>> pieces_;
};

// Ink of the last bitmap in pixels.
double InkOf(const T2K* t, bool isGrey) {
  double ink = 0;
  for (int y = 0; t->baseAddr && y < t->height; ++y) {
    const uint8_t* row = t->baseAddr + y * t->rowBytes;
    for (int x = 0; x < t->width; ++x) {
      ink += isGrey ? row[x] / double(kGreyFull) : (row[x >> 3] >> (7 - (x & 7))) & 1;
    }
  }
  return ink;
}

class EveryGlyph : public testing::TestWithParam<SystemFont> {};

// A centre line says nothing of what lies between it and its neighbours, so ink and area differ by a share of the
// outline's length: up to half a line's strip along the edges that run with the lines, in either half of a grey
// pixel's coverage. Cutting to whole values adds a little. In monochrome either end of a row rounds to a whole pixel.
double SlackFor(int level, double length) { return level ? 1 + length * (0.25 / level + 0.03) : 2 + length * 0.5; }

TEST_P(EveryGlyph, HasAsMuchInkAsItsOutlineHasArea) {
  if (!std::filesystem::exists(GetParam().path)) GTEST_SKIP() << GetParam().path << " isn't installed";
  OpenFont f(ReadFontFile(GetParam().path), GetParam().fontType);
  ASSERT_EQ(f.err, 0);
  int compared = 0;
  for (int size : kSizes) {
    f.SetSize(size);
    for (int i = 0; i < f.t->numGlyphs * 2; ++i) {
      const int glyph = i / 2, cmd = kT2KBitmap | kT2KByIndex | kT2KKeepGlyph | (i % 2 ? kT2KGridFit : 0);
      double area = 0, length = 0;
      for (int level : {0, 1, 3, 5}) {
        ASSERT_TRUE(f.Render(glyph, level, cmd)) << "glyph " << glyph << " size " << size << " error " << f.err;
        if (!f.t->glyph->pointCount) break;
        if (level <= 1) {  // grey and monochrome are fitted differently
          const Shape shape(f.t->glyph);
          area = shape.Area();
          length = shape.Length();
        }
        ASSERT_NEAR(InkOf(f.t, level > 0), area, SlackFor(level, length))
            << "glyph " << glyph << " size " << size << " level " << level << " length " << length;
        ++compared;
      }
    }
    T2K_PurgeMemory(f.t, 1, &f.err);
  }
  EXPECT_GT(compared, f.t->numGlyphs * 70);  // of 80; the rest are blanks
  EXPECT_EQ(f.Close(), 0);
}

INSTANTIATE_TEST_SUITE_P(SystemFonts, EveryGlyph, testing::ValuesIn(kFonts));

}  // namespace
