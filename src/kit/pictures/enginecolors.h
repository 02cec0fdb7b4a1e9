// Pictures in the player's own colours, 0xYYRRBB00, in which everything that picks colours works: luma counts double,
// as it does to the eye.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "kit/pictures/picture.h"

// A pixel through which one sees the programme. No colour has this word.
inline constexpr uint32_t kTransparentPixel = 1;

struct EngineColor {
  explicit EngineColor(uint32_t color) : y(int(color >> 24)), cr(int(color >> 16 & 255)), cb(int(color >> 8 & 255)) {}
  EngineColor(int y, int cr, int cb) : y(y), cr(cr), cb(cb) {}
  int y, cr, cb;
};

inline int colorDistance(const EngineColor& a, const EngineColor& b) {
  const int y = a.y - b.y, cr = a.cr - b.cr, cb = a.cb - b.cb;
  return 2 * y * y + cr * cr + cb * cb;
}

// One word a pixel. Over a background (0x00RRGGBB) alpha is blended; without one, pixels below half alpha become
// transparent and all others opaque.
std::vector<uint32_t> toEngineColors(const Picture& picture, std::optional<uint32_t> background);
