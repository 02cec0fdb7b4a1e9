#include "kit/suggest.h"

#include <algorithm>
#include <numeric>

#include "gfx/foundation/hsascii.h"

namespace {

// The fewest letters to insert, drop, change or swap with the next that make one word of the other.
size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> before, above, row(b.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  const auto same = [](char x, char y) { return hsAsciiLower(x) == hsAsciiLower(y); };
  for (size_t i = 0; i < a.size(); ++i) {
    before = std::move(above);
    above = row;
    row[0] = i + 1;
    for (size_t j = 0; j < b.size(); ++j) {
      row[j + 1] = std::min({above[j] + !same(a[i], b[j]), above[j + 1] + 1, row[j] + 1});
      if (i > 0 && j > 0 && same(a[i], b[j - 1]) && same(a[i - 1], b[j]))
        row[j + 1] = std::min(row[j + 1], before[j - 1] + 1);
    }
  }
  return row.back();
}

}  // namespace

std::string nearestWord(std::string_view word, const std::vector<std::string>& words) {
  size_t least = word.size() < 6 ? 2 : 3;  // more than this many faults are another word
  const std::string* nearest = nullptr;
  for (const std::string& candidate : words) {
    if (candidate.size() + least <= word.size() || word.size() + least <= candidate.size()) continue;
    const size_t distance = editDistance(word, candidate);
    if (distance >= least || distance >= candidate.size()) continue;
    least = distance;
    nearest = &candidate;
  }
  return nearest ? *nearest : "";
}

std::string suggestion(std::string_view word, const std::vector<std::string>& words) {
  const std::string nearest = nearestWord(word, words);
  return nearest.empty() ? "" : "; did you mean '" + nearest + "'?";
}

std::string listOfWords(const std::vector<std::string>& words, const char* last) {
  std::string list;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 < words.size() ? ", " : std::string(" ") + last + " ";
    list += words[i];
  }
  return list;
}
