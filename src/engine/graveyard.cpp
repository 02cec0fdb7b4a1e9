#include "engine/graveyard.h"

#include <vector>

namespace {
int depth = 0;
std::vector<std::shared_ptr<void>> graves;
}  // namespace

EngineCall::EngineCall() { ++depth; }

EngineCall::~EngineCall() {
  // Freeing one thing may bury another, so the list is taken out first.
  while (depth == 1 && !graves.empty()) std::exchange(graves, {}).clear();
  --depth;
}

void graveyardTake(std::shared_ptr<void> thing) {
  if (depth > 0) graves.push_back(std::move(thing));
}
