// Which lines of two texts are the same, and which only one has.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

// Pairs of equal lines, by their numbers from 0, in order: as many as can be, but for texts of thousands of lines that
// have little in common.
std::vector<std::pair<size_t, size_t>> equalLines(const std::vector<std::string>& a, const std::vector<std::string>& b);

// "- old" and "+ new" for what differs, with up to `around` equal lines before and after, which begin with two spaces;
// where some are left out stands "...". Empty when nothing differs.
std::vector<std::string> lineDifferences(const std::vector<std::string>& a, const std::vector<std::string>& b,
                                         size_t around);
