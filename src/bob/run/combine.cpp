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

bool BobCombiner::isSymbolLiteral(const Sequence& s, int i) const {
  return s.opcode(i) == kOpLit && interp->isA(literal(s, i), kBobSymbol);
}

int BobCombiner::combine(const Sequence& s) {
  if (const auto found = deferred.find(s.at[0]); found != deferred.end()) return take(s, found->second);
  if (const int count = store(s)) return count;
  if (const int count = stepAfter(s)) return count;
  if (const int count = binary(s, false)) return count;
  if (const int count = defer(s)) return count;
  if (const int count = variableFirst(s)) return count;
  if (const int count = other(s)) return count;
  return lastPush(s);
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

// [EREF] PUSH, then EREF or LIT, a binary opcode, and after a comparison often a branch.
int BobCombiner::binary(const Sequence& s, bool testsOnly) {
  const int first = isVariable(s, 0) ? 1 : 0;
  if (s.opcode(first) != kOpPush) return 0;
  const int right = first + 1, op = first + 2;
  const bool isLiteral = isSmallLiteral(s, right);
  if (!isLiteral && !isVariable(s, right)) return 0;
  const BobOperands operands =
      first ? (isLiteral ? BobOperands::kVL : BobOperands::kVV) : (isLiteral ? BobOperands::kAL : BobOperands::kAV);
  const uint32_t a = first ? variable(s, 0) : 0, b = isLiteral ? 0 : variable(s, right);
  if (const int i = indexOf(kBobArithmeticOpcodes, s.opcode(op)); i >= 0 && !testsOnly) {
    const bool sets = i < kBobSettingOpcodes && isStore(s, op + 1);
    if (sets)
      putSet(i, operands, a, b, s, op + 1);
    else
      out.put(bobArithmeticOp(i, operands, false), a, b);
    if (isLiteral) out.putWord(literal(s, right));
    return op + 1 + sets;
  }
  const int i = indexOf(kBobComparisonOpcodes, s.opcode(op));
  if (i < 0) return 0;
  const uint8_t branch = s.opcode(op + 1);
  if (branch != kOpBrt && branch != kOpBrf) {
    if (!first || testsOnly) return 0;
    out.put(bobLoadedComparisonOp(i, operands), a, b);
    if (isLiteral) out.putWord(literal(s, right));
    return op + 1;
  }
  out.put(bobTestOp(i, operands, branch == kOpBrt), a, b);
  if (isLiteral) out.putWord(literal(s, right));
  out.putTarget(s.operand(op + 1));
  return op + 2;
}

// Where the variable of a Set goes depends on what else the form has.
void BobCombiner::putSet(int index, BobOperands operands, uint32_t a, uint32_t b, const Sequence& s, int store) {
  const BobQuickOp op = bobArithmeticOp(index, operands, true);
  if (operands == BobOperands::kVV)
    out.put(op, a, b | variable(s, store) << 8);
  else if (bobLeftIsVariable(operands))
    out.put(op, a, variable(s, store));
  else
    out.put(op, variable(s, store), b);
}

// EREF INC ESET DEC on one variable: 1, or -1 with the steps exchanged. 0 for anything else.
int BobCombiner::steps(const Sequence& s) const {
  if (s.opcode(0) != kOpEref || s.opcode(2) != kOpEset || !isSameVariable(s.p[2], s.p[0])) return 0;
  if (s.opcode(1) == kOpInc && s.opcode(3) == kOpDec) return 1;
  return s.opcode(1) == kOpDec && s.opcode(3) == kOpInc ? -1 : 0;
}

int BobCombiner::stepAfter(const Sequence& s) {
  const int change = steps(s);
  if (change == 0) return 0;
  int outer;
  if (isVariable(s, 0))
    out.put(kQStepAfter, variable(s, 0));
  else if (paths.findOuter(s.at[0], &outer))
    out.put(kQStepOuter, 0, uint16_t(outer));
  else
    return 0;
  out.putWord(uint32_t(change));
  return 4;
}

bool BobCombiner::isLoopVariable(const Sequence& s, int i, BobLoopFlag ifOuter, uint32_t* operand,
                                 uint32_t* flags) const {
  int outer;
  if (isVariable(s, i)) {
    *operand = variable(s, i);
    return true;
  }
  if (s.opcode(i) != kOpEref || !paths.findOuter(s.at[i], &outer) || outer > UINT8_MAX - kBobNearBias) return false;
  *operand = uint32_t(outer + kBobNearBias);
  *flags |= ifOuter;
  return true;
}

int BobCombiner::freeTest(const Sequence& s) const {
  const int first = isClose(s, 0) ? 1 : 0;
  const bool isTest = s.opcode(first) == kOpPush && (isSmallLiteral(s, first + 1) || isClose(s, first + 1)) &&
                      indexOf(kBobComparisonOpcodes, s.opcode(first + 2)) >= 0 &&
                      (s.opcode(first + 3) == kOpBrt || s.opcode(first + 3) == kOpBrf);
  return isTest ? first + 4 : 0;
}

BobCombiner::Loop BobCombiner::combineLoop(const Sequence& s, bool afterJump) {
  const int change = steps(s);
  uint32_t counter, limit = 0, flags = afterJump ? kLoopAfterJump : 0;
  if (change == 0 || !isLoopVariable(s, 0, kLoopCounterIsOuter, &counter, &flags)) return {};
  const uint32_t jump = s.at[4];
  if (!paths.isReached(jump) || paths.isBad(jump) || paths.bytes[jump] != kOpBr) return {};
  const Sequence test = from(bobWordAt(paths.bytes + jump + 1));
  if (test.opcode(0) != kOpEref || !isSameVariable(test.p[0], s.p[0]) || test.opcode(1) != kOpPush) return {};
  const int i = indexOf(kBobLoopOpcodes, test.opcode(3));
  const bool isLiteral = isSmallLiteral(test, 2);
  if (i < 0 || test.opcode(4) != kOpBrt) return {};
  if (!isLiteral && !isLoopVariable(test, 2, kLoopLimitIsOuter, &limit, &flags)) return {};
  const bool isFree = freeTest(test) != 0;
  if (!isFree) flags |= kLoopJumps;
  out.put(bobLoopOp(i, isLiteral), counter, limit | flags << 8);
  out.putWord(uint32_t(2 * change));  // what a small integer's word takes
  if (isLiteral) out.putWord(literal(test, 2));
  out.putTarget(test.operand(4));
  return {test.at[5], test.at[3], isFree};
}

int BobCombiner::taken(int count, BobQuickOp op, uint32_t a, uint32_t b, bool hasCache) {
  out.put(op, a, b);
  if (hasCache) out.putCache();
  return count;
}

int BobCombiner::takenField(int count, BobQuickOp op, uint32_t a, BobValue symbol) {
  out.put(op, a);
  out.putWord(symbol);
  out.putCache();
  return count;
}

// EREF PUSH, alone or as a vector and an index, or EREF PUSH LIT PUSH as an object and a field: nothing is written when
// the instruction that takes what they push can do it by itself.
int BobCombiner::defer(const Sequence& s) {
  if (!isVariable(s, 0) || s.opcode(1) != kOpPush) return 0;
  if (isVariable(s, 2) && s.opcode(3) == kOpVref) return 0;
  const bool isField = isSymbolLiteral(s, 2);
  if (s.opcode(3) == kOpPush && (isField || isVariable(s, 2))) {
    const uint32_t taker = findTaker(s, 2);
    if (taker && paths.bytes[taker] == (isField ? kOpSetp : kOpVset)) {
      deferred[taker] = {2, variable(s, 0), isField ? 0 : variable(s, 2), isField ? literal(s, 2) : 0};
      return 4;
    }
  }
  const uint32_t taker = findTaker(s, 1);
  if (!taker) return 0;
  deferred[taker] = {1, variable(s, 0)};
  return 2;
}

// The instruction that takes the words pushed at the beginning, if a variable can be loaded there just as well, or 0.
uint32_t BobCombiner::findTaker(const Sequence& s, int pushes) const {
  int pushed = pushes;
  for (uint32_t at = s.at[2 * pushes]; paths.isReached(at) && !paths.isBad(at) && !paths.isTarget(at);) {
    const uint8_t* p = paths.bytes + at;
    const uint32_t next = at + bobInstructionLength(paths.bytes, at, paths.length);
    switch (*p) {
      case kOpT:
      case kOpNil:
      case kOpNot:
      case kOpNeg:
      case kOpBnot:
      case kOpInc:
      case kOpDec:
      case kOpLit:
      case kOpEref: break;
      case kOpEset:
        for (int i = 0; i < pushes; ++i)
          if (isSameVariable(p, s.p[2 * i])) return 0;
        break;
      case kOpPush: ++pushed; break;
      case kOpSetp:
      case kOpVset: return pushed == 2 && (pushes == 2 || *p == kOpVset) ? at : 0;
      case kOpGref:
        if (paths.closes) return 0;  // a host's getter might call what changes the variable
        break;
      case kOpGetp:
      case kOpVref:
        if (paths.closes) return 0;
        if (pushed == pushes) return pushes == 1 && *p == kOpVref ? at : 0;
        --pushed;
        break;
      default: {
        const bool compares = indexOf(kBobComparisonOpcodes, *p) >= 0;
        if (!compares && indexOf(kBobArithmeticOpcodes, *p) < 0) return 0;
        if (pushed == pushes) {
          const bool branches = next < paths.length && (paths.bytes[next] == kOpBrt || paths.bytes[next] == kOpBrf);
          return pushes == 1 && (!compares || (branches && !paths.isTarget(next))) ? at : 0;
        }
        --pushed;
      }
    }
    at = next;
  }
  return 0;
}

// The instruction that takes what was deferred, with what can follow it in one.
int BobCombiner::take(const Sequence& s, const Deferred& d) {
  switch (s.opcode(0)) {
    case kOpSetp: return takenField(1, kQSetVarField, d.a, d.symbol);
    case kOpVset: return taken(1, d.pushes == 2 ? kQVsetVV : kQVsetVS, d.a, d.b, true);
    case kOpVref: return taken(1, kQVrefVA, d.a, 0, true);
  }
  if (const int i = indexOf(kBobArithmeticOpcodes, s.opcode(0)); i >= 0) {
    const bool sets = i < kBobSettingOpcodes && isStore(s, 1);
    out.put(bobArithmeticOp(i, BobOperands::kVA, sets), d.a, sets ? variable(s, 1) : 0);
    return 1 + sets;
  }
  const int i = indexOf(kBobComparisonOpcodes, s.opcode(0));
  out.put(bobTestOp(i, BobOperands::kVA, s.opcode(1) == kOpBrt), d.a);
  out.putTarget(s.operand(1));
  return 2;
}

int BobCombiner::variableFirst(const Sequence& s) {
  if (!isVariable(s, 0)) return 0;
  const uint32_t index = variable(s, 0);
  if (paths.isFlat() ? paths.endsFunction(s.at[1]) : s.opcode(1) == kOpReturn && !paths.hasBlocks(s.at[1]))
    return taken(2, kQReturnVar, index, paths.variables);
  if (s.opcode(1) != kOpPush) return 0;
  if (s.opcode(2) == kOpPushScope) return taken(3, kQVarCallee, index, 0);
  if (s.opcode(2) == kOpLit) {
    const uint32_t number = s.operand(2);
    if (s.opcode(3) == kOpGetp && isSymbolLiteral(s, 2)) return takenField(4, kQGetVarField, index, literal(s, 2));
    if (s.opcode(3) == kOpPush && s.opcode(4) == kOpOver) return taken(5, kQSelectorV, index, number);
    if (s.opcode(3) == kOpPush && !combinesAt(s.at[3])) return taken(4, kQPushVarLit, index, number);
  }
  if (isVariable(s, 2)) {
    if (s.opcode(3) == kOpVref) return taken(4, kQVrefVV, index, variable(s, 2), true);
    if (s.opcode(3) == kOpPush && !combinesAt(s.at[2])) return taken(4, kQPushVarVar, index, variable(s, 2));
  }
  return taken(2, kQPushVar, index, 0);
}

int BobCombiner::other(const Sequence& s) {
  switch (s.opcode(0)) {
    case kOpPush:
      if (isSymbolLiteral(s, 1) && s.opcode(2) == kOpGetp) return takenField(3, kQGetField, 0, literal(s, 1));
      if (isVariable(s, 1) && s.opcode(2) == kOpPush && isSymbolLiteral(s, 3) && s.opcode(4) == kOpGetp)
        return takenField(5, kQPushGetVarField, variable(s, 1), literal(s, 3));
      if (s.opcode(1) == kOpLit && s.opcode(2) == kOpPush && s.opcode(3) == kOpOver)
        return taken(4, kQSelectorA, 0, s.operand(1));
      if (isVariable(s, 1) && s.opcode(2) == kOpVref) return taken(3, kQVrefAV, 0, variable(s, 1), true);
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

// The push of a callee, or of the last argument.
int BobCombiner::lastPush(const Sequence& s) {
  if (s.opcode(0) != kOpPush) return 0;
  switch (s.opcode(1)) {
    case kOpPushScope: out.put(kQPushCallee); return 2;
    case kOpCall:
      out.put(kQPushCall, s.p[1][1]);
      out.putCache(kBobCallCacheWords);
      return 2;
    case kOpSend:
      out.put(kQPushSend, s.p[1][1]);
      out.putCache(kBobCacheWords + kBobCallCacheWords);
      return 2;
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
  if (i < 0 || i >= kBobSettingOpcodes || !isStore(s, 1)) return 0;
  out.put(bobArithmeticOp(i, BobOperands::kNone, true), variable(s, 1));
  return 2;
}
