#include "bob/run/enter.h"

#include "bob/model/members.h"
#include "bob/model/objects.h"
#include "bob/model/rows.h"
#include "bob/run/frames.h"
#include "bob/run/lookup.h"

using namespace BobLayout;

bool bobEnterCall(BobInterp* interp, int slots, BobFrameRecord record) {
  uint32_t* const argv = interp->sp + slots;
  const BobValue function = *argv;
  if (interp->isA(function, kBobMethod)) {
    bobPushCallFrame(interp, slots, record);
    return true;
  }
  interp->argv = argv;
  interp->argc = slots;
  if (!interp->isA(function, kBobCMethod)) bobRaise(interp, kBobWrongType, function);
  interp->val = interp->staticRows[interp->words(function)[kRowIndex]].method->function(interp);
  interp->sp = argv + 1;
  return false;
}

void bobEnterCallAndCache(BobInterp* interp, int slots, uint32_t* cache) {
  const BobValue function = interp->sp[slots];
  if (!interp->isA(function, kBobMethod)) {
    bobEnterCall(interp, slots, kCallFrame);
    return;
  }
  const BobValue code = interp->words(function)[kMethodCode];
  BobQuickCode& quick = bobQuickCodeOf(interp, code);
  if (slots == quick.plainSlots) bobFillCallCache(interp, cache, code, quick.words.data());
  bobPushCallFrame(interp, slots, kCallFrame);
}

void bobPrepareSend(BobInterp* interp, int slots) {
  uint32_t* const sp = interp->sp;
  const BobValue selector = sp[slots - 1];
  BobValue method;
  if (!bobGetProperty(interp, sp[slots - 2], selector, &method)) bobRaise(interp, kBobNoMethod, sp[slots - 1]);
  const BobValue lookup = sp[slots - 2];
  const BobValue parent = interp->isObject(lookup) ? interp->words(lookup)[kParent] : kBobNil;
  sp[slots - 1] = sp[slots];
  sp[slots - 2] = parent ? parent : kBobNil;
  sp[slots] = method;
}

void bobPrepareSendAndCache(BobInterp* interp, int slots, uint32_t* cache) {
  uint32_t* const sp = interp->sp;
  const BobValue lookup = sp[slots - 2];
  const BobValue member = bobFindMember(interp, lookup, sp[slots - 1], cache);
  if (!member) return bobPrepareSend(interp, slots);
  const BobValue method = bobDeliver(interp, lookup, sp[slots - 1], interp->words(member)[kValue]);
  sp[slots - 1] = sp[slots];
  sp[slots - 2] = kBobNil;
  sp[slots] = method;
}
