// One row of 16-bit pixels of one value, stored in wide words.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

inline void hsFillRow16(uint16_t* row, int32_t count, uint16_t value) {
  std::array<uint16_t, 16> wide;
  wide.fill(value);
  if (count < 16) {
    for (; count > 0; --count) *row++ = value;
    return;
  }
  // The last words may lie over the ones before them.
  uint16_t* const last = row + count - 16;
  for (; row < last; row += 16) std::memcpy(row, wide.data(), sizeof wide);
  std::memcpy(last, wide.data(), sizeof wide);
}
