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

// A literal operand is known to be small.
template <BobOpcode kOp, BobOperands kOperands>
BOB_STEP void compute(BobRegisters& r, BobValue left, BobValue right) {
  BobValue result;
  const bool areSmall = bobRightIsLiteral(kOperands) ? bobIsSmall(left) : bobIsSmall(left & right);
  if (areSmall && bobComputeSmall<kOp>(left, right, &result)) [[likely]] {
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
  if constexpr (kOp == kOpEq) return left == right;
  if constexpr (kOp == kOpNe) return left != right;
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

template <bool kBranchesWhenTrue>
BOB_STEP void branchAfter(BobRegisters& r, bool holds) {
  if (holds) {
    r.val = kBobTrue;
    r.branchIf(kBranchesWhenTrue);
  } else {
    r.val = kBobFalse;
    r.branchIf(!kBranchesWhenTrue);
  }
}

template <BobOpcode kOp, bool kRightIsLiteral, bool kBranchesWhenTrue>
BOB_STEP void compareAndBranch(BobRegisters& r, BobValue left, BobValue right) {
  if (kRightIsLiteral ? bobIsSmall(left) : bobIsSmall(left & right)) [[likely]]
    branchAfter<kBranchesWhenTrue>(r, isInOrder<kOp>(int32_t(left), int32_t(right)));
  else
    branchAfter<kBranchesWhenTrue>(r, compare<kOp>(r, left, right));
}

// The operands of a superinstruction. As its parts would, it needs the word that it no longer pushes.
template <BobOperands kOperands, bool kSets>
BOB_STEP void loadOperands(BobRegisters& r, BobValue* left, BobValue* right) {
  constexpr bool kLeftIsVariable = bobLeftIsVariable(kOperands);
  *left = kLeftIsVariable ? r.variable(r.a()) : r.val;
  if constexpr (bobRightIsLiteral(kOperands))
    *right = *r.pc++;
  else if constexpr (kOperands == BobOperands::kVA)
    *right = r.val;
  else
    *right = r.variable(kSets && kLeftIsVariable ? r.lowerB() : r.b());
  r.need(1);
}

// The variable that a Set stores into: the first operand that is free.
template <BobOperands kOperands>
BOB_STEP uint32_t targetOfSet(const BobRegisters& r) {
  if constexpr (kOperands == BobOperands::kVV) return r.upperB();
  if constexpr (bobLeftIsVariable(kOperands)) return r.b();
  return r.a();
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
  compute<form.opcode, form.operands>(r, left, right);
  if constexpr (form.sets) r.variable(targetOfSet<form.operands>(r)) = r.val;
}

template <BobQuickOp kQ>
requires(bobIsComparison(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  const BobValue left = *r.sp++;
  r.val = bobBoolean(compare<bobComparisonOpcode(kQ)>(r, left, r.val));
}

template <BobQuickOp kQ>
requires(bobIsLoadedComparison(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  BobValue left, right;
  loadOperands<bobLoadedComparisonOperands(kQ), false>(r, &left, &right);
  r.val = bobBoolean(compare<bobLoadedComparisonOpcode(kQ)>(r, left, right));
}

template <BobQuickOp kQ>
requires(bobIsTest(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  constexpr BobTestForm form = bobTestForm(kQ);
  BobValue left, right;
  loadOperands<form.operands, false>(r, &left, &right);
  compareAndBranch<form.opcode, bobRightIsLiteral(form.operands), form.branchesWhenTrue>(r, left, right);
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
enum class BobStepped { kOwn, kOuter, kLoop };

template <BobStepped kWhere>
BOB_STEP BobValue* steppedVariable(BobRegisters& r) {
  if constexpr (kWhere == BobStepped::kOuter) return r.outerVariables() + r.signedB();
  if (kWhere == BobStepped::kLoop && (r.upperB() & kLoopCounterIsOuter))
    return r.outerVariables() + r.a() - kBobNearBias;
  return &r.variable(r.a());
}

template <BobStepped kWhere>
BOB_STEP void stepAnyAfter(BobRegisters& r, bool up) {
  r.store();
  r.interp->val = bobUnary(r.interp, up ? kOpInc : kOpDec, *steppedVariable<kWhere>(r));
  r.reload();
  *steppedVariable<kWhere>(r) = r.val;
  r.interp->val = bobUnary(r.interp, up ? kOpDec : kOpInc, r.val);
  r.reload();
}

template <BobStepped kWhere>
BOB_STEP void stepAfter(BobRegisters& r) {
  const int32_t change = int32_t(*r.pc++);
  BobValue* const place = steppedVariable<kWhere>(r);
  const BobValue old = *place;
  const int32_t changed = bobSmallValue(old) + change;
  if (!bobIsSmall(old) || !bobFitsSmall(changed)) [[unlikely]]
    return stepAnyAfter<kWhere>(r, change == 1);
  *place = bobSmall(changed);
  r.val = old;
}

BOB_STEP void step(BobRegisters& r, BobOp<kQStepAfter>) { stepAfter<BobStepped::kOwn>(r); }
BOB_STEP void step(BobRegisters& r, BobOp<kQStepOuter>) { stepAfter<BobStepped::kOuter>(r); }

// A loop's end: jumps to the step (none if the code runs on into it), the step, the test, and the branch back.
template <BobQuickOp kQ>
requires(bobIsLoop(kQ)) BOB_STEP void step(BobRegisters& r, BobOp<kQ>) {
  constexpr BobLoopForm form = bobLoopForm(kQ);
  if (r.upperB() & kLoopAfterJump) r.countStep();
  const int32_t change = int32_t(*r.pc);
  BobValue* const place = steppedVariable<BobStepped::kLoop>(r);
  BobValue left = *place;
  int32_t stepped;
  if (bobIsSmall(left) && !__builtin_add_overflow(int32_t(left), change, &stepped)) [[likely]] {
    *place = left = uint32_t(stepped);
  } else {
    stepAnyAfter<BobStepped::kLoop>(r, change > 0);
    left = *steppedVariable<BobStepped::kLoop>(r);
  }
  if (r.upperB() & kLoopJumps) r.countStep();
  r.need(1);
  ++r.pc;  // for an error of the comparison
  BobValue right;
  if constexpr (form.rightIsLiteral)
    right = *r.pc++;
  else if (r.upperB() & kLoopLimitIsOuter)
    right = r.outerVariables()[int(r.lowerB()) - kBobNearBias];
  else
    right = r.variable(r.lowerB());
  compareAndBranch<form.opcode, form.rightIsLiteral, true>(r, left, right);
}
