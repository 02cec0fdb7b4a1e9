// Eight 16-bit pixels at a time, and eight bytes.
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

// All ones in the lanes of set bits, the highest bit first.
inline hsWide16 hsWideBits(uint8_t bits) {
  constexpr hsWide16 kLanes = {0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1};
  return hsWide16(((hsWide16{} + bits) & kLanes) != 0);
}

inline void hsStoreWide16(uint16_t* pixels, hsWide16 wide) { std::memcpy(pixels, &wide, sizeof wide); }

using hsWide8 = uint8_t __attribute__((vector_size(8)));

inline hsWide8 hsLoadWide8(const uint8_t* bytes) {
  hsWide8 wide;
  std::memcpy(&wide, bytes, sizeof wide);
  return wide;
}

inline void hsStoreWide8(uint8_t* bytes, hsWide8 wide) { std::memcpy(bytes, &wide, sizeof wide); }

inline hsWide8 hsWide8Bits(uint8_t bits) {
  constexpr hsWide8 kLanes = {0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1};
  return hsWide8(((hsWide8{} + bits) & kLanes) != 0);
}

// Zeros behind the first count lanes.
inline hsWide8 hsFirstOfWide8(hsWide8 wide, int32_t count) {
  constexpr hsWide8 kLanes = {0, 1, 2, 3, 4, 5, 6, 7};
  return wide & hsWide8(kLanes < uint8_t(count));
}
