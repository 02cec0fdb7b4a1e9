// Rows of 16-bit pixels of one value, stored in wide words.
#pragma once

#include "gfx/pixel/wide16.h"
#include "platform/cpu.h"

// Fewer than eight: two words that may lie over each other.
inline void hsFillFew16(uint16_t* row, int32_t count, uint16_t value) {
  if (count >= 4) {
    const uint64_t four = value * uint64_t{0x0001000100010001};
    std::memcpy(row, &four, sizeof four);
    std::memcpy(row + count - 4, &four, sizeof four);
  } else if (count >= 2) {
    const uint32_t two = value * uint32_t{0x00010001};
    std::memcpy(row, &two, sizeof two);
    std::memcpy(row + count - 2, &two, sizeof two);
  } else if (count == 1) {
    *row = value;
  }
}

inline void hsFillRow16(uint16_t* row, int32_t count, uint16_t value) {
  if (count < kWide16) return hsFillFew16(row, count, value);
  const hsWide16 wide = hsWide16{} + value;
  uint16_t* const last = row + count - kWide16;
  // The first and the last word may lie over their neighbours; in between they are aligned.
  hsStoreWide(row, wide);
  hsStoreWide(last, wide);
  if (count <= 2 * kWide16) return;
  if (count <= 4 * kWide16) {
    hsStoreWide(row + kWide16, wide);
    return hsStoreWide(last - kWide16, wide);
  }
  row += kWide16 - (reinterpret_cast<uintptr_t>(row) / sizeof *row) % kWide16;
  for (; last - row >= 7 * kWide16; row += 8 * kWide16)
    for (int32_t i = 0; i < 8; ++i) hsStoreWide(row + i * kWide16, wide);
  for (; row < last; row += kWide16) hsStoreWide(row, wide);
}

// height rows of at least one pixel each, rowBytes apart.
inline void hsFillRowsPlain16(uint16_t* row, uint32_t rowBytes, int32_t width, int32_t height, uint16_t value) {
  for (; height > 0; --height) {
    hsFillRow16(row, width, value);
    row = reinterpret_cast<uint16_t*>(reinterpret_cast<uint8_t*>(row) + rowBytes);
  }
}

#ifdef VISTREL_AVX2

using hsWider16 = uint16_t __attribute__((vector_size(32)));
constexpr int32_t kWider16 = 16;  // pixels

VISTREL_AVX2 inline void hsStoreWider(uint16_t* pixels, hsWider16 wide) { std::memcpy(pixels, &wide, sizeof wide); }

// Rows of at least sixteen.
VISTREL_AVX2 inline void hsFillRowsByAvx2(uint16_t* row, uint32_t rowBytes, int32_t width, int32_t height,
                                          uint16_t value) {
  const hsWider16 wide = hsWider16{} + value;
  for (; height > 0; --height) {
    uint16_t* const last = row + width - kWider16;
    hsStoreWider(row, wide);
    hsStoreWider(last, wide);
    uint16_t* to = row + kWider16 - (reinterpret_cast<uintptr_t>(row) / sizeof *row) % kWider16;
    for (; last - to >= 3 * kWider16; to += 4 * kWider16)
      for (int32_t i = 0; i < 4; ++i) hsStoreWider(to + i * kWider16, wide);
    for (; to < last; to += kWider16) hsStoreWider(to, wide);
    row = reinterpret_cast<uint16_t*>(reinterpret_cast<uint8_t*>(row) + rowBytes);
  }
}

#endif

inline void hsFillRows16(uint16_t* row, uint32_t rowBytes, int32_t width, int32_t height, uint16_t value) {
#ifdef VISTREL_AVX2
  if (width >= kWider16 && hasAvx2()) return hsFillRowsByAvx2(row, rowBytes, width, height, value);
#endif
  hsFillRowsPlain16(row, rowBytes, width, height, value);
}
