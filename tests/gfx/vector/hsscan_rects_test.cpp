// Rectangles, frames and hairline rectangles against pixels.
#include <gtest/gtest.h>

#include <functional>

#include "gfx/halt.h"
#include "gfx/vector/hsregion.h"
#include "gfx/vector/hsscan.h"
#include "gfx/vector/scanmodel.h"

namespace {

hsRect FixedRect(double left, double top, double right, double bottom) {
  const auto fixed = [](double x) { return hsScalar(std::floor(x * 65536)); };
  return {fixed(left), fixed(top), fixed(right), fixed(bottom)};
}

TEST(FillRect, RoundsAndCanKeepOnePixel) {
  const auto calls = [](const hsRect& rect, bool atLeastOne) {
    CallBlitter blitter;
    HSScan::FillRect(&rect, nullptr, &blitter, atLeastOne);
    return blitter.calls;
  };
  EXPECT_EQ(calls(FixedRect(0.5, 0.4, 3.4, 2.5), false), "R0,1,2,3");
  EXPECT_EQ(calls(FixedRect(1, 1, 1.25, 9), false), "");
  EXPECT_EQ(calls(FixedRect(1, 1, 1.25, 9), true), "R1,1,1,8");
  EXPECT_EQ(calls(FixedRect(5, 5, 3, 3), true), "R5,5,1,1");
}

TEST(FrameRect, FillsWhatItsFrameCloses) {
  const auto calls = [](const hsRect& rect, double width, double height) {
    CallBlitter blitter;
    HSScan::FrameRect(&rect, hsScalar(width * 65536), hsScalar(height * 65536), nullptr, &blitter);
    return blitter.calls;
  };
  EXPECT_EQ(calls(FixedRect(2, 2, 8, 8), 2, 2), "R1,1,8,2 R7,1,8,2 R3,1,2,4 R3,7,2,4") << "top, bottom, left, right";
  EXPECT_EQ(calls(FixedRect(2, 2, 8, 8), 2, 0), "R2,1,2,6 R2,7,2,6");
  EXPECT_EQ(calls(FixedRect(2, 2, 8, 8), 6, 1), "R2,-1,12,7") << "wider than the rectangle, so solid";
  EXPECT_EQ(calls(FixedRect(2, 2, 8, 8), 0, 0), "");
  CallBlitter blitter;
  const hsRect rect = FixedRect(2, 2, 8, 8);
  EXPECT_EQ(ReportOf([&] { HSScan::FrameRect(&rect, -1, 0, nullptr, &blitter); }), "bad HSScan::FrameRect params: 0");
  EXPECT_EQ(ReportOf([&] { HSScan::FrameRect(nullptr, 1, 1, nullptr, &blitter); }), "bad HSScan::FrameRect params: 0");
}

TEST(HairRect, HoldsThePixelsOfItsRightAndBottomEdges) {
  const auto calls = [](const hsRect& rect) {
    CallBlitter blitter;
    HSScan::HairRect(&rect, nullptr, &blitter);
    return blitter.calls;
  };
  EXPECT_EQ(calls(FixedRect(1.9, 1.2, 4.1, 4)), "1,1,4 4,1,4 R2,1,1,2 R2,4,1,2");
  EXPECT_EQ(calls(FixedRect(3.25, 2, 3.75, 8)), "2,3,1 8,3,1 R3,3,1,5") << "one column, once";
  EXPECT_EQ(calls(FixedRect(2, 3, 6, 3)), "3,2,5");
  EXPECT_EQ(calls(FixedRect(2, 3, 1, 3)), "") << "width 0";
  EXPECT_EQ(AssertOf([&] { calls(FixedRect(5, 3, 1, 3)); }), "bad hairrect");
}

// Each pixel once, under each kind of clip: a shape is a test on the pixels of its bounds.
void Compare(const std::function<void(const hsRect&, const hsRegion*, hsGBlitter*)>& draw,
             const std::function<bool(const hsRect&, int x, int y)>& belongs) {
  Random random(3);
  ThrowOnHalt halt;
  for (int i = 0; i < 3000; ++i) {
    const hsPoint a = RandomPoint(random, kModelSize - 8), b = RandomPoint(random, kModelSize - 8);
    constexpr hsScalar kMargin = 4 * kFixed1;
    const hsRect rect{std::min(a.fX, b.fX) + kMargin, std::min(a.fY, b.fY) + kMargin, std::max(a.fX, b.fX) + kMargin,
                      std::max(a.fY, b.fY) + kMargin};
    const PixelModel clip = RandomModel(random);
    const hsRegion region = clip.Region();
    const bool clips = i % 4 != 0;
    PixelBlitter blitter;
    draw(rect, clips ? &region : nullptr, &blitter);
    ASSERT_FALSE(blitter.twice) << i;
    const auto want = [&](int x, int y) { return belongs(rect, x, y) && (!clips || clip.At(x, y)); };
    ASSERT_TRUE(blitter.drawn == PixelModel::Where(want)) << i;
  }
}

// Whether pixel lies between the edges, rounded to pixels.
bool IsBetween(hsScalar from, hsScalar to, int pixel) {
  return pixel >= std::floor(from / 65536.0 + 0.5) && pixel < std::floor(to / 65536.0 + 0.5);
}

TEST(Rects, AgreeWithPixels) {
  Compare(
      [](const hsRect& r, const hsRegion* clip, hsGBlitter* b) { HSScan::FillRect(&r, clip, b, false); },
      [](const hsRect& r, int x, int y) { return IsBetween(r.fLeft, r.fRight, x) && IsBetween(r.fTop, r.fBottom, y); });
  constexpr hsScalar kHalfWidth = 3 * kFixed1 / 2, kHalfHeight = 3 * kFixed1 / 4;
  Compare([&](const hsRect& r, const hsRegion* clip,
              hsGBlitter* b) { HSScan::FrameRect(&r, 2 * kHalfWidth, 2 * kHalfHeight, clip, b); },
          [&](const hsRect& r, int x, int y) {
            const bool outer = IsBetween(r.fLeft - kHalfWidth, r.fRight + kHalfWidth, x) &&
                               IsBetween(r.fTop - kHalfHeight, r.fBottom + kHalfHeight, y);
            return outer && !(IsBetween(r.fLeft + kHalfWidth, r.fRight - kHalfWidth, x) &&
                              IsBetween(r.fTop + kHalfHeight, r.fBottom - kHalfHeight, y));
          });
  Compare([](const hsRect& r, const hsRegion* clip, hsGBlitter* b) { HSScan::HairRect(&r, clip, b); },
          [](const hsRect& r, int x, int y) {
            const int left = r.fLeft >> 16, top = r.fTop >> 16, right = r.fRight >> 16, bottom = r.fBottom >> 16;
            return x >= left && x <= right && y >= top && y <= bottom &&
                   (x == left || x == right || y == top || y == bottom);
          });
}

}  // namespace
