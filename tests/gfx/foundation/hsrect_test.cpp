#include "gfx/foundation/hsrect.h"

#include <gtest/gtest.h>

namespace {

TEST(IntRect, TouchingIsNoIntersection) {
  const hsIntRect a{0, 0, 10, 10};
  for (hsIntRect b :
       {hsIntRect{10, 0, 20, 10}, hsIntRect{-5, 0, 0, 10}, hsIntRect{0, 10, 10, 20}, hsIntRect{0, -5, 10, 0}}) {
    EXPECT_FALSE(a.Intersects(b));
    hsIntRect kept = a;
    EXPECT_FALSE(kept.Intersect(b));
    EXPECT_EQ(kept, a);
    hsIntRect third;
    EXPECT_FALSE(a.Intersect(b, &third));
    EXPECT_EQ(third, b);
  }
  hsIntRect r = a;
  EXPECT_TRUE(r.Intersect(5, -5, 20, 5));
  EXPECT_EQ(r, (hsIntRect{5, 0, 10, 5}));
  EXPECT_TRUE(r.Intersect(a, &r));
  EXPECT_EQ(r, (hsIntRect{5, 0, 10, 5}));
}

TEST(IntRect, UnionTakesTheEdgesOfEmptyRectanglesToo) {
  hsIntRect r{0, 0, 10, 10};
  r.Union({20, 20, 20, 20});
  EXPECT_EQ(r, (hsIntRect{0, 0, 20, 20}));
}

TEST(IntRect, ContainsItsOwnEdgesButNotThePixelsAfterThem) {
  const hsIntRect r{1, 2, 5, 6};
  EXPECT_TRUE(r.Contains(r));
  EXPECT_FALSE(r.Contains({1, 2, 5, 7}));
  EXPECT_TRUE(r.Contains(1, 2));
  EXPECT_FALSE(r.Contains(5, 2));
  EXPECT_FALSE(r.Contains(1, 6));
}

TEST(Rect, BoundsOfPoints) {
  hsRect r{7, 7, 7, 7};
  r.Set(0, nullptr);
  EXPECT_EQ(r, (hsRect{7, 7, 7, 7}));
  const hsPoint points[] = {{5, 5}, {1, 9}, {8, 2}};
  r.Set(3, points);
  EXPECT_EQ(r, (hsRect{1, 2, 8, 9}));
  // Inside out: the point moves the left edge and is then not tried against the right.
  r = {100, 100, 0, 0};
  r.UnionPoints(1, points);
  EXPECT_EQ(r, (hsRect{5, 5, 0, 0}));
}

TEST(Rect, ToPixels) {
  const hsRect r{0x8000, -0x8000, 0x17FFF, 0x10001};
  hsIntRect out;
  r.Round(&out);
  EXPECT_EQ(out, (hsIntRect{1, 0, 1, 1}));
  r.RoundOut(&out);
  EXPECT_EQ(out, (hsIntRect{0, -1, 2, 2}));
  hsPoint quad[4];
  hsRect{1, 2, 3, 4}.ToQuad(quad);
  const hsPoint clockwise[] = {{1, 2}, {3, 2}, {3, 4}, {1, 4}};
  for (int i = 0; i < 4; ++i) EXPECT_EQ(quad[i], clockwise[i]);
}

}  // namespace
