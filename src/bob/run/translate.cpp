#include "bob/run/translate.h"

#include <algorithm>

#include "bob/base/opcodes.h"
#include "bob/heap/quickcode.h"
#include "bob/heap/raise.h"
#include "bob/run/codepaths.h"
#include "bob/run/quickops.h"

using namespace BobLayout;

namespace {

constexpr uint32_t Word(BobQuickOp op, uint32_t a = 0, uint32_t b = 0) { return op | a << 8 | b << 16; }

// Opcodes without operands that have a quick instruction of the same effect.
BobQuickOp PlainForm(uint8_t opcode) {
  switch (opcode) {
    case kOpT: return kQTrue;
    case kOpNil: return kQNil;
    case kOpPush: return kQPush;
    case kOpNot: return kQNot;
    case kOpAdd: return kQAdd;
    case kOpSub: return kQSub;
    case kOpMul: return kQMul;
    case kOpDiv: return kQDiv;
    case kOpRem: return kQRem;
    case kOpBand: return kQBand;
    case kOpBor: return kQBor;
    case kOpXor: return kQXor;
    case kOpBnot: return kQBnot;
    case kOpShl: return kQShl;
    case kOpShr: return kQShr;
    case kOpLt: return kQLt;
    case kOpLe: return kQLe;
    case kOpEq: return kQEq;
    case kOpNe: return kQNe;
    case kOpGe: return kQGe;
    case kOpGt: return kQGt;
    case kOpNeg: return kQNeg;
    case kOpInc: return kQInc;
    case kOpDec: return kQDec;
    case kOpDup2: return kQDup2;
    case kOpDrop: return kQDrop;
    case kOpDup: return kQDup;
    case kOpOver: return kQOver;
    case kOpNewObject: return kQNewObject;
    case kOpNewVector: return kQNewVector;
    case kOpClose: return kQClose;
    case kOpPushScope: return kQPushScope;
    default: return kQBad;
  }
}

template <size_t kCount>
int indexOf(const BobOpcode (&opcodes)[kCount], uint8_t opcode) {
  for (size_t i = 0; i < kCount; ++i)
    if (opcodes[i] == opcode) return int(i);
  return -1;
}

class Translator {
 public:
  Translator(BobInterp* interp, BobValue code, const BobCodePaths& paths, BobQuickCode& quick)
      : interp(interp), code(code), paths(paths), out(quick.words) {}

  void translate() {
    joins = paths.proven && !instructionsOverlap();
    places.assign(paths.length, kNowhere);
    bool open = false;  // the instruction before runs on into the next offset
    uint32_t next = BobCodePaths::kStart;
    for (uint32_t at = BobCodePaths::kStart; at < paths.length; ++at) {
      if (!paths.isReached(at) || at < joinedUpTo) continue;
      if (open && next != at) emitJump(next);
      places[at] = uint32_t(out.size());
      open = emit(at, next);
    }
    if (open) emitJump(next);
    // Where every path out of the code leads.
    const uint32_t end = uint32_t(out.size());
    out.push_back(Word(kQBad));
    for (const Fixup& f : fixups) {
      const uint32_t place = f.target < paths.length ? places[f.target] : kNowhere;
      out[f.at] = (place == kNowhere ? end : place) - f.at;
    }
  }

 private:
  struct Fixup {
    uint32_t at, target;
  };
  static constexpr uint32_t kNowhere = UINT32_MAX;

  // A few instructions from some place on that always run one after the other.
  struct Sequence {
    static constexpr int kMost = 6;
    uint32_t at[kMost + 1];  // the last one is where the sequence ends
    const uint8_t* p[kMost];
    int count = 0;
    uint8_t opcode(int i) const { return i < count ? p[i][0] : 0; }
    uint32_t operand(int i) const { return bobWordAt(p[i] + 1); }
  };

  Sequence sequenceFrom(uint32_t at) const {
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

  // A jump into the middle of an instruction makes its bytes count twice.
  bool instructionsOverlap() const {
    uint32_t end = 0;
    for (uint32_t at = BobCodePaths::kStart; at < paths.length; ++at) {
      if (!paths.isReached(at)) continue;
      if (at < end) return true;
      end = at + std::max(bobInstructionLength(paths.bytes, at, paths.length), 1u);
    }
    return false;
  }

  void put(BobQuickOp op, uint32_t a = 0, uint32_t b = 0) { out.push_back(Word(op, a, b)); }
  void putCache() { out.insert(out.end(), kBobCacheWords, 0); }
  void putTarget(uint32_t target) {
    fixups.push_back({uint32_t(out.size()), target});
    out.push_back(0);
  }

  // A jump to a test is replaced by the test, which saves a step in every loop.
  void emitJump(uint32_t target) {
    if (joins) {
      const Sequence s = sequenceFrom(target);
      const int taken = joinBinary(s, true);
      if (taken) target = s.at[taken];
    }
    put(kQJump);
    putTarget(target);
  }

  // -- joined sequences: each gives the number of instructions that it has taken, or 0.

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
  bool isSmallLiteral(const Sequence& s, int i) const {
    return s.opcode(i) == kOpLit && bobIsSmall(interp->words(code)[kCodeElements + s.operand(i)]);
  }
  BobValue literal(const Sequence& s, int i) const { return interp->words(code)[kCodeElements + s.operand(i)]; }

  // [EREF] PUSH, then EREF or LIT, a binary opcode, and a branch behind a comparison.
  int joinBinary(const Sequence& s, bool testsOnly) {
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
        put(bobArithmeticOp(i, operands, false), a, b);
      if (isLiteral) out.push_back(literal(s, right));
      return op + 1 + isStore(s, op + 1);
    }
    const int i = indexOf(kBobComparisonOpcodes, s.opcode(op));
    const uint8_t branch = s.opcode(op + 1);
    if (i < 0 || (branch != kOpBrt && branch != kOpBrf)) return 0;
    put(bobTestOp(i, operands, branch == kOpBrt), a, b);
    if (isLiteral) out.push_back(literal(s, right));
    putTarget(s.operand(op + 1));
    return op + 2;
  }

  // Where the variable of a Set goes depends on what else the form has.
  void putSet(int index, BobOperands operands, uint32_t a, uint32_t b, const Sequence& s, int store) {
    const BobQuickOp op = bobArithmeticOp(index, operands, true);
    if (operands == BobOperands::kVV)
      put(op, a, (b & 0xFF) | variable(s, store) << 8);
    else if (operands == BobOperands::kVL)
      put(op, a, wideVariable(s, store));
    else
      put(op, variable(s, store), b);
  }

  // EREF INC ESET DEC on one variable, or with the steps exchanged.
  int joinStep(const Sequence& s) {
    if (!isVariable(s, 0) || s.count < 4 || s.opcode(2) != kOpEset) return 0;
    const bool up = s.opcode(1) == kOpInc && s.opcode(3) == kOpDec;
    const bool down = s.opcode(1) == kOpDec && s.opcode(3) == kOpInc;
    if ((!up && !down) || s.p[2][1] != s.p[0][1] || s.p[2][2] != s.p[0][2]) return 0;
    put(kQStepAfter, variable(s, 0));
    out.push_back(up ? 1 : uint32_t(-1));
    return 4;
  }

  int joined(int count, BobQuickOp op, uint32_t a, uint32_t b, int cacheWords = 0) {
    put(op, a, b);
    out.insert(out.end(), size_t(cacheWords), 0);
    return count;
  }

  int joinVariable(const Sequence& s) {
    if (!isVariable(s, 0)) return 0;
    const uint32_t index = variable(s, 0);
    if (s.opcode(1) == kOpReturn && !paths.hasBlocks(s.at[1])) return joined(2, kQReturnVar, index, 0);
    if (s.opcode(1) != kOpPush) return 0;
    if (s.opcode(2) == kOpPushScope) return joined(3, kQVarCallee, index, 0);
    if (s.opcode(2) == kOpLit) {
      const uint32_t number = s.operand(2);
      if (s.opcode(3) == kOpGetp) return joined(4, kQGetVarField, index, number, kBobCacheWords);
      if (s.opcode(3) == kOpPush && s.opcode(4) == kOpOver) return joined(5, kQSelectorV, index, number);
      if (s.opcode(3) == kOpPush && !joinsAt(s.at[3])) return joined(4, kQPushVarLit, index, number);
    }
    if (isVariable(s, 2)) {
      if (s.opcode(3) == kOpVref) return joined(4, kQVrefVV, index, wideVariable(s, 2), kBobCacheWords);
      if (s.opcode(3) == kOpPush && !joinsAt(s.at[2])) return joined(4, kQPushVarVar, index, wideVariable(s, 2));
    }
    return joined(2, kQPushVar, index, 0);
  }

  int joinOther(const Sequence& s) {
    switch (s.opcode(0)) {
      case kOpPush:
        if (s.opcode(1) == kOpLit && s.opcode(2) == kOpGetp)
          return joined(3, kQGetField, 0, s.operand(1), kBobCacheWords);
        if (s.opcode(1) == kOpLit && s.opcode(2) == kOpPush && s.opcode(3) == kOpOver)
          return joined(4, kQSelectorA, 0, s.operand(1));
        if (isVariable(s, 1) && s.opcode(2) == kOpVref)
          return joined(3, kQVrefAV, 0, wideVariable(s, 1), kBobCacheWords);
        return 0;
      case kOpLit:
        if (s.opcode(1) == kOpPush && !joinsAt(s.at[1])) return joined(2, kQPushLit, 0, s.operand(0));
        return 0;
      case kOpGref:
        if (s.opcode(1) != kOpPush) return 0;
        if (s.opcode(2) == kOpPushScope) return joined(3, kQGrefCallee, 0, s.operand(0), kBobCacheWords);
        return joinsAt(s.at[1]) ? 0 : joined(2, kQGrefPush, 0, s.operand(0), kBobCacheWords);
      case kOpDup2:
        if (s.opcode(1) == kOpGetp) return joined(2, kQDup2Getp, 0, 0, kBobCacheWords);
        return 0;
      default: return 0;
    }
  }

  // Whether what begins there joins in a way that is better than taking its first instruction away.
  bool joinsAt(uint32_t at) {
    const size_t words = out.size(), targets = fixups.size();
    const Sequence s = sequenceFrom(at);
    const bool found = joinBinary(s, false) || (s.opcode(0) == kOpPush ? joinOther(s) : joinVariable(s) > 2);
    out.resize(words);
    fixups.resize(targets);
    return found;
  }

  // A binary opcode whose left operand is on the stack, and the store of its result.
  int joinStore(const Sequence& s) {
    const int i = indexOf(kBobArithmeticOpcodes, s.opcode(0));
    if (i < 0 || !isStore(s, 1)) return 0;
    put(bobArithmeticOp(i, BobOperands::kNone, true), variable(s, 1));
    return 2;
  }

  int join(const Sequence& s) {
    if (const int taken = joinStore(s)) return taken;
    if (const int taken = joinStep(s)) return taken;
    if (const int taken = joinBinary(s, false)) return taken;
    if (const int taken = joinVariable(s)) return taken;
    return joinOther(s);
  }

  // -- single instructions

  void emitVariable(uint32_t at, const uint8_t* p) {
    const bool load = *p == kOpEref;
    int index;
    if (paths.findOwn(at, &index) && index >= INT16_MIN)
      put(load ? kQOwn : kQSetOwn, 0, uint32_t(index) & 0xFFFF);
    else
      put(load ? kQVar : kQSet, p[1], p[2]);
  }

  void emitSwitch(const uint8_t* p) {
    const uint32_t count = bobWordAt(p + 1);
    put(kQSwitch, 0, count);
    for (uint32_t i = 0; i < count; ++i) {
      out.push_back(bobWordAt(p + 3 + 4 * i));
      putTarget(bobWordAt(p + 5 + 4 * i));
    }
    putTarget(bobWordAt(p + 3 + 4 * count));
  }

  // Emits what begins at `at`; true if it runs on into `next`.
  bool emit(uint32_t at, uint32_t& next) {
    if (paths.isBad(at)) {
      put(kQBad);
      return false;
    }
    if (joins) {
      const Sequence s = sequenceFrom(at);
      if (const int taken = join(s)) {
        next = joinedUpTo = s.at[taken];
        return s.opcode(taken - 1) != kOpReturn;
      }
    }
    return emitSingle(at, next);
  }

  bool emitSingle(uint32_t at, uint32_t& next) {
    const uint8_t* p = paths.bytes + at;
    next = at + bobInstructionLength(paths.bytes, at, paths.length);
    if (!paths.proven && bobStackPops(p) > 0) put(kQCheckPops, 0, bobStackPops(p));
    switch (*p) {
      case kOpBrt:
      case kOpBrf:
        put(*p == kOpBrt ? kQBrt : kQBrf);
        putTarget(bobWordAt(p + 1));
        return true;
      case kOpBr: emitJump(bobWordAt(p + 1)); return false;
      case kOpLit: put(kQLit, 0, bobWordAt(p + 1)); return true;
      case kOpGref:
      case kOpGset:
        put(*p == kOpGref ? kQGref : kQGset, 0, bobWordAt(p + 1));
        putCache();
        return true;
      case kOpGetp:
      case kOpSetp:
      case kOpVref:
      case kOpVset:
        put(*p == kOpGetp ? kQGetp : *p == kOpSetp ? kQSetp : *p == kOpVref ? kQVref : kQVset);
        putCache();
        return true;
      case kOpReturn:
      case kOpUnframe:
        if (paths.proven && paths.hasBlocks(at)) {
          put(kQUnframe);
          return true;
        }
        put(kQReturn);
        return !paths.proven;
      case kOpCall: put(kQCall, p[1]); return true;
      case kOpSend:
        put(kQSend, p[1]);
        putCache();
        return true;
      case kOpEref:
      case kOpEset: emitVariable(at, p); return true;
      case kOpFrame: put(kQFrame, p[1]); return true;
      case kOpCframe: put(kQCframe, p[1]); return true;
      case kOpSwitch: emitSwitch(p); return false;
      case kOpArgsGe: put(kQArgsGe, p[1]); return true;
      case kOpLine:
      case kOpThrow: return true;
      default: put(PlainForm(*p)); return true;
    }
  }

  BobInterp* interp;
  BobValue code;
  const BobCodePaths& paths;
  std::vector<uint32_t>& out;
  std::vector<uint32_t> places;  // by offset: where its quick code begins
  std::vector<Fixup> fixups;
  bool joins = false;
  uint32_t joinedUpTo = 0;  // offsets below are part of what has been emitted
};

}  // namespace

BobQuickCode& bobTranslate(BobInterp* interp, BobValue code) {
  const uint32_t* w = interp->words(code);
  if (bobCodeCount(w[kCodeCount]) == 0 || !interp->isA(w[kCodeElements], kBobString)) bobRaise(interp, kBobBadOpcode);
  const uint8_t* bytes = interp->bytes(w[kCodeElements]) + kStringBytes;  // three of them are always there
  auto quick = std::make_unique<BobQuickCode>();
  quick->hasRest = bytes[0] == kOpAframer;
  quick->required = bytes[1];
  quick->optional = bytes[2];
  quick->plainSlots = quick->hasRest || quick->optional ? -1 : quick->required;
  const uint32_t variables = uint32_t(quick->required + quick->optional + quick->hasRest);
  const BobCodePaths paths(interp, code, variables);
  Translator(interp, code, paths, *quick).translate();

  return bobKeepQuickCode(interp, code, std::move(quick));
}
