// Eight 16-bit pixels at a time, and eight bytes.
//
// Compilers make one register of them where the processor has such registers, and plain code elsewhere.
#pragma once

#include <cstdint>
#include <cstring>

using hsWide16 = uint16_t __attribute__((vector_size(16)));
constexpr int32_t kWide16 = 8;  // pixels

using hsWide8 = uint8_t __attribute__((vector_size(8)));

inline hsWide16 hsLoadWide(const uint16_t* pixels) {
  hsWide16 wide;
  std::memcpy(&wide, pixels, sizeof wide);
  return wide;
}

inline hsWide8 hsLoadWide(const uint8_t* bytes) {
  hsWide8 wide;
  std::memcpy(&wide, bytes, sizeof wide);
  return wide;
}

inline void hsStoreWide(uint16_t* pixels, hsWide16 wide) { std::memcpy(pixels, &wide, sizeof wide); }

inline void hsStoreWide(uint8_t* bytes, hsWide8 wide) { std::memcpy(bytes, &wide, sizeof wide); }

// All ones in the lanes of set bits, the highest bit first.
template <class Wide>
inline Wide hsWideBits(uint8_t bits) {
  constexpr Wide kLanes = {0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1};
  return Wide(((Wide{} + bits) & kLanes) != 0);
}

// Zeros after the first count lanes.
inline hsWide8 hsFirstOfWide8(hsWide8 wide, int32_t count) {
  constexpr hsWide8 kLanes = {0, 1, 2, 3, 4, 5, 6, 7};
  return wide & hsWide8(kLanes < uint8_t(count));
}
