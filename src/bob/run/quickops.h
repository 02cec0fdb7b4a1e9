// The instructions of quick code.
//
// One word each, with operands in it, and further words after it where it says so. Most are those of bytecode with
// their operands decoded; the rest are superinstructions, each of which does what a sequence of bytecode would, one
// part after the other.
#pragma once

#include <cstdint>
#include <iterator>

#include "bob/base/opcodes.h"

// clang-format off

// Binary instructions, in the order of their opcodes.
#define BOB_ARITHMETIC(X) X(Add) X(Sub) X(Mul) X(Div) X(Rem) X(Band) X(Bor) X(Xor) X(Shl) X(Shr)
#define BOB_COMPARISON(X) X(Lt) X(Le) X(Eq) X(Ne) X(Ge) X(Gt)

// A binary instruction combined with the loads of its operands: V a variable, L a small integer literal, A
// val, and none for a left operand on the stack. `Set` stores the result in a variable as well. A comparison is
// combined only when a branch follows it.
#define BOB_ARITHMETIC_FORMS(X, name)                                     \
  X(name)      X(name##VV)    X(name##VL)    X(name##AV)    X(name##AL)   \
  X(name##Set) X(name##VVSet) X(name##VLSet) X(name##AVSet) X(name##ALSet)
#define BOB_COMPARISON_FORMS(X, name)                                   \
  X(name##VVBrt) X(name##VLBrt) X(name##AVBrt) X(name##ALBrt)                                         \
  X(name##VVBrf) X(name##VLBrf) X(name##AVBrf) X(name##ALBrf)

// Instruction words: number in bits 0..7, a in 8..15, b in 16..31. Further words follow where it says so; a target counts
// words from itself; a cache is three words (object, epoch, property).
// A variable is given by the words that it lies below the top of the innermost environment's variables, with a sign:
// those of the blocks around may lie above. In superinstructions a is the left variable, b the right one; a literal is a
// word of its own, and comes before the target. The variable of a Set is a, or where that is taken b, or where both
// are taken the upper half of b.
#define BOB_QUICK_OPS(X)                                                                              \
  X(Bad)                                                                                              \
  X(Jump) X(Brt) X(Brf)                 /* target */                                                  \
  X(True) X(Nil) X(Push) X(Not) X(Bnot)                                                               \
  BOB_ARITHMETIC_FORMS(X, Add)  BOB_ARITHMETIC_FORMS(X, Sub) BOB_ARITHMETIC_FORMS(X, Mul)             \
  BOB_ARITHMETIC_FORMS(X, Div)  BOB_ARITHMETIC_FORMS(X, Rem)                                          \
  BOB_ARITHMETIC_FORMS(X, Band) BOB_ARITHMETIC_FORMS(X, Bor) BOB_ARITHMETIC_FORMS(X, Xor)             \
  BOB_ARITHMETIC_FORMS(X, Shl)  BOB_ARITHMETIC_FORMS(X, Shr)                                          \
  BOB_COMPARISON(X)                                                                                   \
  BOB_COMPARISON_FORMS(X, Lt) BOB_COMPARISON_FORMS(X, Le) BOB_COMPARISON_FORMS(X, Eq)                 \
  BOB_COMPARISON_FORMS(X, Ne) BOB_COMPARISON_FORMS(X, Ge) BOB_COMPARISON_FORMS(X, Gt)                 \
  X(Lit)                                /* b element */                                               \
  X(Gref) X(Gset)                       /* b element; cache */                                        \
  X(Getp) X(Setp) X(Vref) X(Vset)       /* cache */                                                   \
  X(Return) X(Unframe) X(Frame) X(Cframe) /* a count */                                               \
  X(Call)                               /* a slots */                                                 \
  X(Send)                               /* a slots; cache */                                          \
  X(Own) X(SetOwn)                      /* b variable, known to be there */                           \
  X(Var) X(Set)                         /* a depth, b index, not known to be there */                 \
  X(Neg) X(Inc) X(Dec) X(Dup2) X(Drop) X(Dup) X(Over) X(NewObject) X(NewVector) X(Close)              \
  X(Switch)                             /* b cases; pairs of element and target; target */            \
  X(ArgsGe)                             /* a count */                                                 \
  X(PushScope)                                                                                        \
  X(CheckPops)                          /* b words that the next instruction takes */                 \
  X(Trace)                              /* the tracer's number of the code; offset of what follows */  \
  /* superinstructions: */                                                                            \
  X(PushVar) X(PushVarVar)              /* EREF PUSH, and twice; a, b variables */                    \
  X(PushLit)                            /* LIT PUSH; b element */                                     \
  X(PushVarLit)                         /* EREF PUSH LIT PUSH; a variable, b element */               \
  X(VarCallee)                          /* EREF PUSH PUSHSCOPE; a variable */                         \
  X(GrefPush) X(GrefCallee)             /* GREF PUSH, and PUSHSCOPE; b element; cache */              \
  X(StepAfter)                          /* EREF, INC or DEC, ESET and back; a variable; 1 or -1 */    \
  X(GetField)                           /* PUSH LIT GETP; b element; cache */                         \
  X(GetVarField)                        /* EREF before that; a variable, b element; cache */          \
  X(Dup2Getp)                           /* cache */                                                   \
  X(VrefVV)                             /* EREF PUSH EREF VREF; a, b variables; cache */              \
  X(VrefAV)                             /* PUSH EREF VREF; b variable; cache */                       \
  X(SelectorA) X(SelectorV)             /* PUSH LIT PUSH OVER, and EREF first; a variable, b element */ \
  X(ReturnVar)                          /* EREF RETURN; a variable */

// clang-format on

enum BobQuickOp : uint8_t {
#define BOB_QUICK_ENUM(name) kQ##name,
  BOB_QUICK_OPS(BOB_QUICK_ENUM)
#undef BOB_QUICK_ENUM
      kQEnd
};

constexpr int kBobCacheWords = 3;

// -- binary instructions by their parts

// Where a superinstruction has its operands from.
enum class BobOperands { kNone, kVV, kVL, kAV, kAL };

constexpr BobOpcode kBobArithmeticOpcodes[] = {kOpAdd,  kOpSub, kOpMul, kOpDiv, kOpRem,
                                               kOpBand, kOpBor, kOpXor, kOpShl, kOpShr};
constexpr BobOpcode kBobComparisonOpcodes[] = {kOpLt, kOpLe, kOpEq, kOpNe, kOpGe, kOpGt};
constexpr int kBobArithmeticForms = kQSub - kQAdd, kBobTestForms = kQLeVVBrt - kQLtVVBrt;

struct BobArithmeticForm {
  BobOpcode opcode;
  BobOperands operands;
  bool sets;
};
constexpr bool bobIsArithmetic(BobQuickOp op) {
  return op >= kQAdd && op < kQAdd + kBobArithmeticForms * int(std::size(kBobArithmeticOpcodes));
}
constexpr BobArithmeticForm bobArithmeticForm(BobQuickOp op) {
  const int form = (op - kQAdd) % kBobArithmeticForms, half = kBobArithmeticForms / 2;
  return {kBobArithmeticOpcodes[(op - kQAdd) / kBobArithmeticForms], BobOperands(form % half), form >= half};
}
// `index` counts in kBobArithmeticOpcodes.
constexpr BobQuickOp bobArithmeticOp(int index, BobOperands operands, bool sets) {
  return BobQuickOp(kQAdd + kBobArithmeticForms * index + int(operands) + (sets ? kBobArithmeticForms / 2 : 0));
}

constexpr bool bobIsComparison(BobQuickOp op) { return op >= kQLt && op <= kQGt; }
constexpr BobOpcode bobComparisonOpcode(BobQuickOp op) { return kBobComparisonOpcodes[op - kQLt]; }

// A comparison combined with the branch after it.
struct BobTestForm {
  BobOpcode opcode;
  BobOperands operands;
  bool branchesWhenTrue;
};
constexpr bool bobIsTest(BobQuickOp op) { return op >= kQLtVVBrt && op <= kQGtALBrf; }
constexpr BobTestForm bobTestForm(BobQuickOp op) {
  const int form = (op - kQLtVVBrt) % kBobTestForms, half = kBobTestForms / 2;
  return {kBobComparisonOpcodes[(op - kQLtVVBrt) / kBobTestForms], BobOperands(1 + form % half), form < half};
}
// `index` counts in kBobComparisonOpcodes.
constexpr BobQuickOp bobTestOp(int index, BobOperands operands, bool branchesWhenTrue) {
  return BobQuickOp(kQLtVVBrt + kBobTestForms * index + int(operands) - 1 + (branchesWhenTrue ? 0 : kBobTestForms / 2));
}
