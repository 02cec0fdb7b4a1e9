// The scan conversion of an outline as plainly as it can be said, to hold the engine's against, and bitmaps as text.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "t2k/fontbuilder.h"

// "#" and "." or a grey value.
inline std::string PixelWord(int value, bool isGrey) {
  return isGrey ? std::to_string(value) + " " : value ? "#" : ".";
}

// A bitmap of the engine, a line a row; nothing without bits.
inline std::string PixelText(const uint8_t* bits, int width, int height, int rowBytes, bool isGrey) {
  std::string text;
  for (int y = 0; bits && y < height; ++y) {
    const uint8_t* row = bits + y * rowBytes;
    for (int x = 0; x < width; ++x) text += PixelWord(isGrey ? row[x] : row[x >> 3] & (0x80 >> (x & 7)), isGrey);
    text += '\n';
  }
  return text;
}

// One list of crossings, one sort, marks.
class PlainScan {
 public:
  PlainScan(const std::vector<FontContour>& contours, int curveType, int greyLevel)
      : cubic_(curveType == 3), level_(greyLevel), oversample_(std::max(greyLevel, 1)) {
    for (const FontContour& contour : contours) Walk(contour);
    Sort();
    Strike();
    for (Edge& e : edges_) e.x /= oversample_, e.y /= oversample_;
  }

  // The place of the bitmap, then Pixels.
  std::string Draw() {
    const std::string pixels = Pixels();
    return std::to_string(left_) + "," + std::to_string(bottom_) + "\n" + pixels;
  }

  std::string Pixels() {
    if (edges_.empty()) return "";
    int xmin = edges_[0].x, xmax = xmin, ymin = edges_[0].y, ymax = ymin;
    for (const Edge& e : edges_) {
      xmin = std::min(xmin, e.x), xmax = std::max(xmax, e.x);
      ymin = std::min(ymin, e.y), ymax = std::max(ymax, e.y);
    }
    left_ = xmin >> 6, bottom_ = ymin >> 6;
    width_ = ((xmax + 64) >> 6) - left_, height_ = ((ymax + 64) >> 6) - bottom_;
    pixels_.assign(size_t(width_ * height_), 0);
    level_ ? PaintGrey() : PaintMono((xmin + xmax) >> 1, (ymin + ymax) >> 1);
    std::string text;
    for (int i = 0; i < width_ * height_; ++i) {
      text += PixelWord(pixels_[size_t(i)], level_ > 0);
      if (i % width_ == width_ - 1) text += '\n';
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
