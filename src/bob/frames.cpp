#include "bob/frames.h"

#include <algorithm>

using namespace BobLayout;

uint32_t* bobScanFrame(BobInterp* interp, uint32_t* frame) {
  const auto copy = [interp](uint32_t& word) { word = bobCopyValue(interp, word); };
  const bool isBlock = frame[kFrameRecord] == kBlockFrame;
  uint32_t* environment = frame + (isBlock ? int(kBlockFrameEnvironment) : int(kFrameEnvironment));
  if (isBlock) {
    copy(frame[kBlockFrameEnv]);
  } else {
    copy(frame[kFrameEnv]);
    copy(frame[kFrameScope]);
    if (frame[kFrameCode]) copy(frame[kFrameCode]);
  }
  const uint32_t count = environment[kEnvCount];
  // Once moved its words are dead: whatever still points here is led on to the heap by this collection, which must
  // find the way as it was.
  if (environment[0] == kBobStackEnvironment)
    for (uint32_t i = 0; i < count; ++i) copy(environment[kEnvNext + i]);
  return environment + kEnvNext + count;
}

BobSavedFrame::BobSavedFrame(BobInterp* interp)
    : interp(interp),
      saved{interp->scope.object, interp->env, interp->code,
            interp->sp,           interp->fp,  interp->code ? uint32_t(interp->pc - interp->cbase) : 0,
            interp->saveTop},
      runDepth(interp->runDepth) {
  interp->saveTop = &saved;
}

void BobSavedFrame::restore() {
  interp->scope.object = saved.scope;
  interp->env = saved.env;
  interp->code = saved.code;
  interp->sp = saved.sp;
  interp->fp = saved.fp;
  bobResumeCode(interp, saved.pc);
  interp->runDepth = runDepth;
}

void bobAdjustArguments(BobInterp* interp, const BobThread& thread, int slots) {
  const BobValue callee = *interp->argv;
  const int named = thread.required + thread.optional;
  if (slots < thread.required) bobRaise(interp, kBobTooFewArguments, callee);
  if (!thread.hasRest && slots > named) bobRaise(interp, kBobTooManyArguments, callee);
  if (slots < named) {
    bobCheckRoom(interp, uint32_t(named - slots));
    for (int i = slots; i < named; ++i) bobPush(interp, kBobNil);
  }
  if (!thread.hasRest) return;
  const int surplus = std::max(slots - named, 0);
  const BobValue rest = bobMakeVector(interp, uint32_t(surplus));
  uint32_t* elements = interp->words(rest) + kElements;
  for (int i = surplus - 1; i >= 0; --i) elements[i] = *interp->sp++;
  bobCheckRoom(interp, 1);
  bobPush(interp, rest);
}

void bobMoveEnvironments(BobInterp* interp) {
  BobLocal first(interp), last(interp);
  BobValue at = interp->env;  // a stack environment doesn't move
  while (interp->words(at)[0] == kBobStackEnvironment) {
    const uint32_t count = interp->words(at)[kEnvCount];
    const BobValue moved = bobMakeEnvironment(interp, count);
    uint32_t* from = interp->words(at);
    std::copy_n(from + kEnvNext, count, interp->words(moved) + kEnvNext);
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
  if (!bobIsInteger(interp, interp->val)) bobRaise(interp, kBobWrongType, interp->val);
  const int32_t count = bobIntegerValue(interp, interp->val);
  if (count < 0) bobRaise(interp, kBobIndexOutOfBounds, interp->val);
  if (count > interp->fp - interp->sp) bobRaise(interp, kBobBadOpcode);
  const BobValue vector = bobMakeVector(interp, uint32_t(count));
  uint32_t* elements = interp->words(vector) + kElements;
  for (int32_t i = count - 1; i >= 0; --i) elements[i] = *interp->sp++;
  interp->val = vector;
}
