#include "bob/run/invoke.h"

#include "bob/run/enter.h"
#include "bob/run/frames.h"
#include "bob/run/machine.h"

namespace {

constexpr int kMaxRuns = 1500;  // nested runs

// Enters with a top frame and runs until that returns.
BobValue run(BobInterp* interp, int slots) {
  BobSavedFrame saved(interp);
  if (interp->runDepth == kMaxRuns) bobRaise(interp, kBobStackOverflow);
  ++interp->runDepth;
  try {
    if (bobEnterCall(interp, slots, kTopFrame)) bobExecute(interp);
  } catch (const BobUnwind&) {
    saved.restore();
    throw;
  }
  --interp->runDepth;
  return interp->val;
}

}  // namespace

BobValue bobRunCall(BobInterp* interp, int slots) { return run(interp, slots); }

BobValue bobRunSend(BobInterp* interp, int slots) {
  bobPrepareSend(interp, slots);
  return run(interp, slots);
}
