// Instructions that call, return, and open and close blocks.
#pragma once

#include "bob/model/members.h"
#include "bob/run/enter.h"
#include "bob/run/lookup.h"
#include "bob/run/registers.h"

// -- the callee and the receiver, as a call or send wants them below its arguments

BOB_STEP void step(BobRegisters& r, BobOp<kQPushScope>) { r.pushScope(); }
BOB_STEP void step(BobRegisters& r, BobOp<kQVarCallee>) {
  r.val = r.variable(r.variableA());
  r.need(3);
  r.sp -= 3;
  r.sp[0] = r.sp[1] = r.interp->scope.object;
  r.sp[2] = r.val;
}

BOB_STEP void pushSelector(BobRegisters& r) {
  r.need(3);
  r.sp -= 3;
  r.sp[0] = r.sp[2] = r.val;
  r.sp[1] = r.val = r.literal(r.b());
}

BOB_STEP void step(BobRegisters& r, BobOp<kQSelectorA>) { pushSelector(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQSelectorV>) {
  r.val = r.variable(r.variableA());
  pushSelector(r);
}

// -- calls

BOB_STEP void step(BobRegisters& r, BobOp<kQCall>) {
  r.store();
  r.countStep();
  const BobValue function = r.sp[r.a()];
  if (!bobIsSmall(function) && *r.interp->words(function) == kBobMethod) [[likely]] {
    bobPushCallFrame(r.interp, int(r.a()), kCallFrame);
    r.pc = r.interp->pc;
  } else {
    bobEnterCall(r.interp, int(r.a()), kCallFrame);
  }
  r.sp = r.interp->sp;
  r.reload();
}

// Selector and receiver give way to this and the method; _next is the parent of what the method was found from.
BOB_STEP void step(BobRegisters& r, BobOp<kQSend>) {
  uint32_t* slots = r.sp + r.a();
  const BobValue lookup = slots[-2];
  if (const BobValue property = bobFindField(r.interp, lookup, slots[-1], r.pc)) [[likely]] {
    slots[-1] = slots[0];
    slots[-2] = r.interp->words(lookup)[BobLayout::kParent];
    slots[0] = r.valueOf(property);
  } else if (const BobValue member = bobFindMember(r.interp, lookup, slots[-1], r.pc)) {
    r.store();
    const BobValue method = bobDeliver(r.interp, lookup, slots[-1], r.valueOf(member));
    slots[-1] = slots[0];
    slots[-2] = kBobNil;
    slots[0] = method;
  } else {
    r.store();
    bobPrepareSend(r.interp, int(r.a()));
  }
  r.pc += kBobCacheWords;
  step(r, BobOp<kQCall>{});
}

// False when the frame was a top frame: the machine's loop ends.
BOB_STEP bool step(BobRegisters& r, BobOp<kQReturn>) {
  r.interp->val = r.val;
  if (r.interp->fp[kFrameRecord] == kCallFrame) [[likely]] {
    bobPopCallFrame(r.interp);
    r.pc = r.interp->pc;
  } else if (r.interp->fp[kFrameRecord] == kBlockFrame) {
    bobPopBlockFrame(r.interp);
  } else {
    bobPopCallFrame(r.interp);
    return false;
  }
  r.enterFrame();
  return true;
}
BOB_STEP bool step(BobRegisters& r, BobOp<kQReturnVar>) {
  r.val = r.variable(r.variableA());
  return step(r, BobOp<kQReturn>{});
}

// -- blocks and closures

BOB_STEP void step(BobRegisters& r, BobOp<kQFrame>) {
  r.need(int(kBlockFrameWords));
  r.interp->sp = r.sp;
  bobPushBlockFrame(r.interp, r.a());
  r.enterFrame();
}
BOB_STEP void step(BobRegisters& r, BobOp<kQCframe>) {
  r.need(int(r.a()));
  for (uint32_t i = r.a(); i > 0; --i) *--r.sp = kBobNil;
  step(r, BobOp<kQFrame>{});
}
BOB_STEP void step(BobRegisters& r, BobOp<kQUnframe>) {
  bobPopBlockFrame(r.interp);
  r.enterFrame();
}
BOB_STEP void step(BobRegisters& r, BobOp<kQClose>) {
  r.store();
  r.interp->val = bobMakeClosure(r.interp);
  r.reload();
}
