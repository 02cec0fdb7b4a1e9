// From bytecode to quick code, which is what the machine really runs (threaded code, instruction set in quickops.h).
//
// Code is translated once, when it is first called: operands are decoded, branches resolved, sequences that are common
// combined into superinstructions, and space is left in place for cached lookups. `return x + 1;`, where x is the
// function's third variable, is bytecode of six instructions and quick code of two:
//
//     0003 EREF 0 3    AddVL  a = 3, 1      val = variable 3 + 1
//     0006 PUSH
//     0007 LIT 2 ; 1
//     000a ADD
//     000b RETURN      Return
//     000c RETURN      (nothing reaches it)
//
// Translation follows every path that the code can take (codepaths.h). Where that proves that the code stays within its
// literals, its stack and its variables, no instruction checks them any more. Code for which it can't be shown (it
// comes from outside, or a `continue` in a `switch` left a block open) is translated without superinstructions, and
// with a check before each instruction that pops. What would leave its object becomes kQBad, which raises error 9 when
// it is reached.
#pragma once

#include "bob/heap/interp.h"

// Makes the quick code of code that has none. Raises error 9 if its first element is no String.
BobQuickCode& bobTranslate(BobInterp* interp, BobValue code);
// Makes it anew if the code has some, for a tracer that has come or gone. None of it may be running.
void bobTranslateAgain(BobInterp* interp, BobValue code);

// Where an instruction lies in the quick code of some code, and in its bytecode. Of a superinstruction the latter is
// the part that an error would come from.
struct BobQuickMark {
  uint32_t at, offset;
};
// Those of all instructions, by `at`: quick code isn't made with them, so the code is translated once more. Code that
// was never translated has none if it can't be.
std::vector<BobQuickMark> bobQuickMarks(BobInterp* interp, BobValue code);

inline BobQuickCode& bobQuickCodeOf(BobInterp* interp, BobValue code) {
  const uint32_t number = bobCodeQuickNumber(interp->words(code)[BobLayout::kCodeCount]);
  return number ? *interp->quickCodes[number - 1] : bobTranslate(interp, code);
}
