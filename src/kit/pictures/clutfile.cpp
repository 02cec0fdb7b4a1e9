#include "kit/pictures/clutfile.h"

#include <algorithm>

#include "host/color.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/picturekind.h"
#include "kit/pictures/png.h"
#include "kit/pictures/quantize.h"

std::vector<uint32_t> parseClut(const std::vector<uint8_t>& bytes) {
  std::vector<uint32_t> colors;
  for (size_t at = 1; at + 4 <= bytes.size() && colors.size() < kMaxClutColors; at += 4)
    colors.push_back(uint32_t(bytes[at]) << 24 | uint32_t(bytes[at + 1]) << 16 | uint32_t(bytes[at + 2]) << 8);
  if (colors.size() > kIndexTransparent) colors[kIndexTransparent] = 0;
  return colors;
}

std::vector<uint32_t> readClutFile(const std::string& path) { return readClut(path, readFile(path)); }

std::vector<uint32_t> readClut(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::string kind = describePictureFile(bytes);
  if (kind.empty() && isPng(bytes)) kind = "a PNG picture";
  if (!kind.empty() && !isKitClut(bytes)) throw KitError(path, "is " + kind + ", no colour table");
  return parseClut(bytes);
}

std::vector<uint8_t> clutBytes(const std::vector<uint32_t>& colors) {
  std::vector<uint8_t> bytes = {0};
  for (uint32_t color : colors)
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(uint8_t(color >> shift));
  return bytes;
}

void writeClutFile(const std::string& path, const std::vector<uint32_t>& colors) {
  const std::vector<uint8_t> bytes = clutBytes(colors);
  writeFile(path, bytes.data(), bytes.size());
}

bool isKitClut(const std::vector<uint8_t>& bytes) {
  if (bytes.size() != 1 + 4 * kMaxClutColors) return false;
  const std::vector<uint32_t> colors = parseClut(bytes);
  const uint8_t* transparent = bytes.data() + 1 + 4 * kIndexTransparent;
  return colors[kIndexBlack] == rgbToYCrCb(0) && colors[kIndexWhite] == rgbToYCrCb(0xFFFFFF00) &&
         std::all_of(transparent, transparent + 4, [](uint8_t byte) { return byte == 0; });
}

std::vector<uint32_t> makeClut(const std::vector<uint32_t>& pixels, size_t most) {
  const std::vector<uint32_t> given = {rgbToYCrCb(0), rgbToYCrCb(0xFFFFFF00)};
  const std::vector<uint32_t> chosen =
      choosePalette(countColors(pixels), given, std::min(most - given.size(), kMostChosenColors));
  std::vector<uint32_t> table(kMaxClutColors, given[0]);
  size_t index = 0;
  for (uint32_t color : chosen) {
    if (index == kIndexBlack) index = kIndexTransparent + 1;
    table[index++] = color;
  }
  table[kIndexBlack] = given[0];
  table[kIndexWhite] = given[1];
  table[kIndexTransparent] = 0;
  return table;
}
