#include "engine/events/redrawqueue.h"

#include "engine/events/graveyard.h"

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

void RedrawQueue::drain() {
  EngineCall call;
  while (Redrawable* thing = head) {
    remove(thing);
    thing->redraw();
  }
}
