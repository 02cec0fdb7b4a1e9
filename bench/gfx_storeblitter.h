// The least that a blitter for 16-bit pixels can do: an opaque colour is stored, coverage blends it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "gfx/vector/hsgblitter.h"

constexpr int kWidth = 720, kHeight = 480;  // of the screen, in pixels

class StoreBlitter : public hsGBlitter {
 public:
  explicit StoreBlitter(uint16_t color) : fColor(color), fPixels(size_t(kWidth * kHeight)) {}

  const uint16_t* Pixels() const { return fPixels.data(); }

  void BlitH(int32_t y, int32_t x, int32_t width) override {
    uint16_t* const row = fPixels.data() + y * kWidth + x;
    if (fAlpha)
      Blend(row, width);
    else
      std::fill_n(row, width, fColor);
  }

 private:
  // Runs of nothing and of everything go four pixels at a time.
  void Blend(uint16_t* row, int32_t width) const {
    int32_t i = 0;
    while (i < width) {
      uint32_t four = 1;
      if (i + 4 <= width) std::memcpy(&four, fAlpha + i, sizeof four);
      if (four == 0) {
        i += 4;
      } else if (four == 0xFFFFFFFF) {
        std::fill_n(row + i, 4, fColor);
        i += 4;
      } else {
        row[i] = Mix(row[i], fAlpha[i] + 1u);
        ++i;
      }
    }
  }
  // scale 1 to 256; the three channels apart in one word.
  uint16_t Mix(uint32_t dst, uint32_t scale) const {
    const auto spread = [](uint32_t p) { return (p | p << 16) & 0x03E0FC1F; };
    const uint32_t d = spread(dst), s = spread(fColor);
    const uint32_t five = scale >> 3;
    const uint32_t mixed = (d + (((s - d) * five) >> 5)) & 0x03E0FC1F;
    return uint16_t(mixed | mixed >> 16);
  }

  const uint16_t fColor;
  std::vector<uint16_t> fPixels;
};
