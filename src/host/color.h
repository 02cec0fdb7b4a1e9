// Video colour to desktop colour and back.
//
// Engine colours are words 0xYYRRBBAA: luma 16 to 235, Cr and Cb around 128, the low byte unused. The two directions
// use separately rounded coefficients and are not exact inverses of each other; pictures depend on both as they are.
#pragma once

#include <cstdint>

uint32_t yCrCbToRgb(uint32_t color);  // 0xYYRRBBxx to 0x00RRGGBB
uint32_t rgbToYCrCb(uint32_t color);  // 0xRRGGBBxx to 0xYYRRBB00

// A 16-bit pixel (Y in bits 15-10, Cr in 9-5, Cb in 4-0) as an engine colour; low bits are not replicated.
constexpr uint32_t widenPixel16(uint16_t pixel) {
  return uint32_t(pixel >> 10) << 26 | uint32_t(pixel >> 5 & 31) << 19 | uint32_t(pixel & 31) << 11;
}
