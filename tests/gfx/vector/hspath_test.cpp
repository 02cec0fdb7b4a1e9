#include "gfx/vector/hspath.h"

#include <gtest/gtest.h>

#include <bit>
#include <random>

#include "gfx/foundation/hsmatrix.h"
#include "gfx/halt.h"
#include "gfx/vector/pathtext.h"

namespace {

constexpr hsFixed F(double value) { return hsFixed(value * 65536); }
constexpr hsRect kUnitRect{F(0), F(0), F(100), F(60)};

TEST(Path, MovesAreLazy) {
  EXPECT_EQ(TextOf(PathOf("M 1 1 M 2 2 L 3 3 M 9 9")), "M 2 2 L 3 3");
  EXPECT_EQ(TextOf(PathOf("M 1 1 Z M 2 2")), "");
  hsPath path = PathOf("M 1 1");
  hsPoint p;
  EXPECT_TRUE(path.GetLastPoint(&p));
  EXPECT_EQ(p, (hsPoint{F(1), F(1)}));
  path.LineTo(F(2), F(2));
  path.RLineTo(F(1), F(-1));
  path.Close();
  EXPECT_FALSE(path.GetFirstPoint(&p));  // it holds points, but no contour is open
  path.RLineTo(F(1), F(1));
  EXPECT_EQ(TextOf(path), "M 1 1 L 2 2 L 3 1 Z");
  path.SetLastPoint(F(7), F(7));  // no contour is open: the pending move changes
  EXPECT_EQ(TextOf(path), "M 1 1 L 2 2 L 3 1 Z");
  path.MoveTo(F(5), F(5));
  path.SetLastPoint(F(8), F(8));  // and after a bare move the contour before
  EXPECT_EQ(TextOf(path), "M 1 1 L 2 2 L 8 8 Z");
}

TEST(Path, MisuseIsReportedAndLeftOut) {
  hsPath path = PathOf("M 0 0 L 1 1 Z");
  const hsPoint p[2] = {};
  EXPECT_EQ(AssertOf([&] { path.LineTo(p[0]); }), "LineTo without a MoveTo");
  EXPECT_EQ(AssertOf([&] { path.LineTo(2, p); }), "LineTo without a MoveTo");
  EXPECT_EQ(AssertOf([&] { path.QuadTo(p[0], p[0]); }), "QuadTo without a MoveTo");
  EXPECT_EQ(AssertOf([&] { path.CurveTo(p[0], p[0], p[0]); }), "CurveTo without a MoveTo");
  EXPECT_EQ(AssertOf([] { PathOf("M 0 0").SetLastPoint(1, 1); }), "bad index");
  for (hsScalar nan : {0x7FFFFFFF, -0x7FFFFFFF - 1}) EXPECT_EQ(ReportOf([&] { path.MoveTo(0, nan); }), "NAN: 0");
  ReturnOnHalt halt;
  path.LineTo(p[0]);
  path.LineTo(2, p);
  EXPECT_EQ(TextOf(path), "M 0 0 L 1 1 Z");
  EXPECT_THROW(path.MoveTo(0x7FFFFFFF, 0), hsException);
  path.MoveTo(0x7FFFFFFE, -0x7FFFFFFF);  // infinity is a number
}

TEST(PathIter, ForcedCloseAddsTheMissingLine) {
  const hsPath two = PathOf("M 0 0 L 4 0 L 4 4 M 9 9 L 8 8");
  EXPECT_EQ(IteratedText(two, false), "M 0 0 L 4 0 L 4 4 M 9 9 L 8 8");
  EXPECT_EQ(IteratedText(two, true), "M 0 0 L 4 0 L 4 4 L 0 0 M 9 9 L 8 8 L 9 9");
  EXPECT_EQ(IteratedText(PathOf("M 0 0 L 4 0 L 4 4 Z"), false), "M 0 0 L 4 0 L 4 4 L 0 0 Z");
  EXPECT_EQ(IteratedText(PathOf("M 0 0 L 4 0 L 0 0 Z"), true), "M 0 0 L 4 0 L 0 0 Z");
}

TEST(PathIter, WalksContours) {
  const hsPath path = PathOf("M 0 0 L 1 1 Z M 2 2 Q 3 3 4 4 M 5 5 L 6 6 Z");
  hsPathIter iter(path, false);
  hsPath contour;
  std::string seen;
  for (bool closed = iter.IsClosedContour(); iter.NextContour(&contour); closed = iter.IsClosedContour())
    seen += (closed ? "closed " : "open ") + TextOf(contour) + "; ";
  EXPECT_EQ(seen, "closed M 0 0 L 1 1 Z; open M 2 2 Q 3 3 4 4; closed M 5 5 L 6 6 Z; ");
}

// Random building calls against a model that keeps the pending move by hand.
TEST(Path, ReadsBackWhatWasBuilt) {
  std::mt19937 random(21);
  ThrowOnHalt halt;
  for (int round = 0; round < 500; ++round) {
    hsPath path;
    std::string want, move;
    bool open = false, stored = false;
    for (int i = 0; i < 20; ++i) {
      const auto number = [&] { return " " + std::to_string(int(random() % 100)); };
      const unsigned verb = random() % 6;
      std::string step(1, "MZQCLL"[verb]);
      for (int left = "204622"[verb] - '0'; left > 0; --left) step += number();
      if (step[0] == 'M') {
        move = step;
        open = true;
        stored = false;
      } else if (step[0] == 'Z') {
        if (open && stored) want += " Z";
        open = false;
      } else if (open) {
        if (!stored) want += " " + move;
        stored = true;
        want += " " + step;
      } else {
        continue;
      }
      Build(step, &path);
    }
    if (!want.empty()) want.erase(0, 1);
    ASSERT_EQ(TextOf(path), want);

    std::vector<char> flat(size_t(path.Flatten(nullptr)));
    path.Flatten(flat.data());
    hsPath copy;
    const void* cursor = flat.data();
    copy.Unflatten(&cursor);
    ASSERT_EQ(cursor, flat.data() + flat.size());
    ASSERT_TRUE(copy == path);
    hsPath added;
    added.AddPath(path);
    ASSERT_EQ(IteratedText(added, true), IteratedText(path, true));
  }
}

TEST(Path, AFlatFormThatDisagreesWithItselfIsRefused) {
  const hsPath path = PathOf("M 0 0 L 1 1 Q 2 2 3 3 Z");
  std::vector<char> flat(size_t(path.Flatten(nullptr)));
  const size_t verbs = 8 + 4 * sizeof(hsPoint);
  const bool isLittle = std::endian::native == std::endian::little;
  const size_t low = isLittle ? 0 : 3, high = isLittle ? 3 : 0;  // of the number of points
  const std::pair<size_t, char> faults[] = {{low, 3},       {verbs, 2},     {verbs + 1, 3},
                                            {verbs + 1, 6}, {verbs + 2, 0}, {high, -1}};
  for (const auto& [offset, byte] : faults) {
    path.Flatten(flat.data());
    flat[offset] = byte;
    if (offset == low) flat.insert(flat.end(), 8, 0);
    ReturnOnHalt halt;
    hsPath copy;
    const void* cursor = flat.data();
    EXPECT_THROW(copy.Unflatten(&cursor), hsException) << offset;
    EXPECT_TRUE(copy.IsEmpty());
  }
  EXPECT_EQ(AssertOf([] { hsPath().Unflatten(nullptr); }), "need storage");
}

// A curve's point in doubles, for bounds.
hsPoint At(const hsPoint* p, int degree, double t) {
  double x[4], y[4];
  for (int i = 0; i <= degree; ++i) x[i] = p[i].fX, y[i] = p[i].fY;
  for (int n = degree; n > 0; --n)
    for (int i = 0; i < n; ++i) x[i] += (x[i + 1] - x[i]) * t, y[i] += (y[i + 1] - y[i]) * t;
  return {hsFixed(x[0]), hsFixed(y[0])};
}

TEST(Path, ExactBoundsHoldTheCurveAndNotMuchMore) {
  std::mt19937 random(4);
  std::uniform_int_distribution<hsFixed> coordinate(F(-300), F(300));
  for (int i = 0; i < 400; ++i) {
    const int degree = 2 + i % 2;
    hsPoint p[4];
    for (hsPoint& q : p) q = {coordinate(random), coordinate(random)};
    hsPath path;
    path.MoveTo(p[0]);
    if (degree == 2) path.QuadTo(p[1], p[2]);
    if (degree == 3) path.CurveTo(p[1], p[2], p[3]);
    hsRect exact, sampled;
    path.ComputeBounds(&exact, true);
    sampled.Set(1, p);
    for (int k = 1; k <= 1000; ++k) {
      const hsPoint at = At(p, degree, k / 1000.0);
      sampled.UnionPoints(1, &at);
    }
    // The control points of each piece count, so the bounds may pass a curve that is chopped in one direction only.
    const hsScalar slack[] = {sampled.fLeft - exact.fLeft, sampled.fTop - exact.fTop, exact.fRight - sampled.fRight,
                              exact.fBottom - sampled.fBottom};
    for (const hsScalar s : slack) EXPECT_GE(s, -F(0.1)) << i;
    if (degree == 2) {
      EXPECT_LE(slack[0], F(0.1));
      EXPECT_LE(slack[3], F(0.1));
    }
  }
  hsRect r{1, 2, 3, 4};
  PathOf("M 0 0 Q 10 20 20 0").ComputeBounds(&r, false);
  EXPECT_EQ(r, (hsRect{0, 0, F(20), F(20)}));
  PathOf("M 0 0 Q 10 20 20 0 Z").ComputeBounds(&r, true);
  EXPECT_EQ(r, (hsRect{0, 0, F(20), F(10)}));
  hsPath().ComputeBounds(&r, true);
  EXPECT_EQ(r, (hsRect{0, 0, 0, 0}));
}

TEST(Path, KnowsARectangle) {
  struct Case {
    const char* path;
    bool open, closed;  // IsRect with and without mustClose
  };
  const Case cases[] = {
      {"M 0 0 L 4 0 L 4 2 L 0 2", true, false},
      {"M 0 0 L 4 0 L 4 2 L 0 2 Z", true, false},  // four points, closed or not
      {"M 0 0 L 4 0 L 4 2 L 0 2 L 0 0", true, true},
      {"M 0 0 L 0 2 L 4 2 L 4 0 L 0 0", true, true},
      {"M 0 0 L 4 0 L 4 2 L 0 2 L 0 1", false, false},
      {"M 0 0 L 4 1 L 4 2 L 0 2", true, false},  // p0 and p1 need share nothing
      {"M 0 0 L 4 0 L 5 2 L 0 2", false, false},
      {"M 0 0 L 4 0 L 4 2", false, false},
      {"M 0 0 L 4 0 M 4 2 L 0 2", false, false},
      {"M 0 0 Q 4 0 4 2 L 0 2", false, false},
  };
  for (const Case& c : cases) {
    hsRect r{};
    EXPECT_EQ(PathOf(c.path).IsRect(&r, false), c.open) << c.path;
    EXPECT_EQ(PathOf(c.path).IsRect(nullptr, true), c.closed) << c.path;
    EXPECT_EQ(r, c.open ? (hsRect{0, 0, F(4), F(2)}) : hsRect{}) << c.path;
  }
}

TEST(Path, AddsAContourForwardAndBackward) {
  const char* source = "M 0 0 L 1 0 Q 2 0 2 1 C 3 1 3 2 4 2";
  hsPath path = PathOf("M 0 0");
  path.AddForward(PathOf(source));
  EXPECT_EQ(TextOf(path), source);
  hsPath back = PathOf("M 4 2");
  back.AddReverse(PathOf(source));
  EXPECT_EQ(TextOf(back), "M 4 2 C 3 2 3 1 2 1 Q 2 0 1 0 L 0 0");
  path = PathOf("M 0 0");
  path.AddForward(PathOf("M 0 0 L 1 1 Z"));
  EXPECT_EQ(TextOf(path), "");
  path.AddReverse(PathOf(""));
  path.LineTo(F(1), F(1));
  path.AddReverse(path);
  EXPECT_EQ(TextOf(path), "M 0 0 L 1 1 L 0 0");
}

TEST(Path, TransformTakesOverTheSource) {
  hsPath src = PathOf("M 1 2 L 3 4 Z M 5 6"), dst = PathOf("M 9 9 L 8 8 L 7 7 L 6 6");
  src.SetFillType(7);
  hsMatrix matrix;
  matrix.SetScale(F(2), F(3), 0, 0);
  dst.Transform(&matrix, &src);
  EXPECT_EQ(dst.FillType(), 1u);
  dst.LineTo(0, 0);  // the pending move went through the matrix too
  EXPECT_EQ(TextOf(dst), "M 2 6 L 6 12 Z M 10 18 L 0 0");
  src.Offset(F(1), F(-1));
  EXPECT_EQ(TextOf(src), "M 2 1 L 4 3 Z");
  struct Swapper : hsPointMapper {
    void MapPoints(int32_t count, const hsPoint s[], hsPoint d[]) const override {
      for (int32_t i = 0; i < count; ++i) d[i] = {s[i].fY, s[i].fX};
    }
  };
  const Swapper swapper;
  src.Transform(&swapper);
  EXPECT_EQ(TextOf(src), "M 1 2 L 3 4 Z");
  EXPECT_EQ(ReportOf([&] { src.Transform(static_cast<const hsMatrix*>(nullptr)); }), "nil param: 0");
}

TEST(Path, Subdivides) {
  hsPath path = PathOf("M 0 0 L 8 0 Q 8 8 0 8 Z");
  path.Subdivide(1);
  EXPECT_EQ(TextOf(path), "M 0 0 C 2.66666 0 5.33331 0 8 0 Q 8 4 6 6 Q 4 8 0 8 C 0 5.33334 0 2.66669 0 0 Z");
  for (const auto& [level, lines, quads] : {std::tuple{0, 1, 1}, {2, 2, 4}, {4, 8, 16}, {9, 8, 16}}) {
    hsPath line = PathOf("M 0 0 L 90 30"), quad = PathOf("M 0 0 Q 9 9 3 4"), cubic = PathOf("M 0 0 C 1 2 3 4 5 0");
    for (hsPath* p : {&line, &quad, &cubic}) p->Subdivide(level);
    EXPECT_EQ(line.CountFirstContourSegments(false), lines);
    EXPECT_EQ(quad.CountFirstContourSegments(false), quads);
    EXPECT_EQ(cubic.CountFirstContourSegments(false), quads);
    hsPoint end;
    cubic.GetLastPoint(&end);
    EXPECT_EQ(end, (hsPoint{F(5), 0}));
  }
  hsPath quad = PathOf("M 0 0 Q 8 0 8 8"), cubic = PathOf("M 0 0 C 4 0 8 4 8 8");
  quad.SubdivideToTolerance(F(2), 10);  // 8, 4, 2: within reach after two cuts at the first end
  EXPECT_EQ(quad.CountFirstContourSegments(false), 4);
  EXPECT_EQ(AssertOf([&] { hsPath(cubic).SubdivideToTolerance(F(2), 10); }), "bad t");
  ReturnOnHalt halt;
  cubic.SubdivideToTolerance(F(2), 10);
  EXPECT_EQ(TextOf(cubic), "M 0 0 C 4 0 8 4 8 8");
}

double Distance(hsPoint p, hsPoint q) { return std::hypot(p.fX - q.fX, p.fY - q.fY) / 65536; }

// All curves of the path keep to the circle, within a margin in pixels.
void ExpectRound(const hsPath& path, double centre, double radius, double margin) {
  hsPathIter iter(path, false);
  hsPoint p[4];
  for (hsPath::Verb verb; (verb = iter.Next(p)) != hsPath::kDoneVerb;)
    for (double t : {0.0, 0.3, 0.5, 1.0})
      EXPECT_NEAR(verb == hsPath::kQuadVerb ? Distance(At(p, 2, t), {F(centre), F(centre)}) : radius, radius, margin);
}

TEST(PathShapes, RoundThingsAreRound) {
  hsPath circle, reversed;
  circle.AddCircle(F(50), F(50), F(-40));
  const hsRect square{F(10), F(10), F(90), F(90)};
  reversed.AddOval(&square, true);
  EXPECT_EQ(circle.CountFirstContourSegments(false), 8);
  for (const hsPath* path : {&circle, &reversed}) ExpectRound(*path, 50, 40, 0.2);
  hsPoint up, down;
  circle.GetPoint(2, &up);
  reversed.GetPoint(2, &down);
  EXPECT_EQ(up, (hsPoint{down.fX, F(100) - down.fY}));
  for (hsScalar radius : {8, 9}) {  // too small to be seen, or not
    hsPath dot;
    dot.AddCircle(0, 0, radius);
    EXPECT_EQ(dot.IsEmpty(), radius == 8);
  }
}

TEST(PathShapes, Rectangles) {
  hsPath path;
  path.AddRect(&kUnitRect);
  path.AddRect(&kUnitRect, true);
  EXPECT_EQ(TextOf(path), "M 0 0 L 100 0 L 100 60 L 0 60 Z M 0 60 L 100 60 L 100 0 L 0 0 Z");
  path.Rewind();
  path.AddRoundRect(&kUnitRect, F(10), 8);  // a radius that can't be seen
  EXPECT_EQ(TextOf(path), "M 0 0 L 100 0 L 100 60 L 0 60 Z");
  path.Rewind();
  path.AddRoundRect(&kUnitRect, F(100), F(30));  // full width and half height: no oval yet
  EXPECT_EQ(path.GetSegmentMask(), hsPath::kLineMask | hsPath::kCurveMask);
  path.AddRoundRect(&kUnitRect, F(100), F(60));
  EXPECT_EQ(path.GetSegmentMask(), 7u);
  path.Rewind();
  path.AddRoundRect(&kUnitRect, F(16), F(20));
  EXPECT_EQ(TextOf(path).substr(0, 56), "M 84 0 C 92.8364 0 100 8.95447 100 20 L 100 40 C 100 51.");
}

TEST(PathShapes, ArcsStartAtTwelveAndRunClockwise) {
  const hsRect oval{F(0), F(0), F(80), F(80)};
  const auto arc = [&](hsFixed start, hsFixed sweep, bool wedge) {
    hsPath path;
    path.AddArc(&oval, start, sweep, wedge);
    return path;
  };
  const hsPath quarter = arc(0, F(90), false);
  EXPECT_EQ(quarter.CountFirstContourSegments(true), 3);  // two quadratics, and open
  hsPoint first, last;
  quarter.GetFirstPoint(&first);
  quarter.GetLastPoint(&last);
  EXPECT_LT(Distance(first, {F(40), 0}), 0.1);
  EXPECT_LT(Distance(last, {F(80), F(40)}), 0.2);
  ExpectRound(quarter, 40, 40, 0.3);
  EXPECT_EQ(arc(0, F(45), false).CountFirstContourSegments(false), 1);
  EXPECT_EQ(arc(0, F(45) + 1, false).CountFirstContourSegments(false), 2);
  EXPECT_TRUE(arc(0, 0, true).IsEmpty());
  EXPECT_EQ(TextOf(arc(F(10), F(360), true)), TextOf(arc(0, F(-400), false)));  // both the whole oval
  // A negative sweep is the positive one walked backwards.
  hsPath back = arc(F(90), F(-90), false), walked;
  walked.MoveTo(last);
  walked.AddReverse(quarter);
  EXPECT_EQ(TextOf(back), TextOf(walked));
  const std::string wedge = TextOf(arc(0, F(45), true));
  EXPECT_EQ(wedge.substr(wedge.size() - 9), "L 40 40 Z");
}

TEST(PathShapes, OutlinesWithImpliedPoints) {
  const hsPoint p[] = {{F(0), 0}, {F(8), 0}, {F(8), F(8)}, {F(0), F(8)}};
  struct {
    std::vector<uint8_t> on;
    const char* path;
    bool closed = true;
  } const cases[] = {{{1, 1, 1, 1}, "M 0 0 L 8 0 L 8 8 L 0 8 L 0 0 Z"},
                     {{1, 1, 1, 1}, "M 0 0 L 8 0 L 8 8 L 0 8", false},
                     {{1, 0, 1, 0}, "M 0 0 Q 8 0 8 8 Q 0 8 0 0 Z"},
                     {{0, 0, 0, 0}, "M 4 0 Q 8 0 8 4 Q 8 8 4 8 Q 0 8 0 4 Q 0 0 4 0 Z"},
                     {{0, 1, 0, 1}, "M 8 0 Q 8 8 0 8 Q 0 0 8 0 Z"},
                     {{1}, "M 0 0 L 0 0 Z"},
                     {{0}, "M 0 0 Q 0 0 0 0 Z"},
                     {{}, ""}};
  for (const auto& [on, want, closed] : cases) {
    hsPath path;
    path.AddContourWithOnCurveFlags(int32_t(on.size()), p, on.data(), closed);
    EXPECT_EQ(TextOf(path), want);
  }
}

}  // namespace
