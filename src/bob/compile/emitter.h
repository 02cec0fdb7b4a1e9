// Bytes and literals of the code that is being compiled.
//
// There is one buffer of each for a whole statement: a nested function is compiled above the code around it, closed off
// as a CompiledCode of its own, and its part of the buffers is then free again. Positions count from the start of the
// current function. A forward branch isn't known yet when it is emitted: the branches to one place form a chain through
// their own operands, each of which holds the position of the one before until the chain is patched.
#pragma once

#include <string_view>

#include "bob/base/opcodes.h"
#include "bob/base/value.h"
#include "bob/compile/codenotes.h"

class BobEmitter {
 public:
  // Where a function's part of the buffers begins.
  struct Function {
    int base = 0, literalBase = 0;
  };

  // Instructions come from `token`, the last one taken, unless `from` says otherwise.
  BobEmitter(BobInterp* interp, const BobSourcePlace& token) : token(token), interp(interp) {}
  ~BobEmitter();
  BobEmitter(const BobEmitter&) = delete;
  BobEmitter& operator=(const BobEmitter&) = delete;
  // Once, before anything else; raises "Insufficient memory".
  void makeBuffers();

  void reset();
  // Begins a function inside the current one, which it returns; ends it and goes on in `outer`.
  Function begin();
  BobValue end(const Function& outer);
  // The current function's code so far.
  BobValue makeCode();

  // Gets the places of the current function's instructions; null for none.
  BobCodeNotes* notes = nullptr;
  // The next instruction comes from there.
  void from(const BobSourcePlace& place) { next = place; }

  // -- instructions; error "Too much code" when the buffer is full

  void op(BobOpcode opcode);
  void op(BobOpcode opcode, int operand);
  void op(BobOpcode opcode, int first, int second);
  void literal(BobOpcode opcode, int number);
  void branchTo(BobOpcode opcode, int target);
  int branch(BobOpcode opcode, int chain);  // to a place unknown yet: the new chain; 0 begins one
  void word(int word);
  int here() const { return pointer - function.base; }
  void patch(int chain, int target);
  void patchHere(int chain) { patch(chain, here()); }
  uint8_t& byteAt(int position) { return bytes[function.base + position]; }
  // A count as a one-byte operand.
  int byteCount(size_t count);

  // -- literals of the current function: their numbers, which are element numbers of the code, from 1

  // Integers and symbols share a number; strings and floats are new objects each time.
  int addLiteral(BobValue value);
  int addSymbol(std::string_view name);
  int addString(std::string_view text);  // ends at a zero byte

 private:
  static constexpr int kCodeSize = 4096;
  static constexpr int kLiteralCount = 256;

  void put(BobOpcode opcode);
  void byte(int value);
  uint32_t* literalSlots();

  const BobSourcePlace& token;
  BobSourcePlace next;
  BobInterp* interp;
  uint8_t bytes[kCodeSize];
  BobValue literals = kBobNil;  // a Vector, protected
  Function function;
  int pointer = 0, literalPointer = 0;
};
