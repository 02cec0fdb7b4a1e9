#include "bob/heap/heap.h"

#include <cstdlib>

#include "bob/heap/collector.h"
#include "bob/heap/raise.h"

namespace {

constexpr uint32_t kGrowingPart = 4 << 20;  // symbols, static rows and native kinds beyond the first chunk

// One record of the native allocator heads each block: next, base, free, top and finalizeList.
constexpr uint32_t kBlockHeader = 20;

BobHeapBlock makeBlock(uint32_t base, uint32_t size) { return {base, base, base + size, 0}; }

}  // namespace

bool bobMakeHeap(BobInterp* interp, uint32_t heapBytes, uint32_t stackWords) {
  heapBytes &= ~7u;
  const uint32_t spaces = (kBobFirstChunk + kBobChunkHeader + kBobChunkPayload + 63) & ~63u;
  const uint32_t stack = spaces + 2 * heapBytes;
  const uint32_t growing = stack + 4 * stackWords;
  interp->base = static_cast<uint8_t*>(std::calloc(growing + kGrowingPart, 1));
  if (!interp->base) return false;
  interp->arenaFree = growing;
  interp->arenaTop = growing + kGrowingPart;
  interp->oldSpace = makeBlock(spaces, heapBytes);
  interp->newSpace = makeBlock(spaces + heapBytes, heapBytes);
  interp->allocationLimit = interp->newSpace.top;
  interp->countNative(kBlockHeader + heapBytes);
  interp->countNative(kBlockHeader + heapBytes);
  interp->stackBase = interp->words(stack);
  interp->stackTop = interp->sp = interp->fp = interp->words(growing);
  interp->countNative(4 * stackWords);
  return true;
}

uint32_t bobAllocateStatic(BobInterp* interp, uint32_t size) {
  size = (size + 7) & ~7u;
  if (interp->arenaTop - interp->arenaFree < size) return 0;
  const uint32_t at = interp->arenaFree;
  interp->arenaFree += size;
  return at;
}

uint32_t bobAllocateSlow(BobInterp* interp, uint32_t size) {
  BobHeapBlock& space = interp->newSpace;
  if (interp->failAllocation >= 0 && interp->failAllocation-- == 0) bobRaise(interp, kBobInsufficientMemory);
  if (interp->collectAlways || space.top - space.free < size) bobCollect(interp);
  if (space.top - space.free < size) bobRaise(interp, kBobInsufficientMemory);
  const uint32_t at = space.free;
  space.free += size;
  return at;
}

void bobRefuseAllocation(BobInterp* interp) {
  bobCollect(interp);
  bobRaise(interp, kBobInsufficientMemory);
}
