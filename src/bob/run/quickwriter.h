// Quick code while it is written: words, and branches whose targets are offsets in the bytecode until all is placed.
#pragma once

#include <cstdint>
#include <vector>

#include "bob/run/quickops.h"

class BobQuickWriter {
 public:
  explicit BobQuickWriter(std::vector<uint32_t>& words) : words(words) {}

  void put(BobQuickOp op, uint32_t a = 0, uint32_t b = 0) { words.push_back(op | a << 8 | b << 16); }
  void putWord(uint32_t word) { words.push_back(word); }
  void putCache(int size = kBobCacheWords) { words.insert(words.end(), size_t(size), 0); }
  void putTarget(uint32_t target) {
    fixups.push_back({uint32_t(words.size()), target});
    words.push_back(0);
  }
  uint32_t here() const { return uint32_t(words.size()); }

  // Replaces each target by the distance to its place, which `placeOf` knows.
  template <typename PlaceOf>
  void resolve(PlaceOf placeOf) {
    for (const Fixup& f : fixups) words[f.at] = placeOf(f.target) - f.at;
  }

  // What has been written since a mark can be taken back.
  struct Mark {
    size_t words, fixups;
  };
  Mark mark() const { return {words.size(), fixups.size()}; }
  void takeBack(const Mark& mark) {
    words.resize(mark.words);
    fixups.resize(mark.fixups);
  }

 private:
  struct Fixup {
    uint32_t at, target;
  };
  std::vector<uint32_t>& words;
  std::vector<Fixup> fixups;
};
