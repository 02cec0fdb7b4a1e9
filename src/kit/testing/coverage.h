// Which lines of scripts tests have run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>

#include "kit/run/pagerun.h"

// How often each line with code was begun, by file and line.
class CoveredLines {
 public:
  // What a run has done, and all code that it knows of, which may not have run.
  void add(const BobCoverage& ran, const CodePlaces& known);
  void add(const CoveredLines& other);

  // As lcov and what reads its files know it: SF, DA, LF and LH of each file, by full names.
  std::string asLcov() const;
  // "guide.bob: 41 of 45 lines, not 12, 30 to 32", a line a file, and one for all of them.
  std::string summary() const;

 private:
  std::map<std::string, std::map<int, uint64_t>> files;
};
