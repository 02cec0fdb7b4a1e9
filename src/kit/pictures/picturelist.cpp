#include "kit/pictures/picturelist.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>

#include "engine/images/imagecache.h"
#include "gfx/foundation/hsascii.h"
#include "host/color.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/enginecolors.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/picturekind.h"
#include "kit/pictures/png.h"
#include "kit/pictures/quantize.h"

namespace {

namespace fs = std::filesystem;

std::string sizeOf(uint32_t width, uint32_t height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

std::string counted(size_t n, const std::string& what) { return std::to_string(n) + " " + what + (n == 1 ? "" : "s"); }

void listPng(const std::string& path, const std::vector<uint8_t>& bytes, std::ostream& out) {
  const Picture picture = decodePng(path, bytes);
  const auto pixels = toEngineColors(picture, {});
  const auto transparent = std::count(pixels.begin(), pixels.end(), kTransparentPixel);
  out << "PNG, " << sizeOf(picture.width, picture.height) << ", " << counted(countColors(pixels).size(), "colour")
      << ", " << transparent << " pixels transparent\n";
}

void listGif(const std::string& path, const std::vector<uint8_t>& bytes, std::ostream& out) {
  const GifSummary gif = summarizeGif(path, bytes);
  out << "GIF, " << sizeOf(gif.width, gif.height) << ", " << counted(size_t(gif.images), "image") << ", "
      << counted(size_t(gif.colors), "colour");
  if (gif.transparent >= 0) out << ", index " << gif.transparent << " transparent";
  out << "\n";
}

// A patch of the colour, for terminals with 24-bit colour.
std::string swatch(uint32_t rgb) {
  char text[48];
  std::snprintf(text, sizeof text, "\x1b[48;2;%u;%u;%um    \x1b[0m  ", rgb >> 16 & 255, rgb >> 8 & 255, rgb & 255);
  return text;
}

// A run of one colour, such as fills what a table doesn't use, is one line.
void listClut(const std::vector<uint8_t>& bytes, bool swatches, std::ostream& out) {
  const std::vector<uint32_t> colors = parseClut(bytes);
  out << "colour table, " << counted(colors.size(), "colour") << "\n";
  for (size_t i = 0, next; i < colors.size(); i = next) {
    const auto different =
        std::find_if(colors.begin() + long(i), colors.end(), [&](uint32_t c) { return c != colors[i]; });
    next = i == kIndexTransparent ? i + 1 : size_t(different - colors.begin());
    const uint32_t rgb = yCrCbToRgb(colors[i]);
    char index[32], color[64];
    std::snprintf(index, sizeof index, "%5zu  ", i);
    std::snprintf(color, sizeof color, "#%06X  0x%08X", rgb, colors[i]);
    out << index << (swatches ? swatch(rgb) : "") << color;
    if (i == kIndexTransparent) out << "  transparent";
    if (next > i + 1) out << "  up to " << next - 1;
    out << "\n";
  }
  const std::set<uint32_t> used(colors.begin(), colors.end());
  out << counted(used.size(), "different colour") << "\n";
}

void listKpx(const std::string& path, const std::vector<uint8_t>& bytes, std::ostream& out) {
  const KpxFile picture = parseKpx(path, bytes);
  const std::set<uint8_t> indices(picture.pixels.begin(), picture.pixels.end());
  out << "picture, " << sizeOf(picture.width, picture.height) << ", "
      << (picture.clut.empty() ? "the page's colour table" : "colour table '" + picture.clut + "'") << ", "
      << counted(indices.size() - indices.count(kIndexTransparent), "colour") << ", "
      << std::count(picture.pixels.begin(), picture.pixels.end(), kIndexTransparent) << " pixels transparent, "
      << imageMemory(picture.pixels.size(), fs::path(path).filename().string().size()) << " bytes of picture memory\n";
}

}  // namespace

std::string listPictureFile(const std::string& path, bool swatches) {
  const std::vector<uint8_t> bytes = readFile(path);
  std::ostringstream list;
  if (isPng(bytes)) {
    listPng(path, bytes, list);
  } else if (isGif(bytes)) {
    listGif(path, bytes, list);
  } else if (hsAsciiEqualIgnoringCase(fs::path(path).extension().string().c_str(), ".clut")) {
    listClut(bytes, swatches, list);
  } else {
    const std::string kind = describePictureFile(bytes);
    if (!kind.empty()) throw KitError(path, "is " + kind + ", no picture that the player or the kit reads");
    listKpx(path, bytes, list);
  }
  return path + ": " + list.str();
}
