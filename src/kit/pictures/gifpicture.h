// GIF pictures, through the player's own decoder.
#pragma once

#include <string>
#include <vector>

#include "kit/pictures/picture.h"

struct GifSummary {
  uint32_t width, height;  // of the picture
  int images;
  int colors;       // of the first image's table
  int transparent;  // the first image's transparent index, or -1
};

bool isGif(const std::vector<uint8_t>& bytes);

// The first image where it lies in the picture, in its own colours; what it doesn't cover is transparent. `path` is for
// errors, which are KitErrors.
Picture decodeGif(const std::string& path, const std::vector<uint8_t>& bytes);

GifSummary summarizeGif(const std::string& path, const std::vector<uint8_t>& bytes);
