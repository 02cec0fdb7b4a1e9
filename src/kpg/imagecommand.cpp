// kpg image: pictures for the player, and what its files hold.
#include <filesystem>
#include <iostream>
#include <memory>

#include "engine/images/imagecache.h"
#include "kpg/clutfile.h"
#include "kpg/commands.h"
#include "kpg/dither.h"
#include "kpg/enginecolors.h"
#include "kpg/errors.h"
#include "kpg/imagelist.h"
#include "kpg/kpxfile.h"

namespace {

namespace fs = std::filesystem;

struct ImageOptions {
  std::vector<std::string> inputs;
  std::string output;
  std::string clut;                     // a table to use; without one the picture gets its own
  std::optional<std::string> clutName;  // what the picture calls its table; by default the file's name without folder
  size_t most = kMaxClutColors - 1;
  std::string background;
  bool dither = false, list = false;
};

// What "#RRGGBB" says.
std::optional<uint32_t> backgroundColor(const std::string& text) {
  if (text.empty()) return {};
  return uint32_t(std::stoul(text.substr(1), nullptr, 16));
}

std::string checkColor(const std::string& text) {
  const bool good =
      text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
  return good ? "" : "'" + text + "' is no colour #RRGGBB";
}

// A picture that not even the empty cache takes would never show. A page's name for it is at least its file's.
void checkMemory(const std::string& path, const Picture& picture, const std::string& output) {
  const uint64_t need =
      imageMemory(uint64_t{picture.width} * picture.height, fs::path(output).filename().string().size());
  if (need <= imageMemoryLimit()) return;
  throw CommandError(path + ": " + std::to_string(picture.width) + " x " + std::to_string(picture.height) +
                     " pixels take " + std::to_string(need) + " bytes; the player has " +
                     std::to_string(imageMemoryLimit()) + " for all pictures");
}

std::vector<uint32_t> tableOf(const ImageOptions& options, const std::vector<uint32_t>& pixels) {
  if (options.clut.empty()) return makeClut(pixels, options.most);
  std::vector<uint32_t> table = readClutFile(options.clut);
  if (table.empty()) throw CommandError(options.clut + ": there is no colour in it");
  return table;
}

// Indices of the table; the transparent one stands for transparent pixels only.
std::vector<uint8_t> indicesOf(const std::vector<uint32_t>& pixels, uint32_t width, const std::vector<uint32_t>& table,
                               bool dither) {
  std::vector<uint32_t> colors;
  std::vector<uint8_t> indices;
  for (size_t i = 0; i < table.size(); ++i) {
    if (i == kTransparentIndex) continue;
    colors.push_back(table[i]);
    indices.push_back(uint8_t(i));
  }
  std::vector<uint8_t> result;
  result.reserve(pixels.size());
  for (uint32_t number : mapToPalette(pixels, width, NearestColor(colors), dither))
    result.push_back(number == kNoEntry ? uint8_t(kTransparentIndex) : indices[number]);
  return result;
}

void makeImage(const ImageOptions& options) {
  const std::string& input = options.inputs[0];
  const Picture picture = readPicture(input);
  checkMemory(input, picture, options.output);
  const std::string clut =
      options.clut.empty() ? fs::path(options.output).replace_extension(".clut").string() : options.clut;
  const std::string clutName = options.clutName.value_or(fs::path(clut).filename().string());
  if (clutName.size() > UINT8_MAX) throw CommandError(clutName + ": this name is too long for a picture to hold");

  const std::vector<uint32_t> pixels = toEngineColors(picture, backgroundColor(options.background));
  const std::vector<uint32_t> table = tableOf(options, pixels);
  writeKpxFile(options.output,
               {picture.width, picture.height, clutName, indicesOf(pixels, picture.width, table, options.dither)});
  if (options.clut.empty()) writeClutFile(clut, table);
}

void run(const ImageOptions& options) {
  if (options.list) {
    for (const std::string& path : options.inputs) listImageFile(path, std::cout);
    return;
  }
  if (options.inputs.size() != 1 || options.output.empty())
    throw CommandError("kpg image: takes one picture and -o, or --list");
  makeImage(options);
}

}  // namespace

void addImageCommand(CommandLine& line) {
  auto options = std::make_shared<ImageOptions>();
  KpgCommand command = line.command("image", "Make a picture for the player, or list what picture files hold");
  command.add("pictures", options->inputs, "The picture, PNG or GIF; with --list also KPX and CLUT files")
      .required()
      .type("IN.png|IN.gif");
  command.add("-o", options->output, "The picture to write").type("OUT.kpx");
  const KpgOption clut =
      command.add("--clut", options->clut, "Use the colours of this table; by default OUT.clut is made")
          .type("FILE.clut");
  command
      .add("--clut-name", options->clutName,
           "What the picture calls its table, as the page's folder sees it; '' for the table of the page")
      .type("NAME");
  command.add("--colors", options->most, "Make a table of so many colours, black and white among them")
      .between(3, kMaxClutColors - 1)
      .excludes(clut);
  command.add("--background", options->background, "Blend the picture over a colour; nothing stays transparent")
      .check(checkColor)
      .type("#RRGGBB");
  command.flag("--dither", options->dither, "Scatter what a colour misses over its neighbours");
  command.flag("--list", options->list, "Tell what the files hold");
  command.runs([options] { run(*options); });
}
