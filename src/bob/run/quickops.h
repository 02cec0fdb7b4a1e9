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

// Binary instructions. The results of the first ones are often stored in a variable; those of the rare ones seldom are.
#define BOB_ARITHMETIC(X) X(Add) X(Sub) X(Mul) X(Rem) X(Band) X(Xor)
#define BOB_RARE_ARITHMETIC(X) X(Div) X(Bor) X(Shl) X(Shr)
#define BOB_COMPARISON(X) X(Lt) X(Le) X(Eq) X(Ne) X(Ge) X(Gt)

// A binary instruction combined with the loads of its operands: V a variable, L a small integer literal, A
// val, and none for a left operand on the stack. `Set` stores the result in a variable as well. With a comparison mostly
// goes the branch after it, and perhaps the step of the variable that a loop counts in.
#define BOB_ARITHMETIC_FORMS(X, name) \
  X(name) X(name##VV) X(name##VL) X(name##VA) X(name##AV) X(name##AL)
#define BOB_ARITHMETIC_SET_FORMS(X, name) \
  X(name##Set) X(name##VVSet) X(name##VLSet) X(name##VASet) X(name##AVSet) X(name##ALSet)
#define BOB_COMPARISON_VALUE_FORMS(X, name) X(name##VV) X(name##VL)
#define BOB_COMPARISON_FORMS(X, name)                                   \
  X(name##VVBrt) X(name##VLBrt) X(name##VABrt) X(name##AVBrt) X(name##ALBrt) \
  X(name##VVBrf) X(name##VLBrf) X(name##VABrf) X(name##AVBrf) X(name##ALBrf)

// Instruction words: number in bits 0..7, a in 8..15, b in 16..31. Further words follow where it says so; a target counts
// words from itself; a cache is three words (object, epoch, property), a call cache four (code, epoch, where its quick
// code begins). A variable is given by the words that it lies above the start of the innermost environment, or below it
// with a minus (see BobCodePaths::findOwn); where that has eight bits, kBobNearBias is added. In superinstructions a is the left variable, b the right one; a literal is a
// word of its own, and comes before the target. The variable of a Set is a, or where that is taken b, or where both
// are taken the upper half of b.
#define BOB_QUICK_OPS(X)                                                                              \
  X(Bad)                                                                                              \
  X(Jump) X(Goto) X(Brt) X(Brf)         /* target; a goto is no step */                                                  \
  X(True) X(Nil) X(Push) X(Not) X(Bnot)                                                               \
  BOB_ARITHMETIC_FORMS(X, Add) BOB_ARITHMETIC_SET_FORMS(X, Add)                                       \
  BOB_ARITHMETIC_FORMS(X, Sub) BOB_ARITHMETIC_SET_FORMS(X, Sub)                                       \
  BOB_ARITHMETIC_FORMS(X, Mul) BOB_ARITHMETIC_SET_FORMS(X, Mul)                                       \
  BOB_ARITHMETIC_FORMS(X, Rem) BOB_ARITHMETIC_SET_FORMS(X, Rem)                                       \
  BOB_ARITHMETIC_FORMS(X, Band) BOB_ARITHMETIC_SET_FORMS(X, Band)                                     \
  BOB_ARITHMETIC_FORMS(X, Xor) BOB_ARITHMETIC_SET_FORMS(X, Xor)                                       \
  BOB_ARITHMETIC_FORMS(X, Div) BOB_ARITHMETIC_FORMS(X, Bor)                                           \
  BOB_ARITHMETIC_FORMS(X, Shl) BOB_ARITHMETIC_FORMS(X, Shr)                                           \
  BOB_COMPARISON(X)                                                                                   \
  BOB_COMPARISON_VALUE_FORMS(X, Lt) BOB_COMPARISON_VALUE_FORMS(X, Le) BOB_COMPARISON_VALUE_FORMS(X, Eq) \
  BOB_COMPARISON_VALUE_FORMS(X, Ne) BOB_COMPARISON_VALUE_FORMS(X, Ge) BOB_COMPARISON_VALUE_FORMS(X, Gt) \
  BOB_COMPARISON_FORMS(X, Lt) BOB_COMPARISON_FORMS(X, Le) BOB_COMPARISON_FORMS(X, Eq)                 \
  BOB_COMPARISON_FORMS(X, Ne) BOB_COMPARISON_FORMS(X, Ge) BOB_COMPARISON_FORMS(X, Gt)                 \
  X(Lit)                                /* b element */                                               \
  X(Gref) X(Gset)                       /* b element; cache */                                        \
  X(Getp) X(Setp) X(Vref) X(Vset)       /* cache */                                                   \
  X(Return)                             /* b variables of the function */                             \
  X(ReturnAny) X(Unframe) X(Frame) X(Cframe) /* a count */                                            \
  X(Call)                               /* a slots; call cache */                                     \
  X(Send)                               /* a slots; cache; call cache */                              \
  X(Own) X(SetOwn)                      /* b variable, signed, known to be there */                   \
  X(Outer) X(SetOuter)                  /* b the same in the environment around */                    \
  X(Var) X(Set)                         /* a depth, b index, not known to be there */                 \
  X(VarNext) X(SetNext)                 /* the same at depth 1 */                                     \
  X(Neg) X(Inc) X(Dec) X(Dup2) X(Drop) X(Dup) X(Over) X(NewObject) X(NewVector) X(Close)              \
  X(Block) X(Unblock)                   /* b variables of a block without a frame */                  \
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
  X(PushCallee)                         /* PUSH PUSHSCOPE */                                          \
  X(PushCall) X(PushSend)               /* PUSH before CALL and SEND */                               \
  X(GrefPush) X(GrefCallee)             /* GREF PUSH, and PUSHSCOPE; b element; cache */              \
  X(StepAfter)                          /* EREF, INC or DEC, ESET and back; a variable; 1 or -1 */    \
  X(StepOuter)                          /* the same in the environment around; b variable; 1 or -1 */  \
  X(LoopLtV) X(LoopLtL) X(LoopLeV) X(LoopLeL) X(LoopGeV) X(LoopGeL) X(LoopGtV) X(LoopGtL)             \
      /* StepAfter, a jump, EREF of the variable, PUSH, EREF or LIT, comparison and BRT; a variable, lower b the other */ \
      /* one, upper b a BobLoopFlag; the word that the step adds; literal, if any; target */  \
  X(GetField)                           /* PUSH LIT GETP of a symbol; symbol; cache */                \
  X(GetVarField)                        /* EREF before that; a variable; symbol; cache */             \
  X(PushGetVarField)                    /* PUSH before that */                                        \
  X(SetVarField)                        /* a variable's field is set to val; symbol; cache */         \
  X(Dup2Getp)                           /* cache */                                                   \
  X(VrefVV)                             /* EREF PUSH EREF VREF; a, b variables; cache */              \
  X(VrefAV)                             /* PUSH EREF VREF; b variable; cache */                       \
  X(VrefVA)                             /* the element val of a variable's vector; a variable; cache */ \
  X(VsetVS)                             /* the element of a variable's vector that the stack says; a variable; cache */ \
  X(VsetVV)                             /* an element of a variable's vector is set to val; a, b variables; cache */ \
  X(SelectorA) X(SelectorV)             /* PUSH LIT PUSH OVER, and EREF first; a variable, b element */ \
  X(ReturnVar)                          /* EREF RETURN; a variable, b as above */

// clang-format on

// One byte holds them, barely.
enum BobQuickOp : uint8_t {
#define BOB_QUICK_ENUM(name) kQ##name,
  BOB_QUICK_OPS(BOB_QUICK_ENUM)
#undef BOB_QUICK_ENUM
};

constexpr int kBobCacheWords = 3, kBobCallCacheWords = 4;
constexpr int kBobNearBias = 208;  // what is added to a near variable's place

// -- binary instructions by their parts

// Where a superinstruction has its operands from.
enum class BobOperands { kNone, kVV, kVL, kVA, kAV, kAL };
constexpr bool bobLeftIsVariable(BobOperands o) { return o >= BobOperands::kVV && o <= BobOperands::kVA; }
constexpr bool bobRightIsLiteral(BobOperands o) { return o == BobOperands::kVL || o == BobOperands::kAL; }

constexpr BobOpcode kBobArithmeticOpcodes[] = {kOpAdd, kOpSub, kOpMul, kOpRem, kOpBand,
                                               kOpXor, kOpDiv, kOpBor, kOpShl, kOpShr};
constexpr BobOpcode kBobComparisonOpcodes[] = {kOpLt, kOpLe, kOpEq, kOpNe, kOpGe, kOpGt};
constexpr int kBobArithmeticForms = kQBor - kQDiv, kBobSettingForms = kQSub - kQAdd,
              kBobTestForms = kQLeVVBrt - kQLtVVBrt;
constexpr int kBobSettingOpcodes = (kQDiv - kQAdd) / kBobSettingForms;  // the first ones, which have a Set

struct BobArithmeticForm {
  BobOpcode opcode;
  BobOperands operands;
  bool sets;
};
constexpr bool bobIsArithmetic(BobQuickOp op) { return op >= kQAdd && op <= kQShrAL; }
constexpr BobArithmeticForm bobArithmeticForm(BobQuickOp op) {
  const bool rare = op >= kQDiv;
  const int number = op - (rare ? kQDiv : kQAdd), forms = rare ? kBobArithmeticForms : kBobSettingForms;
  const int form = number % forms;
  return {kBobArithmeticOpcodes[number / forms + (rare ? kBobSettingOpcodes : 0)],
          BobOperands(form % kBobArithmeticForms), form >= kBobArithmeticForms};
}
// `index` counts in kBobArithmeticOpcodes.
constexpr BobQuickOp bobArithmeticOp(int index, BobOperands operands, bool sets) {
  if (index >= kBobSettingOpcodes)
    return BobQuickOp(kQDiv + kBobArithmeticForms * (index - kBobSettingOpcodes) + int(operands));
  return BobQuickOp(kQAdd + kBobSettingForms * index + int(operands) + (sets ? kBobArithmeticForms : 0));
}

constexpr bool bobIsComparison(BobQuickOp op) { return op >= kQLt && op <= kQGt; }
constexpr BobOpcode bobComparisonOpcode(BobQuickOp op) { return kBobComparisonOpcodes[op - kQLt]; }
// The same with both operands loaded: a variable, and a variable or a literal.
constexpr bool bobIsLoadedComparison(BobQuickOp op) { return op >= kQLtVV && op <= kQGtVL; }
constexpr BobOpcode bobLoadedComparisonOpcode(BobQuickOp op) { return kBobComparisonOpcodes[(op - kQLtVV) / 2]; }
constexpr BobOperands bobLoadedComparisonOperands(BobQuickOp op) {
  return (op - kQLtVV) % 2 ? BobOperands::kVL : BobOperands::kVV;
}
constexpr BobQuickOp bobLoadedComparisonOp(int index, BobOperands operands) {
  return BobQuickOp(kQLtVV + 2 * index + (operands == BobOperands::kVL));
}

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

// After a jump to the step; with one that is a step (BobCombiner::freeTest) from it to the test.
enum BobLoopFlag { kLoopAfterJump = 1, kLoopCounterIsOuter = 2, kLoopLimitIsOuter = 4, kLoopJumps = 8 };

// A loop's step with its test.
struct BobLoopForm {
  BobOpcode opcode;
  bool rightIsLiteral;
};
constexpr BobOpcode kBobLoopOpcodes[] = {kOpLt, kOpLe, kOpGe, kOpGt};
constexpr bool bobIsLoop(BobQuickOp op) { return op >= kQLoopLtV && op <= kQLoopGtL; }
constexpr BobLoopForm bobLoopForm(BobQuickOp op) {
  return {kBobLoopOpcodes[(op - kQLoopLtV) / 2], (op - kQLoopLtV) % 2 != 0};
}
// `index` counts in kBobLoopOpcodes.
constexpr BobQuickOp bobLoopOp(int index, bool rightIsLiteral) {
  return BobQuickOp(kQLoopLtV + 2 * index + (rightIsLiteral ? 1 : 0));
}
