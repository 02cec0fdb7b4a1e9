// kpg font: what a font file holds, whether the player can draw with it, and how that looks.
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/fonts/fontreport.h"
#include "kit/fonts/specimen.h"
#include "kit/pictures/png.h"
#include "kit/run/stdoutaside.h"
#include "kpg/commands.h"

namespace {

// What the graphics library reports meanwhile is of no use to anybody.
Picture drawSpecimen(const std::string& path) {
  const StandardOutputAside aside;
  return fontSpecimen(path);
}

void show(const std::string& path, const std::string& picture) {
  const FontReport report = reportFont(path);
  (isStandardOutput(picture) ? std::cerr : std::cout) << report.text << std::flush;
  if (!report.problem.empty()) throw KitError(path, report.problem);
  if (picture.empty()) return;
  refuseClashes({picture}, {path});
  const Picture specimen = drawSpecimen(path);
  writePng(picture, int(specimen.width), int(specimen.height), specimen.pixels);
}

}  // namespace

void addFontCommand(CommandLine& line) {
  struct Options {
    std::string font, picture;
  };
  auto options = std::make_shared<Options>();
  KpgCommand command = line.command(
      "font", "Print what a font file holds and whether the player can draw with it; exit status 1 if it can't");
  command.add("font", options->font, "The font").required().type("FILE");
  command
      .add("-o,--out", options->picture,
           "A specimen to write: at each size without antialias and gridfit, with gridfit, with antialias, "
           "with both; - for the standard output")
      .type("PNG");
  command.runs([options] { show(options->font, options->picture); });
}
