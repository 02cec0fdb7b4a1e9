// Statements.
#include <algorithm>

#include "bob/compile/compiler.h"
#include "bob/model/values.h"

namespace {

// What the native allocator counts for the records of a case and of a try.
constexpr uint32_t kCaseRecord = 12;
constexpr uint32_t kTryRecord = 16;

}  // namespace

void BobCompiler::statement() { statementOf(scanner.next()); }

void BobCompiler::statementOf(int token) {
  const Nested nested(this);
  switch (token) {
    case ';': return;
    case '{': return block();
    case kTokenDefine: return define();
    case kTokenIf: return ifStatement();
    case kTokenWhile: return whileStatement();
    case kTokenDo: return doStatement();
    case kTokenFor: return forStatement();
    case kTokenReturn: return returnStatement();
    case kTokenBreak: return breakStatement();
    case kTokenContinue: return continueStatement();
    case kTokenSwitch: return switchStatement();
    case kTokenCase: return caseLabel();
    case kTokenDefault: return defaultLabel();
    case kTokenTry: return tryStatement();
    case kTokenThrow: return throwStatement();
    default:
      scanner.unread(token);
      expression();
      expect(';');
  }
}

// After the opening brace. Declarations come first; a block without statements yields nil.
void BobCompiler::block() {
  const bool hasFrame = localDeclarations();
  int token = scanner.next();
  if (token == '}') emit.op(kOpNil);
  while (token != '}') {
    statementOf(token);
    token = scanner.next();
  }
  if (!hasFrame) return;
  emit.op(kOpUnframe);
  if (emit.notes) emit.notes->closeBlock(emit.here(), names.innermost());
  names.pop();
  --blockLevel;
}

bool BobCompiler::localDeclarations() {
  if (!accept(kTokenLocal)) return false;
  names.push();
  emit.op(kOpCframe, 0);
  const int countAt = emit.here() - 1;
  if (emit.notes) emit.notes->openBlock(emit.here());
  ++blockLevel;
  int count = 0;
  do {
    do declare(&count);
    while (accept(','));
    expect(';');
  } while (accept(kTokenLocal));
  emit.byteAt(countAt) = uint8_t(count);
  return true;
}

// A variable's own name is not visible in its initial value yet.
void BobCompiler::declare(int* count) {
  identifier();
  const std::string name = scanner.tokenText;
  if (accept('=')) {
    assignmentValue();
    emit.op(kOpEset, 0, emit.byteCount(size_t(*count + 1)));
  }
  names.add(name);
  ++*count;
}

void BobCompiler::parenthesised() {
  expect('(');
  expression();
  expect(')');
}

void BobCompiler::ifStatement() {
  parenthesised();
  const int otherwise = emit.branch(kOpBrf, 0);
  statement();
  if (!accept(kTokenElse)) return emit.patchHere(otherwise);
  const int end = emit.branch(kOpBr, 0);
  emit.patchHere(otherwise);
  statement();
  emit.patchHere(end);
}

void BobCompiler::pushBreak(int chain) {
  breaks.push_back({blockLevel, chain});
  if (breaks.size() > kControlDepth) fail("Too many nested loops");
}

// Compiles a loop's statement with `chain` as the branches to its end so far; `endChain` gets it with the breaks of the
// body added.
void BobCompiler::loopBody(int chain, int address, int* endChain) {
  pushBreak(chain);
  continues.push_back({blockLevel, address});
  if (continues.size() > kControlDepth) fail("Too many nested loops");
  statement();
  *endChain = breaks.back().chain;
  breaks.pop_back();
  continues.pop_back();
}

void BobCompiler::whileStatement() {
  const BobSourcePlace at = scanner.place;
  const int top = emit.here();
  parenthesised();
  int end = emit.branch(kOpBrf, 0);
  loopBody(end, top, &end);
  emit.from(at);
  emit.branchTo(kOpBr, top);
  emit.patchHere(end);
}

// A continue goes to the body's start and so skips the test; programs know that.
void BobCompiler::doStatement() {
  const int top = emit.here();
  int end = 0;
  loopBody(0, top, &end);
  expect(kTokenWhile);
  parenthesised();
  expect(';');
  emit.branchTo(kOpBrt, top);
  emit.patchHere(end);
}

void BobCompiler::forStatement() {
  const BobSourcePlace at = scanner.place;
  expect('(');
  if (!accept(';')) {
    do assignmentValue();
    while (accept(','));
    expect(';');
  }
  const int test = emit.here();
  if (accept(';')) {
    emit.op(kOpT);
  } else {
    expression();
    expect(';');
  }
  const int body = emit.branch(kOpBrt, 0);
  int end = emit.branch(kOpBr, 0);
  const int update = emit.here();
  if (!accept(')')) {
    expression();
    expect(')');
  }
  emit.branchTo(kOpBr, test);
  emit.patchHere(body);
  loopBody(end, update, &end);
  emit.from(at);
  emit.branchTo(kOpBr, update);
  emit.patchHere(end);
}

void BobCompiler::returnStatement() {
  const BobSourcePlace at = scanner.place;
  if (accept(';')) {
    emit.op(kOpNil);
  } else {
    expression();
    expect(';');
  }
  for (int i = 0; i < blockLevel; ++i) emit.op(kOpUnframe);
  emit.from(at);
  emit.op(kOpReturn);
}

void BobCompiler::breakStatement() {
  if (breaks.size() == breakBase) fail("Break outside of loop or switch");
  for (int i = breaks.back().blockLevel; i < blockLevel; ++i) emit.op(kOpUnframe);
  breaks.back().chain = emit.branch(kOpBr, breaks.back().chain);
  expect(';');
}

// The blocks to leave are counted from the innermost break, which in a switch is the switch: what the loop's body
// opened around it stays open then.
void BobCompiler::continueStatement() {
  if (continues.size() == continueBase) fail("Continue outside of loop");
  for (int i = breaks.back().blockLevel; i < blockLevel; ++i) emit.op(kOpUnframe);
  emit.branchTo(kOpBr, continues.back().address);
  expect(';');
}

void BobCompiler::switchStatement() {
  const BobSourcePlace at = scanner.place;
  parenthesised();
  const int dispatch = emit.branch(kOpBr, 0);
  switches.emplace_back();
  if (switches.size() > kControlDepth) fail("Too many nested switch statements");
  pushBreak(0);
  statement();
  int end = emit.branch(kOpBr, breaks.back().chain);
  breaks.pop_back();
  emit.patchHere(dispatch);
  const Switch& s = switches.back();
  emit.from(at);
  emit.op(kOpSwitch);
  emit.word(int(s.cases.size()));
  for (const Case& c : s.cases) {
    emit.word(c.literal);
    emit.word(c.address);
    interp->uncountNative(kCaseRecord);
  }
  if (s.defaultAddress) {
    emit.word(s.defaultAddress);
  } else {
    const int operand = emit.here();
    emit.word(end);
    end = operand;
  }
  emit.patchHere(end);
  switches.pop_back();
}

void BobCompiler::caseLabel() {
  if (switches.size() == switchBase) fail("Case outside of switch");
  int literal = 0;
  switch (scanner.next()) {
    case kTokenInteger: literal = emit.addLiteral(bobMakeInteger(interp, scanner.tokenValue)); break;
    case kTokenFloat: literal = emit.addLiteral(bobMakeFloat(interp, scanner.tokenFloat)); break;
    case kTokenString: literal = emit.addString(scanner.tokenText); break;
    case kTokenNil: literal = emit.addLiteral(kBobNil); break;
    case '\\':
      if (scanner.next() != kTokenIdentifier) fail("Expecting a literal symbol");
      literal = emit.addSymbol(scanner.tokenText);
      break;
    default: fail("Expecting a literal value");
  }
  expect(':');
  std::vector<Case>& cases = switches.back().cases;
  const auto at = std::lower_bound(cases.begin(), cases.end(), literal,
                                   [](const Case& c, int number) { return c.literal < number; });
  if (at != cases.end() && at->literal == literal) fail("Duplicate case");
  interp->countNative(kCaseRecord);
  cases.insert(at, {literal, emit.here()});
}

void BobCompiler::defaultLabel() {
  if (switches.size() == switchBase) fail("Default outside of switch");
  expect(':');
  switches.back().defaultAddress = emit.here();
}

// Nothing is thrown at run time: the catch block is never entered, and finally simply follows.
void BobCompiler::tryStatement() {
  interp->countNative(kTryRecord);
  expect('{');
  block();
  const int over = emit.branch(kOpBr, 0);
  int token = scanner.next();
  if (token == kTokenCatch) {
    expect('(');
    identifier();
    expect(')');
    expect('{');
    block();
    token = scanner.next();
  }
  emit.patchHere(over);
  if (token == kTokenFinally) {
    expect('{');
    block();
  } else {
    scanner.unread(token);
  }
}

void BobCompiler::throwStatement() {
  expression();
  emit.op(kOpThrow);
  expect(';');
}
