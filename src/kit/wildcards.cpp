#include "kit/wildcards.h"

#include <cstddef>
#include <optional>

namespace {

struct SetMatch {
  bool contains;
  size_t length;  // of the set in the pattern, with its brackets
};

// The set at the start of a pattern; nothing for a bracket that isn't closed, which means itself. A bracket right at
// the start of the set is one of its characters.
std::optional<SetMatch> matchSet(std::string_view pattern, char c) {
  const auto byte = [](char each) { return static_cast<unsigned char>(each); };
  size_t at = 1;
  const bool inverted = at < pattern.size() && (pattern[at] == '!' || pattern[at] == '^');
  if (inverted) ++at;
  bool found = false;
  for (const size_t first = at; at < pattern.size(); ++at) {
    if (pattern[at] == ']' && at > first) return SetMatch{found != inverted, at + 1};
    if (pattern[at] == '\\' && at + 1 < pattern.size()) ++at;
    const char low = pattern[at];
    char high = low;
    if (at + 2 < pattern.size() && pattern[at + 1] == '-' && pattern[at + 2] != ']') {
      at += 2;
      if (pattern[at] == '\\' && at + 1 < pattern.size()) ++at;
      high = pattern[at];
    }
    found = found || (byte(low) <= byte(c) && byte(c) <= byte(high));
  }
  return {};
}

// How much of the pattern stands for the character; nothing when its start doesn't.
std::optional<size_t> matchOne(std::string_view pattern, char c) {
  if (pattern.empty()) return {};
  if (pattern[0] == '?') return 1;
  if (pattern[0] == '[')
    if (const auto set = matchSet(pattern, c)) return set->contains ? std::optional(set->length) : std::nullopt;
  if (pattern[0] == '\\' && pattern.size() > 1) return pattern[1] == c ? std::optional<size_t>(2) : std::nullopt;
  return pattern[0] == c ? std::optional<size_t>(1) : std::nullopt;
}

}  // namespace

// A star takes as little as it can. When what follows doesn't fit, the last star takes one more; earlier ones need not,
// since the last can take whatever they would.
bool matchesWildcards(std::string_view pattern, std::string_view text) {
  size_t p = 0, t = 0;
  std::optional<size_t> afterStar;
  size_t starTook = 0;  // up to here
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == '*') {
      afterStar = ++p;
      starTook = t;
    } else if (const auto length = matchOne(pattern.substr(p), text[t])) {
      p += *length;
      ++t;
    } else if (afterStar) {
      p = *afterStar;
      t = ++starTook;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}
