#include "engine/graveyard.h"

#include <cstdint>
#include <vector>

namespace {

// Half of what a desktop gives a program's first thread. The deepest pages need a third of it in an ordinary build, and
// the language, which counts its own runs, finds enough left.
constexpr uintptr_t kStackForPages = 4 << 20;  // bytes

int depth = 0;
uintptr_t outermost = 0;  // where the stack of the outermost call began
std::vector<std::shared_ptr<void>> graves;

uintptr_t stackPosition() {
  const char here = 0;
  return reinterpret_cast<uintptr_t>(&here);
}

}  // namespace

EngineCall::EngineCall() {
  if (depth++ == 0) outermost = reinterpret_cast<uintptr_t>(this);
}

EngineCall::~EngineCall() {
  // Freeing one thing may bury another, so the list is taken out first.
  while (depth == 1 && !graves.empty()) std::exchange(graves, {}).clear();
  --depth;
}

bool engineStackSpent() {
  const uintptr_t here = stackPosition();
  return depth > 0 && (here < outermost ? outermost - here : here - outermost) > kStackForPages;
}

void graveyardTake(std::shared_ptr<void> thing) {
  if (depth > 0) graves.push_back(std::move(thing));
}
