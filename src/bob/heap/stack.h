// The value stack and the frames on it. It grows downward.
//
// A call frame holds its function's variables in place. They move to the heap when a closure captures them, and leave
// a MovedEnvironment behind, which whoever pops a frame looks for. A call f(x) in the code of g, from the top down
// (the direction of growth), with sp at the frame's first word:
//
//     record  previous  env  scope  code  pc (2)     what g goes on with
//     StackEnvironment  count  env of f  nil         the environment of f, ...
//     x  _next  this                                 ... and its variables: variable 1 is this, 3 is x
//     f                                              the function's slot
//     ...                                            what g has pushed
#pragma once

#include "bob/heap/interp.h"
#include "bob/heap/raise.h"

enum BobFrameRecord : uint32_t {
  kCallFrame = 1,  // returns to the code that called
  kTopFrame,       // returns from the machine's loop
  kBlockFrame,     // a block with variables
};

// Words of a frame, from its lowest. The environment comes in place after them: type, count, the enclosing
// environment, nil, and the variables, the last one lowest.
enum BobFrameWord {
  kFrameRecord,    // in call and top frames with the caller's argc
  kFramePrevious,  // offset of the frame below
  kFrameEnv,       // call and top frames, like all that follows
  kFrameScope,
  kFrameCode,
  kFramePc,  // a pointer, in two words
  kFrameEnvironment = kFramePc + 2,
  kCallFrameWords = 11,  // with the environment's four words that aren't variables

  kBlockFrameEnv = 3,  // word 2 of a block frame is left unset
  kBlockFrameEnvironment = 4,
  kBlockFrameWords = 8,
};

// The first word of a frame.
constexpr int kFrameRecordBits = 2;
inline uint32_t bobFrameWord(BobFrameRecord record, int argc) { return record | uint32_t(argc) << kFrameRecordBits; }
inline BobFrameRecord bobFrameRecord(const uint32_t* frame) {
  return BobFrameRecord(frame[kFrameRecord] & ((1u << kFrameRecordBits) - 1));
}
inline int bobFrameArgc(const uint32_t* frame) { return int(frame[kFrameRecord] >> kFrameRecordBits); }

inline uint32_t* bobFramePc(const uint32_t* frame) {
  uint32_t* pc;
  std::memcpy(&pc, frame + kFramePc, sizeof pc);
  return pc;
}
inline void bobSetFramePc(uint32_t* frame, const uint32_t* pc) { std::memcpy(frame + kFramePc, &pc, sizeof pc); }

// Space for `count` words, or error 2.
inline void bobCheckStack(BobInterp* interp, uint32_t count) {
  if (uint32_t(interp->sp - interp->stackBase) < count) bobRaise(interp, kBobStackOverflow);
}
inline void bobPush(BobInterp* interp, BobValue value) { *--interp->sp = value; }  // after bobCheckStack

// For the collector: copies what the stack refers to.
void bobCopyStack(BobInterp* interp);
