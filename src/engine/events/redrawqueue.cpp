#include "engine/events/redrawqueue.h"

#include "engine/events/graveyard.h"
#include "host/host.h"

namespace {
constexpr uint32_t kRedrawsToBreath = 4096;
}

void RedrawQueue::add(Redrawable* thing) {
  if (thing->dirtyLink) return;
  thing->nextDirty = nullptr;
  thing->dirtyLink = tail;
  *tail = thing;
  tail = &thing->nextDirty;
}

void RedrawQueue::remove(Redrawable* thing) {
  if (!thing->dirtyLink) return;
  *thing->dirtyLink = thing->nextDirty;
  if (thing->nextDirty) thing->nextDirty->dirtyLink = thing->dirtyLink;
  if (tail == &thing->nextDirty) tail = thing->dirtyLink;
  thing->dirtyLink = nullptr;
}

// What draws can mark more to be drawn, by a script that hears of it, and the loop then doesn't end.
void RedrawQueue::drain() {
  EngineCall call;
  for (uint32_t drawn = 1; Redrawable* thing = head; ++drawn) {
    if (drawn % kRedrawsToBreath == 0 && !hostBreathe()) return;
    remove(thing);
    thing->redraw();
  }
}
