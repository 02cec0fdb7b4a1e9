// Filled paths and quadrilaterals against the winding at pixel centres.
#include <gtest/gtest.h>

#include "gfx/halt.h"
#include "gfx/nomemory.h"
#include "gfx/vector/hsedge.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/pathtext.h"
#include "gfx/vector/scanmodel.h"

namespace {

std::string SpansOf(const hsPath& path, const hsRegion* clip = nullptr) {
  CallBlitter blitter;
  HSScan::FillPath(&path, clip, &blitter);
  return blitter.calls;
}
std::string SpansOf(const char* path) { return SpansOf(PathOf(path)); }

// Where a right edge and a left one share their X, the starting edge comes first and the span goes through.
TEST(FillPath, AStartingEdgeGoesBeforeOneAtTheSameX) {
  EXPECT_EQ(SpansOf("M 0 0 L 4 0 L 4 3 L 0 3 Z M 4 1 L 8 1 L 8 4 L 4 4 Z"), "0,0,4 1,0,8 2,0,8 3,4,4");
}

// A quadratic's second difference in quarters of a pixel a step, rounded: below 64 it is cut into 16 lines.
TEST(FillPath, CurvesAreCutByHowFarTheyBend) {
  hsEdge edge;
  const auto linesOf = [&](int32_t bend) {
    const hsPoint points[] = {{0, 0}, {0, hsIntToFixed(128)}, {hsIntToFixed(bend), hsIntToFixed(256)}};
    edge.SetQuad(points);
    return edge.fCurveCount;
  };
  EXPECT_EQ(linesOf(64 * 4 - 3), 16);
  EXPECT_EQ(linesOf(64 * 4), 32);
}

TEST(FillPath, NothingWithoutAPathOrWithinAnEmptyClip) {
  const hsRegion empty;
  EXPECT_EQ(SpansOf(hsPath()), "");
  EXPECT_EQ(SpansOf(PathOf("M 0 0 L 9 0 L 9 9 Z"), &empty), "");
  CallBlitter blitter;
  const hsPath path;
  EXPECT_EQ(ReportOf([&] { HSScan::FillPath(nullptr, nullptr, &blitter); }), "nil param: 0");
  EXPECT_EQ(ReportOf([&] { HSScan::FillPath(&path, nullptr, nullptr); }), "nil param: 0");
}

// Slopes beyond all numbers are reported, not drawn.
TEST(FillPath, AnInfiniteSlopeIsReported) {
  hsPath path;
  path.MoveTo(-16000 * kFixed1, 0x7F00);
  path.LineTo(16000 * kFixed1, 0x8000);
  EXPECT_EQ(AssertOf([&] { SpansOf(path); }), "infinity slope");
  ReturnOnHalt halt;
  SpansOf(path);
}

// Random paths: everything that isn't right beside the outline must agree. A line's crossings are exact but for the
// last bits of its slope; a curve is a few lines, and those lie up to half a pixel off.
void CompareWithModel(bool curves, double doubtful, int count) {
  Random random(curves ? 5 : 4);
  ThrowOnHalt halt;
  for (int i = 0; i < count; ++i) {
    const hsPath path = RandomPath(random, curves);
    const Outline outline(path, true);
    PixelBlitter whole;
    HSScan::FillPath(&path, nullptr, &whole);
    ASSERT_TRUE(whole.ordered && !whole.twice) << i;
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x)
        if (const bool drawn = whole.drawn.At(x, y); drawn != outline.Contains(CentreOf(x, y))) {
          ASSERT_LT(outline.DistanceTo(CentreOf(x, y)), doubtful) << i << " at " << x << "," << y;
        }

    // Through a clip, whatever its kind, the same pixels come.
    const PixelModel model = RandomModel(random);
    const hsRegion region = model.Region();
    PixelBlitter clipped;
    HSScan::FillPath(&path, &region, &clipped);
    ASSERT_TRUE(clipped.ordered) << i;
    for (int y = 0; y < kModelSize; ++y)
      for (int x = 0; x < kModelSize; ++x) {
        const bool want = whole.drawn.At(x, y) && model.At(x, y);
        if (clipped.drawn.At(x, y) == want) continue;
        ASSERT_TRUE(model.At(x, y)) << i << " drew outside its clip at " << x << "," << y;
        ASSERT_LT(outline.DistanceTo(CentreOf(x, y)), 0.01) << i << " at " << x << "," << y;
      }
  }
}

TEST(FillPath, PolygonsAgreeWithTheWindingAtCentres) { CompareWithModel(false, 0.005, 1500); }
TEST(FillPath, CurvesAgreeWithTheWindingAtCentres) { CompareWithModel(true, 0.75, 400); }

// Curves beyond a side of the clip become lines, which must leave the winding as it was.
TEST(FillPath, CurvesBesideTheClipKeepTheirWinding) {
  const hsRegion clip(hsIntRect{10, 0, 20, 10});
  EXPECT_EQ(SpansOf(PathOf("M 4 1 Q -9 3 4 5 L 16 5 L 16 1 Z"), &clip), "1,10,6 2,10,6 3,10,6 4,10,6");
  EXPECT_EQ(SpansOf(PathOf("M 26 1 C 40 2 50 4 26 5 L 16 5 L 16 1 Z"), &clip), "1,16,4 2,16,4 3,16,4 4,16,4");
}

TEST(FillPath, AnOrdinaryShapeAllocatesNothing) {
  hsPath path;
  const hsRect rect{kFixed1, kFixed1, 60 * kFixed1, 60 * kFixed1};
  path.AddOval(&rect);
  const hsRegion clip(hsIntRect{0, 0, kModelSize, kModelSize});
  PixelBlitter pixels;
  const hsPoint quad[4] = {{0, 0}, {kFixed1 * 9, kFixed1}, {kFixed1 * 8, kFixed1 * 7}, {0, kFixed1 * 5}};
  NoMemory none;
  HSScan::FillPath(&path, &clip, &pixels);
  HSScan::AntiFillPath(&path, &clip, &pixels);
  HSScan::FillQuad(quad, &clip, &pixels);
}

TEST(RegionSetPath, HoldsWhatThePathFills) {
  Random random(9);
  ThrowOnHalt halt;
  for (int i = 0; i < 300; ++i) {
    const hsPath path = RandomPath(random, i % 2 == 0);
    PixelBlitter filled;
    HSScan::FillPath(&path, nullptr, &filled);
    const PixelModel before = RandomModel(random);
    hsRegion replaced = before.Region(), intersected = before.Region();
    replaced.SetPath(path);
    intersected.SetPath(path, hsRegion::kIntersectPath);
    ASSERT_TRUE(replaced == filled.drawn.Region()) << i;
    const auto both = [&](int x, int y) { return filled.drawn.At(x, y) && before.At(x, y); };
    ASSERT_TRUE(intersected == PixelModel::Where(both).Region()) << i;
  }
}

std::string QuadSpans(const char* points) {
  const hsPath path = PathOf(points);
  hsPoint quad[4];
  for (int i = 0; i < 4; ++i) path.GetPoint(i, &quad[i]);
  CallBlitter blitter;
  HSScan::FillQuad(quad, nullptr, &blitter);
  return blitter.calls;
}

TEST(FillQuad, TwoToFourEdges) {
  EXPECT_EQ(QuadSpans("M 2 0 L 4 2 L 2 4 L 0 2"), "0,2,1 1,1,3 2,1,3 3,2,1") << "a right edge on a centre holds it";
  EXPECT_EQ(QuadSpans("M 0 0 L 4 4 L 0 4 L 0 4"), "0,0,1 1,0,2 2,0,3 3,0,4") << "a triangle";
  EXPECT_EQ(QuadSpans("M 0 1 L 9 1 L 9 1 L 0 1"), "");
}

// Turned rectangles of any size and angle, under any clip.
TEST(FillQuad, AgreesWithTheWindingAtCentres) {
  Random random(12);
  ThrowOnHalt halt;
  for (int i = 0; i < 1500; ++i) {
    const double angle = random() % 6283 / 1000.0, x = 20 + random() % 24, y = 20 + random() % 24;
    const double w = random() % 140 / 10.0, h = random() % 140 / 10.0, c = std::cos(angle), s = std::sin(angle);
    hsPath path;
    hsPoint quad[4];
    for (int k = 0; k < 4; ++k) {
      const double dx = k == 1 || k == 2 ? w : -w, dy = k >= 2 ? h : -h;
      quad[k] = {hsScalar((x + dx * c - dy * s) * 65536), hsScalar((y + dx * s + dy * c) * 65536)};
    }
    path.AddPoly(4, quad, true);
    const Outline outline(path, true);
    const PixelModel model = RandomModel(random);
    const hsRegion region = model.Region();
    PixelBlitter whole, clipped;
    HSScan::FillQuad(quad, nullptr, &whole);
    HSScan::FillQuad(quad, &region, &clipped);
    ASSERT_TRUE(whole.ordered && clipped.ordered) << i;
    for (int py = 0; py < kModelSize; ++py)
      for (int px = 0; px < kModelSize; ++px) {
        const bool drawn = whole.drawn.At(px, py);
        if (drawn != outline.Contains(CentreOf(px, py))) {
          ASSERT_LT(outline.DistanceTo(CentreOf(px, py)), 0.005) << i << " at " << px << "," << py;
        }
        ASSERT_EQ(clipped.drawn.At(px, py), drawn && model.At(px, py)) << i << " at " << px << "," << py;
      }
  }
}

}  // namespace
