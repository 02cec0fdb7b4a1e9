// Where a program is: the pieces of code that run, with the offsets in their bytecode.
//
// The machine runs quick code and keeps no offsets. They are worked out when somebody asks, by translating again.
#pragma once

#include <cstdint>
#include <vector>

#include "bob/base/value.h"

struct BobRunningCode {
  BobValue code;    // until the next allocation
  uint32_t offset;  // of the instruction that is being carried out, in its bytecode
};

// The same with what belongs to it: the innermost environment, where its variables are, and its scope of globals.
struct BobRunningFrame : BobRunningCode {
  BobValue env, scope;
  bool calledByHost;  // or by a native method
};

// All pieces of code that run, the innermost first. Allocates nothing.
std::vector<BobRunningFrame> bobRunningFrames(BobInterp* interp);
// What runs, and whoever called it, the innermost first: what a traceback lists, line for line. Allocates nothing.
std::vector<BobRunningCode> bobRunningCode(BobInterp* interp);
