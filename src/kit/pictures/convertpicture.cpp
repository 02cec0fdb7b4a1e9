#include "kit/pictures/convertpicture.h"

#include <filesystem>

#include "engine/images/imagecache.h"
#include "kit/errors.h"
#include "kit/pictures/dither.h"
#include "kit/pictures/enginecolors.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/readpicture.h"

namespace fs = std::filesystem;

namespace {

// A picture that not even the empty cache takes would never show. A page's name for it is at least its file's.
void checkMemory(const std::string& path, const Picture& picture, const std::string& output) {
  const uint64_t need =
      imageMemory(uint64_t{picture.width} * picture.height, fs::path(output).filename().string().size());
  if (need <= imageMemoryLimit()) return;
  throw KitError(path, std::to_string(picture.width) + " x " + std::to_string(picture.height) + " pixels take " +
                           std::to_string(need) + " bytes; the player has " + std::to_string(imageMemoryLimit()) +
                           " for all pictures");
}

std::vector<uint32_t> tableOf(const PictureOptions& options, const std::vector<uint32_t>& pixels,
                              const ReadFile& readTable) {
  if (options.clut.empty()) return makeClut(pixels, options.most);
  std::vector<uint32_t> table = readClut(options.clut, readTable(options.clut));
  if (table.empty()) throw KitError(options.clut, "there is no colour in it");
  return table;
}

// Indices of the table; the transparent one is for transparent pixels only.
std::vector<uint8_t> indicesOf(const std::vector<uint32_t>& pixels, uint32_t width, const std::vector<uint32_t>& table,
                               bool dither) {
  std::vector<uint32_t> colors;
  std::vector<uint8_t> indices;
  for (size_t i = 0; i < table.size(); ++i) {
    if (i == kIndexTransparent) continue;
    colors.push_back(table[i]);
    indices.push_back(uint8_t(i));
  }
  std::vector<uint8_t> result;
  result.reserve(pixels.size());
  for (uint32_t number : mapToPalette(pixels, width, NearestColor(colors), dither))
    result.push_back(number == kNoEntry ? uint8_t(kIndexTransparent) : indices[number]);
  return result;
}

}  // namespace

ConvertedPicture pictureForPlayer(const std::string& input, const std::string& output, const PictureOptions& options,
                                  const ReadFile& readTable) {
  const Picture picture = readPicture(input);
  checkMemory(input, picture, output);
  const std::string clut = options.clut.empty() ? ownClutName(output) : options.clut;
  const std::string clutName = options.clutName.value_or(fs::path(clut).filename().string());
  if (clutName.size() > UINT8_MAX) throw KitError(clutName, "this name is too long for a picture to hold");

  const std::vector<uint32_t> pixels = toEngineColors(picture, options.background);
  const std::vector<uint32_t> table = tableOf(options, pixels, readTable);
  ConvertedPicture converted;
  converted.kpx =
      kpxBytes({picture.width, picture.height, clutName, indicesOf(pixels, picture.width, table, options.dither)});
  if (options.clut.empty()) converted.ownClut = clutBytes(table);
  return converted;
}

std::string ownClutName(const std::string& output) {
  return fs::path(output).replace_extension(".clut").generic_string();
}

void convertPicture(const std::string& input, const std::string& output, const PictureOptions& options) {
  const bool ownTable = options.clut.empty();
  if (ownTable && isStandardOutput(output))
    throw KitError(input, "its colour table goes beside the picture, so the picture needs a name; or say --clut FILE");
  const std::string clut = ownTable ? ownClutName(output) : options.clut;
  const ConvertedPicture converted = pictureForPlayer(input, output, options);
  OutputFiles files;
  if (ownTable && clut == output) throw KitError(output, "is the name of the picture's colour table");
  ownTable ? refuseClashes({output, clut}, {input}) : refuseClashes({output}, {input, clut});
  files.add(output, converted.kpx.data(), converted.kpx.size());
  if (ownTable) {
    refuseForeign(clut, isKitClut, "say --clut to use its colours, or give the picture another name");
    files.add(clut, converted.ownClut.data(), converted.ownClut.size());
  }
  files.finish();
}

std::vector<uint32_t> clutOfPictures(const std::vector<std::string>& paths, size_t most) {
  std::vector<uint32_t> pixels;
  for (const std::string& path : paths) {
    const auto more = toEngineColors(readPicture(path), {});
    pixels.insert(pixels.end(), more.begin(), more.end());
  }
  return makeClut(pixels, most);
}
