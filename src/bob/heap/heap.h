// The arena and allocation in it.
//
// One native block holds everything, so that an object is an offset: type records and the first symbols, the two
// spaces, the stack, and a part that grows. Only what lies in a space moves.
//
// So whoever needs an object after an allocation keeps it where a collection finds it:
//
//   const BobLocal from(interp->locals, object);
//   const BobValue copy = bobMakeObject(interp, parent);  // may collect: `object` can be a stale offset from here on
//   interp->words(from) ...                               // where the object lies now
#pragma once

#include "bob/heap/interp.h"

// Lays out the arena: spaces of heapBytes each, a stack of stackWords. False if there is no memory.
bool bobMakeHeap(BobInterp* interp, uint32_t heapBytes, uint32_t stackWords);

// `size` bytes of the new space, a multiple of 4, left unset. Collects when the space is full; raises "Insufficient
// memory" when that doesn't help.
uint32_t bobAllocateSlow(BobInterp* interp, uint32_t size);
inline uint32_t bobAllocate(BobInterp* interp, uint32_t size) {
  const uint32_t at = interp->newSpace.free;
  if (uint64_t(at) + size > interp->allocationLimit) return bobAllocateSlow(interp, size);
  interp->newSpace.free = at + size;
  return at;
}

// For what no space could hold: ends as every allocation does that finds no space, with a collection and the error.
[[noreturn]] void bobRefuseAllocation(BobInterp* interp);

// Memory of the arena's growing part, zeroed; 0 if it is used up.
uint32_t bobAllocateStatic(BobInterp* interp, uint32_t size);
