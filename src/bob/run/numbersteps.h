// Instructions on numbers: arithmetic, comparisons, and both combined with the loads of their operands.
//
// Small integers are computed on their words: a word is 2n + 1, so a + (b - 1) is the word of the sum, and the words
// are in the order of the numbers. Everything else goes through arithmetic.h.
#pragma once

#include "bob/model/values.h"
#include "bob/run/arithmetic.h"
#include "bob/run/registers.h"

// The result for two small integers; false if it is no small integer.
template <BobOpcode kOp>
BOB_STEP bool bobComputeSmall(BobValue a, BobValue b, BobValue* result) {
  if constexpr (kOp == kOpAdd || kOp == kOpSub) {
    int32_t word;
    const bool overflow = kOp == kOpAdd ? __builtin_add_overflow(int32_t(a), int32_t(b - 1), &word)
                                        : __builtin_sub_overflow(int32_t(a), int32_t(b - 1), &word);
    *result = uint32_t(word);
    return !overflow;
  } else if constexpr (kOp == kOpBand || kOp == kOpBor || kOp == kOpXor) {
    *result = kOp == kOpBand ? a & b : kOp == kOpBor ? a | b : (a ^ b) | 1;
    return true;
  } else {
    const int32_t n = bobComputeInteger(kOp, bobSmallValue(a), bobSmallValue(b));
    *result = bobSmall(n);
    return bobFitsSmall(n);
  }
}

template <BobOpcode kOp>
BOB_STEP void compute(BobRegisters& r, BobValue left, BobValue right) {
  BobValue result;
  if ((left & right & 1) && bobComputeSmall<kOp>(left, right, &result)) [[likely]] {
    r.val = result;
    return;
  }
  r.store();
  r.interp->val = bobArithmetic(r.interp, kOp, left, right);
  r.reload();
}

template <BobOpcode kOp>
BOB_STEP bool isInOrder(int32_t left, int32_t right) {
  if constexpr (kOp == kOpLt) return left < right;
  if constexpr (kOp == kOpLe) return left <= right;
  if constexpr (kOp == kOpGe) return left >= right;
  return left > right;
}

template <BobOpcode kOp>
BOB_STEP bool compare(BobRegisters& r, BobValue left, BobValue right) {
  if constexpr (kOp == kOpEq || kOp == kOpNe) {
    const bool equal = left == right || (!(left & right & 1) && bobEqual(r.interp, left, right));
    return equal == (kOp == kOpEq);
  } else {
    if (left & right & 1) return isInOrder<kOp>(int32_t(left), int32_t(right));
    r.store();
    return isInOrder<kOp>(bobCompare(r.interp, left, right), 0);
  }
}

// The operands of a superinstruction. As its parts would, it needs the word that it no longer pushes.
template <BobOperands kOperands, bool kSets>
BOB_STEP void loadOperands(BobRegisters& r, BobValue* left, BobValue* right) {
  constexpr bool kIsLiteral = kOperands == BobOperands::kVL || kOperands == BobOperands::kAL;
  constexpr bool kLeftIsVariable = kOperands == BobOperands::kVV || kOperands == BobOperands::kVL;
  *left = kLeftIsVariable ? r.variable(r.variableA()) : r.val;
  if constexpr (kIsLiteral)
    *right = *r.pc++;
  else
    *right = r.variable(kSets && kLeftIsVariable ? r.lowerVariableB() : r.variableB());
  r.need(1);
}

// The variable that a Set stores into: the first operand that is free.
template <BobOperands kOperands>
BOB_STEP int targetOfSet(const BobRegisters& r) {
  if constexpr (kOperands == BobOperands::kVV) return r.upperVariableB();
  if constexpr (kOperands == BobOperands::kVL) return r.variableB();
  return r.variableA();
}

template <BobQuickOp kQ>
requires(bobIsArithmetic(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  constexpr BobArithmeticForm form = bobArithmeticForm(kQ);
  BobValue left, right;
  if constexpr (form.operands == BobOperands::kNone) {
    left = *r.sp++;
    right = r.val;
  } else {
    loadOperands<form.operands, form.sets>(r, &left, &right);
  }
  compute<form.opcode>(r, left, right);
  if constexpr (form.sets) r.variable(targetOfSet<form.operands>(r)) = r.val;
}

template <BobQuickOp kQ>
requires(bobIsComparison(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  const BobValue left = *r.sp++;
  r.val = bobBoolean(compare<bobComparisonOpcode(kQ)>(r, left, r.val));
}

template <BobQuickOp kQ>
requires(bobIsTest(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  constexpr BobTestForm form = bobTestForm(kQ);
  BobValue left, right;
  loadOperands<form.operands, false>(r, &left, &right);
  const bool holds = compare<form.opcode>(r, left, right);
  r.val = bobBoolean(holds);
  r.branchIf(holds == form.branchesWhenTrue);
}

template <BobOpcode kOp>
BOB_STEP void computeUnary(BobRegisters& r) {
  if (r.val & 1) [[likely]] {
    const int32_t n = bobSmallValue(r.val);
    const int32_t result = kOp == kOpNeg ? -n : kOp == kOpBnot ? ~n : kOp == kOpInc ? n + 1 : n - 1;
    if (bobFitsSmall(result)) [[likely]] {
      r.val = bobSmall(result);
      return;
    }
  }
  r.store();
  r.interp->val = bobUnary(r.interp, kOp, r.val);
  r.reload();
}

BOB_STEP void step(BobRegisters& r, BobOp<kQNeg>) { computeUnary<kOpNeg>(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQInc>) { computeUnary<kOpInc>(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQDec>) { computeUnary<kOpDec>(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQBnot>) { computeUnary<kOpBnot>(r); }

// x++ and x--: the variable takes the step, val keeps the old value.
BOB_STEP void step(BobRegisters& r, BobOp<kQStepAfter>) {
  const int32_t change = int32_t(*r.pc++);
  const BobValue old = r.variable(r.variableA());
  const int32_t changed = bobSmallValue(old) + change;
  if (bobIsSmall(old) && bobFitsSmall(changed)) [[likely]] {
    r.variable(r.variableA()) = bobSmall(changed);
    r.val = old;
    return;
  }
  r.store();
  r.interp->val = bobUnary(r.interp, change == 1 ? kOpInc : kOpDec, old);
  r.reload();
  r.variable(r.variableA()) = r.val;
  r.interp->val = bobUnary(r.interp, change == 1 ? kOpDec : kOpInc, r.val);
  r.reload();
}
