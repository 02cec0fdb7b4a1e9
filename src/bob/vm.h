// The machine: frames on the stack, calls and sends, and the loop that runs code.
//
// An accumulator machine. Expressions leave their result in `val`; binary instructions take the left operand from
// the stack, which grows downward. A call frame holds its variables in place; they move to the heap when a closure
// captures them, and leave a MovedEnvironment behind, which every popped frame looks for.
#pragma once

#include "bob/heap.h"

enum BobFrameRecord : uint32_t {
  kCallFrame = 1,  // returns to the code that called
  kTopFrame,       // returns from the machine's loop
  kBlockFrame,     // a block with variables
};

// Words of a frame, from its lowest. The environment comes in place behind them: type, count, the enclosing
// environment, nil, and the variables, the last one lowest.
enum BobFrameWord {
  kFrameRecord,
  kFramePrevious,  // offset of the frame below
  kFrameEnv,       // call and top frames, like all that follows
  kFrameScope,
  kFrameCode,
  kFramePc,
  kFrameArgc,
  kFrameEnvironment,
  kCallFrameWords = 11,  // with the environment's four words that aren't variables

  kBlockFrameEnv = 3,  // word 2 of a block frame is left unset
  kBlockFrameEnvironment = 4,
  kBlockFrameWords = 8,
};

constexpr int kBobMaxRuns = 1500;  // nested runs of the machine, each on the native stack

// For the collector: copies what the frame holds and gives the address behind it.
uint32_t* bobScanFrame(BobInterp* interp, uint32_t* frame);

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

// Room for `count` words on the stack, or error 2.
inline void bobCheckRoom(BobInterp* interp, uint32_t count) {
  if (uint32_t(interp->sp - interp->stackBase) < count) bobRaise(interp, kBobStackOverflow);
}
inline void bobPush(BobInterp* interp, BobValue value) { *--interp->sp = value; }  // after bobCheckRoom

// With a function and `slots` words of this, _next and arguments pushed: calls it in a run of its own.
BobValue bobRunCall(BobInterp* interp, int slots);
// The same with receiver, selector, lookup object and arguments pushed, the last two counted as slots.
BobValue bobRunSend(BobInterp* interp, int slots);

// The machine's loop: runs from the registers until a top frame returns.
void bobExecute(BobInterp* interp);

// Builds the frame of a call, its slots and function pushed: false if the function was native and has finished.
bool bobEnterCall(BobInterp* interp, int slots, BobFrameRecord record);
// Replaces selector and receiver of a send by this and the method, so that it goes on as a call.
void bobPrepareSend(BobInterp* interp, int slots);

// What `Apply` and `Send` do.
BobValue bobApply(BobInterp* interp);
BobValue bobSendFromScript(BobInterp* interp);
