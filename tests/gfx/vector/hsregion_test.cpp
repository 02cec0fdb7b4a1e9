#include "gfx/vector/hsregion.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "gfx/halt.h"
#include "gfx/vector/regionmodel.h"

void PrintTo(const hsIntRect& r, std::ostream* out) {
  *out << r.fLeft << "," << r.fTop << "," << r.fRight << "," << r.fBottom;
}

namespace {

using Rects = std::vector<hsIntRect>;
using Runs = std::vector<int16_t>;

constexpr int16_t S = hsRegion::kRunTypeSentinel;

Rects RectsOf(const hsRegion& region) {
  Rects rects;
  for (hsRegionRectIter iter(region); !iter.IsDone(); iter.Next()) rects.push_back(iter.Rect());
  return rects;
}

hsRegion RegionOf(const std::vector<int16_t>& runs) {
  hsRegion region;
  region.SetRuns(int32_t(runs.size()), runs.data());
  return region;
}

std::vector<int16_t> RunsOf(const hsRegion& region) {
  if (!region.Runs()) return {};
  return {region.Runs(), region.Runs() + region.CountRuns()};
}

hsRegion Difference(const hsIntRect& a, const hsIntRect& b) {
  hsRegion region;
  region.Difference(a, b);
  return region;
}

struct Operation {
  const char* name;
  void (hsRegion::*perform)(const hsRegion&, const hsRegion&);
  bool (*keeps)(bool a, bool b);
};

const Operation kOperations[] = {
    {"intersect", &hsRegion::Intersect, [](bool a, bool b) { return a && b; }},
    {"union", &hsRegion::Union, [](bool a, bool b) { return a || b; }},
    {"difference", &hsRegion::Difference, [](bool a, bool b) { return a && !b; }},
    {"xor", &hsRegion::Xor, [](bool a, bool b) { return a != b; }},
};

// Every operation on random regions makes the shortest runs of the right pixels, into a third region or an operand.
TEST(Region, OperationsAgreeWithPixels) {
  Random random(31);
  ThrowOnHalt halt;
  for (int i = 0; i < 2000; ++i) {
    const PixelModel a = RandomModel(random), b = RandomModel(random);
    const hsRegion aRegion = a.Region(), bRegion = b.Region();
    for (const Operation& operation : kOperations) {
      const PixelModel want = PixelModel::Where([&](int x, int y) { return operation.keeps(a.At(x, y), b.At(x, y)); });
      hsRegion result, overA = aRegion, overB = bRegion;
      (result.*operation.perform)(aRegion, bRegion);
      (overA.*operation.perform)(overA, bRegion);
      (overB.*operation.perform)(aRegion, overB);
      ASSERT_TRUE(result == want.Region()) << operation.name << i;
      ASSERT_TRUE(result.Validate() && result.IsRect() == want.Region().IsRect());
      ASSERT_TRUE(overA == result && overB == result) << operation.name << i;
    }
  }
}

// Sparse ones and dense ones, thin and thick, so that rectangles fall into gaps, join bands and cover them; now and
// then something is taken away again.
TEST(Region, GathersRectanglesOneByOne) {
  Random random(37);
  ThrowOnHalt halt;
  const auto below = [&](int n) { return int(random() % unsigned(n)); };
  for (int i = 0; i < 300; ++i) {
    hsRegion region;
    PixelModel model;
    const int most = 1 + below(20);
    for (int k = 0; k < 40; ++k) {
      const int x = below(kModelSize - most), y = below(kModelSize - most);
      const hsIntRect rect{x, y, x + 1 + below(most), y + 1 + below(most)};
      const bool adds = below(8) > 0;
      model.Fill(rect, adds);
      if (!adds)
        region.Difference(region, rect);
      else if (k % 2)
        region.Union(region, rect);
      else
        region.Union(hsRegion(rect), region);
      ASSERT_TRUE(region == model.Region()) << i << " " << k;
      ASSERT_TRUE(region.Validate());
    }
  }
}

// As runs they may be given apart.
TEST(Region, BandsAlikeAreJoined) {
  hsRegion region;
  region.Union(RegionOf({0, 5, 0, 10, S, 10, 0, 10, S, 15, 0, 10, S, S}), hsIntRect{0, 20, 10, 30});
  EXPECT_EQ(RectsOf(region), (Rects{{0, 0, 10, 15}, {0, 20, 10, 30}}));
  region.Union(hsIntRect{0, 0, 10, 5}, hsIntRect{0, 5, 10, 9});
  EXPECT_EQ(RectsOf(region), (Rects{{0, 0, 10, 9}}));
  region.Xor(hsIntRect{0, 0, 10, 5}, hsIntRect{10, 0, 20, 5});
  EXPECT_EQ(RectsOf(region), (Rects{{0, 0, 20, 5}}));
}

// 100 spans on each of 200 thin bands come of two operands that have only some hundreds of elements.
TEST(Region, AResultCanBeMuchLargerThanItsOperands) {
  std::vector<int16_t> fence{0, 400}, shelves{0};
  for (int16_t i = 0; i < 100; ++i) fence.insert(fence.end(), {int16_t(4 * i), int16_t(4 * i + 2)});
  fence.insert(fence.end(), {S, S});
  for (int16_t i = 0; i < 200; ++i)
    shelves.insert(shelves.end(), {int16_t(2 * i + 1), 500, 510, S, int16_t(2 * i + 2), S});
  shelves.push_back(S);
  hsRegion result;
  result.Union(RegionOf(fence), RegionOf(shelves));
  EXPECT_TRUE(result.Validate());
  EXPECT_EQ(RectsOf(result).size(), 200u * 101 + 200u * 100);
}

TEST(Region, QueriesAgreeWithPixels) {
  Random random(32);
  ThrowOnHalt halt;
  for (int i = 0; i < 300; ++i) {
    const PixelModel model = RandomModel(random);
    const hsRegion region = model.Region();
    for (int k = 0; k < 60; ++k) {
      const int x = int(random() % kModelSize), y = int(random() % kModelSize);
      ASSERT_EQ(region.Contains(x, y), model.At(x, y));
      const hsIntRect r = RandomRect(random, 10);
      bool all = true, any = false;
      for (int v = r.fTop; v < r.fBottom; ++v)
        for (int u = r.fLeft; u < r.fRight; ++u) all &= model.At(u, v), any |= model.At(u, v);
      ASSERT_EQ(region.Contains(r), all);
      ASSERT_EQ(region.Intersects(r), any);

      PixelBlitter cut;
      region.Blit(r, &cut);
      const auto inside = [&](int u, int v) { return r.Contains(u, v) && model.At(u, v); };
      ASSERT_TRUE(cut.drawn == PixelModel::Where(inside) && !cut.twice);
    }
    // Spans in any order of rows, so that the clipper seeks both ways.
    for (int k = 0; k < 60; ++k) {
      const int y = int(random() % kModelSize), left = int(random() % kModelSize);
      const int right = left + int(random() % unsigned(kModelSize - left));
      PixelBlitter span;
      region.BlitClipped(y, left, right, &span);
      const auto inside = [&](int u, int v) { return v == y && u >= left && u < right && model.At(u, v); };
      ASSERT_TRUE(span.drawn == PixelModel::Where(inside) && !span.twice);
    }
    ASSERT_TRUE(region.Validate());
  }
}

TEST(Region, ClipSpanReturnsTheFirstPieceOnly) {
  hsRegion ring = Difference({0, 0, 30, 30}, {10, 10, 20, 20});
  int32_t left = 5, right = 40;
  EXPECT_TRUE(ring.ClipSpan(15, &left, &right));
  EXPECT_EQ(left, 5);
  EXPECT_EQ(right, 10);
  left = 12, right = 18;
  EXPECT_FALSE(ring.ClipSpan(15, &left, &right));
  EXPECT_EQ(left, 12);
  EXPECT_EQ(right, 18);
  EXPECT_EQ(AssertOf([&] { ring.ClipSpan(15, &right, &left); }), "bad left-right for clipSpan");
  left = 20, right = 40000;
  EXPECT_EQ(AssertOf([&] { ring.ClipSpan(15, &left, &right); }), "value out of runtype range");
  // A rectangle only clamps, down to nothing.
  hsRegion rect(hsIntRect{10, 0, 20, 1});
  left = 0, right = 10;
  EXPECT_TRUE(rect.ClipSpan(0, &left, &right));
  EXPECT_EQ(left, right);
  left = 20, right = 30;
  EXPECT_FALSE(rect.ClipSpan(0, &left, &right));
}

TEST(Region, RowIteratorsMirrorEachOther) {
  Random random(33);
  for (int i = 0; i < 300; ++i) {
    const PixelModel model = RandomModel(random);
    const hsRegion region = model.Region();
    if (region.IsRect()) {
      EXPECT_EQ(ReportOf([&] { hsRegionRowIter iter(region); }), "nil param: 0");
      EXPECT_EQ(ReportOf([&] { hsRegionReverseRowIter iter(region); }), "nil param: 0");
      continue;
    }
    std::vector<std::array<int32_t, 3>> want, forward, backward;
    for (int y = 0; y < kModelSize; ++y) {
      const std::vector<int16_t> row = model.Row(y);
      for (size_t k = 0; k < row.size(); k += 2) want.push_back({y, row[k], row[k + 1]});
    }
    int32_t y, left, right;
    for (hsRegionRowIter iter(region); iter.Next(&y, &left, &right);) forward.push_back({y, left, right});
    for (hsRegionReverseRowIter iter(region); iter.Next(&y, &left, &right);) backward.push_back({y, left, right});
    std::reverse(backward.begin(), backward.end());
    ASSERT_EQ(forward, want);
    ASSERT_EQ(backward, want);
  }
}

TEST(RegionBuilder, MakesTheShortestRuns) {
  Random random(34);
  ThrowOnHalt halt;
  for (int i = 0; i < 500; ++i) {
    const PixelModel model = RandomModel(random);
    hsRegionBuilder builder;
    for (int y = 0; y < kModelSize; ++y) {
      const std::vector<int16_t> row = model.Row(y);
      for (size_t k = 0; k < row.size(); k += 2) {
        // Some spans come in two pieces that touch.
        const int width = row[k + 1] - row[k], first = width > 1 && random() % 2 ? 1 : 0;
        if (first) builder.BlitH(y, row[k], first);
        builder.BlitH(y, row[k] + first, width - first);
      }
    }
    int32_t count;
    const int16_t* runs = builder.Finish(&count);
    ASSERT_EQ(Runs(runs, runs + count), model.Runs()) << i;
  }
}

TEST(RegionBuilder, CanHoldNothingAndNoSpanOutOfRange) {
  int32_t count;
  hsRegionBuilder builder;
  EXPECT_EQ((builder.Finish(&count), count), 1);
  EXPECT_EQ(AssertOf([&] { builder.BlitH(3, 32760, 10); }), "value out of runtype range");
}

TEST(Region, TranslatesItselfOrACopy) {
  const hsRegion ring = Difference({0, 0, 30, 30}, {10, 10, 20, 20});
  hsRegion moved;
  hsRegion(ring).Translate(-5, 7, &moved);
  EXPECT_EQ(RectsOf(moved), (Rects{{-5, 7, 25, 17}, {-5, 17, 5, 27}, {15, 17, 25, 27}, {-5, 27, 25, 37}}));
  EXPECT_EQ(moved.Bounds(), (hsIntRect{-5, 7, 25, 37}));
  int32_t left = 0, right = 50;
  EXPECT_TRUE(moved.ClipSpan(20, &left, &right));
  moved.Translate(100, 0);  // under its clipper
  left = 0, right = 500;
  EXPECT_TRUE(moved.ClipSpan(20, &left, &right));
  EXPECT_EQ(left, 95);
  hsRegion nothing;
  nothing.Translate(5, 5);
  EXPECT_TRUE(nothing.IsEmpty());
  EXPECT_EQ(AssertOf([&] { moved.Translate(32767, 0); }), "value out of runtype range");
  // Only the way is checked, not where it leads; what has left the range can be walked but isn't a region any more.
  moved.Translate(32766, 0);
  EXPECT_EQ(RectsOf(moved).size(), 4u);
  EXPECT_EQ(AssertOf([&] { moved.Union(moved, ring); }), "rgn validate failed");
}

TEST(Region, MalformedRunsAreRefused) {
  const std::vector<int16_t> cases[] = {
      {0, 10, 5, 8, S, S, S},          // goes on after its end
      {0, 10, 5, 8, 9, S, S},          // half a span
      {0, 10, 5, 8, 8, 9, S, S},       // spans that touch
      {0, 10, 8, 5, 12, 13, S, S},     // right before left
      {0, 10, 5, 8, 9, 9, S, S},       // a span without pixels
      {10, 10, 5, 8, S, 12, S, S},     // a band without rows
      {0, 10, 5, 8, S, 12, 1, 2, S},   // no end
      {0, 10, S, 12, S, 14, S, S},     // no pixels
      {0, 10, -32767, 8, S, 12, S, S}  // out of range
  };
  for (const auto& runs : cases) {
    EXPECT_EQ(AssertOf([&] { RegionOf(runs); }), "rgn validate failed");
    ReturnOnHalt halt;
    EXPECT_TRUE(RegionOf(runs).IsEmpty());
  }
  const std::vector<int16_t> ring = RunsOf(Difference({0, 0, 30, 30}, {10, 10, 20, 20}));
  const hsIntRect wrong{0, 0, 30, 31};
  EXPECT_EQ(AssertOf([&] { hsRegion(int32_t(ring.size()), ring.data(), &wrong); }), "rgn validate failed");
  EXPECT_EQ(AssertOf([&] { hsRegion(6, ring.data()); }), "bad count");
  EXPECT_EQ(RectsOf(RegionOf({0, 10, 5, 8, S, S})), (Rects{{5, 0, 8, 10}}));
  EXPECT_TRUE(RegionOf({S}).IsEmpty());
  EXPECT_EQ(AssertOf([&] { Difference({0, 0, 40000, 9}, {1, 1, 2, 2}); }), "value out of runtype range");
}

TEST(Region, WhateverIsReadAsRunsStaysInside) {
  Random random(35);
  ReturnOnHalt halt;
  int taken = 0;
  testing::internal::CaptureStdout();
  for (int i = 0; i < 20000; ++i) {
    std::vector<int16_t> runs(random() % 24);
    int16_t last = 0;
    for (int16_t& value : runs) value = random() % 4 == 0 ? S : last = int16_t(last % 64 + int(random() % 9));
    const hsRegion region = RegionOf(runs);
    taken += !region.IsRect();
    hsRegion other;
    other.Xor(region, hsIntRect{2, 2, 30, 30});
  }
  testing::internal::GetCapturedStdout();
  EXPECT_GT(taken, 20);
}

TEST(Region, CopiesAreTheirOwn) {
  hsRegion ring = Difference({0, 0, 30, 30}, {10, 10, 20, 20}), copy = ring, other;
  int32_t left = 0, right = 30;
  EXPECT_TRUE(ring.ClipSpan(15, &left, &right));
  other = ring;
  ring.SetRect(1, 2, 3, 4);
  EXPECT_TRUE(other == copy && other.Validate() && ring.Validate());
  EXPECT_FALSE(other == ring);
  other.Swap(ring);
  ring = std::move(other);
  const hsRegion& self = ring;
  ring = self;
  EXPECT_TRUE(ring.IsRect());
  EXPECT_EQ(ring.Bounds(), (hsIntRect{1, 2, 3, 4}));
}

TEST(Blitter, ARectangleIsRowsFromTheTop) {
  PixelBlitter blitter;
  blitter.BlitRect(7, 3, 4, 3);
  EXPECT_TRUE(blitter.ordered && blitter.drawn == PixelModel::Where([](int x, int y) {
                                   return hsIntRect{3, 7, 7, 10}.Contains(x, y);
                                 }));
  EXPECT_EQ(AssertOf([&] { blitter.BlitRect(7, 3, 4, 0); }), "bad height");
  uint32_t value;
  EXPECT_EQ(blitter.GetDirectTarget(&value), nullptr);
}

}  // namespace
