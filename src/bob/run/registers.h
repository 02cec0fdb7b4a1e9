// The machine's registers while it runs, and what every instruction does with them.
//
// pc, sp, val and the top of the current variables are copies, which the compiler keeps in registers of the processor;
// everything else stays in BobInterp. Two rules keep the copies honest:
//
//   - before anything that can raise, allocate or look at the registers, store() writes them back;
//   - after anything that can move objects, reload() reads val and the variables anew. (What it returns goes to
//     interp->val for that. sp and pc lie outside the heap and don't move.)
#pragma once

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
      : interp(interp), stackBase(interp->stackBase), pc(interp->pc), sp(interp->sp), val(interp->val) {
    reload();
  }

  BOB_STEP void store() {
    interp->sp = sp;
    interp->val = val;
    interp->pc = pc;
  }
  BOB_STEP void reload() {
    val = interp->val;
    vars = bobTopOfVariables(interp, interp->env);
  }
  // After a frame has come or gone.
  BOB_STEP void enterFrame() {
    sp = interp->sp;
    vars = bobTopOfVariables(interp, interp->env);
  }

  // -- the instruction word's operands: two unsigned ones, or variables (see quickops.h)
  BOB_STEP uint32_t a() const { return insn >> 8 & 0xFF; }
  BOB_STEP uint32_t b() const { return insn >> 16; }
  BOB_STEP int variableA() const { return int8_t(insn >> 8); }
  BOB_STEP int variableB() const { return int16_t(insn >> 16); }
  BOB_STEP int lowerVariableB() const { return int8_t(insn >> 16); }
  BOB_STEP int upperVariableB() const { return int8_t(insn >> 24); }

  BOB_STEP BobValue& variable(int index) { return vars[-index]; }
  BOB_STEP BobValue literal(uint32_t number) { return interp->words(interp->code)[BobLayout::kCodeElements + number]; }
  BOB_STEP BobValue valueOf(BobValue property) { return interp->words(property)[BobLayout::kValue]; }

  // Space for `count` words on the stack.
  BOB_STEP void need(int count) {
    if (sp - stackBase < count) [[unlikely]]
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
  uint32_t* const stackBase;
  uint32_t *pc, *sp;
  uint32_t* vars;  // the word above the current variables: variable k lies k words below
  BobValue val;
  uint32_t insn = 0;
};
