#include "bob/compiler.h"

#include "bob/objects.h"

using namespace BobLayout;

namespace {

// What the native allocator counts for compile-time records.
constexpr uint32_t kControlRecords = 20 * (8 + 8 + 12) + 6 * 4;  // breaks, continues, switches; top and base of each
constexpr uint32_t kScannerRecord = 2 * 256 + 10 * 4;            // two buffers and ten words, the float two of them
constexpr uint32_t kCompilerSize = 14 * 4 + kControlRecords + kScannerRecord + 8;  // the float and the end aligned to 8
constexpr uint32_t kScopeRecord = 8;
constexpr uint32_t kNameRecord = 8;

}  // namespace

BobCompiler::BobCompiler(BobInterp* interp) : interp(interp) {
  interp->countNative(kCompilerSize);
  interp->countNative(kCodeSize);
  bobProtect(interp, &literals);
  literals = bobMakeVector(interp, kLiteralCount);
}

BobCompiler::~BobCompiler() { bobUnprotect(interp, &literals); }

void BobCompiler::reset() {
  while (!scopes.empty()) popScope();
  breaks.clear();
  continues.clear();
  switches.clear();
  breakBase = continueBase = switchBase = 0;
  blockLevel = nesting = 0;
  functionBase = codePointer = 0;
  literalBase = literalPointer = 0;
}

BobValue BobCompiler::compileStatement(BobValue scopeObject) {
  const BobLocal scope(interp, scopeObject);
  reset();
  try {
    const int token = scanner.next();
    if (token == kTokenEof) return 0;
    scanner.unread(token);
    addLiteral(kBobNil);
    emitOp(kOpAframe, 2, 0);
    statement();
    emitOp(kOpReturn);
    const BobValue code = makeCode();
    return bobMakeMethod(interp, code, kBobNil, scope);
  } catch (const BobUnwind&) {
    while (!scopes.empty()) popScope();
    throw;
  }
}

// -- emission

void BobCompiler::emit(int byte) {
  if (codePointer == kCodeSize) bobRaise(interp, kBobTooMuchCode);
  codeBuffer[codePointer++] = uint8_t(byte);
}

void BobCompiler::emitOp(BobOpcode op) {
  if (emitLineNumbers && scanner.lineChanged) {
    scanner.lineChanged = false;
    emit(kOpLine);
    emitWord(scanner.lineNumber);
  }
  emit(op);
}

void BobCompiler::emitOp(BobOpcode op, int operand) {
  emitOp(op);
  emit(operand);
}

void BobCompiler::emitOp(BobOpcode op, int first, int second) {
  emitOp(op);
  emit(first);
  emit(second);
}

void BobCompiler::emitWord(int word) {
  emit(word & 0xFF);
  emit(word >> 8);
}

int BobCompiler::emitBranch(BobOpcode op, int chain) {
  emitOp(op);
  const int operand = here();
  emitWord(chain);
  return operand;
}

void BobCompiler::emitBranchTo(BobOpcode op, int target) {
  emitOp(op);
  emitWord(target);
}

void BobCompiler::emitLiteral(BobOpcode op, int literal) {
  emitOp(op);
  emitWord(literal);
}

// The chain runs through the branches' own operands; 0 ends it, since no operand lies there.
void BobCompiler::patch(int chain, int target) {
  while (chain != 0) {
    uint8_t* operand = codeBuffer + functionBase + chain;
    chain = operand[0] | operand[1] << 8;
    operand[0] = uint8_t(target);
    operand[1] = uint8_t(target >> 8);
  }
}

// A count as a one-byte operand.
int BobCompiler::byteCount(size_t count) {
  if (count > 255) bobRaise(interp, kBobTooMuchCode);
  return int(count);
}

// -- literals

uint32_t* BobCompiler::literalSlots() { return interp->words(literals) + kElements; }

// Numbered from 1 within the function: the element number of its code. Integers and symbols share a number; strings
// and floats are new objects each time.
int BobCompiler::addLiteral(BobValue value) {
  uint32_t* slots = literalSlots();
  for (int i = literalBase; i < literalPointer; ++i)
    if (slots[i] == value) return i - literalBase + 1;
  if (literalPointer == kLiteralCount) fail("too many literals");
  slots[literalPointer++] = value;
  return literalPointer - literalBase;
}

int BobCompiler::addSymbol(std::string_view name) { return addLiteral(bobIntern(interp, name)); }

// The text of a literal ends at a zero byte.
int BobCompiler::addString(std::string_view text) {
  return addLiteral(bobMakeString(interp, text.substr(0, text.find('\0'))));
}

// The code of the current function, from its part of the two buffers.
BobValue BobCompiler::makeCode() {
  const std::string_view bytes(reinterpret_cast<const char*>(codeBuffer) + functionBase, size_t(here()));
  const BobLocal string(interp, bobMakeString(interp, bytes));
  const int count = literalPointer - literalBase;
  const BobValue code = bobMakeCode(interp, uint32_t(count) + 1);
  uint32_t* elements = interp->words(code) + kCodeElements;
  elements[0] = string;
  for (int i = 0; i < count; ++i) elements[i + 1] = literalSlots()[literalBase + i];
  return code;
}

// -- names

BobCompiler::Scope& BobCompiler::pushScope() {
  interp->countNative(kScopeRecord);
  return scopes.emplace_back();
}

void BobCompiler::popScope() {
  for (const std::string& name : scopes.back().names) interp->uncountNative(kNameRecord + uint32_t(name.size()) + 1);
  interp->uncountNative(kScopeRecord);
  scopes.pop_back();
}

void BobCompiler::addName(std::string_view name) {
  interp->countNative(kNameRecord + uint32_t(name.size()) + 1);
  scopes.back().names.emplace_back(name);
  byteCount(scopes.back().names.size());
}

bool BobCompiler::findVariable(std::string_view name, Place* place) const {
  for (size_t depth = 0; depth < scopes.size(); ++depth) {
    const std::vector<std::string>& names = scopes[scopes.size() - 1 - depth].names;
    for (size_t i = 0; i < names.size(); ++i) {
      if (names[i] != name) continue;
      *place = {Place::kVariable, int(depth), int(i + 1)};
      return true;
    }
  }
  return false;
}

BobCompiler::Place BobCompiler::findName(std::string_view name) {
  if (name == "true") return {Place::kConstant, kOpT};
  if (name == "false" || name == "nil") return {Place::kConstant, kOpNil};
  Place place;
  if (findVariable(name, &place)) return place;
  return {Place::kGlobal, addSymbol(name)};
}

// -- places

void BobCompiler::load(Place& place) {
  switch (place.kind) {
    case Place::kValue: break;
    case Place::kConstant: emitOp(BobOpcode(place.a)); break;
    case Place::kVariable: emitOp(kOpEref, byteCount(size_t(place.a)), place.b); break;
    case Place::kGlobal: emitLiteral(kOpGref, place.a); break;
    case Place::kProperty: emitOp(kOpGetp); break;
    case Place::kElement: emitOp(kOpVref); break;
  }
  place = {};
}

void BobCompiler::store(const Place& place) {
  switch (place.kind) {
    case Place::kValue: bobRaise(interp, kBobImpossible);
    case Place::kConstant: bobRaise(interp, kBobStoreIntoConstant);
    case Place::kVariable: emitOp(kOpEset, byteCount(size_t(place.a)), place.b); break;
    case Place::kGlobal: emitLiteral(kOpGset, place.a); break;
    case Place::kProperty: emitOp(kOpSetp); break;
    case Place::kElement: emitOp(kOpVset); break;
  }
}

// For a store of what comes next: an object is on the stack, its key in val.
void BobCompiler::prepare(const Place& place) {
  if (place.kind == Place::kProperty || place.kind == Place::kElement) emitOp(kOpPush);
}

// For a load that a store will follow.
void BobCompiler::duplicate(const Place& place) {
  if (place.kind == Place::kProperty || place.kind == Place::kElement) emitOp(kOpDup2);
}

void BobCompiler::needPlace(const Place& place) {
  if (place.kind == Place::kValue) fail("Expecting an lvalue");
}

// -- tokens

void BobCompiler::expect(int token) { expectFound(token, scanner.next()); }

void BobCompiler::expectFound(int token, int found) {
  if (found != token) fail("Expecting '" + bobTokenName(token) + "', found '" + bobTokenName(found) + "'");
}

void BobCompiler::identifier() { expect(kTokenIdentifier); }

bool BobCompiler::accept(int token) {
  const int found = scanner.next();
  if (found == token) return true;
  scanner.unread(found);
  return false;
}
