#include "engine/widgets/navigatekind.h"

#include <gtest/gtest.h>

namespace {

TEST(NavigateKind, EveryDirectionUnderEveryMode) {
  struct Row {
    uint32_t direction;
    int upDown, leftRight, both;  // 0 not for the widget, 1 next, 2 previous, 3 eaten
  };
  const Row rows[] = {{1, 1, 0, 2}, {2, 2, 0, 1}, {4, 0, 2, 1},  {8, 0, 1, 2}, {5, 1, 2, 2},
                      {9, 1, 1, 3}, {6, 2, 2, 3}, {10, 2, 1, 1}, {0, 0, 0, 0}, {3, 0, 0, 0}};
  Widget widget(nullptr, nullptr, {});
  for (const Row& row : rows) {
    Event event;
    event.data = row.direction;
    widget.flags = 0;
    EXPECT_EQ(int(navigateKind(&widget, event)), 0);
    widget.flags = kWidgetNavigateUpDown;
    EXPECT_EQ(int(navigateKind(&widget, event)), row.upDown) << row.direction;
    widget.flags = kWidgetNavigateLeftRight;
    EXPECT_EQ(int(navigateKind(&widget, event)), row.leftRight) << row.direction;
    widget.flags |= kWidgetNavigateUpDown;
    EXPECT_EQ(int(navigateKind(&widget, event)), row.both) << row.direction;
  }
}

}  // namespace
