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

// What runs, and whoever called it, the innermost first: what a traceback lists, line for line. Allocates nothing.
std::vector<BobRunningCode> bobRunningCode(BobInterp* interp);
