#include "studio/edit/grip.h"

#include <gtest/gtest.h>

namespace {

constexpr Bounds kPlace{100, 50, 40, 20};

TEST(Grip, IsTakenNearItsHandlesAndInside) {
  const struct {
    double x, y;
    Grip grip;
  } cases[] = {{120, 60, Grip::all},         {100, 50, Grip::topLeft}, {97, 47, Grip::topLeft}, {120, 48, Grip::top},
               {143, 73, Grip::bottomRight}, {141, 60, Grip::right},   {98, 65, Grip::none},    {150, 60, Grip::none}};
  for (const auto& c : cases) EXPECT_EQ(gripAt(kPlace, c.x, c.y, 4, 4), c.grip) << c.x << ", " << c.y;
  EXPECT_EQ(gripAt({10, 10, 2, 2}, 11, 11, 6, 6), Grip::all) << "the smallest can be moved, too";
  EXPECT_EQ(gripAt({10, 10, 2, 2}, 14, 14, 6, 6), Grip::bottomRight);
}

// The side that isn't held stays where it is, however far the hand goes.
TEST(Grip, ASidesOppositeStays) {
  EXPECT_EQ(dragged(kPlace, Grip::all, -200, 7), (Bounds{-100, 57, 40, 20}));
  EXPECT_EQ(dragged(kPlace, Grip::all, 9, -10, true), (Bounds{100, 40, 40, 20}));
  EXPECT_EQ(dragged(kPlace, Grip::topLeft, 10, -5), (Bounds{110, 45, 30, 25}));
  EXPECT_EQ(dragged(kPlace, Grip::right, 10, 99), (Bounds{100, 50, 50, 20}));
  for (const GripPoint& point : gripPoints(kPlace))
    for (const int far : {-1000, 1000}) {
      const Bounds now = dragged(kPlace, point.grip, far, far);
      EXPECT_GE(now.w, 1);
      EXPECT_GE(now.h, 1);
      EXPECT_TRUE(point.x == kPlace.x || now.x == kPlace.x);
      EXPECT_TRUE(point.x == kPlace.x + kPlace.w || now.x + now.w == kPlace.x + kPlace.w);
      EXPECT_TRUE(point.y == kPlace.y || now.y == kPlace.y);
      EXPECT_TRUE(point.y == kPlace.y + kPlace.h || now.y + now.h == kPlace.y + kPlace.h);
    }
  EXPECT_EQ(dragged({5, 5, 0, 0}, Grip::bottomRight, 3, 0), (Bounds{5, 5, 3, 1}));
}

}  // namespace
