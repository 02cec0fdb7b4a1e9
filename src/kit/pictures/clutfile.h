// Colour tables: the files, and the tables that the kit makes.
//
// A file holds up to 240 colours. In every table index 237 is transparent, and the kit's own keep 235 for black and 236
// for white, since pages call them by those names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/screen/standardcolor.h"

inline constexpr size_t kMostChosenColors = kMaxClutColors - 3;

// Colours 0xYYRRBB00 in the order of their indices, as the player takes them. Throws KitError.
std::vector<uint32_t> readClutFile(const std::string& path);
std::vector<uint32_t> readClut(const std::string& path, const std::vector<uint8_t>& bytes);  // of that file
std::vector<uint32_t> parseClut(const std::vector<uint8_t>& bytes);
std::vector<uint8_t> clutBytes(const std::vector<uint32_t>& colors);
void writeClutFile(const std::string& path, const std::vector<uint32_t>& colors);

// Whether the bytes are a table as the kit makes them: full, with the fixed three in their places.
bool isKitClut(const std::vector<uint8_t>& bytes);

// A whole table of the fixed three and of up to kMostChosenColors that suit the pixels; `most` counts black and white
// too, and is at least 3.
std::vector<uint32_t> makeClut(const std::vector<uint32_t>& pixels, size_t most);
