// Instructions that call, return, and open and close blocks.
#pragma once

#include "bob/run/enter.h"
#include "bob/run/objectsteps.h"
#include "bob/run/registers.h"

// -- the callee and the receiver, as a call or send wants them below its arguments

BOB_STEP void step(BobRegisters& r, BobOp<kQPushScope>) { r.pushScope(); }
BOB_STEP void step(BobRegisters& r, BobOp<kQPushCallee>) {
  r.need(3);
  r.sp -= 3;
  r.sp[0] = r.sp[1] = r.interp->scope.object;
  r.sp[2] = r.val;
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVarCallee>) {
  r.val = r.variable(r.a());
  step(r, BobOp<kQPushCallee>{});
}

BOB_STEP void pushSelector(BobRegisters& r) {
  r.need(3);
  r.sp -= 3;
  r.sp[0] = r.sp[2] = r.val;
  r.sp[1] = r.val = r.literal(r.b());
}

BOB_STEP void step(BobRegisters& r, BobOp<kQSelectorA>) { pushSelector(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQSelectorV>) {
  r.val = r.variable(r.a());
  pushSelector(r);
}

// -- blocks

BOB_STEP void enterEnvironment(BobRegisters& r, uint32_t* env) {
  r.vars = env;
  r.interp->env = r.offsetOf(env);
}

// Of a frame that has ended. It may have moved since.
BOB_STEP void returnToEnvironment(BobRegisters& r, BobValue env) {
  uint32_t* w = r.words(env);
  enterEnvironment(r, w[0] == kBobMovedEnvironment ? r.words(w[BobLayout::kEnvNext]) : w);
}

// A frame over the `count` words on top of the stack.
BOB_STEP void enterBlock(BobRegisters& r, uint32_t count) {
  using namespace BobLayout;
  r.need(int(kBlockFrameWords));
  uint32_t* const frame = r.sp - kBlockFrameWords;
  frame[kFrameRecord] = kBlockFrame;
  frame[kFramePrevious] = r.offsetOf(r.interp->fp);
  frame[kBlockFrameEnv] = r.interp->env;
  uint32_t* const env = frame + kBlockFrameEnvironment;
  env[0] = kBobStackEnvironment;
  env[kEnvCount] = count + 2;
  env[kEnvNext] = r.interp->env;
  env[kEnvNext + 1] = kBobNil;
  enterEnvironment(r, env);
  r.interp->fp = r.sp = frame;
}

// Without a frame the words that one would take are nil.
BOB_STEP void step(BobRegisters& r, BobOp<kQBlock>) {
  const int count = int(r.b()) + kBlockFrameWords;
  r.need(count);
  r.sp -= count;
  constexpr uint64_t kTwoNils = kBobNil | uint64_t(kBobNil) << 32;
  for (int i = 0; i < kBlockFrameWords; i += 2) std::memcpy(r.sp + i, &kTwoNils, sizeof kTwoNils);
  for (int i = kBlockFrameWords; i < count; ++i) r.sp[i] = kBobNil;
}
BOB_STEP void step(BobRegisters& r, BobOp<kQUnblock>) { r.sp += r.b() + kBlockFrameWords; }

BOB_STEP void step(BobRegisters& r, BobOp<kQFrame>) { enterBlock(r, r.a()); }
BOB_STEP void step(BobRegisters& r, BobOp<kQCframe>) {
  r.need(int(r.a()));
  for (uint32_t i = r.a(); i > 0; --i) *--r.sp = kBobNil;
  enterBlock(r, r.a());
}
BOB_STEP void step(BobRegisters& r, BobOp<kQUnframe>) {
  const uint32_t* const frame = r.interp->fp;
  r.sp = r.interp->fp + kBlockFrameEnvironment + BobLayout::kEnvNext + r.vars[BobLayout::kEnvCount];
  r.interp->fp = r.words(frame[kFramePrevious]);
  returnToEnvironment(r, frame[kBlockFrameEnv]);
}

// -- calls

// A call to the code that was called here the last time, and that takes as many slots.
BOB_STEP bool enterCached(BobRegisters& r, uint32_t slots) {
  using namespace BobLayout;
  BobInterp* const interp = r.interp;
  uint32_t* const argv = r.sp + slots;
  if (bobIsSmall(*argv)) return false;
  const uint32_t* const method = r.words(*argv);
  if (method[0] != kBobMethod || !bobCacheHolds(interp, r.pc, method[kMethodCode])) return false;
  if (r.sp < r.stackBase + kCallFrameWords) return false;
  uint32_t* const frame = r.sp - kCallFrameWords;
  frame[kFrameRecord] = bobFrameWord(kCallFrame, interp->argc);
  frame[kFramePrevious] = r.offsetOf(interp->fp);
  frame[kFrameEnv] = interp->env;
  frame[kFrameScope] = interp->scope.object;
  frame[kFrameCode] = interp->code;
  bobSetFramePc(frame, r.pc + kBobCallCacheWords);
  uint32_t* const env = frame + kFrameEnvironment;
  env[0] = kBobStackEnvironment;
  env[kEnvCount] = slots + 2;
  env[kEnvNext] = method[kMethodEnv];
  env[kEnvNext + 1] = kBobNil;
  enterEnvironment(r, env);
  interp->argv = argv;
  interp->argc = int(slots);
  interp->fp = r.sp = frame;
  interp->scope.object = method[kMethodScope];
  interp->code = method[kMethodCode];
  r.pc = bobCachedEntry(r.pc);
  return true;
}

// pc points at the call's cache.
BOB_STEP void call(BobRegisters& r) {
  r.countStep();
  if (enterCached(r, r.a())) [[likely]]
    return;
  uint32_t* const cache = r.pc;
  r.pc += kBobCallCacheWords;
  r.store();
  bobEnterCallAndCache(r.interp, int(r.a()), cache);
  r.pc = r.interp->pc;
  r.sp = r.interp->sp;
  r.reload();
}

BOB_STEP void step(BobRegisters& r, BobOp<kQCall>) { call(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQPushCall>) {
  r.push(r.val);
  call(r);
}

// Selector and receiver give way to this and the method; _next is the parent of what the method was found from.
BOB_STEP void step(BobRegisters& r, BobOp<kQSend>) {
  uint32_t* slots = r.sp + r.a();
  const BobValue lookup = slots[-2];
  if (const BobValue property = findField(r, lookup, slots[-1])) [[likely]] {
    slots[-1] = slots[0];
    slots[-2] = r.words(lookup)[BobLayout::kParent];
    slots[0] = r.valueOf(property);
  } else {
    r.store();
    bobPrepareSendAndCache(r.interp, int(r.a()), r.pc);
  }
  r.pc += kBobCacheWords;
  call(r);
}

BOB_STEP void step(BobRegisters& r, BobOp<kQPushSend>) {
  r.push(r.val);
  step(r, BobOp<kQSend>{});
}

// The frame ends: false when it was a top frame, and the machine's loop ends. `variables` are those of the function.
BOB_STEP bool leave(BobRegisters& r, uint32_t variables) {
  BobInterp* const interp = r.interp;
  const uint32_t* const frame = interp->fp;
  if (bobFrameRecord(frame) != kCallFrame) [[unlikely]] {
    interp->val = r.val;
    bobPopCallFrame(interp);
    return false;
  }
  r.sp = interp->fp + kCallFrameWords + variables + 1;
  returnToEnvironment(r, frame[kFrameEnv]);
  interp->fp = r.words(frame[kFramePrevious]);
  interp->scope.object = frame[kFrameScope];
  interp->code = frame[kFrameCode];
  interp->argc = bobFrameArgc(frame);
  r.pc = bobFramePc(frame);
  return true;
}

BOB_STEP bool step(BobRegisters& r, BobOp<kQReturn>) { return leave(r, r.b()); }
BOB_STEP bool step(BobRegisters& r, BobOp<kQReturnVar>) {
  r.val = r.variable(r.a());
  return leave(r, r.b());
}

// A return in code that may have a block open.
BOB_STEP bool step(BobRegisters& r, BobOp<kQReturnAny>) {
  if (bobFrameRecord(r.interp->fp) != kBlockFrame) return leave(r, r.vars[BobLayout::kEnvCount] - 2);
  step(r, BobOp<kQUnframe>{});
  return true;
}

// -- closures

BOB_STEP void step(BobRegisters& r, BobOp<kQClose>) {
  r.store();
  r.interp->val = bobMakeClosure(r.interp);
  r.reload();
}
