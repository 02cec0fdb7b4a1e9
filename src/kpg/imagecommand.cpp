// kpg image: pictures for the player, and what its files hold.
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/pictures/convertpicture.h"
#include "kit/pictures/picturelist.h"
#include "kpg/colorword.h"
#include "kpg/commands.h"

namespace {

struct ImageOptions : PictureOptions {
  std::vector<std::string> inputs;
  std::string output, backgroundText;
  bool list = false;
};

void run(ImageOptions& options) {
  if (options.list) {
    const bool swatches = isatty(STDOUT_FILENO) && !std::getenv("NO_COLOR");
    for (const std::string& path : options.inputs) std::cout << listPictureFile(path, swatches);
    return;
  }
  if (options.inputs.size() != 1 || options.output.empty())
    throw KitError("kpg image: takes one picture and -o, or --list");
  options.background = colorFromWord(options.backgroundText);
  convertPicture(options.inputs[0], options.output, options);
}

}  // namespace

void addImageCommand(CommandLine& line) {
  auto options = std::make_shared<ImageOptions>();
  KpgCommand command = line.command("image", "Make a picture for the player, or list what picture files hold");
  command.add("pictures", options->inputs, "The picture, PNG or GIF; with --list also KPX and CLUT files")
      .required()
      .type("IN.png|IN.gif");
  command.add("-o,--out", options->output, "The picture to write; - for the standard output").type("OUT.kpx");
  const KpgOption clut =
      command.add("--clut", options->clut, "Use the colours of this table; by default OUT.clut is made")
          .type("FILE.clut");
  command
      .add("--clut-name", options->clutName,
           "What the picture calls its table, as the page's folder sees it; '' for the table of the page")
      .type("NAME");
  command.add("--colors", options->most, "Make a table of at most this number of colours, black and white among them")
      .between(3, kMaxClutColors - 1)
      .excludes(clut);
  command.add("--background", options->backgroundText, "Blend the picture over a colour; nothing stays transparent")
      .check(problemOfColor)
      .type("#RRGGBB");
  command.flag("--dither", options->dither, "Scatter what a colour misses over its neighbours");
  command.flag("--list", options->list,
               "Print what the files hold; the colours of a table are shown on a terminal, unless NO_COLOR is set");
  command.runs([options] { run(*options); });
}
