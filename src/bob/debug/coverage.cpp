#include "bob/debug/coverage.h"

#include <algorithm>

#include "bob/base/opcodes.h"
#include "bob/tools/codehash.h"

uint32_t BobCoverage::codeIsReady(BobInterp* interp, BobValue code) {
  const auto [known, isNew] = numbers.try_emplace(bobCodeHash(interp, code), 0);
  if (known->second) return known->second;
  const BobCodeLines* lines = linesOf(interp, code);
  if (!lines) return 0;
  known->second = uint32_t(codes.size());
  codes.push_back({lines, std::vector<uint64_t>(std::max(lines->starts.back().offset, kBobFirstOffset) + 1)});
  return known->second;
}

void BobCoverage::atInstruction(BobInterp*, uint32_t number, uint32_t offset) {
  std::vector<uint64_t>& runs = codes[number].runs;
  if (offset < runs.size()) ++runs[offset];
}

std::map<std::string, std::map<int, uint64_t>> BobCoverage::lines() const {
  std::map<std::string, std::map<int, uint64_t>> all;
  for (const Code& code : codes) {
    if (!code.lines) continue;
    for (const auto [offset, line] : code.lines->firstStarts()) all[code.lines->file][line] += code.runs[offset];
  }
  return all;
}
