#include "bob/debug/codelines.h"

#include <algorithm>
#include <utility>

#include "bob/base/opcodes.h"
#include "bob/tools/codehash.h"

int BobCodeLines::lineAt(uint32_t offset) const {
  const auto after =
      std::upper_bound(starts.begin(), starts.end(), offset, [](uint32_t at, const Start& s) { return at < s.offset; });
  return after == starts.begin() ? starts.front().line : after[-1].line;
}

std::vector<BobCodeLines::Start> BobCodeLines::firstStarts() const {
  std::vector<Start> first;
  for (size_t n = 0; n < starts.size(); ++n) {
    // The frame is made by the call: what it comes from has no instruction of its own if another line follows at once.
    if (n + 1 < starts.size() && starts[n + 1].offset <= kBobFirstOffset) continue;
    const auto [offset, line] = starts[n];
    if (continuesLine && line == starts.front().line) continue;
    if (std::none_of(first.begin(), first.end(), [line = line](const Start& s) { return s.line == line; }))
      first.push_back({std::max(offset, kBobFirstOffset), line});
  }
  return first;
}

BobCodeLines bobCodeLinesOf(BobInterp* interp, BobValue code, const BobCodeNotes& notes, std::string file,
                            const BobLineOfPlace& lineOf) {
  BobCodeLines lines;
  lines.hash = bobCodeHash(interp, code);
  lines.file = std::move(file);
  lines.arguments = notes.arguments;
  lines.around = notes.around;
  const auto lineAt = [&](const BobSourcePlace& place) { return lineOf ? lineOf(place) : place.line; };
  for (const BobCodeNotes::Instruction& instruction : notes.instructions) {
    const int line = lineAt(instruction.place);
    if (lines.starts.empty() || lines.starts.back().line != line)
      lines.starts.push_back({uint32_t(instruction.offset), line});
  }
  for (const BobCodeNotes::Block& block : notes.blocks)
    lines.blocks.push_back({uint32_t(block.begin), uint32_t(block.end), block.names});
  lines.continuesLine = notes.before.line > 0 && lineAt(notes.before) == lines.starts.front().line;
  return lines;
}
