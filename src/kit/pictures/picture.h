// Pictures as authors bring them: PNG and GIF.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Picture {
  uint32_t width = 0, height = 0;  // pixels, up to 65,535 each
  std::vector<uint32_t> pixels;    // 0xAARRGGBB, not premultiplied, rows from the top
};

// The most pixels that are read from a file.
inline constexpr uint64_t kMaxPicturePixels = uint64_t{1} << 26;

// What readers of one format share: the error for sizes that can't be.
void checkPictureSize(const std::string& path, uint64_t width, uint64_t height);
