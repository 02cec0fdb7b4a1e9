// The lines of the source above the instructions that come from them, while code is listed.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "bob/bob.h"
#include "kit/lines/codeplaces.h"

class SourceListing {
 public:
  // Code of a file or statement, as it is met while it is listed: the first of several equal pieces is the first of
  // these.
  void begin(std::vector<BobCodeLines> codes);

  // Before an instruction is listed: prints the line that it comes from, unless it is the one printed last.
  void instruction(BobInterp* interp, BobValue code, uint32_t offset);

 private:
  const BobCodeLines* linesOf(BobInterp* interp, BobValue code);
  const std::vector<std::string>& textOf(const std::string& file);

  std::vector<BobCodeLines> codes;
  std::unordered_map<uint64_t, std::vector<size_t>> byHash;  // those that have not been met, the last first
  const BobCodeLines* current = nullptr;
  int shownLine = 0;
  std::map<std::string, std::vector<std::string>> texts;
};
