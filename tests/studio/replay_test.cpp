#include "studio/record/replay.h"

#include <gtest/gtest.h>

namespace {

std::vector<PageAction> played(Replay& replay, int64_t milliseconds) {
  std::vector<PageAction> all;
  while (const auto action = replay.next(milliseconds)) all.push_back(*action);
  return all;
}

TEST(Replay, PausesPassInAsManyPiecesAsTimeDoes) {
  const PageAction left{PageAction::key, "Left"}, line{PageAction::eval, "x = 1;"};
  const auto wait = [](const char* n) { return PageAction{PageAction::wait, n}; };
  Replay replay({left, wait("100"), line, wait("0"), wait("5"), left});
  using All = std::vector<PageAction>;
  EXPECT_EQ(played(replay, 0), All{left});
  EXPECT_EQ(played(replay, 60), All{wait("60")});
  EXPECT_EQ(replay.position(), 1u);
  EXPECT_EQ(played(replay, 42), (All{wait("40"), line, wait("2")}));
  EXPECT_FALSE(replay.isOver());
  EXPECT_EQ(played(replay, 100), (All{wait("3"), left}));
  EXPECT_TRUE(replay.isOver());
  EXPECT_EQ(played(replay, 100), All{});
}

}  // namespace
