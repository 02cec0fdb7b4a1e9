// Code that may run, and where it was written. Where the same code was written in several places, all of them are
// known.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

#include "bob/debug/codelines.h"

class CodePlaces {
 public:
  void add(const BobCodeLines& lines);
  void add(const std::vector<BobCodeLines>& all) {
    for (const BobCodeLines& lines : all) add(lines);
  }

  bool has(uint64_t hash) const { return known.contains(hash); }
  size_t size() const { return known.size(); }
  void forEach(const std::function<void(const BobCodeLines& lines)>& visit) const {
    for (const auto& [hash, lines] : known) visit(lines);
  }
  // Of one of the places, which stays where it is; null for code that nobody has added.
  const BobCodeLines* linesOf(uint64_t hash) const;
  // "FILE:LINE", several with "or" between them, or nothing for code that nobody has added.
  std::string placeOf(uint64_t hash, uint32_t offset) const;

 private:
  std::unordered_multimap<uint64_t, BobCodeLines> known;
};
