#include "bob/compile/compiler.h"

#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/model/values.h"

namespace {

// What the native allocator counts for the compiler's record, the scanner's in it.
constexpr uint32_t kControlRecords = 20 * (8 + 8 + 12) + 6 * 4;  // breaks, continues, switches; top and base of each
constexpr uint32_t kScannerRecord = 2 * 256 + 10 * 4;            // two buffers and ten words, the float two of them
constexpr uint32_t kCompilerSize = 14 * 4 + kControlRecords + kScannerRecord + 8;  // the float and the end aligned to 8

}  // namespace

BobCompiler::BobCompiler(BobInterp* interp) : interp(interp), names(interp), emit(interp, scanner.place) {
  interp->countNative(kCompilerSize);
  emit.makeBuffers();
}

void BobCompiler::reset() {
  names.clear();
  breaks.clear();
  continues.clear();
  switches.clear();
  breakBase = continueBase = switchBase = 0;
  blockLevel = nesting = 0;
  notes.clear();
  emit.reset();
}

BobValue BobCompiler::compileStatement(BobValue scopeObject) {
  const BobLocal scope(interp, scopeObject);
  reset();
  try {
    const BobSourcePlace before = scanner.place;
    const int token = scanner.next();
    if (token == kTokenEof) return 0;
    const BobSourcePlace at = scanner.place, named = scanner.placeInLine();
    scanner.unread(token);
    beginNotes();
    if (emit.notes) emit.notes->before = before;
    nameCode(named);
    emit.from(at);
    emit.op(kOpAframe, 2, 0);
    statement();
    emit.op(kOpReturn);
    const BobValue code = emit.makeCode();
    endNotes(code);
    return bobMakeMethod(interp, code, kBobNil, scope);
  } catch (const BobUnwind&) {
    names.clear();
    throw;
  }
}

// -- names

std::optional<BobCompiler::Place> BobCompiler::findVariable(std::string_view name) const {
  int depth, index;
  if (!names.find(name, &depth, &index)) return std::nullopt;
  return Place{Place::kVariable, depth, index, scanner.place};
}

BobCompiler::Place BobCompiler::findName(std::string_view name) {
  if (name == "true") return {Place::kConstant, kOpT, 0, scanner.place};
  if (name == "false" || name == "nil") return {Place::kConstant, kOpNil, 0, scanner.place};
  if (const std::optional<Place> variable = findVariable(name)) return *variable;
  return {Place::kGlobal, emit.addSymbol(name), 0, scanner.place};
}

// -- places

void BobCompiler::load(Place& place) {
  if (place.kind != Place::kValue) emit.from(place.at);
  switch (place.kind) {
    case Place::kValue: break;
    case Place::kConstant: emit.op(BobOpcode(place.a)); break;
    case Place::kVariable: emit.op(kOpEref, emit.byteCount(size_t(place.a)), place.b); break;
    case Place::kGlobal: emit.literal(kOpGref, place.a); break;
    case Place::kProperty: emit.op(kOpGetp); break;
    case Place::kElement: emit.op(kOpVref); break;
  }
  place = {};
}

void BobCompiler::store(const Place& place) {
  emit.from(place.at);
  switch (place.kind) {
    case Place::kValue: bobRaise(interp, kBobImpossible);
    case Place::kConstant: bobRaise(interp, kBobStoreIntoConstant);
    case Place::kVariable: emit.op(kOpEset, emit.byteCount(size_t(place.a)), place.b); break;
    case Place::kGlobal: emit.literal(kOpGset, place.a); break;
    case Place::kProperty: emit.op(kOpSetp); break;
    case Place::kElement: emit.op(kOpVset); break;
  }
}

// For a store of what comes next: an object is on the stack, its key in val.
void BobCompiler::prepare(const Place& place) {
  if (place.kind == Place::kProperty || place.kind == Place::kElement) emit.op(kOpPush);
}

// For a load that a store will follow.
void BobCompiler::duplicate(const Place& place) {
  if (place.kind == Place::kProperty || place.kind == Place::kElement) emit.op(kOpDup2);
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
