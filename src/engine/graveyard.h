// Where things go that have left the engine's lists but may still be in use further up the stack.
//
// A script can unload its own page from inside any hook, so a widget, handler or timer can go while one of its own
// operations runs. It is unlinked at once and marked gone, but its memory is freed only when the outermost engine call
// returns.
#pragma once

#include <memory>
#include <utility>

// Stands in every function that the host, a timer or a script can call.
class EngineCall {
 public:
  EngineCall();
  ~EngineCall();
  EngineCall(const EngineCall&) = delete;
  EngineCall& operator=(const EngineCall&) = delete;
};

// Whether the calls under way, from the outermost one down, have used up the native stack that pages may have. Pages
// in pages, events that climb, and scripts that send events inside events ask, and then go no deeper.
bool engineStackSpent();

void graveyardTake(std::shared_ptr<void> thing);

template <class T>
void bury(T* thing) {
  graveyardTake(std::shared_ptr<T>(thing));
}
