// Functions and definitions.
#include "bob/compile/compiler.h"

// The first literal of code that has no name of its own.
void BobCompiler::nameCode(const BobSourcePlace& begin) {
  if (codeNames)
    emit.addString(codeNames(begin));
  else
    emit.addLiteral(kBobNil);
}

void BobCompiler::beginNotes() {
  if (!listener) return;
  notes.push_back({sourceName, {}, {}, {}, {}, {}});
  emit.notes = &notes.back();
}

void BobCompiler::endNotes(BobValue code) {
  if (notes.empty()) return;
  listener(interp, code, notes.back());
  notes.pop_back();
  emit.notes = notes.empty() ? nullptr : &notes.back();
}

// Compiles parameters and body, and leaves a closure in val. `name` may be null.
void BobCompiler::function(const char* name) {
  const Nested nested(this);
  const BobSourcePlace at = scanner.place;
  const int outerBlockLevel = blockLevel;
  const size_t outerBreakBase = breakBase, outerContinueBase = continueBase, outerSwitchBase = switchBase;
  names.push();
  blockLevel = 0;
  const BobEmitter::Function outer = emit.begin();
  beginNotes();
  breakBase = breaks.size();
  continueBase = continues.size();
  switchBase = switches.size();

  if (name)
    emit.addString(name);
  else
    nameCode(scanner.placeInLine());
  names.add("this");
  names.add("_next");
  const int opcodeAt = emit.here();
  emit.op(kOpAframe, 0, 0);
  int required = 2, optional = 0;
  expect('(');
  parameters(&required, &optional, opcodeAt);
  emit.byteAt(opcodeAt + 1) = uint8_t(required);
  emit.byteAt(opcodeAt + 2) = uint8_t(optional);
  expect('{');
  block();
  emit.op(kOpReturn);

  if (emit.notes) {
    emit.notes->arguments = names.innermost();
    emit.notes->around = names.around();
  }
  const BobValue code = emit.end(outer);
  endNotes(code);
  names.pop();
  blockLevel = outerBlockLevel;
  breakBase = outerBreakBase;
  continueBase = outerContinueBase;
  switchBase = outerSwitchBase;
  const int number = emit.addLiteral(code);
  emit.from(at);
  emit.literal(kOpLit, number);
  emit.from(at);
  emit.op(kOpClose);
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
      const int index = emit.byteCount(size_t(*required + *optional));
      emit.op(kOpArgsGe, index);
      const int given = emit.branch(kOpBrt, 0);
      assignmentValue();
      names.add(name);
      emit.op(kOpEset, 0, index);
      emit.patchHere(given);
      token = scanner.next();
    } else if (token == kTokenDotDot) {
      names.add(name);
      emit.byteAt(opcodeAt) = kOpAframer;
      token = scanner.next();
      break;
    } else {
      names.add(name);
      ++*(*optional > 0 ? optional : required);
    }
    if (token != ',') break;
  }
  expectFound(')', token);
}

void BobCompiler::define() {
  const BobSourcePlace at = scanner.place;
  if (scanner.next() != kTokenIdentifier) fail("Expecting a function or a method definition");
  const std::string name = scanner.tokenText;
  if (accept('.')) return defineOnPath(name);
  function(name.c_str());
  const int global = emit.addSymbol(name);
  emit.from(at);
  emit.literal(kOpGset, global);
}

// define a.b.c() {}: the last name is the method's, those before it lead to its object.
void BobCompiler::defineOnPath(const std::string& first) {
  const BobSourcePlace at = scanner.place;
  Place object = findName(first);
  load(object);
  emit.op(kOpPush);
  for (;;) {
    identifier();
    const std::string name = scanner.tokenText;
    const bool more = accept('.');
    emit.literal(kOpLit, emit.addSymbol(name));
    if (more) {
      emit.op(kOpGetp);
      emit.op(kOpPush);
      continue;
    }
    emit.op(kOpPush);
    function(name.c_str());
    emit.from(at);
    emit.op(kOpSetp);
    return;
  }
}
