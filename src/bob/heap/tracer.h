// Follows a program instruction by instruction: debuggers, profilers and coverage stand on this.
//
// Nobody pays for a tracer that isn't there: code asks only if it was made ready to run while one was attached
// (bobTrace in run/trace.h). What surprises: a superinstruction is then run as its parts, so programs are slower, but
// what they do is the same.
#pragma once

#include <cstdint>

#include "bob/base/value.h"
#include "bob/heap/errorcodes.h"

class BobTracer {
 public:
  virtual ~BobTracer() = default;

  // Code is made ready to run. The number comes back with each of its instructions; no two pieces need differ. Must not
  // allocate in the heap.
  virtual uint32_t codeIsReady(BobInterp* interp, BobValue code) = 0;
  // The instruction at `offset` of the bytecode is next. May run scripts, and may raise.
  virtual void atInstruction(BobInterp* interp, uint32_t code, uint32_t offset) = 0;
  // Before the error handler hears of an error, while everything stands as it was. May run scripts; must not raise.
  virtual void atError(BobInterp*, int, const BobErrorArgument&) {}
  // During a collection: copies (bobCopyValue) the values that it holds.
  virtual void copyValues(BobInterp*) {}
};
