// The threaded form of bytecode: what the machine really runs.
//
// Code is translated once, when it is first called: operands are decoded, branches resolved, sequences that come up
// all the time joined to one instruction, and room is left in place for cached lookups. Translation follows every path
// that the code can take, and proves that it stays within its literals, its stack and its variables. Code for which
// that cannot be shown (it comes from outside, or a `continue` in a `switch` left a block open) is translated with a
// check ahead of each instruction that pops. What would leave its object becomes kTBad, which raises error 9 when it
// is reached.
//
// A form is kept while its code is alive; the code carries its number (bobCodeThread).
#pragma once

#include <vector>

#include "bob/interp.h"
#include "bob/threadops.h"

struct BobThread {
  std::vector<uint32_t> words;
  int required = 0, optional = 0;  // slots, this and _next counted
  bool hasRest = false;
  int plainSlots = 0;  // the number of slots that needs no adjusting, -1 if none
  bool marked = false;
};

constexpr int kBobCacheWords = 3;

// Makes the form of code that has none. Raises error 9 if its first element is no String.
BobThread& bobThreadCode(BobInterp* interp, BobValue code);
inline BobThread& bobThreadOf(BobInterp* interp, BobValue code) {
  const uint32_t number = bobCodeThread(interp->words(code)[BobLayout::kCodeCount]);
  return number ? *interp->threads[number - 1] : bobThreadCode(interp, code);
}

// The collector found the code of that form alive; at its end, forms of dead code go.
void bobMarkThread(BobInterp* interp, uint32_t number);
void bobSweepThreads(BobInterp* interp);
