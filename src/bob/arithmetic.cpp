#include "bob/arithmetic.h"

#include "bob/objects.h"

using namespace BobLayout;

namespace {

bool IsFloat(BobInterp* interp, BobValue value) { return interp->isA(value, kBobFloat); }

double NumberOf(BobInterp* interp, BobValue value) {
  if (bobIsInteger(interp, value)) return bobIntegerValue(interp, value);
  if (!IsFloat(interp, value)) bobRaise(interp, kBobWrongType, value);
  return bobFloatValue(interp, value);
}

int32_t IntegerResult(BobInterp* interp, BobOpcode op, int32_t a, int32_t b) {
  switch (op) {
    case kOpAdd: return int32_t(uint32_t(a) + uint32_t(b));
    case kOpSub: return int32_t(uint32_t(a) - uint32_t(b));
    case kOpMul: return int32_t(uint32_t(a) * uint32_t(b));
    case kOpDiv: return bobDivide(a, b);
    case kOpRem: return bobRemainder(a, b);
    case kOpBand: return a & b;
    case kOpBor: return a | b;
    case kOpXor: return a ^ b;
    case kOpShl: return bobShiftLeft(a, b);
    case kOpShr: return bobShiftRight(a, b);
    default: bobRaise(interp, kBobImpossible);
  }
}

BobValue Concatenate(BobInterp* interp, BobValue left, BobValue right) {
  if (!interp->isA(left, kBobString)) bobRaise(interp, kBobWrongType, left);
  const BobLocal keepLeft(interp, left), keepRight(interp, right);
  const uint32_t a = interp->words(left)[kStringLength], b = interp->words(right)[kStringLength];
  const BobValue joined = bobMakeEmptyString(interp, a + b);
  uint8_t* to = interp->bytes(joined) + kStringBytes;
  std::memcpy(to, interp->bytes(keepLeft) + kStringBytes, a);
  std::memcpy(to + a, interp->bytes(keepRight) + kStringBytes, b);
  return joined;
}

int SignOf(double difference) { return difference < 0 ? -1 : difference > 0 ? 1 : 0; }

}  // namespace

BobValue bobArithmetic(BobInterp* interp, BobOpcode op, BobValue left, BobValue right) {
  // ADD goes by its right operand: a string there asks for a string on the left.
  if (op == kOpAdd && interp->isA(right, kBobString)) return Concatenate(interp, left, right);
  if (bobIsInteger(interp, left) && bobIsInteger(interp, right)) {
    const int32_t a = bobIntegerValue(interp, left), b = bobIntegerValue(interp, right);
    return bobMakeInteger(interp, IntegerResult(interp, op, a, b));
  }
  const double a = NumberOf(interp, left), b = NumberOf(interp, right);
  switch (op) {
    case kOpAdd: return bobMakeFloat(interp, a + b);
    case kOpSub: return bobMakeFloat(interp, a - b);
    case kOpMul: return bobMakeFloat(interp, a * b);
    case kOpDiv: return bobMakeFloat(interp, b == 0 ? 0.0 : a / b);
    default: bobRaise(interp, kBobWrongType, left);
  }
}

BobValue bobUnary(BobInterp* interp, BobOpcode op, BobValue value) {
  if (bobIsInteger(interp, value)) {
    const uint32_t n = uint32_t(bobIntegerValue(interp, value));
    const uint32_t result = op == kOpNeg ? 0 - n : op == kOpBnot ? ~n : op == kOpInc ? n + 1 : n - 1;
    return bobMakeInteger(interp, int32_t(result));
  }
  if (!IsFloat(interp, value) || op == kOpBnot) bobRaise(interp, kBobWrongType, value);
  const double n = bobFloatValue(interp, value);
  return bobMakeFloat(interp, op == kOpNeg ? -n : op == kOpInc ? n + 1 : n - 1);
}

// Integers compare by the sign of their 32-bit difference, which wraps for a pair far apart; programs may see that.
int bobCompare(BobInterp* interp, BobValue left, BobValue right) {
  if (bobIsInteger(interp, left) && bobIsInteger(interp, right))
    return int32_t(uint32_t(bobIntegerValue(interp, left)) - uint32_t(bobIntegerValue(interp, right)));
  if (interp->isA(left, kBobString) && interp->isA(right, kBobString)) {
    const int order = bobStringText(interp, left).compare(bobStringText(interp, right));
    return order;
  }
  const bool leftIsFloat = IsFloat(interp, left), rightIsFloat = IsFloat(interp, right);
  if (leftIsFloat && (rightIsFloat || bobIsInteger(interp, right)))
    return SignOf(bobFloatValue(interp, left) - NumberOf(interp, right));
  if (rightIsFloat && bobIsInteger(interp, left)) return SignOf(NumberOf(interp, left) - bobFloatValue(interp, right));
  bobRaise(interp, kBobWrongType, leftIsFloat ? right : left);
}
