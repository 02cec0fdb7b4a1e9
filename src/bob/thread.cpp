#include "bob/thread.h"

#include "bob/codepaths.h"
#include "bob/objects.h"

using namespace BobLayout;

namespace {

constexpr uint32_t kMaxThreads = 0xFFFF;

constexpr uint32_t Word(BobThreadOpcode op, uint32_t a = 0, uint32_t b = 0) { return op | a << 8 | b << 16; }

// Opcodes without operands that have a threaded form of the same effect.
BobThreadOpcode PlainForm(uint8_t opcode) {
  switch (opcode) {
    case kOpT: return kTTrue;
    case kOpNil: return kTNil;
    case kOpPush: return kTPush;
    case kOpNot: return kTNot;
    case kOpAdd: return kTAdd;
    case kOpSub: return kTSub;
    case kOpMul: return kTMul;
    case kOpDiv: return kTDiv;
    case kOpRem: return kTRem;
    case kOpBand: return kTBand;
    case kOpBor: return kTBor;
    case kOpXor: return kTXor;
    case kOpBnot: return kTBnot;
    case kOpShl: return kTShl;
    case kOpShr: return kTShr;
    case kOpLt: return kTLt;
    case kOpLe: return kTLe;
    case kOpEq: return kTEq;
    case kOpNe: return kTNe;
    case kOpGe: return kTGe;
    case kOpGt: return kTGt;
    case kOpNeg: return kTNeg;
    case kOpInc: return kTInc;
    case kOpDec: return kTDec;
    case kOpDup2: return kTDup2;
    case kOpDrop: return kTDrop;
    case kOpDup: return kTDup;
    case kOpOver: return kTOver;
    case kOpNewObject: return kTNewObject;
    case kOpNewVector: return kTNewVector;
    case kOpClose: return kTClose;
    case kOpPushScope: return kTPushScope;
    default: return kTBad;
  }
}

class Translator {
 public:
  Translator(const BobCodePaths& paths, BobThread& thread) : paths(paths), out(thread.words) {}

  void translate() {
    places.assign(paths.length, kNowhere);
    bool open = false;  // the instruction before runs on into the next offset
    uint32_t next = BobCodePaths::kStart;
    for (uint32_t at = BobCodePaths::kStart; at < paths.length; ++at) {
      if (!paths.isReached(at)) continue;
      if (open && next != at) emitJump(next);
      places[at] = uint32_t(out.size());
      open = emit(at, next);
    }
    if (open) emitJump(next);
    // Where every path out of the code leads.
    const uint32_t end = uint32_t(out.size());
    out.push_back(Word(kTBad));
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

  void put(BobThreadOpcode op, uint32_t a = 0, uint32_t b = 0) { out.push_back(Word(op, a, b)); }
  void putCache() { out.insert(out.end(), kBobCacheWords, 0); }
  void putTarget(uint32_t target) {
    fixups.push_back({uint32_t(out.size()), target});
    out.push_back(0);
  }
  void emitJump(uint32_t target) {
    put(kTJump);
    putTarget(target);
  }

  void emitVariable(uint32_t at, const uint8_t* p) {
    const bool load = *p == kOpEref;
    const uint32_t depth = p[1], index = p[2];
    if (depth < 2 && paths.isOwnDepth(at, depth))
      put(depth == 0 ? (load ? kTVar0 : kTSet0) : (load ? kTVar1 : kTSet1), 0, index);
    else
      put(load ? kTVar : kTSet, depth, index);
  }

  void emitSwitch(const uint8_t* p) {
    const uint32_t count = bobWordAt(p + 1);
    put(kTSwitch, 0, count);
    for (uint32_t i = 0; i < count; ++i) {
      out.push_back(bobWordAt(p + 3 + 4 * i));
      putTarget(bobWordAt(p + 5 + 4 * i));
    }
    putTarget(bobWordAt(p + 3 + 4 * count));
  }

  // Emits the instruction at `at`; true if it runs on into `next`.
  bool emit(uint32_t at, uint32_t& next) {
    if (paths.isBad(at)) {
      put(kTBad);
      return false;
    }
    const uint8_t* p = paths.bytes + at;
    next = at + bobInstructionLength(paths.bytes, at, paths.length);
    if (!paths.proven && bobStackPops(p) > 0) put(kTCheckPops, 0, bobStackPops(p));
    switch (*p) {
      case kOpBrt:
      case kOpBrf:
        put(*p == kOpBrt ? kTBrt : kTBrf);
        putTarget(bobWordAt(p + 1));
        return true;
      case kOpBr: emitJump(bobWordAt(p + 1)); return false;
      case kOpLit: put(kTLit, 0, bobWordAt(p + 1)); return true;
      case kOpGref:
      case kOpGset:
        put(*p == kOpGref ? kTGref : kTGset, 0, bobWordAt(p + 1));
        putCache();
        return true;
      case kOpGetp:
      case kOpSetp:
      case kOpVref:
      case kOpVset:
        put(*p == kOpGetp ? kTGetp : *p == kOpSetp ? kTSetp : *p == kOpVref ? kTVref : kTVset);
        putCache();
        return true;
      case kOpReturn:
      case kOpUnframe:
        if (paths.proven && paths.hasBlocks(at)) {
          put(kTUnframe);
          return true;
        }
        put(kTReturn);
        return !paths.proven;
      case kOpCall: put(kTCall, p[1]); return true;
      case kOpSend:
        put(kTSend, p[1]);
        putCache();
        return true;
      case kOpEref:
      case kOpEset: emitVariable(at, p); return true;
      case kOpFrame: put(kTFrame, p[1]); return true;
      case kOpCframe: put(kTCframe, p[1]); return true;
      case kOpSwitch: emitSwitch(p); return false;
      case kOpArgsGe: put(kTArgsGe, p[1]); return true;
      case kOpLine:
      case kOpThrow: return true;
      default: put(PlainForm(*p)); return true;
    }
  }

  const BobCodePaths& paths;
  std::vector<uint32_t>& out;
  std::vector<uint32_t> places;  // by offset: where its threaded form begins
  std::vector<Fixup> fixups;
};

uint32_t TakeNumber(BobInterp* interp) {
  for (size_t i = 0; i < interp->threads.size(); ++i)
    if (!interp->threads[i]) return uint32_t(i + 1);
  interp->threads.emplace_back();
  return uint32_t(interp->threads.size());
}

}  // namespace

BobThread& bobThreadCode(BobInterp* interp, BobValue code) {
  const uint32_t* w = interp->words(code);
  if (bobCodeCount(w[kCodeCount]) == 0 || !interp->isA(w[kCodeElements], kBobString)) bobRaise(interp, kBobBadOpcode);
  const uint8_t* bytes = interp->bytes(w[kCodeElements]) + kStringBytes;  // three of them are always there
  auto thread = std::make_unique<BobThread>();
  thread->hasRest = bytes[0] == kOpAframer;
  thread->required = bytes[1];
  thread->optional = bytes[2];
  thread->plainSlots = thread->hasRest || thread->optional ? -1 : thread->required;
  const uint32_t variables = uint32_t(thread->required + thread->optional + thread->hasRest);
  Translator(BobCodePaths(interp, code, variables), *thread).translate();

  const uint32_t number = TakeNumber(interp);
  if (number > kMaxThreads) bobRaise(interp, kBobInsufficientMemory);
  interp->threads[number - 1] = std::move(thread);
  interp->words(code)[kCodeCount] |= number << 16;
  return *interp->threads[number - 1];
}

void bobMarkThread(BobInterp* interp, uint32_t number) {
  if (number) interp->threads[number - 1]->marked = true;
}

void bobSweepThreads(BobInterp* interp) {
  for (auto& thread : interp->threads) {
    if (!thread) continue;
    if (!thread->marked)
      thread.reset();
    else
      thread->marked = false;
  }
}
