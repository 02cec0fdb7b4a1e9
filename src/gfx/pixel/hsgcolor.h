// Colours: as callers state them (16 bits a channel, not premultiplied), as 32-bit pixels and palette entries, and as
// 16-bit pixels.
//
// Channels are truncated on every way down; nothing rounds up.
#pragma once

#include <cstdint>

struct hsGColor {
  uint16_t fA, fR, fG, fB;

  constexpr bool operator==(const hsGColor&) const = default;
};

// 0xAARRGGBB, premultiplied where it is a pixel.
using hsGColor32 = uint32_t;

constexpr hsGColor32 hsMakeColor32(uint32_t a, uint32_t r, uint32_t g, uint32_t b) {
  return a << 24 | r << 16 | g << 8 | b;
}
constexpr uint32_t hsColor32A(hsGColor32 c) { return c >> 24; }
constexpr uint32_t hsColor32R(hsGColor32 c) { return c >> 16 & 255; }
constexpr uint32_t hsColor32G(hsGColor32 c) { return c >> 8 & 255; }
constexpr uint32_t hsColor32B(hsGColor32 c) { return c & 255; }

// 0xFF becomes 0xFFFF.
constexpr uint16_t hsWiden8(uint32_t v) { return uint16_t(v << 8 | v); }
constexpr hsGColor hsWidenColor32(hsGColor32 c) {
  return {hsWiden8(hsColor32A(c)), hsWiden8(hsColor32R(c)), hsWiden8(hsColor32G(c)), hsWiden8(hsColor32B(c))};
}

// The high bytes, as they are.
constexpr hsGColor32 hsNarrowColor(const hsGColor& c) {
  return hsMakeColor32(c.fA >> 8, c.fR >> 8, c.fG >> 8, c.fB >> 8);
}
// All four bytes times scale (0 to 256), shifted right 8.
constexpr hsGColor32 hsScaleColor32(hsGColor32 c, uint32_t scale) {
  return (((c & 0x00FF00FF) * scale) >> 8 & 0x00FF00FF) | ((c >> 8 & 0x00FF00FF) * scale & 0xFF00FF00);
}
constexpr hsGColor32 hsPremultiply(const hsGColor& c) {
  const uint32_t a = c.fA >> 8;
  return (hsScaleColor32(hsNarrowColor(c), a + 1) & 0x00FFFFFF) | a << 24;
}

// 16-bit pixels: six bits of red on top, five each of green and blue. A channel that is too wide spills into its
// neighbour.
constexpr uint16_t hsPack16(uint32_t r6, uint32_t g5, uint32_t b5) { return uint16_t(r6 << 10 | g5 << 5 | b5); }
constexpr uint32_t hsRed6(uint32_t p) { return p >> 10; }
constexpr uint32_t hsGreen5(uint32_t p) { return p >> 5 & 31; }
constexpr uint32_t hsBlue5(uint32_t p) { return p & 31; }
// Red lands one bit low, and the lowest bit of alpha above it: an opaque red of 0 packs as 32. Pictures depend on it.
constexpr uint16_t hsPack32To16(hsGColor32 p) {
  return uint16_t((p >> 9 & 0xFC00) | (p >> 6 & 0x03E0) | (p >> 3 & 0x1F));
}
constexpr uint32_t hsWiden5(uint32_t v) { return v << 3 | v >> 2; }
constexpr uint32_t hsWiden6(uint32_t v) { return v << 2 | v >> 4; }

// The cell of a 4096-entry inverse table for a colour.
constexpr uint32_t hsInverseCell(hsGColor32 c) { return (c >> 12 & 0xF00) | (c >> 8 & 0xF0) | (c >> 4 & 0x0F); }
constexpr uint32_t hsInverseCell(uint32_t r, uint32_t g, uint32_t b) {
  return (r << 4 & 0xF00) | (g & 0xF0) | (b >> 4 & 0x0F);
}
