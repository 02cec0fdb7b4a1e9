// A recording as it is played again: what is due as time passes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/run/pageaction.h"

class Replay {
 public:
  Replay() = default;  // of nothing
  explicit Replay(std::vector<PageAction> actions);

  // The next action, or as much of a pause as `milliseconds` are left for, which it takes off them; none when they are
  // used up or all is done.
  std::optional<PageAction> next(int64_t& milliseconds);

  bool isOver() const { return done == actions.size(); }
  size_t position() const { return done; }  // actions that are done, pauses among them
  size_t length() const { return actions.size(); }

 private:
  std::vector<PageAction> actions;
  size_t done = 0;
  int64_t waited = 0;  // of the pause that is next
};
