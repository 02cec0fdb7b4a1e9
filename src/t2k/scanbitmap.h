// The bitmap of a glyph. Grey runs from 0 to 120 and a little beyond, not to 255.
#pragma once

#include <climits>
#include <cstdint>

inline constexpr int kMaxGreyLevel = 5;
inline constexpr int64_t kMaxBitmapBytes = 1 << 26;  // a larger glyph has bounds but no bitmap
inline constexpr int kGreyFull = 120;

// Pixels, right and top exclusive.
struct PixelBox {
  int left, bottom, right, top;

  int Width() const { return right - left; }
  int Height() const { return top - bottom; }
};

// Of a bitmap only these rows, counted from its top; all unless something else is asked for.
struct T2KRows {
  int first = 0, limit = INT_MAX;  // limit: the row after the last
};

struct tsiScanConv {
  int left, bottom, right, top;  // pixels, Y up, right and top exclusive
  int32_t xmin, ymax;            // of the crossings, 26.6
  int rowBytes;                  // grey: the width; mono: bits packed from the top one, (width + 7) / 8
  uint8_t* baseAddr;             // rows from the top down; null if there is none

  int Width() const { return right - left; }
  int Height() const { return top - bottom; }
};
