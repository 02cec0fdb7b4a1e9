#include "bob/heap/handles.h"

#include <utility>

#include "bob/heap/interp.h"

namespace {

// The handle word: the slot's number in its low bits, the slot's generation in the others.
constexpr uint32_t kNumberBits = 20;
constexpr uint32_t kLastGeneration = (1u << (32 - kNumberBits)) - 1;

uint32_t numberOf(uint32_t handle) { return handle & ((1u << kNumberBits) - 1); }

}  // namespace

uint32_t bobMakeHandle(BobInterp* interp, void* pointer) {
  uint32_t number = interp->freeHandle;
  if (number) {
    interp->freeHandle = interp->handles[number].nextFree;
  } else {
    number = uint32_t(interp->handles.size());
    if (number >> kNumberBits) return 0;
    interp->handles.emplace_back();
  }
  BobHandleSlot& slot = interp->handles[number];
  slot.pointer = pointer;
  return number | slot.generation << kNumberBits;
}

void* bobHandlePointer(const BobInterp* interp, uint32_t handle) {
  const uint32_t number = numberOf(handle);
  if (number >= interp->handles.size()) return nullptr;
  const BobHandleSlot& slot = interp->handles[number];
  return slot.generation == handle >> kNumberBits ? slot.pointer : nullptr;
}

void bobReleaseHandle(BobInterp* interp, uint32_t handle) {
  if (!bobHandlePointer(interp, handle)) return;
  const uint32_t number = numberOf(handle);
  BobHandleSlot& slot = interp->handles[number];
  slot.pointer = nullptr;
  // A slot whose generations are used up is never handed out again, so that no old wrapper wakes up with a new widget.
  if (slot.generation == kLastGeneration) return;
  ++slot.generation;
  slot.nextFree = std::exchange(interp->freeHandle, number);
}
