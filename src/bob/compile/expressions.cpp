// Expressions, from the comma down to the postfix operators.
#include <iterator>

#include "bob/compile/compiler.h"

namespace {

struct Operator {
  int token;
  BobOpcode op;
};

// The levels of left-associative binary operators, the loosest first.
constexpr Operator kBitOr[] = {{'|', kOpBor}};
constexpr Operator kBitXor[] = {{'^', kOpXor}};
constexpr Operator kBitAnd[] = {{'&', kOpBand}};
constexpr Operator kEquality[] = {{kTokenEq, kOpEq}, {kTokenNe, kOpNe}};
constexpr Operator kRelation[] = {{'<', kOpLt}, {kTokenLe, kOpLe}, {kTokenGe, kOpGe}, {'>', kOpGt}};
constexpr Operator kShift[] = {{kTokenShl, kOpShl}, {kTokenShr, kOpShr}};
constexpr Operator kAdditive[] = {{'+', kOpAdd}, {'-', kOpSub}};
constexpr Operator kMultiplicative[] = {{'*', kOpMul}, {'/', kOpDiv}, {'%', kOpRem}};

struct Level {
  const Operator* operators;
  size_t count;
};
constexpr Level kLevels[] = {
    {kBitOr, std::size(kBitOr)},       {kBitXor, std::size(kBitXor)},
    {kBitAnd, std::size(kBitAnd)},     {kEquality, std::size(kEquality)},
    {kRelation, std::size(kRelation)}, {kShift, std::size(kShift)},
    {kAdditive, std::size(kAdditive)}, {kMultiplicative, std::size(kMultiplicative)},
};

// The scanner never delivers kTokenRemEq.
constexpr Operator kCompound[] = {
    {kTokenAddEq, kOpAdd},  {kTokenSubEq, kOpSub}, {kTokenMulEq, kOpMul}, {kTokenDivEq, kOpDiv}, {kTokenRemEq, kOpRem},
    {kTokenAndEq, kOpBand}, {kTokenOrEq, kOpBor},  {kTokenXorEq, kOpXor}, {kTokenShlEq, kOpShl}, {kTokenShrEq, kOpShr},
};

const Operator* findOperator(const Operator* operators, size_t count, int token) {
  for (size_t i = 0; i < count; ++i)
    if (operators[i].token == token) return &operators[i];
  return nullptr;
}

}  // namespace

void BobCompiler::expression() {
  Place place = comma();
  load(place);
}

void BobCompiler::assignmentValue() {
  Place place = assignment();
  load(place);
}

BobCompiler::Place BobCompiler::comma() {
  const Nested nested(this);
  Place place = assignment();
  while (accept(',')) {
    load(place);
    place = assignment();
  }
  return place;
}

BobCompiler::Place BobCompiler::assignment() {
  const Nested nested(this);
  Place place = conditional();
  const int token = scanner.next();
  if (token == '=') {
    needPlace(place);
    prepare(place);
    assignmentValue();
    store(place);
    return {};
  }
  const Operator* compound = findOperator(kCompound, std::size(kCompound), token);
  if (!compound) {
    scanner.unread(token);
    return place;
  }
  const BobSourcePlace at = scanner.place;
  needPlace(place);
  duplicate(place);
  Place old = place;
  load(old);
  emit.op(kOpPush);
  assignmentValue();
  emit.from(at);
  emit.op(compound->op);
  store(place);
  return {};
}

// Both arms are comma expressions, the second one too: a ? b : c, d takes d with it.
BobCompiler::Place BobCompiler::conditional() {
  Place place = logicalOr();
  if (!accept('?')) return place;
  load(place);
  const int otherwise = emit.branch(kOpBrf, 0);
  expression();
  expect(':');
  const int end = emit.branch(kOpBr, 0);
  emit.patchHere(otherwise);
  expression();
  emit.patchHere(end);
  return {};
}

BobCompiler::Place BobCompiler::logicalOr() {
  Place place = logicalAnd();
  int end = 0;
  while (accept(kTokenOr)) {
    load(place);
    end = emit.branch(kOpBrt, end);
    place = logicalAnd();
    load(place);
  }
  emit.patchHere(end);
  return place;
}

BobCompiler::Place BobCompiler::logicalAnd() {
  Place place = binary(0);
  int end = 0;
  while (accept(kTokenAnd)) {
    load(place);
    end = emit.branch(kOpBrf, end);
    place = binary(0);
    load(place);
  }
  emit.patchHere(end);
  return place;
}

BobCompiler::Place BobCompiler::binary(int level) {
  if (level == int(std::size(kLevels))) return prefix();
  Place place = binary(level + 1);
  for (;;) {
    const int token = scanner.next();
    const Operator* found = findOperator(kLevels[level].operators, kLevels[level].count, token);
    if (!found) {
      scanner.unread(token);
      return place;
    }
    const BobSourcePlace at = scanner.place;
    load(place);
    emit.op(kOpPush);
    place = binary(level + 1);
    load(place);
    emit.from(at);
    emit.op(found->op);
  }
}

BobCompiler::Place BobCompiler::prefix() {
  const Nested nested(this);
  const int token = scanner.next();
  switch (token) {
    case '!':
    case '-':
    case '~': {
      const BobSourcePlace at = scanner.place;
      Place place = prefix();
      load(place);
      emit.from(at);
      emit.op(token == '!' ? kOpNot : token == '-' ? kOpNeg : kOpBnot);
      return {};
    }
    case kTokenInc: return stepBefore(kOpInc);
    case kTokenDec: return stepBefore(kOpDec);
    default: scanner.unread(token); return postfix();
  }
}

BobCompiler::Place BobCompiler::stepBefore(BobOpcode step) {
  stepInPlace(prefix(), step);
  return {};
}

// Stores the stepped value, which val holds then.
void BobCompiler::stepInPlace(const Place& place, BobOpcode step) {
  needPlace(place);
  duplicate(place);
  Place old = place;
  load(old);
  emit.op(step);
  store(place);
}

BobCompiler::Place BobCompiler::postfix() {
  Place place = primary();
  for (;;) {
    const int token = scanner.next();
    const BobSourcePlace at = scanner.place;
    switch (token) {
      case '(':
        load(place);
        emit.op(kOpPush);
        emit.op(kOpPushScope);
        call(kOpCall, at);
        break;
      case '.':
        load(place);
        emit.op(kOpPush);
        selector();
        if (accept('(')) {
          send();
        } else {
          place = {Place::kProperty, 0, 0, scanner.place};
        }
        break;
      case '[':
        load(place);
        emit.op(kOpPush);
        expression();
        expect(']');
        place = {Place::kElement, 0, 0, at};
        break;
      case kTokenInc: stepAfter(place, kOpInc, kOpDec); break;
      case kTokenDec: stepAfter(place, kOpDec, kOpInc); break;
      default: scanner.unread(token); return place;
    }
  }
}

// The new value is stored and val stepped back, so that the expression yields the old one.
void BobCompiler::stepAfter(Place& place, BobOpcode step, BobOpcode back) {
  stepInPlace(place, step);
  emit.op(back);
  place = {};
}

// After the opening parenthesis, which `at` is the place of.
void BobCompiler::call(BobOpcode opcode, const BobSourcePlace& at) {
  const int count = arguments();
  emit.from(at);
  emit.op(opcode, count);
}

// The same with the object on the stack and the selector in val.
void BobCompiler::send() {
  const BobSourcePlace at = scanner.place;
  emit.op(kOpPush);
  emit.op(kOpOver);
  call(kOpSend, at);
}

// After the opening parenthesis: pushes the arguments and returns the number of slots, this and _next included.
int BobCompiler::arguments() {
  size_t count = 2;
  if (accept(')')) return int(count);
  do {
    assignmentValue();
    emit.op(kOpPush);
    ++count;
  } while (accept(','));
  expect(')');
  return emit.byteCount(count);
}

// After a point: an identifier or a parenthesised expression, left in val.
void BobCompiler::selector() {
  const int token = scanner.next();
  if (token == '(') {
    expression();
    expect(')');
  } else if (token == kTokenIdentifier) {
    emit.literal(kOpLit, emit.addSymbol(scanner.tokenText));
  } else {
    fail("Expecting a property selector");
  }
}
