// The moving heap: allocation, the collector and what keeps a value alive, and the symbols, which don't move.
#pragma once

#include <string_view>

#include "bob/interp.h"

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

// For what no space could hold: ends as every allocation does that finds no room, with a collection and the error.
[[noreturn]] void bobRefuseAllocation(BobInterp* interp);

// One collection.
void bobCollect(BobInterp* interp);
// For the collector's users (Scan routines, gcHook): where the value lives after this collection.
inline BobValue bobCopyValue(BobInterp* interp, BobValue value) {
  return bobIsSmall(value) ? value : interp->recordOf(value)->Copy(interp, value);
}

// The type records of values.h, with their Size, Copy, Scan and Hash.
void bobMakeTypeRecords(BobInterp* interp);

// Makes the variable a root of the collector; it starts as nil. Unprotecting gives false for a variable that isn't one.
void bobProtect(BobInterp* interp, BobValue* variable);
bool bobUnprotect(BobInterp* interp, BobValue* variable);

// Memory of the arena's growing part, zeroed; 0 if it is used up.
uint32_t bobAllocateStatic(BobInterp* interp, uint32_t size);

// The hash of strings and symbols.
uint32_t bobHashBytes(std::string_view bytes);
// The one symbol of that text.
BobValue bobIntern(BobInterp* interp, std::string_view text);
// A symbol in a chunk, not interned yet.
BobValue bobMakeSymbol(BobInterp* interp, std::string_view text, uint32_t hash);

// Numbers for native pointers. A released number gives a null pointer from then on.
uint32_t bobMakeHandle(BobInterp* interp, void* pointer);
void* bobHandlePointer(BobInterp* interp, uint32_t handle);
void bobReleaseHandle(BobInterp* interp, uint32_t handle);
