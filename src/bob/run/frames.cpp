#include "bob/run/frames.h"

#include <algorithm>

#include "bob/heap/heap.h"
#include "bob/heap/local.h"
#include "bob/model/values.h"

using namespace BobLayout;

BobSavedFrame::BobSavedFrame(BobInterp* interp)
    : interp(interp),
      saved{interp->scope.object, interp->env, interp->code, interp->sp, interp->fp, interp->pc, interp->saveTop},
      runDepth(interp->runDepth) {
  interp->saveTop = &saved;
}

void BobSavedFrame::restore() {
  interp->scope.object = saved.scope;
  interp->env = saved.env;
  interp->code = saved.code;
  interp->sp = saved.sp;
  interp->fp = saved.fp;
  interp->pc = saved.pc;
  interp->runDepth = runDepth;
}

void bobAdjustArguments(BobInterp* interp, const BobQuickCode& quick, int slots) {
  const BobValue callee = *interp->argv;
  const int named = quick.required + quick.optional;
  if (slots < quick.required) bobRaise(interp, kBobTooFewArguments, callee);
  if (!quick.hasRest && slots > named) bobRaise(interp, kBobTooManyArguments, callee);
  if (slots < named) {
    bobCheckStack(interp, uint32_t(named - slots));
    for (int i = slots; i < named; ++i) bobPush(interp, kBobNil);
  }
  if (!quick.hasRest) return;
  const int surplus = std::max(slots - named, 0);
  const BobValue rest = bobMakeVector(interp, uint32_t(surplus));
  uint32_t* elements = interp->words(rest) + kElements;
  for (int i = surplus - 1; i >= 0; --i) elements[i] = *interp->sp++;
  bobCheckStack(interp, 1);
  bobPush(interp, rest);
}

void bobMoveEnvironments(BobInterp* interp) {
  BobLocal first(interp->locals, kBobNil), last(interp->locals, kBobNil);
  BobValue at = interp->env;  // a stack environment doesn't move
  while (interp->words(at)[0] == kBobStackEnvironment) {
    const uint32_t count = interp->words(at)[kEnvCount];
    const BobValue moved = bobAllocate(interp, (kEnvNext + count) * 4);
    uint32_t* from = interp->words(at);
    uint32_t* to = interp->words(moved);
    to[0] = kBobEnvironment;
    to[kEnvCount] = count;
    for (uint32_t i = 0; i < count; ++i) to[kEnvNext + i] = from[kEnvNext + i];
    if (last == kBobNil)
      first.value = moved;
    else
      interp->words(last)[kEnvNext] = moved;
    last.value = moved;
    at = from[kEnvNext];
    from[0] = kBobMovedEnvironment;
    from[kEnvNext] = moved;
  }
  // Nothing lay on the stack: the chain is in the heap already. The last one moved got its link with its slots.
  if (first != kBobNil) interp->env = first;
}

BobValue bobMakeClosure(BobInterp* interp) {
  if (!interp->isA(interp->val, kBobCompiledCode)) bobRaise(interp, kBobBadOpcode);
  bobMoveEnvironments(interp);
  return bobMakeMethod(interp, interp->val, interp->env, interp->scope.object);
}

void bobGatherVector(BobInterp* interp) {
  if (!interp->isInteger(interp->val)) bobRaise(interp, kBobWrongType, interp->val);
  const int32_t count = interp->integerOf(interp->val);
  if (count < 0) bobRaise(interp, kBobIndexOutOfBounds, interp->val);
  if (count > interp->fp - interp->sp) bobRaise(interp, kBobBadOpcode);
  const BobValue vector = bobMakeVector(interp, uint32_t(count));
  uint32_t* elements = interp->words(vector) + kElements;
  for (int32_t i = count - 1; i >= 0; --i) elements[i] = *interp->sp++;
  interp->val = vector;
}
