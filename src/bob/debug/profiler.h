// Counts what a program does, function by function: instructions, calls, bytes allocated, collections.
//
// It counts and takes no samples, so the same run gives the same figures. What surprises: an instruction is one of
// bytecode, whatever it costs; a native method counts as the one that calls it, and so do scripts that the host runs.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bob/heap/tracer.h"

struct BobProfileCounts {
  uint64_t instructions = 0, calls = 0, bytes = 0, collections = 0;
  BobProfileCounts& operator+=(const BobProfileCounts& other);
};

// A function as it was called along one way from outside; the tree of these is what a flame graph shows.
struct BobProfileNode {
  uint32_t function = 0;  // in BobProfiler::functions
  uint32_t caller = 0;    // a node before this one; 0, the root, stands for the host
  BobProfileCounts own;   // without what it called
};

struct BobProfileFunction {
  uint64_t hash = 0;  // bobCodeHash
  std::string name;   // empty for code without one
};

class BobProfiler final : public BobTracer {
 public:
  // Of what has run so far. Node 0 is the root, and function 0 is the host's, without a name.
  const std::vector<BobProfileFunction>& functions() const { return known; }
  const std::vector<BobProfileNode>& nodes() const { return tree; }

  // By function: what it did itself, and with all that it called. A function that calls itself counts once.
  struct Total {
    BobProfileCounts own, whole;
  };
  std::vector<Total> totals() const;

  uint32_t codeIsReady(BobInterp* interp, BobValue code) override;
  void atInstruction(BobInterp* interp, uint32_t code, uint32_t offset) override;
  void copyValues(BobInterp* interp) override;

 private:
  uint32_t find(BobInterp* interp, uint32_t code);
  bool isLoop(BobInterp* interp) const;
  void countAllocations(BobInterp* interp);

  std::vector<BobProfileFunction> known{1};
  std::vector<BobProfileNode> tree{1};
  std::map<uint64_t, uint32_t> numbers;                        // of functions, by hash
  std::map<std::pair<uint32_t, uint32_t>, uint32_t> children;  // of nodes, by caller and function
  uint32_t current = 0;                                        // the node that runs
  const void* frame = nullptr;                                 // of the last instruction
  uint32_t last = 0;                                           // its offset
  uint32_t allocated = 0, collections = 0;                     // as the interpreter had it at the last instruction
  uint64_t unclaimed = 0;                                      // bytes that were allocated before a collection since
};
