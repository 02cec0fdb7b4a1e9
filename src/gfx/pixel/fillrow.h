// One row of 16-bit pixels of one value, stored in wide words.
#pragma once

#include "gfx/pixel/wide16.h"

inline void hsFillRow16(uint16_t* row, int32_t count, uint16_t value) {
  if (count < kWide16) {
    for (; count > 0; --count) *row++ = value;
    return;
  }
  const hsWide16 wide = hsWide16{} + value;
  uint16_t* const last = row + count - kWide16;
  hsStoreWide16(row, wide);
  // From here on words are aligned; the last one may lie over the one before it.
  row += kWide16 - (reinterpret_cast<uintptr_t>(row) / sizeof *row) % kWide16;
  for (; last - row >= 7 * kWide16; row += 8 * kWide16)
    for (int32_t i = 0; i < 8; ++i) hsStoreWide16(row + i * kWide16, wide);
  for (; row < last; row += kWide16) hsStoreWide16(row, wide);
  hsStoreWide16(last, wide);
}
