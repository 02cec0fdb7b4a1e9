// The machine's registers while it runs, and what every instruction does with them.
//
// pc, sp, val and the place of the current variables are copies, which the compiler keeps in registers of the
// processor; everything else stays in BobInterp. Two rules keep the copies honest:
//
//   - before anything that can raise, allocate or look at the registers, store() writes them back;
//   - after anything that can move objects, reload() reads val and the variables anew. (What it returns goes to
//     interp->val for that. sp and pc lie outside the heap and don't move.)
#pragma once

#include <bit>

#include "bob/run/frames.h"
#include "bob/run/quickops.h"

// Everything that an instruction does is inlined into the machine's loop: a call would force the copies into memory.
// Without optimisation every local of an inlined instruction would get its own place in the loop's frame, and nested
// runs would use up the native stack.
#ifdef __OPTIMIZE__
#define BOB_STEP [[gnu::always_inline]] inline
#else
#define BOB_STEP inline
#endif

// Names an instruction by a type: what instruction kQPush does is step(registers, BobOp<kQPush>{}).
template <BobQuickOp>
struct BobOp {};

// Called after so many branches and calls.
void bobRestMachine(BobInterp* interp);

struct BobRegisters {
  BOB_STEP explicit BobRegisters(BobInterp* interp)
      : interp(interp), base(interp->base), stackBase(interp->stackBase), pc(interp->pc), sp(interp->sp) {
    reload();
  }

  BOB_STEP void store() {
    interp->sp = sp;
    interp->val = val;
    interp->pc = pc;
  }
  BOB_STEP void reload() {
    val = interp->val;
    vars = words(interp->env);
  }

  // -- the next instruction, which is the current one then: its number
  BOB_STEP uint32_t take() {
    insn = pc++;
    return byteOf(0);
  }

  // -- the instruction word's operands (see quickops.h)
  BOB_STEP uint32_t a() const { return byteOf(1); }
  BOB_STEP uint32_t b() const {
    uint16_t word;
    std::memcpy(&word, reinterpret_cast<const uint8_t*>(insn) + (kIsLittle ? 2 : 0), sizeof word);
    return word;
  }
  BOB_STEP int signedB() const { return int16_t(b()); }
  BOB_STEP uint32_t lowerB() const { return byteOf(2); }
  BOB_STEP uint32_t upperB() const { return byteOf(3); }

  // The same as BobInterp's; `base` is a copy because the compiler can't know that no store changes it.
  BOB_STEP uint32_t* words(BobValue object) const { return reinterpret_cast<uint32_t*>(base + object); }
  BOB_STEP uint32_t offsetOf(const uint32_t* p) const { return uint32_t(reinterpret_cast<const uint8_t*>(p) - base); }

  BOB_STEP BobValue& variable(uint32_t near) { return vars[int(near) - kBobNearBias]; }
  BOB_STEP uint32_t* outerVariables() const { return words(vars[BobLayout::kEnvNext]); }
  BOB_STEP BobValue literal(uint32_t number) { return words(interp->code)[BobLayout::kCodeElements + number]; }
  BOB_STEP BobValue valueOf(BobValue property) { return words(property)[BobLayout::kValue]; }

  // Space for `count` words on the stack.
  BOB_STEP void need(int count) {
    if (count == 1 ? sp <= stackBase : sp < stackBase + count) [[unlikely]]
      fail(kBobStackOverflow);
  }
  BOB_STEP void push(BobValue value) {
    need(1);
    *--sp = value;
  }
  // The scope object as this and _next of a call.
  BOB_STEP void pushScope() {
    need(2);
    sp -= 2;
    sp[0] = sp[1] = interp->scope.object;
  }
  [[noreturn]] BOB_STEP void fail(BobError code) {
    store();
    bobRaise(interp, code);
  }

  BOB_STEP void countStep() {
    if (--interp->stepsToRest != 0) [[likely]]
      return;
    store();
    bobRestMachine(interp);
  }
  // A target counts words from itself.
  BOB_STEP void branch() {
    countStep();
    pc += int32_t(*pc);
  }
  BOB_STEP void branchIf(bool condition) {
    if (condition)
      branch();
    else
      ++pc;
  }

  BobInterp* const interp;
  uint8_t* const base;
  uint32_t* const stackBase;
  uint32_t *pc, *sp;
  uint32_t* vars;  // the innermost environment
  BobValue val;
  const uint32_t* insn = nullptr;

 private:
  // Byte 0 is the lowest. An operand that is loaded from memory costs less than one taken out of a word.
  static constexpr bool kIsLittle = std::endian::native == std::endian::little;
  BOB_STEP uint32_t byteOf(int number) const {
    return reinterpret_cast<const uint8_t*>(insn)[kIsLittle ? number : 3 - number];
  }
};
