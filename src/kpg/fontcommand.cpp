// kpg font: what a font file holds, whether the player can draw with it, and how that looks.
#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/fonts/fontreport.h"
#include "kit/fonts/specimen.h"
#include "kit/run/stdoutaside.h"
#include "kpg/commands.h"

namespace {

void show(const std::string& path, const std::string& picture) {
  const FontReport report = reportFont(path);
  std::cout << report.text << std::flush;
  if (!report.problem.empty()) throw KitError(path, report.problem);
  if (picture.empty()) return;
  const StandardOutputAside aside;
  writeFontSpecimen(path, picture);
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
      .add("--out", options->picture,
           "A specimen to write: at each size without antialias and gridfit, with gridfit, with antialias, "
           "with both")
      .type("PNG");
  command.runs([options] { show(options->font, options->picture); });
}
