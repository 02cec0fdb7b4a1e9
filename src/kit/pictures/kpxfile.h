// The player's own picture files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct KpxFile {
  uint32_t width, height;       // up to 65,535
  std::string clut;             // file name of its colour table, up to 256 bytes; empty for the screen's
  std::vector<uint8_t> pixels;  // one index each, rows from the top
};

// `path` is for errors, which are KitErrors: a picture that the player would refuse.
KpxFile parseKpx(const std::string& path, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> kpxBytes(const KpxFile& picture);
void writeKpxFile(const std::string& path, const KpxFile& picture);
