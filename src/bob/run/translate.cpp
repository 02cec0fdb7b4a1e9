#include "bob/run/translate.h"

#include <algorithm>

#include "bob/base/opcodes.h"
#include "bob/heap/quickcode.h"
#include "bob/heap/raise.h"
#include "bob/heap/tracer.h"
#include "bob/run/codepaths.h"
#include "bob/run/combine.h"
#include "bob/run/quickops.h"
#include "bob/run/quickwriter.h"

using namespace BobLayout;

namespace {

// Opcodes without operands that have a quick instruction of the same effect.
BobQuickOp plainForm(uint8_t opcode) {
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

class Translator {
 public:
  // `marks` may be null.
  Translator(BobInterp* interp, BobValue code, BobCodePaths& paths, BobQuickCode& quick,
             std::vector<BobQuickMark>* marks)
      : paths(paths),
        out(quick.words),
        combiner(interp, code, paths, out),
        marks(marks),
        isTraced(quick.isTraced),
        traceNumber(quick.traceNumber) {}

  void translate() {
    combines = paths.proven && !isTraced && !instructionsOverlap();
    if (combines) paths.flattenBlocks();
    places.assign(paths.length, kNowhere);
    bool open = false;  // the instruction before runs on into the next offset
    uint32_t next = kBobFirstOffset;
    for (uint32_t at = kBobFirstOffset; at < paths.length; ++at) {
      if (!paths.isReached(at) || at < combinedUpTo) continue;
      if (open && next != at) emitJump(next);
      places[at] = out.here();
      mark(out.here(), at);
      if (isTraced) emitTrace(at);
      open = emit(at, next);
    }
    if (open) emitJump(next);
    const uint32_t end = out.here();
    out.put(kQBad);  // where every path out of the code leads
    out.resolve([&](uint32_t target) {
      const uint32_t place = target < paths.length ? places[target] : kNowhere;
      return place == kNowhere ? end : place;
    });
  }

 private:
  static constexpr uint32_t kNowhere = UINT32_MAX;

  // A jump into the middle of an instruction makes its bytes count twice.
  bool instructionsOverlap() const {
    uint32_t end = 0;
    for (uint32_t at = kBobFirstOffset; at < paths.length; ++at) {
      if (!paths.isReached(at)) continue;
      if (at < end) return true;
      end = at + std::max(bobInstructionLength(paths.bytes, at, paths.length), 1u);
    }
    return false;
  }

  void mark(uint32_t at, uint32_t offset) {
    if (marks) marks->push_back({at, offset});
  }

  // The last instruction of a sequence that can fail, but for want of stack: the others move values only.
  static uint32_t failingPart(const BobCombiner::Sequence& s, int count) {
    for (int i = count - 1; i > 0; --i) switch (s.opcode(i)) {
        case kOpBrt:
        case kOpBrf:
        case kOpLit:
        case kOpEref:
        case kOpEset:
        case kOpPush:
        case kOpPushScope:
        case kOpOver:
        case kOpDup2:
        case kOpReturn: break;
        default: return s.at[i];
      }
    return s.at[0];
  }

  // A jump to a test is replaced by the test, and one to a loop's step by the step with its test: each saves an
  // instruction on every turn.
  void emitJump(uint32_t target) {
    if (combines) {
      const BobCombiner::Sequence s = combiner.from(target);
      const uint32_t at = out.here();
      if (emitLoop(s, true)) return;
      if (const int parts = combiner.freeTest(s)) {
        if (combiner.combineTest(s))
          mark(at, failingPart(s, parts));
        else
          emitParts(s, parts);
        target = s.at[parts];
      }
    }
    putJump(kQJump, target);
  }

  void emitParts(const BobCombiner::Sequence& s, int parts) {
    uint32_t next;
    for (int i = 0; i < parts; ++i) {
      mark(out.here(), s.at[i]);
      emitSingle(s.at[i], next);
    }
  }

  void putJump(BobQuickOp op, uint32_t target) {
    out.put(op);
    out.putTarget(target);
  }

  // The loop, if there is one, and the jump past it. Whether an error is in the test or in the step follows from how
  // many words have been read.
  bool emitLoop(const BobCombiner::Sequence& s, bool afterJump) {
    const uint32_t at = out.here();
    const BobCombiner::Loop loop = combiner.combineLoop(s, afterJump);
    if (!loop.after) return false;
    mark(at, s.at[3]);
    mark(at + 1, loop.compares);
    putJump(loop.jumpIsFree ? kQJump : kQGoto, loop.after);
    return true;
  }

  void emitTrace(uint32_t at) {
    out.put(kQTrace);
    out.putWord(traceNumber);
    out.putWord(at);
  }

  // -- single instructions

  void emitVariable(uint32_t at, const uint8_t* p) {
    const bool load = *p == kOpEref;
    int index;
    if (paths.findOwn(at, &index))
      out.put(load ? kQOwn : kQSetOwn, 0, uint16_t(index));
    else if (paths.findOuter(at, &index))
      out.put(load ? kQOuter : kQSetOuter, 0, uint16_t(index));
    else if (paths.depthOf(at) == 1)
      out.put(load ? kQVarNext : kQSetNext, 0, p[2]);
    else
      out.put(load ? kQVar : kQSet, paths.depthOf(at), p[2]);
  }

  void emitSwitch(const uint8_t* p) {
    const uint32_t count = bobWordAt(p + 1);
    out.put(kQSwitch, 0, count);
    for (uint32_t i = 0; i < count; ++i) {
      out.putWord(bobWordAt(p + 3 + 4 * i));
      out.putTarget(bobWordAt(p + 5 + 4 * i));
    }
    out.putTarget(bobWordAt(p + 3 + 4 * count));
  }

  // Emits what begins at `at`; true if it runs on into `next`.
  bool emit(uint32_t at, uint32_t& next) {
    if (paths.isBad(at)) {
      out.put(kQBad);
      return false;
    }
    if (combines) {
      const BobCombiner::Sequence s = combiner.from(at);
      if (emitLoop(s, false)) {
        combinedUpTo = paths.isTarget(s.at[4]) ? s.at[4] : s.at[5];
        return false;
      }
      if (const int taken = combiner.combine(s)) {
        if (marks) marks->back().offset = failingPart(s, taken);
        next = combinedUpTo = s.at[taken];
        return s.opcode(taken - 1) != kOpReturn;
      }
    }
    return emitSingle(at, next);
  }

  bool emitSingle(uint32_t at, uint32_t& next) {
    const uint8_t* p = paths.bytes + at;
    next = at + bobInstructionLength(paths.bytes, at, paths.length);
    if (!paths.proven && bobStackPops(p) > 0) out.put(kQCheckPops, 0, bobStackPops(p));
    switch (*p) {
      case kOpBrt:
      case kOpBrf:
        out.put(*p == kOpBrt ? kQBrt : kQBrf);
        out.putTarget(bobWordAt(p + 1));
        return true;
      case kOpBr: emitJump(bobWordAt(p + 1)); return false;
      case kOpLit: out.put(kQLit, 0, bobWordAt(p + 1)); return true;
      case kOpGref:
      case kOpGset:
        out.put(*p == kOpGref ? kQGref : kQGset, 0, bobWordAt(p + 1));
        out.putCache();
        return true;
      case kOpGetp:
      case kOpSetp:
      case kOpVref:
      case kOpVset:
        out.put(*p == kOpGetp ? kQGetp : *p == kOpSetp ? kQSetp : *p == kOpVref ? kQVref : kQVset);
        out.putCache();
        return true;
      case kOpReturn:
      case kOpUnframe:
        if (paths.proven && paths.hasBlocks(at) && !(paths.isFlat() && paths.endsFunction(at))) {
          if (paths.isFlat())
            out.put(kQUnblock, 0, paths.blockVariables(at));
          else
            out.put(kQUnframe);
          return true;
        }
        out.put(paths.proven ? kQReturn : kQReturnAny, 0, paths.variables);
        return !paths.proven;
      case kOpCall:
        out.put(kQCall, p[1]);
        out.putCache(kBobCallCacheWords);
        return true;
      case kOpSend:
        out.put(kQSend, p[1]);
        out.putCache(kBobCacheWords + kBobCallCacheWords);
        return true;
      case kOpEref:
      case kOpEset: emitVariable(at, p); return true;
      case kOpFrame:
      case kOpCframe:
        if (paths.isFlat())
          out.put(kQBlock, 0, *p == kOpCframe ? p[1] : 0);
        else
          out.put(*p == kOpCframe ? kQCframe : kQFrame, p[1]);
        return true;
      case kOpSwitch: emitSwitch(p); return false;
      case kOpArgsGe: out.put(kQArgsGe, p[1]); return true;
      case kOpLine:
      case kOpThrow: return true;
      default: out.put(plainForm(*p)); return true;
    }
  }

  BobCodePaths& paths;
  BobQuickWriter out;
  BobCombiner combiner;
  std::vector<BobQuickMark>* marks;
  const bool isTraced;
  const uint32_t traceNumber;
  std::vector<uint32_t> places;  // by offset: where its quick code begins
  bool combines = false;
  uint32_t combinedUpTo = 0;  // offsets below are part of what has been emitted
};

bool isTranslatable(BobInterp* interp, BobValue code) {
  const uint32_t* w = interp->words(code);
  return bobCodeCount(w[kCodeCount]) > 0 && interp->isA(w[kCodeElements], kBobString);
}

void translate(BobInterp* interp, BobValue code, BobQuickCode& quick, std::vector<BobQuickMark>* marks) {
  const uint8_t* bytes = interp->bytes(interp->words(code)[kCodeElements]) + kStringBytes;  // three are always there
  quick.hasRest = bytes[0] == kOpAframer;
  quick.required = bytes[1];
  quick.optional = bytes[2];
  quick.plainSlots = quick.hasRest || quick.optional ? -1 : quick.required;
  const uint32_t variables = uint32_t(quick.required + quick.optional + quick.hasRest);
  BobCodePaths paths(interp, code, variables);
  Translator(interp, code, paths, quick, marks).translate();
}

void traceIfWanted(BobInterp* interp, BobValue code, BobQuickCode& quick) {
  quick.isTraced = interp->tracer != nullptr;
  if (quick.isTraced) quick.traceNumber = interp->tracer->codeIsReady(interp, code);
}

}  // namespace

BobQuickCode& bobTranslate(BobInterp* interp, BobValue code) {
  if (!isTranslatable(interp, code)) bobRaise(interp, kBobBadOpcode);
  auto quick = std::make_unique<BobQuickCode>();
  traceIfWanted(interp, code, *quick);
  translate(interp, code, *quick, nullptr);
  return bobKeepQuickCode(interp, code, std::move(quick));
}

void bobTranslateAgain(BobInterp* interp, BobValue code) {
  const uint32_t number = bobCodeQuickNumber(interp->words(code)[kCodeCount]);
  if (number == 0) return;
  BobQuickCode& quick = *interp->quickCodes[number - 1];
  quick.words.clear();
  traceIfWanted(interp, code, quick);
  translate(interp, code, quick, nullptr);
}

std::vector<BobQuickMark> bobQuickMarks(BobInterp* interp, BobValue code) {
  std::vector<BobQuickMark> marks;
  if (!isTranslatable(interp, code)) return marks;
  BobQuickCode quick;
  quick.isTraced = interp->tracer != nullptr;
  translate(interp, code, quick, &marks);
  return marks;
}
