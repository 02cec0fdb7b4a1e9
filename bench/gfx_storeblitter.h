// The least that a blitter for 16-bit pixels can do: an opaque colour is stored as the system's own blitters store it,
// coverage blends it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "gfx/pixel/fillrow.h"
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
      hsFillRow16(row, width, fColor);
  }

 private:
  // Runs of nothing are passed over and runs of everything stored, eight pixels at a look.
  void Blend(uint16_t* row, int32_t width) const {
    for (int32_t i = 0; i < width;) {
      const uint8_t coverage = fAlpha[i];
      if (coverage != 0 && coverage != 0xFF) {
        row[i] = Mix(row[i], coverage + 1u);
        ++i;
        continue;
      }
      const int32_t end = RunEnd(i, width);
      if (coverage == 0xFF) std::fill_n(row + i, end - i, fColor);
      i = end;
    }
  }
  // After the bytes that equal the one at i.
  int32_t RunEnd(int32_t i, int32_t width) const {
    const uint8_t same = fAlpha[i];
    const uint64_t eight = same * uint64_t{0x0101010101010101};
    for (uint64_t bytes; i + 8 <= width; i += 8) {
      std::memcpy(&bytes, fAlpha + i, sizeof bytes);
      if (bytes != eight) break;
    }
    while (i < width && fAlpha[i] == same) ++i;
    return i;
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
