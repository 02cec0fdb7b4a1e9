#include "bob/heap/collector.h"

#include <utility>

#include "bob/heap/handles.h"
#include "bob/heap/interp.h"
#include "bob/heap/quickcode.h"
#include "bob/heap/roots.h"
#include "bob/heap/stack.h"

using namespace BobLayout;

namespace {

// What is left in the old space is unreachable; a broken heart there stands for an instance that has moved.
void finalize(BobInterp* interp) {
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

BobValue bobCopyValue(BobInterp* interp, BobValue value) { return interp->moved(value); }

void bobCollect(BobInterp* interp) {
  bobPutText(interp->stderrStream, "[GC");
  std::swap(interp->oldSpace, interp->newSpace);
  BobHeapBlock& space = interp->newSpace;
  space.free = space.base;
  interp->allocationLimit = interp->collectAlways || interp->failAllocation >= 0 ? 0 : space.top;
  interp->cacheEpoch += kBobEpoch;
  ++interp->collections;

  bobCopyRoots(interp);
  bobCopyStack(interp);
  if (interp->code) interp->code = interp->moved(interp->code);
  interp->val = interp->moved(interp->val);
  interp->env = interp->moved(interp->env);
  if (interp->gcHook) interp->gcHook(interp, interp->gcHookData);
  for (uint32_t at = space.base; at < space.free;) {
    BobTypeRecord* record = interp->record(*interp->words(at));
    const uint32_t object = at;
    at += record->Size(interp, object);
    record->Scan(interp, object);
  }
  struct End {  // which comes though a stream may have no memory for the report
    ~End() { finalize(interp); }
    BobInterp* interp;
  } const end{interp};
  bobSweepQuickCode(interp);
  interp->survivors = space.free - space.base;
  bobPutFormat(interp->stderrStream, " - %d bytes free, total memory %u, allocations %u]\n",
               int(space.top - space.free), interp->totalMemory, interp->allocationCount);
}
