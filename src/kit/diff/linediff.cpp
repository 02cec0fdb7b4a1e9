#include "kit/diff/linediff.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr size_t kMostCells = size_t{16} << 20;

using Lines = std::vector<std::string>;
using Pairs = std::vector<std::pair<size_t, size_t>>;

// Of what lies between the equal ends, by the longest common subsequence.
void middlePairs(const Lines& a, const Lines& b, size_t begin, size_t endA, size_t endB, Pairs& pairs) {
  const size_t rows = endA - begin, columns = endB - begin;
  if (rows == 0 || columns == 0 || rows * columns > kMostCells) return;
  std::vector<uint32_t> longest((rows + 1) * (columns + 1));
  const auto at = [&](size_t i, size_t j) -> uint32_t& { return longest[i * (columns + 1) + j]; };
  for (size_t i = rows; i-- > 0;)
    for (size_t j = columns; j-- > 0;)
      at(i, j) = a[begin + i] == b[begin + j] ? at(i + 1, j + 1) + 1 : std::max(at(i + 1, j), at(i, j + 1));
  for (size_t i = 0, j = 0; i < rows && j < columns;) {
    if (a[begin + i] == b[begin + j]) {
      pairs.emplace_back(begin + i++, begin + j++);
    } else {
      at(i + 1, j) >= at(i, j + 1) ? ++i : ++j;
    }
  }
}

}  // namespace

Pairs equalLines(const Lines& a, const Lines& b) {
  Pairs pairs;
  size_t begin = 0, endA = a.size(), endB = b.size();
  for (; begin < std::min(endA, endB) && a[begin] == b[begin]; ++begin) pairs.emplace_back(begin, begin);
  while (endA > begin && endB > begin && a[endA - 1] == b[endB - 1]) --endA, --endB;
  middlePairs(a, b, begin, endA, endB, pairs);
  for (; endA < a.size(); ++endA, ++endB) pairs.emplace_back(endA, endB);
  return pairs;
}

std::vector<std::string> lineDifferences(const Lines& a, const Lines& b, size_t around) {
  Lines all;
  size_t i = 0, j = 0;
  const auto differing = [&](size_t untilA, size_t untilB) {
    for (; i < untilA; ++i) all.push_back("- " + a[i]);
    for (; j < untilB; ++j) all.push_back("+ " + b[j]);
  };
  for (const auto& [inA, inB] : equalLines(a, b)) {
    differing(inA, inB);
    all.push_back("  " + a[i]);
    ++i, ++j;
  }
  differing(a.size(), b.size());

  const auto differs = [](const std::string& line) { return line[0] != ' '; };
  if (std::none_of(all.begin(), all.end(), differs)) return {};
  std::vector<bool> shown(all.size());
  for (size_t k = 0; k < all.size(); ++k)
    if (differs(all[k]))
      for (size_t near = k - std::min(k, around); near < all.size() && near <= k + around; ++near) shown[near] = true;
  Lines out;
  for (size_t k = 0; k < all.size(); ++k) {
    if (shown[k]) {
      out.push_back(all[k]);
    } else if (k == 0 || shown[k - 1]) {
      out.push_back("...");
    }
  }
  return out;
}
