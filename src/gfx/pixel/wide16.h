// Eight 16-bit pixels at a time.
//
// Compilers make one register of them where the processor has such registers, and plain code elsewhere.
#pragma once

#include <cstdint>
#include <cstring>

using hsWide16 = uint16_t __attribute__((vector_size(16)));
constexpr int32_t kWide16 = 8;  // pixels

inline hsWide16 hsLoadWide16(const uint16_t* pixels) {
  hsWide16 wide;
  std::memcpy(&wide, pixels, sizeof wide);
  return wide;
}

inline void hsStoreWide16(uint16_t* pixels, hsWide16 wide) { std::memcpy(pixels, &wide, sizeof wide); }
