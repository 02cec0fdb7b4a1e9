// Superinstructions: sequences of bytecode that are common, as one quick instruction each.
//
// Only instructions that always run one after the other combine: a sequence ends where a branch arrives. And only code
// whose paths were proven to stay inside has them, since they check nothing.
//
// A variable that is pushed for an operation further on, as s is in `s + (a ^ b)`, need not be: that operation can load
// it, if what lies between is straight code that can't change it.
#pragma once

#include <map>

#include "bob/base/value.h"
#include "bob/run/codepaths.h"
#include "bob/run/quickwriter.h"

class BobCombiner {
 public:
  BobCombiner(BobInterp* interp, BobValue code, const BobCodePaths& paths, BobQuickWriter& out)
      : interp(interp), code(code), paths(paths), out(out) {}

  // A few instructions from some place on that always run one after the other.
  struct Sequence {
    static constexpr int kMost = 6;
    uint32_t at[kMost + 1];  // the last one is where the sequence ends
    const uint8_t* p[kMost];
    int count = 0;
    uint8_t opcode(int i) const { return i < count ? p[i][0] : 0; }
    uint32_t operand(int i) const { return bobWordAt(p[i] + 1); }
  };
  Sequence from(uint32_t at) const;

  // Writes the superinstruction that the sequence begins with, if any: the number of instructions that it takes, or 0.
  int combine(const Sequence& s);
  // The same for a comparison with the branch after it.
  int combineTest(const Sequence& s) { return binary(s, true); }
  // The same for x++ or x-- before a jump to a test of x.
  struct Loop {
    uint32_t after = 0;     // where the code goes on when the test fails; 0: there is no such loop
    uint32_t compares = 0;  // the comparison
    bool jumpIsFree = false;
  };
  // The parts of a test at the sequence's beginning that stands in the place of a jump to it, or 0. A program's steps
  // are its branches and calls; that such a jump is none is part of what a limit of steps means, whatever is combined.
  int freeTest(const Sequence& s) const;
  Loop combineLoop(const Sequence& s, bool afterJump);

 private:
  // A variable that is known to be there, near enough for an operand of one byte.
  bool isVariable(const Sequence& s, int i) const { return s.opcode(i) == kOpEref && isNear(s.at[i]); }
  bool isStore(const Sequence& s, int i) const { return s.opcode(i) == kOpEset && isNear(s.at[i]); }
  bool isNear(uint32_t at) const {
    int index;
    return paths.findOwn(at, &index) && index >= -kBobNearBias && index <= UINT8_MAX - kBobNearBias;
  }
  uint32_t variable(const Sequence& s, int i) const {
    int index = 0;
    paths.findOwn(s.at[i], &index);
    return uint32_t(index + kBobNearBias);
  }
  bool isSameVariable(const uint8_t* p, const uint8_t* q) const { return p[1] == q[1] && p[2] == q[2]; }
  bool isSmallLiteral(const Sequence& s, int i) const { return s.opcode(i) == kOpLit && bobIsSmall(literal(s, i)); }
  bool isSymbolLiteral(const Sequence& s, int i) const;
  BobValue literal(const Sequence& s, int i) const;

  // What a variable is pushed for, when that can wait until the instruction that takes it.
  struct Deferred {
    int pushes;
    uint32_t a, b = 0;    // the variable, and another one for an index
    BobValue symbol = 0;  // or the field
  };

  int binary(const Sequence& s, bool testsOnly);
  void putSet(int index, BobOperands operands, uint32_t a, uint32_t b, const Sequence& s, int store);
  bool isClose(const Sequence& s, int i) const { return s.opcode(i) == kOpEref && paths.isClose(s.at[i]); }
  int steps(const Sequence& s) const;
  bool isLoopVariable(const Sequence& s, int i, BobLoopFlag ifOuter, uint32_t* operand, uint32_t* flags) const;
  int stepAfter(const Sequence& s);
  int taken(int count, BobQuickOp op, uint32_t a, uint32_t b, bool hasCache = false);
  int takenField(int count, BobQuickOp op, uint32_t a, BobValue symbol);
  int defer(const Sequence& s);
  uint32_t findTaker(const Sequence& s, int pushes) const;
  int take(const Sequence& s, const Deferred& deferred);
  int variableFirst(const Sequence& s);
  int other(const Sequence& s);
  int lastPush(const Sequence& s);
  int store(const Sequence& s);
  bool combinesAt(uint32_t at);

  BobInterp* interp;
  BobValue code;
  const BobCodePaths& paths;
  BobQuickWriter& out;
  std::map<uint32_t, Deferred> deferred;  // by offset of the instruction that takes it
};
