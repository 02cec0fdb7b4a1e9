// Makes every allocation of the test program, or every one from some size on, fail for the length of a scope. Without a
// size nothing in that scope may build a string.
#pragma once

#include <cstddef>
#include <cstdint>

class NoMemory {
 public:
  explicit NoMemory(size_t from = 0) { failsFrom = from; }
  ~NoMemory() { failsFrom = SIZE_MAX; }

  static size_t failsFrom;  // bytes
};
