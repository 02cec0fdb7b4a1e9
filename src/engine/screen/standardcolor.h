// The colours that mean the same on every screen.
#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr int kColorBlack = 1, kColorWhite = 2, kColorTransparent = 3;

inline constexpr size_t kMaxClutColors = 240;  // that a file of a colour table holds

// Their palette indices on an 8-bit screen.
inline constexpr uint8_t kIndexBlack = 235, kIndexWhite = 236, kIndexTransparent = 237;

// The engine colour of one of them on a screen of that depth: a palette index on an 8-bit one, else 0xYYRRBBAA. 0 for
// any other number.
constexpr uint32_t standardColorFor(int n, int depth) {
  switch (n) {
    case kColorBlack: return depth == 8 ? kIndexBlack : 0x10808000;
    case kColorWhite: return depth == 8 ? kIndexWhite : 0xEB808000;
    case kColorTransparent: return depth == 8 ? kIndexTransparent : 0;
    default: return 0;
  }
}
