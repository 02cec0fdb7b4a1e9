#include "engine/events/graveyard.h"

#include <utility>

namespace {

// Half of the usual stack of a program's first thread. The deepest pages need a third of it in an ordinary build, and
// the language, which counts its own runs, finds enough left.
#ifdef __SANITIZE_THREAD__
constexpr uintptr_t kStackForPages = 2 << 20;  // bytes; the thread sanitizer keeps no more than 65,536 calls in mind
#else
constexpr uintptr_t kStackForPages = 4 << 20;  // bytes
#endif

}  // namespace

void Graveyard::take(std::unique_ptr<Mortal> thing) noexcept {
  if (depth == 0) return;
  *end = thing.release();
  end = &(*end)->nextGrave;
}

bool Graveyard::stackSpent() const {
  const char newest = 0;
  const auto here = reinterpret_cast<uintptr_t>(&newest);
  return depth > 0 && (here < outermost ? outermost - here : here - outermost) > kStackForPages;
}

EngineCall::EngineCall() : graveyard(currentGraveyard()) {
  if (graveyard.depth++ == 0) graveyard.outermost = reinterpret_cast<uintptr_t>(this);
}

EngineCall::~EngineCall() {
  while (graveyard.depth == 1 && graveyard.first) {
    const std::unique_ptr<Mortal> thing(graveyard.first);  // freeing it may bury another
    graveyard.first = thing->nextGrave;
    if (!graveyard.first) graveyard.end = &graveyard.first;
  }
  --graveyard.depth;
}

bool engineStackSpent() { return currentGraveyard().stackSpent(); }
