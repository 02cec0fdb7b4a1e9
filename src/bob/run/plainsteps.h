// Instructions that move values about, branch, and make objects.
#pragma once

#include "bob/heap/tracer.h"
#include "bob/model/values.h"
#include "bob/run/registers.h"

// -- constants, literals and variables

BOB_STEP void step(BobRegisters& r, BobOp<kQTrue>) { r.val = kBobTrue; }
BOB_STEP void step(BobRegisters& r, BobOp<kQNil>) { r.val = kBobNil; }
BOB_STEP void step(BobRegisters& r, BobOp<kQNot>) { r.val = bobBoolean(r.val == kBobFalse); }
BOB_STEP void step(BobRegisters& r, BobOp<kQLit>) { r.val = r.literal(r.b()); }
BOB_STEP void step(BobRegisters& r, BobOp<kQArgsGe>) { r.val = bobBoolean(r.interp->argc >= int(r.a())); }

BOB_STEP void step(BobRegisters& r, BobOp<kQOwn>) { r.val = r.vars[r.signedB()]; }
BOB_STEP void step(BobRegisters& r, BobOp<kQSetOwn>) { r.vars[r.signedB()] = r.val; }
BOB_STEP void step(BobRegisters& r, BobOp<kQOuter>) { r.val = r.outerVariables()[r.signedB()]; }
BOB_STEP void step(BobRegisters& r, BobOp<kQSetOuter>) { r.outerVariables()[r.signedB()] = r.val; }

BOB_STEP uint32_t* findOrFail(BobRegisters& r) {
  using namespace BobLayout;
  uint32_t* env = r.vars;
  for (uint32_t depth = r.a(); depth > 0; --depth) {
    if (env[kEnvNext] == kBobNil) [[unlikely]]
      r.fail(kBobBadOpcode);
    env = r.words(env[kEnvNext]);
  }
  const uint32_t count = env[kEnvCount];
  if (r.b() > count - 2) [[unlikely]]
    r.fail(kBobBadOpcode);
  return env + kEnvNext + count - r.b();
}
BOB_STEP uint32_t* findNextOrFail(BobRegisters& r) {
  using namespace BobLayout;
  if (r.vars[kEnvNext] == kBobNil) [[unlikely]]
    r.fail(kBobBadOpcode);
  uint32_t* const env = r.outerVariables();
  const size_t count = env[kEnvCount], index = r.b();
  if (index + 2 > count) [[unlikely]]
    r.fail(kBobBadOpcode);
  return env + kEnvNext + count - index;
}
BOB_STEP void step(BobRegisters& r, BobOp<kQVarNext>) { r.val = *findNextOrFail(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQSetNext>) { *findNextOrFail(r) = r.val; }
BOB_STEP void step(BobRegisters& r, BobOp<kQVar>) { r.val = *findOrFail(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQSet>) { *findOrFail(r) = r.val; }

// -- the stack

BOB_STEP void step(BobRegisters& r, BobOp<kQPush>) { r.push(r.val); }
BOB_STEP void step(BobRegisters& r, BobOp<kQDup>) { r.push(r.sp[0]); }
BOB_STEP void step(BobRegisters& r, BobOp<kQOver>) { r.push(r.sp[1]); }
BOB_STEP void step(BobRegisters& r, BobOp<kQDrop>) { r.val = *r.sp++; }
BOB_STEP void step(BobRegisters& r, BobOp<kQDup2>) {
  r.need(2);
  r.sp -= 2;
  r.sp[1] = r.val;
  r.sp[0] = r.sp[2];
}
BOB_STEP void step(BobRegisters& r, BobOp<kQPushVar>) {
  r.val = r.variable(r.a());
  r.push(r.val);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQPushLit>) {
  r.val = r.literal(r.b());
  r.push(r.val);
}
BOB_STEP void step(BobRegisters& r, BobOp<kQPushVarVar>) {
  r.need(2);
  r.sp -= 2;
  r.sp[1] = r.variable(r.a());
  r.sp[0] = r.val = r.variable(r.b());
}
BOB_STEP void step(BobRegisters& r, BobOp<kQPushVarLit>) {
  r.need(2);
  r.sp -= 2;
  r.sp[1] = r.variable(r.a());
  r.sp[0] = r.val = r.literal(r.b());
}
BOB_STEP void step(BobRegisters& r, BobOp<kQCheckPops>) {
  if (r.interp->fp - r.sp < int(r.b())) r.fail(kBobBadOpcode);
}

// -- for a tracer (heap/tracer.h)

BOB_STEP void step(BobRegisters& r, BobOp<kQTrace>) {
  const uint32_t code = r.pc[0], offset = r.pc[1];
  r.pc += 2;
  r.store();
  r.interp->tracer->atInstruction(r.interp, code, offset);
  r.reload();
}

// -- branches

BOB_STEP void step(BobRegisters& r, BobOp<kQJump>) { r.branch(); }
BOB_STEP void step(BobRegisters& r, BobOp<kQGoto>) { r.pc += int32_t(*r.pc); }
BOB_STEP void step(BobRegisters& r, BobOp<kQBrt>) { r.branchIf(r.val != kBobFalse); }
BOB_STEP void step(BobRegisters& r, BobOp<kQBrf>) { r.branchIf(r.val == kBobFalse); }
BOB_STEP void step(BobRegisters& r, BobOp<kQSwitch>) {
  uint32_t cases = r.b();
  while (cases > 0 && !bobEqual(r.interp, r.literal(r.pc[0]), r.val)) --cases, r.pc += 2;
  if (cases > 0) ++r.pc;
  r.branch();
}
BOB_STEP void step(BobRegisters& r, BobOp<kQBad>) { r.fail(kBobBadOpcode); }

// -- objects

BOB_STEP void step(BobRegisters& r, BobOp<kQNewObject>) {
  r.store();
  r.interp->val = r.interp->recordOf(r.val)->New(r.interp, r.val);
  r.reload();
}
BOB_STEP void step(BobRegisters& r, BobOp<kQNewVector>) {
  r.store();
  bobGatherVector(r.interp);
  r.sp = r.interp->sp;
  r.reload();
}
