#include "bob/heap.h"

#include <cstdlib>

#include "bob/objects.h"
#include "bob/thread.h"
#include "bob/vm.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kGrowingPart = 4 << 20;  // symbols, static rows and native kinds beyond the first chunk

// One record of the native allocator heads each block: next, base, free, top and finalizeList.
constexpr uint32_t kBlockHeader = 20;
constexpr uint32_t kProtectedBlockSize = 4 * 102;

BobHeapBlock MakeBlock(uint32_t base, uint32_t size) { return {base, base, base + size, 0}; }

void CopyRoots(BobInterp* interp) {
  const auto copy = [interp](BobValue& root) { root = bobCopyValue(interp, root); };
  copy(interp->symbolTable);
  copy(interp->objectClass);
  for (BobScope* s = interp->scopes; s; s = s->next) copy(s->object);
  for (BobValue* root : {&interp->methodClass, &interp->vectorClass, &interp->symbolClass, &interp->stringClass,
                         &interp->integerClass, &interp->floatClass})
    copy(*root);
  for (uint32_t type = interp->typeList; type; type = interp->record(type)->nextType)
    if (interp->record(type)->classObject) copy(interp->record(type)->classObject);
  for (const auto& block : interp->protectedBlocks)
    for (int i = 0; i < block->count; ++i) copy(*block->variables[i]);
  for (BobSavedRegisters* s = interp->saveTop; s; s = s->next) {
    copy(s->scope);
    copy(s->env);
    if (s->code) copy(s->code);
  }
  for (BobLocal* local = interp->locals; local; local = local->next) copy(local->value);
}

void CopyStack(BobInterp* interp) {
  uint32_t* frame = interp->fp;
  for (uint32_t* p = interp->sp; p < interp->stackTop;) {
    if (p == frame) {
      frame = interp->words(p[kFramePrevious]);
      p = bobScanFrame(interp, p);
    } else {
      *p = bobCopyValue(interp, *p);
      ++p;
    }
  }
}

void Finalize(BobInterp* interp) {
  for (BobValue object = interp->oldSpace.finalizeList; object;) {
    uint32_t* w = interp->words(object);
    const BobValue next = w[kFinalizeLink];
    const BobTypeRecord* record = interp->record(w[0]);
    if (w[0] != kBobBrokenHeart && record->finalizer && bobHandlePointer(interp, w[kNativePointer]))
      record->finalizer(interp, object);
    object = next;
  }
  interp->oldSpace.finalizeList = 0;
}

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
  interp->oldSpace = MakeBlock(spaces, heapBytes);
  interp->newSpace = MakeBlock(spaces + heapBytes, heapBytes);
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

void bobCollect(BobInterp* interp) {
  bobPutText(interp->stderrStream, "[GC");
  std::swap(interp->oldSpace, interp->newSpace);
  BobHeapBlock& space = interp->newSpace;
  space.free = space.base;
  interp->allocationLimit = interp->collectAlways || interp->failAllocation >= 0 ? 0 : space.top;
  ++interp->cacheEpoch;

  CopyRoots(interp);
  CopyStack(interp);
  if (interp->code) interp->code = bobCopyValue(interp, interp->code);
  interp->val = bobCopyValue(interp, interp->val);
  interp->env = bobCopyValue(interp, interp->env);
  if (interp->gcHook) interp->gcHook(interp, interp->gcHookData);
  for (uint32_t at = space.base; at < space.free;) {
    BobTypeRecord* record = interp->record(*interp->words(at));
    const uint32_t object = at;
    at += record->Size(interp, object);
    record->Scan(interp, object);
  }
  bobSweepThreads(interp);
  bobPutFormat(interp->stderrStream, " - %d bytes free, total memory %u, allocations %u]\n",
               int(space.top - space.free), interp->totalMemory, interp->allocationCount);
  Finalize(interp);
}

void bobProtect(BobInterp* interp, BobValue* variable) {
  *variable = kBobNil;
  auto& blocks = interp->protectedBlocks;
  for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
    if ((*block)->count == 100) continue;
    (*block)->variables[(*block)->count++] = variable;
    return;
  }
  interp->countNative(kProtectedBlockSize);
  blocks.push_back(std::make_unique<BobProtectedBlock>());
  blocks.back()->variables[blocks.back()->count++] = variable;
}

bool bobUnprotect(BobInterp* interp, BobValue* variable) {
  for (const auto& block : interp->protectedBlocks) {
    for (int i = 0; i < block->count; ++i) {
      if (block->variables[i] != variable) continue;
      for (--block->count; i < block->count; ++i) block->variables[i] = block->variables[i + 1];
      return true;
    }
  }
  return false;
}

// The handle word: the slot's number below, its generation above.
constexpr uint32_t kHandleBits = 20;

uint32_t bobMakeHandle(BobInterp* interp, void* pointer) {
  uint32_t number;
  if (!interp->freeHandles.empty()) {
    number = interp->freeHandles.back();
    interp->freeHandles.pop_back();
  } else {
    number = uint32_t(interp->handles.size());
    if (number >> kHandleBits) return 0;
    interp->handles.emplace_back();
  }
  interp->handles[number].pointer = pointer;
  return number | interp->handles[number].generation << kHandleBits;
}

void* bobHandlePointer(BobInterp* interp, uint32_t handle) {
  const uint32_t number = handle & ((1u << kHandleBits) - 1);
  if (number >= interp->handles.size()) return nullptr;
  const BobHandleSlot& slot = interp->handles[number];
  return slot.generation == handle >> kHandleBits ? slot.pointer : nullptr;
}

void bobReleaseHandle(BobInterp* interp, uint32_t handle) {
  if (!bobHandlePointer(interp, handle)) return;
  const uint32_t number = handle & ((1u << kHandleBits) - 1);
  BobHandleSlot& slot = interp->handles[number];
  slot.pointer = nullptr;
  // A slot whose generations are used up is never given out again, so that no old wrapper wakes up with a new widget.
  if (slot.generation == (1u << (32 - kHandleBits)) - 1) return;
  ++slot.generation;
  interp->freeHandles.push_back(number);
}
