#include "bob/compile/emitter.h"

#include <utility>

#include "bob/compile/scanner.h"
#include "bob/heap/interp.h"
#include "bob/heap/local.h"
#include "bob/heap/raise.h"
#include "bob/heap/roots.h"
#include "bob/model/symbols.h"
#include "bob/model/values.h"

using namespace BobLayout;

BobEmitter::~BobEmitter() { bobUnprotect(interp, &literals); }

void BobEmitter::makeBuffers() {
  interp->countNative(kCodeSize);
  bobProtect(interp, &literals);
  literals = bobMakeVector(interp, kLiteralCount);
}

void BobEmitter::reset() {
  function = {};
  pointer = literalPointer = 0;
  next = {};
  notes = nullptr;
}

BobEmitter::Function BobEmitter::begin() {
  const Function outer = function;
  function = {pointer, literalPointer};
  return outer;
}

BobValue BobEmitter::end(const Function& outer) {
  const BobValue code = makeCode();
  pointer = function.base;
  literalPointer = function.literalBase;
  function = outer;
  return code;
}

BobValue BobEmitter::makeCode() {
  const std::string_view text(reinterpret_cast<const char*>(bytes) + function.base, size_t(here()));
  const BobLocal string(interp, bobMakeString(interp, text));
  const int count = literalPointer - function.literalBase;
  const BobValue code = bobMakeCode(interp, uint32_t(count) + 1);
  uint32_t* elements = interp->words(code) + kCodeElements;
  elements[0] = string;
  for (int i = 0; i < count; ++i) elements[i + 1] = literalSlots()[function.literalBase + i];
  return code;
}

// -- instructions

void BobEmitter::byte(int value) {
  if (pointer == kCodeSize) bobRaise(interp, kBobTooMuchCode);
  bytes[pointer++] = uint8_t(value);
}

void BobEmitter::put(BobOpcode opcode) {
  const BobSourcePlace place = std::exchange(next, {});
  if (notes) notes->instructions.push_back({here(), place.line ? place : token});
  byte(opcode);
}

void BobEmitter::op(BobOpcode opcode) { put(opcode); }

void BobEmitter::op(BobOpcode opcode, int operand) {
  put(opcode);
  byte(operand);
}

void BobEmitter::op(BobOpcode opcode, int first, int second) {
  put(opcode);
  byte(first);
  byte(second);
}

void BobEmitter::literal(BobOpcode opcode, int number) {
  put(opcode);
  word(number);
}

void BobEmitter::branchTo(BobOpcode opcode, int target) {
  put(opcode);
  word(target);
}

int BobEmitter::branch(BobOpcode opcode, int chain) {
  put(opcode);
  const int operand = here();
  word(chain);
  return operand;
}

void BobEmitter::word(int word) {
  byte(word & 0xFF);
  byte(word >> 8);
}

// 0 ends a chain, since no operand lies there.
void BobEmitter::patch(int chain, int target) {
  while (chain != 0) {
    uint8_t* operand = &byteAt(chain);
    chain = int(bobWordAt(operand));
    operand[0] = uint8_t(target);
    operand[1] = uint8_t(target >> 8);
  }
}

int BobEmitter::byteCount(size_t count) {
  if (count > 255) bobRaise(interp, kBobTooMuchCode);
  return int(count);
}

// -- literals

uint32_t* BobEmitter::literalSlots() { return interp->words(literals) + kElements; }

int BobEmitter::addLiteral(BobValue value) {
  uint32_t* slots = literalSlots();
  for (int i = function.literalBase; i < literalPointer; ++i)
    if (slots[i] == value) return i - function.literalBase + 1;
  if (literalPointer == kLiteralCount) bobSyntaxError(interp, "too many literals");
  slots[literalPointer++] = value;
  return literalPointer - function.literalBase;
}

int BobEmitter::addSymbol(std::string_view name) { return addLiteral(bobIntern(interp, name)); }

int BobEmitter::addString(std::string_view text) {
  return addLiteral(bobMakeString(interp, text.substr(0, text.find('\0'))));
}
