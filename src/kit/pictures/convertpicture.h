// From an author's picture to the player's picture and its colour table.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kit/files.h"
#include "kit/pictures/clutfile.h"

struct PictureOptions {
  std::string clut;                     // a table to use; without one the picture gets its own beside it
  std::optional<std::string> clutName;  // what the picture calls its table; by default the file's name without folder
  size_t most = kMaxClutColors - 1;     // colours of a table of its own
  std::optional<uint32_t> background;   // 0x00RRGGBB to blend over; without one the picture keeps its holes
  bool dither = false;
};

struct ConvertedPicture {
  std::vector<uint8_t> kpx, ownClut;  // no table when the options have one
};

// `output` is the file that the picture is for; `readTable` reads the table that the options name. Throws KitError.
ConvertedPicture pictureForPlayer(const std::string& input, const std::string& output, const PictureOptions& options,
                                  const ReadFile& readTable = readFile);

// The file of the table that a picture gets for itself.
std::string ownClutName(const std::string& output);

// Writes the picture, and its table when it gets its own. Throws KitError.
void convertPicture(const std::string& input, const std::string& output, const PictureOptions& options);

// A table for several pictures, as makeClut. Throws KitError.
std::vector<uint32_t> clutOfPictures(const std::vector<std::string>& paths, size_t most);
