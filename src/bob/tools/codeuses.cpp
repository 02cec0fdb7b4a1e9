#include "bob/tools/codeuses.h"

#include <algorithm>

#include "bob/base/opcodes.h"
#include "bob/heap/interp.h"
#include "bob/run/codepaths.h"
#include "bob/tools/codehash.h"

using namespace BobLayout;

namespace {

using Known = BobKnownValue;

// Walks the instructions in the order in which they lie, with what is known of the register and of the stack. Blocks
// are left aside: no expression takes more off the stack than it has put there.
class Walker {
 public:
  Walker(BobInterp* i, BobValue c) : interp(i), code(c) {
    const uint32_t* w = interp->words(code);
    bytes = interp->bytes(w[kCodeElements]) + kStringBytes;
    length = interp->words(w[kCodeElements])[kStringLength];
    literals = bobCodeCount(w[kCodeCount]);
  }

  BobCodeUses walk() {
    found.hash = bobCodeHash(interp, code);
    found.bytesToCompile = length;
    found.literalsToCompile = literals;
    findTargets();
    for (uint32_t at = 0, size; (size = bobInstructionLength(bytes, at, length)) != 0; at += size) {
      if (targets[at]) val = {};
      step(at);
    }
    findUneven();
    return std::move(found);
  }

 private:
  void findTargets() {
    targets.assign(length + 1, false);
    const auto mark = [&](uint32_t target) { targets[std::min(target, length)] = true; };
    for (uint32_t at = 0, size; (size = bobInstructionLength(bytes, at, length)) != 0; at += size) {
      const uint8_t* p = bytes + at;
      if (*p == kOpBrt || *p == kOpBrf || *p == kOpBr) mark(bobWordAt(p + 1));
      if (*p != kOpSwitch) continue;
      for (uint32_t i = 0; i <= bobWordAt(p + 1); ++i) mark(bobWordAt(p + 3 + 4 * i + (i < bobWordAt(p + 1) ? 2 : 0)));
    }
  }

  void findUneven() {
    if (length < kBobFirstOffset) return;
    const BobCodePaths paths(interp, code, bytes[1] + bytes[2]);
    if (paths.unevenAt != 0) found.unevenAt = paths.unevenAt;
  }

  void step(uint32_t at) {
    const uint8_t* p = bytes + at;
    switch (*p) {
      case kOpLit: return literal(at, bobWordAt(p + 1));
      case kOpT: val = {Known::truth}; return;
      case kOpNil: val = {Known::nil}; return;
      case kOpGref: return readGlobal(at, symbolAt(bobWordAt(p + 1)));
      case kOpGset: return use({BobCodeUse::setGlobal, at, symbolAt(bobWordAt(p + 1)), {}, val});
      case kOpPush: return push(val);
      case kOpOver: return push(below(1));
      case kOpDup: return push(below(0));
      case kOpDup2: push(val); return push(below(1));
      case kOpPushScope: push({}); return push({});
      case kOpGetp: return readMember(at);
      case kOpSetp: return setMember(at);
      case kOpCall:
      case kOpSend: return call(at, p[1]);
      case kOpNewObject: val = {val.kind == Known::path ? Known::made : Known::unknown, val.name}; return;
      case kOpNewVector:
        drop(val.kind == Known::integer ? size_t(std::max(val.number, 0)) : 0);
        val = {};
        return;
      case kOpThrow: found.throws.push_back(at); return;
      case kOpEref:
      case kOpNot:
      case kOpNeg:
      case kOpBnot:
      case kOpInc:
      case kOpDec: val = {}; return;
      default: return others(p);
    }
  }

  // Those that take a block's frame, or nothing, leave the register as it is.
  void others(const uint8_t* p) {
    const uint32_t pops = *p == kOpFrame ? 0 : bobStackPops(p);
    if (pops == 0) return;
    drop(pops);
    val = {};
  }

  // ---- the stack

  void push(Known value) { stack.push_back(std::move(value)); }
  Known below(size_t depth) const { return depth < stack.size() ? stack[stack.size() - 1 - depth] : Known{}; }
  void drop(size_t count) { stack.resize(stack.size() - std::min(count, stack.size())); }
  Known pop() {
    Known top = below(0);
    drop(1);
    return top;
  }

  // ---- instructions

  void use(BobCodeUse u) { found.uses.push_back(std::move(u)); }

  std::string symbolAt(uint32_t number) const {
    const BobValue value = number < literals ? interp->words(code)[kCodeElements + number] : kBobNil;
    return interp->isA(value, kBobSymbol) ? std::string(interp->symbolOf(value)) : "";
  }

  void literal(uint32_t at, uint32_t number) {
    val = {};
    if (number >= literals) return;
    const BobValue value = interp->words(code)[kCodeElements + number];
    if (interp->isA(value, kBobSymbol)) val = {Known::symbol, symbolAt(number)};
    if (interp->isA(value, kBobString)) val = {Known::text, std::string(interp->stringOf(value))};
    if (interp->isA(value, kBobInteger)) val = {Known::integer, "", interp->integerOf(value)};
    if (!interp->isA(value, kBobCompiledCode)) return;
    val = {Known::function, "", int32_t(found.functions.size())};
    found.functions.push_back(bobCodeUses(interp, value));
    // It was compiled above what there was of the code around it by then.
    const BobCodeUses& inner = found.functions.back();
    found.bytesToCompile = std::max(found.bytesToCompile, at + inner.bytesToCompile);
    found.literalsToCompile = std::max(found.literalsToCompile, number + inner.literalsToCompile);
  }

  void readGlobal(uint32_t at, const std::string& name) {
    use({BobCodeUse::readGlobal, at, name, {}, {}});
    val = {Known::path, name};
  }

  void readMember(uint32_t at) {
    const Known object = pop();
    const std::string name = val.kind == Known::symbol ? val.name : "";
    use({BobCodeUse::readMember, at, name, object, {}});
    val = object.kind == Known::path && !name.empty() ? Known{Known::path, object.name + "." + name} : Known{};
  }

  void setMember(uint32_t at) {
    const Known key = pop(), object = pop();
    use({BobCodeUse::setMember, at, key.kind == Known::symbol ? key.name : "", object, val});
  }

  // `slots` are the arguments, this and _next; below those lies the function, or the object and the selector.
  void call(uint32_t at, uint32_t slots) {
    BobCodeUse made{BobCodeUse::call, at, "", {}, {}};
    for (uint32_t i = slots; i > 2; --i) made.arguments.push_back(below(i - 3));
    if (bytes[at] == kOpSend) {
      made.kind = BobCodeUse::send;
      const Known selector = slots < 2 ? Known{} : below(slots - 1);
      made.name = selector.kind == Known::symbol ? selector.name : "";
      made.object = below(slots);
    } else {
      made.object = below(slots);
      if (made.object.kind == Known::path) made.name = made.object.name;
    }
    drop(slots + 1);
    val = made.object.kind == Known::made && made.name == "initialize" ? made.object : Known{};
    use(std::move(made));
  }

  BobInterp* interp;
  BobValue code;
  const uint8_t* bytes;  // in the heap, which nothing here moves
  uint32_t length, literals;
  std::vector<bool> targets;  // of branches, by offset
  std::vector<Known> stack;
  Known val;
  BobCodeUses found;
};

}  // namespace

BobCodeUses bobCodeUses(BobInterp* interp, BobValue code) {
  const uint32_t* w = interp->words(code);
  if (bobCodeCount(w[kCodeCount]) == 0 || !interp->isA(w[kCodeElements], kBobString)) return {};
  return Walker(interp, code).walk();
}
