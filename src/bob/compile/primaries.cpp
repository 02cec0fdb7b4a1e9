// Primary expressions and literals.
#include "bob/compile/compiler.h"
#include "bob/model/values.h"

BobCompiler::Place BobCompiler::primary() {
  switch (scanner.next()) {
    case kTokenInteger: emit.literal(kOpLit, emit.addLiteral(bobMakeInteger(interp, scanner.tokenValue))); return {};
    case kTokenFloat: emit.literal(kOpLit, emit.addLiteral(bobMakeFloat(interp, scanner.tokenFloat))); return {};
    case kTokenString: emit.literal(kOpLit, emit.addString(scanner.tokenText)); return {};
    case kTokenNil: emit.op(kOpNil); return {};
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
  const BobSourcePlace at = scanner.place;
  const int token = scanner.next();
  const std::string name = scanner.tokenText;
  if (token == kTokenIdentifier) {
    function(name.c_str());
    const int global = emit.addSymbol(name);
    emit.from(at);
    emit.literal(kOpGset, global);
  } else if (token == kTokenString) {
    function(name.c_str());
  } else {
    scanner.unread(token);
    function(nullptr);
  }
}

void BobCompiler::superSend() {
  std::optional<Place> self = findVariable("this");
  if (!self || !findVariable("_next")) fail("Use of super outside of a method");
  load(*self);
  emit.op(kOpPush);
  expect('.');
  selector();
  emit.op(kOpPush);
  expect('(');
  const BobSourcePlace at = scanner.place;
  std::optional<Place> next = findVariable("_next");
  load(*next);
  emit.op(kOpPush);
  call(kOpSend, at);
}

// Without parentheses `initialize` is not sent; with them its result is the value.
void BobCompiler::newObject() {
  const BobSourcePlace at = scanner.place;
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
  emit.from(at);
  emit.op(kOpNewObject);
  if (!accept('(')) return;
  emit.op(kOpPush);
  emit.literal(kOpLit, emit.addSymbol("initialize"));
  send();
}

void BobCompiler::literal() {
  switch (scanner.next()) {
    case kTokenIdentifier: return emit.literal(kOpLit, emit.addSymbol(scanner.tokenText));
    case '[': return vectorLiteral();
    case '{': return objectLiteral();
    default: fail("Expecting a symbol, vector or object literal");
  }
}

void BobCompiler::vectorLiteral() {
  const BobSourcePlace at = scanner.place;
  int count = 0;
  if (!accept(']')) {
    do {
      assignmentValue();
      emit.op(kOpPush);
      ++count;
    } while (accept(','));
    expect(']');
  }
  const int number = emit.addLiteral(bobSmall(count));
  emit.from(at);
  emit.literal(kOpLit, number);
  emit.from(at);
  emit.op(kOpNewVector);
}

// \{}, \{ key: value, ... }, \{ Parent } or \{ Parent key: value, ... }
void BobCompiler::objectLiteral() {
  Place parent;
  if (accept('}')) {
    parent = findName("Object");
    load(parent);
    return emit.op(kOpNewObject);
  }
  identifier();
  const std::string name = scanner.tokenText;
  const bool isKey = accept(':');
  parent = findName(isKey ? "Object" : name);
  load(parent);
  emit.op(kOpNewObject);
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

// After the key and its colon, with the object in val; leaves it there.
void BobCompiler::pair(const std::string& key) {
  const BobSourcePlace at = scanner.place;
  emit.op(kOpPush);
  emit.op(kOpPush);
  emit.literal(kOpLit, emit.addSymbol(key));
  emit.op(kOpPush);
  assignmentValue();
  emit.from(at);
  emit.op(kOpSetp);
  emit.op(kOpDrop);
}
