#include "studio/record/replay.h"

#include <algorithm>
#include <string>

Replay::Replay(std::vector<PageAction> a) : actions(std::move(a)) {}

std::optional<PageAction> Replay::next(int64_t& milliseconds) {
  if (isOver()) return std::nullopt;
  const PageAction& action = actions[done];
  if (action.kind != PageAction::wait) {
    ++done;
    return action;
  }
  const int64_t left = std::stoll(action.argument) - waited, part = std::min(left, milliseconds);
  milliseconds -= part;
  waited += part;
  if (part == left) {
    ++done;
    waited = 0;
  }
  if (part == 0) return left == 0 ? next(milliseconds) : std::nullopt;
  return PageAction{PageAction::wait, std::to_string(part)};
}
