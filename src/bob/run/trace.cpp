#include "bob/run/trace.h"

#include "bob/heap/interp.h"
#include "bob/run/translate.h"

bool bobTrace(BobInterp* interp, BobTracer* tracer) {
  if (interp->runDepth > 0 || (interp->tracer && tracer)) return false;
  interp->tracer = tracer;
  interp->cacheEpoch += kBobEpoch;  // calls are cached with where the quick code lies
  // Whatever lies in the space, dead or alive, begins with a type record that knows its size.
  const BobHeapBlock& space = interp->newSpace;
  for (uint32_t at = space.base; at < space.free; at += interp->record(*interp->words(at))->Size(interp, at))
    if (interp->isA(at, kBobCompiledCode)) bobTranslateAgain(interp, at);
  return true;
}
