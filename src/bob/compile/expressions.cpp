// Expressions, from the comma down to the postfix operators.
#include <array>

#include "bob/compile/compiler.h"

namespace {

struct Operator {
  int token;
  BobOpcode op;
};

// Left-associative binary operators by level, the loosest first.
struct Level {
  int level;
  Operator op;
};
constexpr Level kLevels[] = {
    {0, {'|', kOpBor}},     {1, {'^', kOpXor}},       {2, {'&', kOpBand}},      {3, {kTokenEq, kOpEq}},
    {3, {kTokenNe, kOpNe}}, {4, {'<', kOpLt}},        {4, {kTokenLe, kOpLe}},   {4, {kTokenGe, kOpGe}},
    {4, {'>', kOpGt}},      {5, {kTokenShl, kOpShl}}, {5, {kTokenShr, kOpShr}}, {6, {'+', kOpAdd}},
    {6, {'-', kOpSub}},     {7, {'*', kOpMul}},       {7, {'/', kOpDiv}},       {7, {'%', kOpRem}},
};

struct Binary {
  int8_t level = -1;  // none
  BobOpcode op = kOpEnd;
};
consteval std::array<Binary, kTokensEnd> makeBinaries() {
  std::array<Binary, kTokensEnd> byToken{};
  for (const Level& l : kLevels) byToken[size_t(l.op.token)] = {int8_t(l.level), l.op.op};
  return byToken;
}
constexpr std::array<Binary, kTokensEnd> kBinaries = makeBinaries();

// The scanner never delivers kTokenRemEq.
constexpr Operator kCompound[] = {
    {kTokenAddEq, kOpAdd},  {kTokenSubEq, kOpSub}, {kTokenMulEq, kOpMul}, {kTokenDivEq, kOpDiv}, {kTokenRemEq, kOpRem},
    {kTokenAndEq, kOpBand}, {kTokenOrEq, kOpBor},  {kTokenXorEq, kOpXor}, {kTokenShlEq, kOpShl}, {kTokenShrEq, kOpShr},
};

const Operator* findCompound(int token) {
  for (const Operator& compound : kCompound)
    if (compound.token == token) return &compound;
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
  const Operator* compound = findCompound(token);
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

// Operators of the level `least` and above, which bind more tightly.
BobCompiler::Place BobCompiler::binary(int least) {
  Place place = prefix();
  for (;;) {
    const int token = scanner.next();
    const Binary found = kBinaries[size_t(token)];
    if (found.level < least) {
      scanner.unread(token);
      return place;
    }
    const BobSourcePlace at = scanner.place;
    load(place);
    emit.op(kOpPush);
    place = binary(found.level + 1);
    load(place);
    emit.from(at);
    emit.op(found.op);
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
