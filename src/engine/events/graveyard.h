// Where things go that have left the engine's lists but may still be in use further up the stack.
//
// A script can unload its own page from inside any hook, so a widget, handler or timer can go while one of its own
// operations runs. It is unlinked at once and marked gone, but its memory is freed only when the outermost engine call
// returns.
#pragma once

#include <cstdint>
#include <memory>

#include "engine/base/mortal.h"

class Graveyard {
 public:
  // Keeps the thing until the outermost call returns; frees it at once when no call is under way.
  void take(std::unique_ptr<Mortal> thing) noexcept;

  bool stackSpent() const;

 private:
  friend class EngineCall;

  int depth = 0;            // engine calls under way, one inside the other
  uintptr_t outermost = 0;  // where the stack of the outermost one began
  Mortal* first = nullptr;  // in the order of burial
  Mortal** end = &first;
};

Graveyard& currentGraveyard();  // of the engine that is current on this thread

// One of these is a local of every function that the host, a timer or a script can call.
class EngineCall {
 public:
  EngineCall();
  ~EngineCall();
  EngineCall(const EngineCall&) = delete;
  EngineCall& operator=(const EngineCall&) = delete;

 private:
  Graveyard& graveyard;
};

// Whether the calls under way, from the outermost one down, have used up the native stack that pages may have. Pages
// in pages, events that climb, and scripts that send events inside events ask, and then go no deeper.
bool engineStackSpent();

inline void bury(std::unique_ptr<Mortal> thing) noexcept { currentGraveyard().take(std::move(thing)); }
