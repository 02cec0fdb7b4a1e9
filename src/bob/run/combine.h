// Superinstructions: sequences of bytecode that are common, as one quick instruction each.
//
// Only instructions that always run one after the other combine: a sequence ends where a branch arrives. And only code
// whose paths were proven to stay inside has them, since they check nothing.
#pragma once

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

 private:
  // A variable that is known to be there, near enough for an operand of one byte.
  bool isVariable(const Sequence& s, int i) const { return s.opcode(i) == kOpEref && isNear(s.at[i]); }
  bool isStore(const Sequence& s, int i) const { return s.opcode(i) == kOpEset && isNear(s.at[i]); }
  bool isNear(uint32_t at) const {
    int index;
    return paths.findOwn(at, &index) && index >= -128 && index < 128;
  }
  uint32_t variable(const Sequence& s, int i) const {
    int index = 0;
    paths.findOwn(s.at[i], &index);
    return uint32_t(index) & 0xFF;
  }
  // The same for an operand of 16 bits.
  uint32_t wideVariable(const Sequence& s, int i) const { return uint32_t(int(int8_t(variable(s, i)))) & 0xFFFF; }
  bool isSmallLiteral(const Sequence& s, int i) const { return s.opcode(i) == kOpLit && bobIsSmall(literal(s, i)); }
  BobValue literal(const Sequence& s, int i) const;

  int binary(const Sequence& s, bool testsOnly);
  void putSet(int index, BobOperands operands, uint32_t a, uint32_t b, const Sequence& s, int store);
  int stepAfter(const Sequence& s);
  int taken(int count, BobQuickOp op, uint32_t a, uint32_t b, bool hasCache = false);
  int variableFirst(const Sequence& s);
  int other(const Sequence& s);
  int store(const Sequence& s);
  bool combinesAt(uint32_t at);

  BobInterp* interp;
  BobValue code;
  const BobCodePaths& paths;
  BobQuickWriter& out;
};
