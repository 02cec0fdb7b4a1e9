#include "bob/run/arithmetic.h"

#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/values.h"

using namespace BobLayout;

namespace {

double numberOf(BobInterp* interp, BobValue value) {
  if (interp->isInteger(value)) return interp->integerOf(value);
  if (!interp->isA(value, kBobFloat)) bobRaise(interp, kBobWrongType, value);
  return interp->floatOf(value);
}

BobValue concatenate(BobInterp* interp, BobValue left, BobValue right) {
  if (!interp->isA(left, kBobString)) bobRaise(interp, kBobWrongType, left);
  const BobLocal keepLeft(interp->locals, left), keepRight(interp->locals, right);
  const uint32_t a = interp->words(left)[kStringLength], b = interp->words(right)[kStringLength];
  const BobValue joined = bobMakeUnwrittenString(interp, a + b);
  uint8_t* to = interp->bytes(joined) + kStringBytes;
  std::memcpy(to, interp->bytes(keepLeft) + kStringBytes, a);
  std::memcpy(to + a, interp->bytes(keepRight) + kStringBytes, b);
  return joined;
}

int signOf(double difference) { return difference < 0 ? -1 : difference > 0 ? 1 : 0; }

}  // namespace

BobValue bobArithmetic(BobInterp* interp, BobOpcode op, BobValue left, BobValue right) {
  // ADD goes by its right operand: a string there asks for a string on the left.
  if (op == kOpAdd && interp->isA(right, kBobString)) return concatenate(interp, left, right);
  if (interp->isInteger(left) && interp->isInteger(right)) {
    const int32_t a = interp->integerOf(left), b = interp->integerOf(right);
    return bobMakeInteger(interp, bobComputeInteger(op, a, b));
  }
  const double a = numberOf(interp, left), b = numberOf(interp, right);
  switch (op) {
    case kOpAdd: return bobMakeFloat(interp, a + b);
    case kOpSub: return bobMakeFloat(interp, a - b);
    case kOpMul: return bobMakeFloat(interp, a * b);
    case kOpDiv: return bobMakeFloat(interp, b == 0 ? 0.0 : a / b);
    default: bobRaise(interp, kBobWrongType, left);
  }
}

BobValue bobUnary(BobInterp* interp, BobOpcode op, BobValue value) {
  if (interp->isInteger(value)) {
    const int32_t n = interp->integerOf(value);
    return bobMakeInteger(interp, op == kOpNeg    ? bobSubtract(0, n)
                                  : op == kOpBnot ? ~n
                                                  : bobAdd(n, op == kOpInc ? 1 : -1));
  }
  if (!interp->isA(value, kBobFloat) || op == kOpBnot) bobRaise(interp, kBobWrongType, value);
  const double n = interp->floatOf(value);
  return bobMakeFloat(interp, op == kOpNeg ? -n : op == kOpInc ? n + 1 : n - 1);
}

// Integers compare by the sign of their 32-bit difference, which wraps for a pair far apart; programs may see that.
int bobCompare(BobInterp* interp, BobValue left, BobValue right) {
  if (interp->isInteger(left) && interp->isInteger(right))
    return bobSubtract(interp->integerOf(left), interp->integerOf(right));
  if (interp->isA(left, kBobString) && interp->isA(right, kBobString))
    return interp->stringOf(left).compare(interp->stringOf(right));
  const bool leftIsFloat = interp->isA(left, kBobFloat), rightIsFloat = interp->isA(right, kBobFloat);
  if (leftIsFloat && (rightIsFloat || interp->isInteger(right)))
    return signOf(interp->floatOf(left) - numberOf(interp, right));
  if (rightIsFloat && interp->isInteger(left)) return signOf(numberOf(interp, left) - interp->floatOf(right));
  bobRaise(interp, kBobWrongType, leftIsFloat ? right : left);
}
