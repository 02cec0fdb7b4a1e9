// Primary expressions and literals.
#include "bob/compiler.h"
#include "bob/objects.h"

BobCompiler::Place BobCompiler::primary() {
  switch (scanner.next()) {
    case kTokenInteger: emitLiteral(kOpLit, addLiteral(bobMakeInteger(interp, scanner.tokenValue))); return {};
    case kTokenFloat: emitLiteral(kOpLit, addLiteral(bobMakeFloat(interp, scanner.tokenFloat))); return {};
    case kTokenString: emitLiteral(kOpLit, addString(scanner.tokenText)); return {};
    case kTokenNil: emitOp(kOpNil); return {};
    case kTokenIdentifier: return findName(scanner.tokenText);
    case '(':
      expression();
      expect(')');
      return {};
    case '{': block(); return {};
    case kTokenFunction: functionLiteral(); return {};
    case kTokenSuper: superSend(); return {};
    case kTokenNew: newObject(); return {};
    case '\\': literal(); return {};
    default: fail("Expecting a primary expression");
  }
}

// A name that is an identifier is bound as a global, too; one in quotes only names the code.
void BobCompiler::functionLiteral() {
  const int token = scanner.next();
  const std::string name = scanner.tokenText;
  if (token == kTokenIdentifier) {
    function(name.c_str());
    emitLiteral(kOpGset, addSymbol(name));
  } else if (token == kTokenString) {
    function(name.c_str());
  } else {
    scanner.unread(token);
    function(nullptr);
  }
}

void BobCompiler::superSend() {
  Place self, next;
  if (!findVariable("this", &self)) fail("Use of super outside of a method");
  load(self);
  emitOp(kOpPush);
  expect('.');
  selector();
  emitOp(kOpPush);
  expect('(');
  findVariable("_next", &next);
  load(next);
  emitOp(kOpPush);
  emitOp(kOpSend, arguments());
}

// Without parentheses `initialize` is not sent; with them its result is the value.
void BobCompiler::newObject() {
  const int token = scanner.next();
  if (token == kTokenIdentifier) {
    Place place = findName(scanner.tokenText);
    load(place);
  } else if (token == '(') {
    expression();
    expect(')');
  } else {
    fail("Expecting an object expression");
  }
  emitOp(kOpNewObject);
  if (!accept('(')) return;
  emitOp(kOpPush);
  emitLiteral(kOpLit, addSymbol("initialize"));
  emitOp(kOpPush);
  emitOp(kOpOver);
  emitOp(kOpSend, arguments());
}

void BobCompiler::literal() {
  switch (scanner.next()) {
    case kTokenIdentifier: return emitLiteral(kOpLit, addSymbol(scanner.tokenText));
    case '[': return vectorLiteral();
    case '{': return objectLiteral();
    default: fail("Expecting a symbol, vector or object literal");
  }
}

void BobCompiler::vectorLiteral() {
  int count = 0;
  if (!accept(']')) {
    do {
      assignmentValue();
      emitOp(kOpPush);
      ++count;
    } while (accept(','));
    expect(']');
  }
  emitLiteral(kOpLit, addLiteral(bobSmall(count)));
  emitOp(kOpNewVector);
}

// \{}, \{ key: value, ... }, \{ Parent } or \{ Parent key: value, ... }
void BobCompiler::objectLiteral() {
  Place parent;
  if (accept('}')) {
    parent = findName("Object");
    load(parent);
    return emitOp(kOpNewObject);
  }
  identifier();
  const std::string name = scanner.tokenText;
  const bool isKey = accept(':');
  parent = findName(isKey ? "Object" : name);
  load(parent);
  emitOp(kOpNewObject);
  if (isKey) {
    pair(name);
    if (accept(',')) return pairs();
    return expect('}');
  }
  if (!accept('}')) pairs();
}

void BobCompiler::pairs() {
  do {
    identifier();
    const std::string key = scanner.tokenText;
    expect(':');
    pair(key);
  } while (accept(','));
  expect('}');
}

// Behind the key and its colon, with the object in val; leaves it there.
void BobCompiler::pair(const std::string& key) {
  emitOp(kOpPush);
  emitOp(kOpPush);
  emitLiteral(kOpLit, addSymbol(key));
  emitOp(kOpPush);
  assignmentValue();
  emitOp(kOpSetp);
  emitOp(kOpDrop);
}
