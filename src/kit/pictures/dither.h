// From colours to indices of a palette.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/pictures/nearestcolor.h"

inline constexpr uint32_t kNoEntry = UINT32_MAX;

// The number of the palette's entry for each pixel of rows of `width`, kNoEntry for transparent ones. With `dither`
// what a pixel misses goes to its neighbours, so that areas keep their mean colour.
std::vector<uint32_t> mapToPalette(const std::vector<uint32_t>& pixels, uint32_t width, const NearestColor& palette,
                                   bool dither);
