#include "engine/screen/dirtytracker.h"

#include <gtest/gtest.h>

namespace {

TEST(DirtyTracker, GrowsToTheUnionAndStartsAfreshAfterClear) {
  DirtyTracker tracker;
  tracker.record({10, 10, 20, 20});
  tracker.record({15, 5, 30, 12});
  tracker.record({40, 3, 40, 90});  // empty
  EXPECT_EQ(tracker.bounds, (hsIntRect{10, 5, 30, 20}));

  tracker.clear();
  tracker.record({1, 1, 2, 2});
  EXPECT_EQ(tracker.bounds, (hsIntRect{1, 1, 2, 2}));
}

}  // namespace
