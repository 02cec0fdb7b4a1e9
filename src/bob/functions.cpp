// Functions and definitions.
#include "bob/compiler.h"

using namespace BobLayout;

// Compiles parameters and body, and leaves a closure in val. `name` may be null.
void BobCompiler::function(const char* name) {
  const Nested nested(this);
  const int outerBlockLevel = blockLevel, outerFunctionBase = functionBase, outerLiteralBase = literalBase;
  const size_t outerBreakBase = breakBase, outerContinueBase = continueBase, outerSwitchBase = switchBase;
  pushScope();
  blockLevel = 0;
  functionBase = codePointer;
  literalBase = literalPointer;
  breakBase = breaks.size();
  continueBase = continues.size();
  switchBase = switches.size();

  if (name)
    addString(name);
  else
    addLiteral(kBobNil);
  addName("this");
  addName("_next");
  const int opcodeAt = codePointer;
  emitOp(kOpAframe, 0, 0);
  int required = 2, optional = 0;
  expect('(');
  parameters(&required, &optional, opcodeAt);
  codeBuffer[opcodeAt + 1] = uint8_t(required);
  codeBuffer[opcodeAt + 2] = uint8_t(optional);
  expect('{');
  block();
  emitOp(kOpReturn);

  const BobValue code = makeCode();
  codePointer = functionBase;
  literalPointer = literalBase;
  popScope();
  blockLevel = outerBlockLevel;
  functionBase = outerFunctionBase;
  literalBase = outerLiteralBase;
  breakBase = outerBreakBase;
  continueBase = outerContinueBase;
  switchBase = outerSwitchBase;
  emitLiteral(kOpLit, addLiteral(code));
  emitOp(kOpClose);
}

// A parameter's default is an expression that runs at the call when the argument is missing; later parameters are
// optional then, too. `name..` takes what is left over.
void BobCompiler::parameters(int* required, int* optional, int opcodeAt) {
  int token = scanner.next();
  if (token == ')') return;
  scanner.unread(token);
  if (token == kTokenDotDot) return expect(')');
  for (;;) {
    identifier();
    const std::string name = scanner.tokenText;
    token = scanner.next();
    if (token == '=') {
      ++*optional;
      const int index = byteCount(size_t(*required + *optional));
      emitOp(kOpArgsGe, index);
      const int given = emitBranch(kOpBrt, 0);
      assignmentValue();
      addName(name);
      emitOp(kOpEset, 0, index);
      patchHere(given);
      token = scanner.next();
    } else if (token == kTokenDotDot) {
      addName(name);
      codeBuffer[opcodeAt] = kOpAframer;
      token = scanner.next();
      break;
    } else {
      addName(name);
      ++*(*optional > 0 ? optional : required);
    }
    if (token != ',') break;
  }
  expectFound(')', token);
}

void BobCompiler::define() {
  if (scanner.next() != kTokenIdentifier) fail("Expecting a function or a method definition");
  const std::string name = scanner.tokenText;
  if (accept('.')) return defineOnPath(name);
  function(name.c_str());
  emitLiteral(kOpGset, addSymbol(name));
}

// define a.b.c() {}: the last name is the method's, those ahead of it lead to its object.
void BobCompiler::defineOnPath(const std::string& first) {
  Place object = findName(first);
  load(object);
  emitOp(kOpPush);
  for (;;) {
    identifier();
    const std::string name = scanner.tokenText;
    const bool more = accept('.');
    emitLiteral(kOpLit, addSymbol(name));
    if (more) {
      emitOp(kOpGetp);
      emitOp(kOpPush);
      continue;
    }
    emitOp(kOpPush);
    function(name.c_str());
    emitOp(kOpSetp);
    return;
  }
}
