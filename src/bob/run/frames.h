// Building and popping frames, inline for the machine's loop. The registers are those of BobInterp.
#pragma once

#include "bob/heap/stack.h"
#include "bob/run/translate.h"

inline BobValue bobFollowMovedEnvironment(BobInterp* interp, BobValue env) {
  const uint32_t* w = interp->words(env);
  return w[0] == kBobMovedEnvironment ? w[BobLayout::kEnvNext] : env;
}

// Checks the number of slots against what the code takes, fills missing ones with nil and gathers surplus ones.
void bobAdjustArguments(BobInterp* interp, const BobQuickCode& quick, int slots);

// The function lies at interp->sp[slots] and is a Method.
inline void bobPushCallFrame(BobInterp* interp, int slots, BobFrameRecord record) {
  using namespace BobLayout;
  uint32_t* const argv = interp->sp + slots;
  BobQuickCode& quick = bobQuickCodeOf(interp, interp->words(*argv)[kMethodCode]);
  const int oldArgc = interp->argc;
  interp->argv = argv;
  interp->argc = slots;
  if (slots != quick.plainSlots) bobAdjustArguments(interp, quick, slots);
  if (interp->sp - interp->stackBase < kCallFrameWords) bobRaise(interp, kBobStackOverflow);

  const uint32_t* method = interp->words(*argv);
  uint32_t* frame = interp->sp - kCallFrameWords;
  frame[kFrameRecord] = bobFrameWord(record, oldArgc);
  frame[kFramePrevious] = interp->offsetOf(interp->fp);
  frame[kFrameEnv] = interp->env;
  frame[kFrameScope] = interp->scope.object;
  frame[kFrameCode] = interp->code;
  bobSetFramePc(frame, interp->pc);
  frame[kFrameEnvironment] = kBobStackEnvironment;
  frame[kFrameEnvironment + 1] = uint32_t(argv - interp->sp) + 2;
  frame[kFrameEnvironment + 2] = method[kMethodEnv];
  frame[kFrameEnvironment + 3] = kBobNil;
  interp->env = interp->offsetOf(frame + kFrameEnvironment);
  interp->fp = interp->sp = frame;
  interp->scope.object = method[kMethodScope];
  interp->code = method[kMethodCode];
  interp->pc = quick.words.data();
}

// Pops a call or top frame, its variables and the function's slot.
inline void bobPopCallFrame(BobInterp* interp) {
  using namespace BobLayout;
  const uint32_t* frame = interp->fp;
  const uint32_t count = interp->words(interp->env)[kEnvCount];
  interp->sp = interp->fp + kFrameEnvironment + 2 + count + 1;
  interp->fp = interp->words(frame[kFramePrevious]);
  interp->env = bobFollowMovedEnvironment(interp, frame[kFrameEnv]);
  interp->scope.object = frame[kFrameScope];
  interp->code = frame[kFrameCode];
  interp->argc = bobFrameArgc(frame);
  interp->pc = bobFramePc(frame);
}

// The word above the slots of an environment: variable k lies k words below it.
inline uint32_t* bobTopOfVariables(BobInterp* interp, BobValue env) {
  uint32_t* w = interp->words(env);
  return w + BobLayout::kEnvNext + w[BobLayout::kEnvCount];
}
// Keeps the registers while the host, or a native method, calls into the language; the collector knows them.
class BobSavedFrame {
 public:
  explicit BobSavedFrame(BobInterp* interp);
  ~BobSavedFrame() { interp->saveTop = saved.next; }
  BobSavedFrame(const BobSavedFrame&) = delete;
  BobSavedFrame& operator=(const BobSavedFrame&) = delete;
  void restore();  // after an error

 private:
  BobInterp* interp;
  BobSavedRegisters saved;
  int runDepth;
};

// Moves the environments that lie on the stack, from env outward, to the heap: env is the heap chain then.
void bobMoveEnvironments(BobInterp* interp);
// A Method of the code in val, with the environment moved to the heap and the current scope.
BobValue bobMakeClosure(BobInterp* interp);
// Pops the elements of a vector literal, the last one first, into a vector; their number is in val, which gets it.
void bobGatherVector(BobInterp* interp);
