// Which lines of scripts ran, and how often.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "bob/debug/codelines.h"
#include "bob/heap/tracer.h"

class BobCoverage final : public BobTracer {
 public:
  using LinesOf = std::function<const BobCodeLines*(BobInterp* interp, BobValue code)>;

  // Lines of code, or null for what doesn't count; they stay where they are as long as this lives.
  explicit BobCoverage(LinesOf linesOf) : linesOf(std::move(linesOf)) {}

  // How often each line was begun, by file and line: those of functions that were called, 0 for lines of theirs that
  // the program has passed by.
  std::map<std::string, std::map<int, uint64_t>> lines() const;

  uint32_t codeIsReady(BobInterp* interp, BobValue code) override;
  void atInstruction(BobInterp* interp, uint32_t code, uint32_t offset) override;

 private:
  struct Code {
    const BobCodeLines* lines = nullptr;
    std::vector<uint64_t> runs;  // by offset
  };

  const LinesOf linesOf;
  std::vector<Code> codes{1};            // number 0: code without lines
  std::map<uint64_t, uint32_t> numbers;  // by hash
};
