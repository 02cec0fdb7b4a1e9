// Few colours that represent many.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct ColorCount {
  uint32_t color;  // 0xYYRRBB00
  uint32_t count;  // pixels
};

// The colours of all pixels, each once, in rising order; transparent pixels have none. More than 2^32 - 1 pixels of one
// colour don't occur.
std::vector<ColorCount> countColors(std::vector<uint32_t> pixels);

// At most `most` colours (1 or more) besides those in `given`, dark to bright, so that with the given ones every pixel
// finds one near it. When that is enough for all, they are exactly the picture's.
std::vector<uint32_t> choosePalette(std::vector<ColorCount> colors, const std::vector<uint32_t>& given, size_t most);
