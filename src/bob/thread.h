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

struct BobThread {
  std::vector<uint32_t> words;
  int required = 0, optional = 0;  // slots, this and _next counted
  bool hasRest = false;
  int plainSlots = 0;  // the number of slots that needs no adjusting, -1 if none
  bool marked = false;
};

// The binary instructions, in the order of their opcodes.
#define BOB_ARITHMETIC(X) X(Add) X(Sub) X(Mul) X(Div) X(Rem) X(Band) X(Bor) X(Xor) X(Shl) X(Shr)
#define BOB_COMPARISON(X) X(Lt) X(Le) X(Eq) X(Ne) X(Ge) X(Gt)

// Joined forms of a binary instruction with the loads of its operands: V a variable of the innermost environment,
// L a small integer literal, A val. A comparison is joined only when a branch follows it.
#define BOB_ARITHMETIC_FORMS(X, name) X(name) X(name##VV) X(name##VL) X(name##AV) X(name##AL)
#define BOB_COMPARISON_FORMS(X, name) \
  X(name##VVBrt)                      \
  X(name##VLBrt) X(name##AVBrt) X(name##ALBrt) X(name##VVBrf) X(name##VLBrf) X(name##AVBrf) X(name##ALBrf)

// Instruction words: number in bits 0..7, a in 8..15, b in 16..31. Further words follow as said; a target counts
// words from itself; a cache is three words (object, epoch, property).
// In joined forms a is the index of the left variable, b that of the right one; a literal is a word of its own, and
// comes ahead of the target.
#define BOB_THREAD_OPCODES(X)                                                                                        \
  X(Bad)                                                                                                             \
  X(Jump)                                                                                                            \
  X(Brt)                                                                                                             \
  X(Brf) /* target */                                                                                                \
      X(True) X(Nil) X(Push) X(Not) X(Bnot) BOB_ARITHMETIC_FORMS(X, Add) BOB_ARITHMETIC_FORMS(X, Sub)                \
          BOB_ARITHMETIC_FORMS(X, Mul) BOB_ARITHMETIC_FORMS(X, Div) BOB_ARITHMETIC_FORMS(X, Rem)                     \
              BOB_ARITHMETIC_FORMS(X, Band) BOB_ARITHMETIC_FORMS(X, Bor) BOB_ARITHMETIC_FORMS(X, Xor)                \
                  BOB_ARITHMETIC_FORMS(X, Shl) BOB_ARITHMETIC_FORMS(X, Shr) BOB_COMPARISON(X)                        \
                      BOB_COMPARISON_FORMS(X, Lt) BOB_COMPARISON_FORMS(X, Le) BOB_COMPARISON_FORMS(X, Eq)            \
                          BOB_COMPARISON_FORMS(X, Ne) BOB_COMPARISON_FORMS(X, Ge) BOB_COMPARISON_FORMS(X, Gt)        \
                              X(Lit)          /* b element */                                                        \
      X(Gref) X(Gset)                         /* b element; cache */                                                 \
      X(Getp) X(Setp) X(Vref) X(Vset)         /* cache */                                                            \
      X(Return) X(Unframe) X(Frame) X(Cframe) /* a count */                                                          \
      X(Call)                                 /* a slots */                                                          \
      X(Send)                                 /* a slots; cache */                                                   \
      X(Var0) X(Set0) X(Var1) X(Set1)         /* b index, known to be there */                                       \
      X(Var) X(Set)                           /* a depth, b index */                                                 \
      X(Neg) X(Inc) X(Dec) X(Dup2) X(Drop) X(Dup) X(Over) X(NewObject) X(NewVector) X(Close)                         \
          X(Switch) /* b cases; pairs of element and target; target */                                               \
      X(ArgsGe)     /* a count */                                                                                    \
      X(PushScope) X(CheckPops) /* b words that the next instruction takes */ /* joined: */                          \
      X(PushVar) X(PushVarVar)                                                /* EREF PUSH, twice; a, b */           \
      X(PushLit)                                                              /* LIT PUSH; b element */              \
      X(PushVarLit)                                                           /* EREF PUSH LIT PUSH; a, b element */ \
      X(GrefPush) X(GrefCallee) /* GREF PUSH, with PUSHSCOPE; b element; cache */                                    \
      X(StepAfter)              /* EREF, INC or DEC, ESET and back; a; step as a word */                             \
      X(GetField)               /* PUSH LIT GETP; b element; cache */                                                \
      X(GetVarField)            /* EREF before that; a, b element; cache */                                          \
      X(Dup2Getp)               /* cache */                                                                          \
      X(VrefVV)                 /* EREF PUSH EREF VREF; a, b; cache */                                               \
      X(VrefAV)                 /* PUSH EREF VREF; b; cache */                                                       \
      X(SelectorA) X(SelectorV) /* PUSH LIT PUSH OVER, with EREF ahead; a, b element */                              \
      X(ReturnVar)              /* EREF RETURN; b */

enum BobThreadOpcode : uint8_t {
#define BOB_THREAD_ENUM(name) kT##name,
  BOB_THREAD_OPCODES(BOB_THREAD_ENUM)
#undef BOB_THREAD_ENUM
      kTEnd
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
