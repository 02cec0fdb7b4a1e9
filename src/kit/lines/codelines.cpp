#include "kit/lines/codelines.h"

#include <algorithm>
#include <set>
#include <utility>

#include "bob/bob.h"

int CodeLines::lineAt(uint32_t offset) const {
  const auto after =
      std::upper_bound(starts.begin(), starts.end(), offset, [](uint32_t at, const Start& s) { return at < s.offset; });
  return after == starts.begin() ? starts.front().line : after[-1].line;
}

CodeLines codeLinesOf(BobInterp* interp, BobValue code, const BobCodeNotes& notes, std::string file,
                      const LineOfPlace& lineOf) {
  CodeLines lines;
  lines.hash = bobCodeHash(interp, code);
  lines.file = std::move(file);
  lines.arguments = notes.arguments;
  for (const BobCodeNotes::Instruction& instruction : notes.instructions) {
    const int line = lineOf ? lineOf(instruction.place) : instruction.place.line;
    if (lines.starts.empty() || lines.starts.back().line != line)
      lines.starts.push_back({uint32_t(instruction.offset), line});
  }
  for (const BobCodeNotes::Block& block : notes.blocks)
    lines.blocks.push_back({uint32_t(block.begin), uint32_t(block.end), block.names});
  return lines;
}

void CodePlaces::add(const CodeLines& lines) {
  const auto [first, last] = known.equal_range(lines.hash);
  if (std::none_of(first, last, [&](const auto& entry) { return entry.second == lines; }))
    known.emplace(lines.hash, lines);
}

std::string CodePlaces::placeOf(uint64_t hash, uint32_t offset) const {
  std::set<std::pair<std::string, int>> places;
  const auto [first, last] = known.equal_range(hash);
  for (auto at = first; at != last; ++at) places.emplace(at->second.file, at->second.lineAt(offset));
  constexpr size_t kMost = 3;
  std::string text;
  size_t count = 0;
  for (const auto& [file, line] : places) {
    if (count++ == kMost) return text + " or elsewhere";
    text += (text.empty() ? "" : " or ") + file + ":" + std::to_string(line);
  }
  return text;
}
