#include "bob/debug/profiler.h"

#include <algorithm>
#include <set>

#include "bob/base/opcodes.h"
#include "bob/heap/interp.h"
#include "bob/run/report.h"
#include "bob/run/runningcode.h"
#include "bob/tools/codehash.h"

namespace {

uint32_t usedOf(const BobHeapBlock& space) { return space.free - space.base; }

}  // namespace

BobProfileCounts& BobProfileCounts::operator+=(const BobProfileCounts& other) {
  instructions += other.instructions;
  calls += other.calls;
  bytes += other.bytes;
  collections += other.collections;
  return *this;
}

uint32_t BobProfiler::codeIsReady(BobInterp* interp, BobValue code) {
  const auto [found, isNew] = numbers.try_emplace(bobCodeHash(interp, code), uint32_t(known.size()));
  if (isNew) known.push_back({found->first, bobCodeText(interp, code)});
  return found->second;
}

// The node of what runs now. Blocks have frames, too, so most changes of the frame are none of the function.
uint32_t BobProfiler::find(BobInterp* interp, uint32_t code) {
  std::vector<BobRunningFrame> running = bobRunningFrames(interp);
  std::reverse(running.begin(), running.end());
  uint32_t node = 0;
  for (size_t n = 0; n < running.size(); ++n) {
    const bool isInnermost = n + 1 == running.size();
    const uint32_t function = isInnermost ? code : codeIsReady(interp, running[n].code);
    const auto [found, isNew] = children.try_emplace({node, function}, uint32_t(tree.size()));
    if (isNew) tree.push_back({function, node, {}});
    node = found->second;
  }
  return node;
}

// Whether the instruction before, of the same code and frame, has jumped here.
bool BobProfiler::isLoop(BobInterp* interp) const {
  const BobValue bytecode = interp->words(interp->code)[BobLayout::kCodeElements];
  switch (interp->bytes(bytecode)[BobLayout::kStringBytes + last]) {
    case kOpBr:
    case kOpBrt:
    case kOpBrf:
    case kOpSwitch: return true;
    default: return false;
  }
}

void BobProfiler::countAllocations(BobInterp* interp) {
  BobProfileCounts& own = tree[current].own;
  const uint32_t since = interp->collections == collections ? allocated : interp->survivors;
  own.bytes += unclaimed + usedOf(interp->newSpace) - since;
  own.collections += interp->collections - collections;
  unclaimed = 0;
  allocated = usedOf(interp->newSpace);
  collections = interp->collections;
}

// What was allocated since the last instruction is the last one's.
void BobProfiler::atInstruction(BobInterp* interp, uint32_t code, uint32_t offset) {
  countAllocations(interp);
  const bool goesOn = interp->fp == frame && tree[current].function == code;
  if (!goesOn) current = find(interp, code);
  ++tree[current].own.instructions;
  tree[current].own.calls += offset == kBobFirstOffset && !(goesOn && isLoop(interp));
  frame = interp->fp;
  last = offset;
}

// The space that is being left holds all that was allocated before this collection.
void BobProfiler::copyValues(BobInterp* interp) {
  const bool isFirst = interp->collections == collections + 1;
  unclaimed += usedOf(interp->oldSpace) - (isFirst ? allocated : interp->survivors);
}

std::vector<BobProfiler::Total> BobProfiler::totals() const {
  std::vector<Total> totals(known.size());
  for (const BobProfileNode& node : tree) {
    totals[node.function].own += node.own;
    std::set<uint32_t> counted;
    for (uint32_t at = uint32_t(&node - tree.data());; at = tree[at].caller) {
      if (counted.insert(tree[at].function).second) totals[tree[at].function].whole += node.own;
      if (at == 0) break;
    }
  }
  return totals;
}
