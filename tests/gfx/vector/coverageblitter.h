// What each pixel was covered by: 255 where no coverage is in force, 0 where nothing was asked for.
#pragma once

#include <gtest/gtest.h>

#include "gfx/vector/hsgblitter.h"

struct CoverageBlitter : hsGBlitter {
  static constexpr int kSize = 64;  // pixels either way; what lies outside is left out

  // A pixel that comes twice fails.
  void BlitH(int32_t y, int32_t x, int32_t width) override {
    for (int32_t i = 0; i < width; ++i) {
      if (x + i < 0 || y < 0 || x + i >= kSize || y >= kSize) continue;
      ASSERT_EQ(covered[y][x + i], 0);
      covered[y][x + i] = fAlpha ? fAlpha[i] : 255;
    }
  }
  uint8_t covered[kSize][kSize] = {};
};
