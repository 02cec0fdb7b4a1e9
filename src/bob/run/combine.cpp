#include "bob/run/combine.h"

#include "bob/heap/interp.h"

using namespace BobLayout;

namespace {

template <size_t kCount>
int indexOf(const BobOpcode (&opcodes)[kCount], uint8_t opcode) {
  for (size_t i = 0; i < kCount; ++i)
    if (opcodes[i] == opcode) return int(i);
  return -1;
}

}  // namespace

BobValue BobCombiner::literal(const Sequence& s, int i) const {
  return interp->words(code)[kCodeElements + s.operand(i)];
}

int BobCombiner::combine(const Sequence& s) {
  if (const int count = store(s)) return count;
  if (const int count = stepAfter(s)) return count;
  if (const int count = binary(s, false)) return count;
  if (const int count = variableFirst(s)) return count;
  return other(s);
}

BobCombiner::Sequence BobCombiner::from(uint32_t at) const {
  Sequence s;
  while (s.count < Sequence::kMost && paths.isReached(at) && !paths.isBad(at)) {
    if (s.count > 0 && paths.isTarget(at)) break;
    s.at[s.count] = at;
    s.p[s.count++] = paths.bytes + at;
    at += bobInstructionLength(paths.bytes, at, paths.length);
    s.at[s.count] = at;
  }
  return s;
}

// [EREF] PUSH, then EREF or LIT, a binary opcode, and after a comparison a branch.
int BobCombiner::binary(const Sequence& s, bool testsOnly) {
  const int first = isVariable(s, 0) ? 1 : 0;
  if (s.opcode(first) != kOpPush) return 0;
  const int right = first + 1, op = first + 2;
  const bool isLiteral = isSmallLiteral(s, right);
  if (!isLiteral && !isVariable(s, right)) return 0;
  const BobOperands operands =
      first ? (isLiteral ? BobOperands::kVL : BobOperands::kVV) : (isLiteral ? BobOperands::kAL : BobOperands::kAV);
  const uint32_t a = first ? variable(s, 0) : 0, b = isLiteral ? 0 : wideVariable(s, right);
  if (const int i = indexOf(kBobArithmeticOpcodes, s.opcode(op)); i >= 0 && !testsOnly) {
    if (isStore(s, op + 1))
      putSet(i, operands, a, b, s, op + 1);
    else
      out.put(bobArithmeticOp(i, operands, false), a, b);
    if (isLiteral) out.putWord(literal(s, right));
    return op + 1 + isStore(s, op + 1);
  }
  const int i = indexOf(kBobComparisonOpcodes, s.opcode(op));
  const uint8_t branch = s.opcode(op + 1);
  if (i < 0 || (branch != kOpBrt && branch != kOpBrf)) return 0;
  out.put(bobTestOp(i, operands, branch == kOpBrt), a, b);
  if (isLiteral) out.putWord(literal(s, right));
  out.putTarget(s.operand(op + 1));
  return op + 2;
}

// Where the variable of a Set goes depends on what else the form has.
void BobCombiner::putSet(int index, BobOperands operands, uint32_t a, uint32_t b, const Sequence& s, int store) {
  const BobQuickOp op = bobArithmeticOp(index, operands, true);
  if (operands == BobOperands::kVV)
    out.put(op, a, (b & 0xFF) | variable(s, store) << 8);
  else if (operands == BobOperands::kVL)
    out.put(op, a, wideVariable(s, store));
  else
    out.put(op, variable(s, store), b);
}

// EREF INC ESET DEC on one variable, or with the steps exchanged.
int BobCombiner::stepAfter(const Sequence& s) {
  if (!isVariable(s, 0) || s.count < 4 || s.opcode(2) != kOpEset) return 0;
  const bool up = s.opcode(1) == kOpInc && s.opcode(3) == kOpDec;
  const bool down = s.opcode(1) == kOpDec && s.opcode(3) == kOpInc;
  if ((!up && !down) || s.p[2][1] != s.p[0][1] || s.p[2][2] != s.p[0][2]) return 0;
  out.put(kQStepAfter, variable(s, 0));
  out.putWord(up ? 1 : uint32_t(-1));
  return 4;
}

int BobCombiner::taken(int count, BobQuickOp op, uint32_t a, uint32_t b, bool hasCache) {
  out.put(op, a, b);
  if (hasCache) out.putCache();
  return count;
}

int BobCombiner::variableFirst(const Sequence& s) {
  if (!isVariable(s, 0)) return 0;
  const uint32_t index = variable(s, 0);
  if (s.opcode(1) == kOpReturn && !paths.hasBlocks(s.at[1])) return taken(2, kQReturnVar, index, 0);
  if (s.opcode(1) != kOpPush) return 0;
  if (s.opcode(2) == kOpPushScope) return taken(3, kQVarCallee, index, 0);
  if (s.opcode(2) == kOpLit) {
    const uint32_t number = s.operand(2);
    if (s.opcode(3) == kOpGetp) return taken(4, kQGetVarField, index, number, true);
    if (s.opcode(3) == kOpPush && s.opcode(4) == kOpOver) return taken(5, kQSelectorV, index, number);
    if (s.opcode(3) == kOpPush && !combinesAt(s.at[3])) return taken(4, kQPushVarLit, index, number);
  }
  if (isVariable(s, 2)) {
    if (s.opcode(3) == kOpVref) return taken(4, kQVrefVV, index, wideVariable(s, 2), true);
    if (s.opcode(3) == kOpPush && !combinesAt(s.at[2])) return taken(4, kQPushVarVar, index, wideVariable(s, 2));
  }
  return taken(2, kQPushVar, index, 0);
}

int BobCombiner::other(const Sequence& s) {
  switch (s.opcode(0)) {
    case kOpPush:
      if (s.opcode(1) == kOpLit && s.opcode(2) == kOpGetp) return taken(3, kQGetField, 0, s.operand(1), true);
      if (s.opcode(1) == kOpLit && s.opcode(2) == kOpPush && s.opcode(3) == kOpOver)
        return taken(4, kQSelectorA, 0, s.operand(1));
      if (isVariable(s, 1) && s.opcode(2) == kOpVref) return taken(3, kQVrefAV, 0, wideVariable(s, 1), true);
      return 0;
    case kOpLit:
      if (s.opcode(1) == kOpPush && !combinesAt(s.at[1])) return taken(2, kQPushLit, 0, s.operand(0));
      return 0;
    case kOpGref:
      if (s.opcode(1) != kOpPush) return 0;
      if (s.opcode(2) == kOpPushScope) return taken(3, kQGrefCallee, 0, s.operand(0), true);
      return combinesAt(s.at[1]) ? 0 : taken(2, kQGrefPush, 0, s.operand(0), true);
    case kOpDup2:
      if (s.opcode(1) == kOpGetp) return taken(2, kQDup2Getp, 0, 0, true);
      return 0;
    default: return 0;
  }
}

// Whether what begins there makes a superinstruction that is better than one that takes its first instruction.
bool BobCombiner::combinesAt(uint32_t at) {
  const BobQuickWriter::Mark mark = out.mark();
  const Sequence s = from(at);
  const bool found = binary(s, false) || (s.opcode(0) == kOpPush ? other(s) : variableFirst(s) > 2);
  out.takeBack(mark);
  return found;
}

// A binary opcode whose left operand is on the stack, and the store of its result.
int BobCombiner::store(const Sequence& s) {
  const int i = indexOf(kBobArithmeticOpcodes, s.opcode(0));
  if (i < 0 || !isStore(s, 1)) return 0;
  out.put(bobArithmeticOp(i, BobOperands::kNone, true), variable(s, 1));
  return 2;
}
