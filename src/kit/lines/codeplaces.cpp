#include "kit/lines/codeplaces.h"

#include <algorithm>
#include <set>
#include <utility>

void CodePlaces::add(const BobCodeLines& lines) {
  const auto [first, last] = known.equal_range(lines.hash);
  if (std::none_of(first, last, [&](const auto& entry) { return entry.second == lines; }))
    known.emplace(lines.hash, lines);
}

const BobCodeLines* CodePlaces::linesOf(uint64_t hash) const {
  const auto found = known.find(hash);
  return found == known.end() ? nullptr : &found->second;
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
