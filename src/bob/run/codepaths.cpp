#include "bob/run/codepaths.h"

#include "bob/heap/stack.h"

using namespace BobLayout;

uint32_t bobStackPops(const uint8_t* p) {
  switch (p[0]) {
    case kOpAdd:
    case kOpSub:
    case kOpMul:
    case kOpDiv:
    case kOpRem:
    case kOpBand:
    case kOpBor:
    case kOpXor:
    case kOpShl:
    case kOpShr:
    case kOpLt:
    case kOpLe:
    case kOpEq:
    case kOpNe:
    case kOpGe:
    case kOpGt:
    case kOpGetp:
    case kOpVref:
    case kOpDrop:
    case kOpDup:
    case kOpDup2: return 1;
    case kOpSetp:
    case kOpVset:
    case kOpOver: return 2;
    case kOpCall:
    case kOpSend: return p[1] + 1u;
    case kOpFrame: return p[1];
    default: return 0;
  }
}

BobCodePaths::BobCodePaths(BobInterp* interp, BobValue code, uint32_t variables)
    : variables(variables), interp(interp), code(code) {
  const uint32_t* w = interp->words(code);
  bytes = interp->bytes(w[kCodeElements]) + kStringBytes;
  length = interp->words(w[kCodeElements])[kStringLength];
  literals = bobCodeCount(w[kCodeCount]);
  walk();
  if (proven) return;
  walk();  // once more, without what the stack is known to hold
}

void BobCodePaths::walk() {
  reached.assign(length, kUnreached);
  targets.assign(length, false);
  bad.assign(length, false);
  states.assign(1, {});
  flow(kBobFirstOffset, {}, true);
  while (!pending.empty()) {
    const uint32_t at = pending.back();
    pending.pop_back();
    visit(at);
  }
}

// Arrives at `to`. After the end there is nothing to reach: the translator puts a bad instruction there.
void BobCodePaths::flow(uint32_t to, const State& state, bool jump) {
  if (to >= length) return;
  if (jump) targets[to] = true;
  if (jump && bytes[to] == kOpNewVector) proven = false;  // its count is known only from the LIT before it
  if (reached[to] != kUnreached) {
    if (proven && !(states[size_t(reached[to])] == state)) {
      proven = false;
      unevenAt = to;
    }
    return;
  }
  reached[to] = int(states.size());
  states.push_back(state);
  pending.push_back(to);
}

bool BobCodePaths::pop(State& state, uint32_t count) {
  if (!proven) return true;
  if (state.pushed < count) return proven = false;
  state.pushed -= count;
  return true;
}

int BobCodePaths::enterBlock(const State& outside, uint32_t count) {
  const auto [entry, isNew] = nodeNumbers.try_emplace({outside.node, count, outside.pushed}, int(nodes.size()));
  if (isNew) nodes.push_back({outside.node, count, outside.pushed});
  return entry->second;
}

// The block that is `depth` environments out from an instruction; 0 for the function, or further out when some depth is
// left.
int BobCodePaths::nodeAt(uint32_t at, uint32_t* depth) const {
  int node = states[size_t(reached[at])].node;
  for (; node != 0 && *depth > 0; --*depth) node = nodes[size_t(node)].parent;
  return node;
}

// The number of variables of the function's own environment at that depth, or -1 if it lies further out.
int BobCodePaths::ownCount(uint32_t at, uint32_t depth) const {
  const int node = nodeAt(at, &depth);
  if (depth > 0) return -1;
  return int(node ? nodes[size_t(node)].variables : variables);
}

bool BobCodePaths::endsFunction(uint32_t at) const {
  while (isReached(at) && (bytes[at] == kOpReturn || bytes[at] == kOpUnframe)) {
    if (!hasBlocks(at)) return true;
    ++at;
  }
  return false;
}

// -- flat code. On the stack, downward: the function's environment, the rest of its frame, what is pushed before a
// block, the block's variables, the words of its frame, and so on. All counted from the start of the environment.

int BobCodePaths::topOf(int node) const {
  const Node& block = nodes[size_t(node)];
  return bottomOf(block.parent) - int(block.outside);
}

int BobCodePaths::bottomOf(int node) const {
  if (node == 0) return -kFrameEnvironment;
  return topOf(node) - int(nodes[size_t(node)].variables) - kBlockFrameWords;
}

void BobCodePaths::flattenBlocks() {
  flat = proven && !closes;
  for (int node = int(nodes.size()) - 1; flat && node > 0; --node) flat = bottomOf(node) > INT16_MIN;
}

bool BobCodePaths::findOwn(uint32_t at, int* index) const {
  uint32_t depth = bytes[at + 1];
  if (!proven || (depth > 0 && !flat)) return false;
  const int node = nodeAt(at, &depth);
  if (depth > 0) return false;
  *index = flat && node != 0 ? topOf(node) - bytes[at + 2] : indexIn(node, at);
  return true;
}

bool BobCodePaths::isClose(uint32_t at) const {
  int index;
  if (!findOwn(at, &index)) return false;
  const int innermost = states[size_t(reached[at])].node;
  const int top = flat && innermost != 0 ? topOf(innermost) : index + bytes[at + 2];
  return top - index >= -128 && top - index < 128;
}

bool BobCodePaths::findOuter(uint32_t at, int* index) const {
  uint32_t depth = bytes[at + 1];
  if (!proven || flat || depth != 1) return false;
  const int node = nodeAt(at, &depth);
  if (depth > 0) return false;
  *index = indexIn(node, at);
  return true;
}

// In the environment of that block, or of the function.
int BobCodePaths::indexIn(int node, uint32_t at) const {
  constexpr int kHead = kEnvNext + 2;  // words of an environment before its variables, the last of which is lowest
  return kHead + int(node ? nodes[size_t(node)].variables : variables) - bytes[at + 2];
}

uint32_t BobCodePaths::depthOf(uint32_t at) const {
  uint32_t depth = bytes[at + 1];
  if (!flat) return depth;
  nodeAt(at, &depth);  // what is left after the blocks
  return depth;
}

bool BobCodePaths::badVariable(uint32_t at) const {
  const uint32_t index = bytes[at + 2];
  if (index == 0) return true;
  if (!proven) return false;
  const int count = ownCount(at, bytes[at + 1]);
  return count >= 0 && int(index) > count;
}

bool BobCodePaths::operandsAreBad(uint32_t at) const {
  switch (bytes[at]) {
    case kOpAframe:
    case kOpAframer: return true;
    case kOpLit:
    case kOpGref:
    case kOpGset: return bobWordAt(bytes + at + 1) >= literals;
    case kOpEref:
    case kOpEset: return badVariable(at);
    case kOpSend: return bytes[at + 1] < 2;  // receiver, selector and lookup object have to be there
    case kOpSwitch:
      for (uint32_t i = 0; i < bobWordAt(bytes + at + 1); ++i)
        if (bobWordAt(bytes + at + 3 + 4 * i) >= literals) return true;
      return false;
    default: return false;
  }
}

// What the instruction does to the stack; false if it is the last of its path.
bool BobCodePaths::step(uint32_t at, State& state) {
  const uint8_t* p = bytes + at;
  pop(state, bobStackPops(p));
  switch (*p) {
    case kOpPush: state.pushed += 1; break;
    case kOpDup:
    case kOpPushScope:
    case kOpOver: state.pushed += *p == kOpOver ? 3 : 2; break;
    case kOpDup2: state.pushed += 3; break;
    case kOpFrame:
    case kOpCframe:
      if (proven) state = {enterBlock(state, p[1]), 0};
      break;
    case kOpReturn:
    case kOpUnframe: {
      if (!proven) break;  // it may end a block that was left open
      if (state.node == 0) return false;
      const Node& node = nodes[size_t(state.node)];
      state = {node.parent, node.outside};
      break;
    }
    case kOpNewVector: break;  // visit takes its elements off
  }
  return true;
}

void BobCodePaths::visit(uint32_t at) {
  const uint32_t size = bobInstructionLength(bytes, at, length);
  if (size == 0 || operandsAreBad(at)) {
    bad[at] = true;
    return;
  }
  const uint8_t* p = bytes + at;
  closes = closes || *p == kOpClose;
  State state = states[size_t(reached[at])];
  if (!step(at, state)) return;
  if (*p == kOpBrt || *p == kOpBrf || *p == kOpBr) flow(bobWordAt(p + 1), state, true);
  if (*p == kOpBr) return;
  if (*p == kOpSwitch) {
    const uint32_t count = bobWordAt(p + 1);
    for (uint32_t i = 0; i < count; ++i) flow(bobWordAt(p + 5 + 4 * i), state, true);
    return flow(bobWordAt(p + 3 + 4 * count), state, true);
  }
  // A vector's elements are counted by the literal right before it; the state at NEWVECTOR has them taken off.
  if (at + size < length && p[size] == kOpNewVector && proven) {
    const BobValue count = *p == kOpLit ? interp->words(code)[kCodeElements + bobWordAt(p + 1)] : kBobNil;
    if (!bobIsSmall(count) || bobSmallValue(count) < 0)
      proven = false;
    else
      pop(state, uint32_t(bobSmallValue(count)));
  }
  flow(at + size, state, false);
}
