// Strokes: the outline's form in the plain cases, and the distance to the path in all others.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/pathtext.h"
#include "gfx/vector/scanmodel.h"

namespace {

hsPath StrokeOf(const hsPath& path, double radius, uint32_t style, double miterLimit = 4) {
  hsPath outline;
  HSScan::StrokePath(&path, hsFixed(radius * 65536), hsFixed(miterLimit * 65536), style, &outline);
  return outline;
}
std::string StrokeOf(const char* path, uint32_t style, double miterLimit = 4) {
  return TextOf(StrokeOf(PathOf(path), 1, style, miterLimit));
}

TEST(StrokePath, EndsOfALine) {
  EXPECT_EQ(StrokeOf("M 2 5 L 10 5", 0), "M 2 6 L 2 4 L 10 4 L 10 6 L 2 6 Z") << "cap, outer side, cap, inner side";
  EXPECT_EQ(StrokeOf("M 2 5 L 10 5", HSScan::kSquareCap),
            "M 2 6 L 1 6 L 1 4 L 2 4 L 10 4 L 11 4 L 11 6 L 10 6 L 2 6 Z");
  const hsPath round = StrokeOf(PathOf("M 2 5 L 8 5"), 1, HSScan::kRoundCap);
  EXPECT_EQ(round.GetSegmentMask(), uint32_t{hsPath::kLineMask | hsPath::kQuadMask});
  EXPECT_EQ(round.CountPoints(), 1 + 8 + 1 + 8 + 1) << "each cap is four curves";
}

TEST(StrokePath, WhatHasNoDirectionAddsNothing) {
  EXPECT_EQ(StrokeOf("M 2 5 L 2 5", HSScan::kRoundCap), "");
  EXPECT_EQ(StrokeOf("M 2 5 L 2 5 Z", 0), "");
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 Z M 2 5 L 2 5 L 2 5 Z", 0), StrokeOf("M 0 0 L 4 0 Z", 0));
  EXPECT_EQ(StrokeOf("M 2 5 L 2 5 L 8 5", 0), StrokeOf("M 2 5 L 8 5", 0));
  for (const char* curve : {"M 1 1 C 1 1 9 1 9 1", "M 1 1 Q 9 1 9 1"})
    EXPECT_EQ(StrokeOf(curve, 0), StrokeOf("M 1 1 L 9 1", 0)) << "a curve that is a line";
}

TEST(StrokePath, Joins) {
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 8 0", 0), "M 0 1 L 0 -1 L 4 -1 L 8 -1 L 8 1 L 4 1 L 0 1 Z") << "none on a straight";
  // To the right and down: the outer side is above, and its corner takes the place of the line's end.
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 4 4", 0), "M 0 1 L 0 -1 L 5 -1 L 5 4 L 3 4 L 3 0 L 4 1 L 0 1 Z");
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 4 -4", 0), "M 0 1 L 0 -1 L 4 -1 L 3 0 L 3 -4 L 5 -4 L 5 1 L 0 1 Z") << "up: below";
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 4 4", HSScan::kBevelJoin),
            "M 0 1 L 0 -1 L 4 -1 L 5 0 L 5 4 L 3 4 L 3 0 L 4 1 L 0 1 Z");
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 4 4", 0, 1), StrokeOf("M 0 0 L 4 0 L 4 4", HSScan::kBevelJoin))
      << "beyond the miter's limit";
  EXPECT_EQ(StrokeOf("M 0 0 L 4 0 L 0 0", 0), StrokeOf("M 0 0 L 4 0 L 0 0", HSScan::kBevelJoin))
      << "no miter turning back";
}

TEST(StrokePath, AClosedContourMakesTwo) {
  EXPECT_EQ(StrokeOf("M 2 2 L 10 2 L 10 10 L 2 10 Z", 0),
            "M 2 1 L 11 1 L 11 11 L 1 11 L 1 1 L 2 1 Z "
            "M 2 3 L 3 2 L 3 10 L 2 9 L 10 9 L 9 10 L 9 2 L 10 3 L 2 3 Z")
      << "the inner one reversed, through every corner";
}

// Round strokes hold what lies within the radius of the path and nothing else, but for a margin: one curve covers
// up to 45 degrees of turning, and the fill's lines are off by up to half a pixel. Where a curve doubles back more
// sharply than its radius, the two sides can cancel each other in a pixel or so.
void CompareWithDistance(bool curves, double inner, double outer, int mostHoles) {
  int holes = 0;
  Random random(curves ? 41 : 40);
  ThrowOnHalt halt;
  for (int i = 0; i < 250; ++i) {
    const double radius = 2 + random() % 50 / 10.0;
    hsPath path;
    const auto point = [&] { return RandomPoint(random, kModelSize - 20) + hsPoint{10 << 16, 10 << 16}; };
    path.MoveTo(point());
    for (unsigned segment = 1 + random() % 3; segment > 0; --segment) {
      if (!curves)
        path.LineTo(point());
      else
        path.QuadTo(point(), point());
    }
    if (!curves && random() & 1) path.Close();
    const Outline spine(path, false);
    const hsPath outline = StrokeOf(path, radius, HSScan::kRoundJoin | HSScan::kRoundCap);
    PixelBlitter filled;
    const hsRegion clip(hsIntRect{0, 0, kModelSize, kModelSize});
    HSScan::FillPath(&outline, &clip, &filled);
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x) {
        const double distance = spine.DistanceTo(CentreOf(x, y));
        const bool drawn = filled.drawn.At(x, y);
        holes += distance < radius - inner && !drawn;
        if (distance > radius + outer) {
          ASSERT_FALSE(drawn) << i << " at " << x << "," << y;
        }
      }
  }
  EXPECT_LE(holes, mostHoles);
}

TEST(StrokePath, LinesAreDrawnWithinTheirRadius) { CompareWithDistance(false, 0.5, 0.5, 0); }
TEST(StrokePath, CurvesAreDrawnWithinTheirRadius) { CompareWithDistance(true, 1, 0.5, 3); }

}  // namespace
