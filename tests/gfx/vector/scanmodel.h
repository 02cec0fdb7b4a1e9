// Shapes as plain geometry in doubles, the slow and certain way, and a blitter that notes what it is asked for.
#pragma once

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "gfx/vector/hspath.h"
#include "gfx/vector/hspathiter.h"
#include "gfx/vector/regionmodel.h"

struct Dot {
  double x, y;
};

struct Segment {
  Dot a, b;
};

inline double DistanceTo(const Segment& s, Dot p) {
  const double dx = s.b.x - s.a.x, dy = s.b.y - s.a.y, square = dx * dx + dy * dy;
  const double along = square == 0 ? 0 : std::clamp(((p.x - s.a.x) * dx + (p.y - s.a.y) * dy) / square, 0.0, 1.0);
  return std::hypot(s.a.x + along * dx - p.x, s.a.y + along * dy - p.y);
}

// The segments of a path, its curves cut into many.
class Outline {
 public:
  Outline(const hsPath& path, bool forceClose) : evenOdd(path.FillType() == hsPath::kEvenOddFill) {
    hsPathIter iter(path, forceClose);
    hsPoint p[4];
    for (hsPath::Verb verb; (verb = iter.Next(p)) != hsPath::kDoneVerb;)
      if (const int degree = hsPointsOfVerb(verb); verb != hsPath::kMoveVerb && degree > 0) AddCurve(p, degree);
  }

  const std::vector<Segment>& Segments() const { return segments; }
  double DistanceTo(Dot p) const {
    double distance = 1e9;
    for (const Segment& s : segments) distance = std::min(distance, ::DistanceTo(s, p));
    return distance;
  }
  bool Contains(Dot p) const {
    int winding = 0;
    for (const Segment& s : segments) {
      if ((s.a.y <= p.y) == (s.b.y <= p.y)) continue;
      const double x = s.a.x + (p.y - s.a.y) / (s.b.y - s.a.y) * (s.b.x - s.a.x);
      if (x < p.x) winding += s.a.y <= p.y ? 1 : -1;
    }
    return evenOdd ? winding & 1 : winding != 0;
  }

 private:
  void AddCurve(const hsPoint p[], int degree) {
    const int pieces = degree == 1 ? 1 : 64;
    const auto at = [&](double t) {
      Dot c[4];
      for (int i = 0; i <= degree; ++i) c[i] = {p[i].fX / 65536.0, p[i].fY / 65536.0};
      for (int n = degree; n > 0; --n)
        for (int i = 0; i < n; ++i) c[i] = {c[i].x + (c[i + 1].x - c[i].x) * t, c[i].y + (c[i + 1].y - c[i].y) * t};
      return c[0];
    };
    for (int i = 0; i < pieces; ++i) segments.push_back({at(double(i) / pieces), at((i + 1.0) / pieces)});
  }

  std::vector<Segment> segments;
  bool evenOdd;
};

inline Dot CentreOf(int x, int y) { return {x + 0.5, y + 0.5}; }

// Spans as "y,x,width", and rectangles as "Ry,x,width,height".
struct CallBlitter : hsGBlitter {
  void BlitH(int32_t y, int32_t x, int32_t width) override { Note("", {y, x, width}); }
  void BlitRect(int32_t y, int32_t x, int32_t width, int32_t height) override { Note("R", {y, x, width, height}); }
  void Note(const char* kind, std::initializer_list<int32_t> numbers) {
    calls += calls.empty() ? kind : std::string(" ") + kind;
    for (int32_t n : numbers) calls += std::to_string(n) + ",";
    calls.pop_back();
  }
  std::string calls;
};

inline hsPoint RandomPoint(Random& random, int size = kModelSize) {
  const auto coordinate = [&] { return hsScalar(random() % unsigned(size << 8)) << 8; };
  const hsScalar x = coordinate();
  return {x, coordinate()};
}

// Contours of lines only, or of every kind of segment; coordinates are whole 1/256, inside the model.
inline hsPath RandomPath(Random& random, bool curves) {
  hsPath path(random() & 1);
  for (unsigned contour = 1 + random() % 2; contour > 0; --contour) {
    path.MoveTo(RandomPoint(random));
    for (unsigned segment = 1 + random() % 6; segment > 0; --segment) {
      const hsPoint a = RandomPoint(random), b = RandomPoint(random), c = RandomPoint(random);
      const unsigned kind = curves ? random() % 3 : 0;
      if (kind == 0) path.LineTo(a);
      if (kind == 1) path.QuadTo(a, b);
      if (kind == 2) path.CurveTo(a, b, c);
    }
    if (random() & 1) path.Close();
  }
  return path;
}
