// kpg clut: makes colour tables.
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/convertpicture.h"
#include "kit/pictures/standardclut.h"
#include "kpg/commands.h"

namespace {

struct ClutOptions {
  std::vector<std::string> pictures;
  std::string output;
  bool standard = false;
  size_t most = kMaxClutColors - 1;
};

void makeTable(const ClutOptions& options) {
  if (options.standard != options.pictures.empty()) throw KitError("kpg clut: takes either pictures or --standard");
  if (options.standard) {
    const auto colors = standardClut();
    return writeClutFile(options.output, {colors.begin(), colors.end()});
  }
  refuseClashes({options.output}, options.pictures);
  writeClutFile(options.output, clutOfPictures(options.pictures, options.most));
}

}  // namespace

void addClutCommand(CommandLine& line) {
  auto options = std::make_shared<ClutOptions>();
  KpgCommand command = line.command("clut", "Make a colour table, from pictures that are to share it");
  command.add("pictures", options->pictures, "PNG or GIF pictures").type("IN.png");
  command.flag("--standard", options->standard, "A table of 240 colours that suits any page, from no picture");
  command.add("--colors", options->most, "At most this number of colours, black and white among them")
      .between(3, kMaxClutColors - 1);
  command.add("-o,--out", options->output, "The colour table to write; - for the standard output")
      .required()
      .type("OUT.clut");
  command.runs([options] { makeTable(*options); });
}
