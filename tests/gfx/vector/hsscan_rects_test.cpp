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

TEST(Rects, CallsOfSmallOnes) {
  const auto fill = [](const hsRect& r, hsGBlitter* b) { HSScan::FillRect(&r, nullptr, b, false); };
  const auto fillOne = [](const hsRect& r, hsGBlitter* b) { HSScan::FillRect(&r, nullptr, b, true); };
  const auto frame = [](const hsRect& r, hsGBlitter* b) { HSScan::FrameRect(&r, 2 << 16, 2 << 16, nullptr, b); };
  const auto hair = [](const hsRect& r, hsGBlitter* b) { HSScan::HairRect(&r, nullptr, b); };
  struct {
    void (*draw)(const hsRect&, hsGBlitter*);
    hsRect rect;
    const char* calls;
  } const cases[] = {
      {fill, FixedRect(1, 1, 1.25, 9), ""},
      {fillOne, FixedRect(1, 1, 1.25, 9), "R1,1,1,8"},  // at least one pixel
      {fillOne, FixedRect(5, 5, 3, 3), "R5,5,1,1"},
      {frame, FixedRect(2, 2, 8, 8), "R1,1,8,2 R7,1,8,2 R3,1,2,4 R3,7,2,4"},  // top, bottom, left, right
      {hair, FixedRect(3.25, 2, 3.75, 8), "2,3,1 8,3,1 R3,3,1,5"},            // one column, once
      {hair, FixedRect(2, 3, 1, 3), ""},                                      // width 0
  };
  for (const auto& c : cases) {
    CallBlitter blitter;
    c.draw(c.rect, &blitter);
    EXPECT_EQ(blitter.calls, c.calls);
  }
  CallBlitter blitter;
  EXPECT_EQ(AssertOf([&] { hair(FixedRect(5, 3, 1, 3), &blitter); }), "bad hairrect");
  const hsRect rect = FixedRect(2, 2, 8, 8);
  EXPECT_EQ(ReportOf([&] { HSScan::FrameRect(&rect, -1, 0, nullptr, &blitter); }), "bad HSScan::FrameRect params: 0");
  EXPECT_EQ(ReportOf([&] { HSScan::FrameRect(nullptr, 1, 1, nullptr, &blitter); }), "bad HSScan::FrameRect params: 0");
}

// Each pixel once, under each kind of clip: a shape is a test on the pixels of its bounds. Half of the rectangles are
// no larger than a few pixels.
void Compare(const std::function<void(const hsRect&, const hsRegion*, hsGBlitter*)>& draw,
             const std::function<bool(const hsRect&, int x, int y)>& belongs) {
  Random random(3);
  ThrowOnHalt halt;
  for (int i = 0; i < 3000; ++i) {
    const hsPoint corner = RandomPoint(random, kModelSize - 16), size = RandomPoint(random, i % 2 ? 3 : kModelSize / 2);
    hsRect rect{corner.fX, corner.fY, corner.fX + size.fX, corner.fY + size.fY};
    for (hsScalar* edge : {&rect.fLeft, &rect.fTop, &rect.fRight, &rect.fBottom})
      *edge = std::min(*edge, (kModelSize - 8) << 16) + 4 * kFixed1;
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
  // Half the frame's width and height; where they close the rectangle it is filled.
  for (const auto& [dx, dy] : {std::pair{3 * kFixed1 / 2, 3 * kFixed1 / 4}, {0, kFixed1}, {2 * kFixed1, kFixed1 / 8}})
    Compare([&, dx = dx, dy = dy](const hsRect& r, const hsRegion* clip,
                                  hsGBlitter* b) { HSScan::FrameRect(&r, 2 * dx, 2 * dy, clip, b); },
            [&, dx = dx, dy = dy](const hsRect& r, int x, int y) {
              return IsBetween(r.fLeft - dx, r.fRight + dx, x) && IsBetween(r.fTop - dy, r.fBottom + dy, y) &&
                     !(IsBetween(r.fLeft + dx, r.fRight - dx, x) && IsBetween(r.fTop + dy, r.fBottom - dy, y));
            });
  Compare([](const hsRect& r, const hsRegion* clip, hsGBlitter* b) { HSScan::HairRect(&r, clip, b); },
          [](const hsRect& r, int x, int y) {
            const int left = r.fLeft >> 16, top = r.fTop >> 16, right = r.fRight >> 16, bottom = r.fBottom >> 16;
            return x >= left && x <= right && y >= top && y <= bottom &&
                   (x == left || x == right || y == top || y == bottom);
          });
}

}  // namespace
