// Every path through a piece of bytecode, and whether it stays inside: the first half of translation.
//
// The state at an instruction is the chain of block frames open there and what has been pushed in the innermost one. It
// is carried along each path from the first instruction; where two paths meet, both must bring the same state. In
//
//     if (a) { local b = 1; b; }
//
//     0003 GREF 2 ; a      no block, nothing pushed
//     0006 BRF 0015        goes on at 0009 and at 0015 with that state
//     0009 CFRAME 1        from here: a block of one variable, nothing pushed in it
//     000b LIT 3 ; 1
//     000e ESET 0 1        variable 1 of the block, which has 1: proven to be there
//     0011 EREF 0 1
//     0014 UNFRAME         no block again
//     0015 RETURN          both paths bring the same state
//
// Without the UNFRAME one path would reach 0015 with the block open and the other without it, and nothing would be
// proven. Then a second walk finds out what is reachable and no more, and the machine checks what it pops.
#pragma once

#include <map>
#include <tuple>
#include <vector>

#include "bob/base/opcodes.h"
#include "bob/base/value.h"

// Words that the instruction takes from the stack, apart from NEWVECTOR, whose count is in val.
uint32_t bobStackPops(const uint8_t* instruction);

// Where execution can come, from the first instruction on. A path ends where an instruction is bad.
class BobCodePaths {
 public:
  // `literals` counts the code's elements; `variables` those of the function itself, this and _next included.
  BobCodePaths(BobInterp* interp, BobValue code, uint32_t variables);

  bool isReached(uint32_t at) const { return at < length && reached[at] != kUnreached; }
  bool isTarget(uint32_t at) const { return at < length && targets[at]; }
  bool isBad(uint32_t at) const { return bad[at]; }
  // For code that was shown to stay inside: the blocks open at an instruction, and the variables of the innermost one.
  bool hasBlocks(uint32_t at) const { return states[size_t(reached[at])].node != 0; }
  uint32_t blockVariables(uint32_t at) const { return nodes[size_t(states[size_t(reached[at])].node)].variables; }
  // Whether the RETURN or UNFRAME at an instruction leads out of the function, over blocks that it closes on the way.
  bool endsFunction(uint32_t at) const;

  // Blocks whose variables nobody can capture need no frames: decides that there shall be none, if that can be. Then
  // all variables of the function lie at a known distance from its own environment.
  void flattenBlocks();
  bool isFlat() const { return flat; }

  // EREF and ESET in code that was shown to stay inside: where the variable lies, in words above the start of the
  // innermost environment. Only those of that environment are found, since the ones around may move; in flat code it is
  // the function's, and those of blocks lie below it. False for a variable that is to be looked for.
  bool findOwn(uint32_t at, int* index) const;
  // Whether the variable is one of the function that lies in place, at most 128 words from those of the innermost
  // block.
  bool isClose(uint32_t at) const;
  // The same for one of the next environment out, where blocks have frames.
  bool findOuter(uint32_t at, int* index) const;
  // How many environments out a variable that is to be looked for lies, when the code runs.
  uint32_t depthOf(uint32_t at) const;

  const uint8_t* bytes;  // lie in the heap
  uint32_t length;
  uint32_t literals;
  const uint32_t variables;  // as given
  bool closes = false;       // makes closures
  uint32_t unevenAt = 0;     // where paths first met with different stacks; 0 for nowhere
  bool proven = true;        // the depth of the stack is the same on every path, and enough for every instruction

 private:
  // Block frames, innermost first: what was pushed in the frame outside before this one was made.
  struct Node {
    int parent;
    uint32_t variables;
    uint32_t outside;
  };
  struct State {
    int node = 0;  // 0: no block
    uint32_t pushed = 0;
    bool operator==(const State&) const = default;
  };
  static constexpr int kUnreached = -1;

  void walk();
  void visit(uint32_t at);
  void flow(uint32_t to, const State& state, bool jump);
  bool step(uint32_t at, State& state);
  bool pop(State& state, uint32_t count);
  int enterBlock(const State& outside, uint32_t variables);
  int nodeAt(uint32_t at, uint32_t* depth) const;
  int ownCount(uint32_t at, uint32_t depth) const;
  int indexIn(int node, uint32_t at) const;
  int topOf(int node) const;
  int bottomOf(int node) const;
  bool badVariable(uint32_t at) const;
  bool operandsAreBad(uint32_t at) const;

  BobInterp* interp;
  BobValue code;
  std::vector<int> reached;  // by offset: index into states
  std::vector<bool> targets, bad;
  std::vector<State> states;
  std::vector<Node> nodes{1};
  std::map<std::tuple<int, uint32_t, uint32_t>, int> nodeNumbers;
  std::vector<uint32_t> pending;
  bool flat = false;
};
