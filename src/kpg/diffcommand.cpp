// kpg diff: what differs between two pictures or two pages.
#include <algorithm>
#include <filesystem>
#include <iostream>
#include <memory>

#include "kit/diff/pagediff.h"
#include "kit/diff/picturediff.h"
#include "kit/errors.h"
#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/pictures/readpicture.h"
#include "kit/source/sourcevalue.h"
#include "kpg/commands.h"

namespace {

struct DiffCommandOptions {
  std::string first, second, output;
  size_t tolerance = 0;
};

bool isPicture(const std::string& path) {
  const std::string kind = std::filesystem::path(path).extension().string();
  return kind == ".png" || kind == ".gif";
}

// Whether anything differs; it is printed.
bool diffPictures(const DiffCommandOptions& options) {
  refuseClashes({options.output}, {options.first, options.second});
  const Picture a = readPicture(options.first), b = readPicture(options.second);
  const PictureDiffOptions how{int(options.tolerance), {}};
  const PictureDiff diff = comparePictures(a, b, how);
  if (!options.output.empty()) {
    const Picture shown = pictureOfDifference(a, b, how);
    writePng(options.output, int(shown.width), int(shown.height), shown.pixels);
  }
  const std::string text = differenceText(diff, a, b);
  if (!text.empty()) std::cout << text << "\n";
  return !text.empty();
}

bool diffPages(const DiffCommandOptions& options) {
  if (!options.output.empty()) KpgCommand::refuse("--out is for pictures");
  const std::vector<std::string> lines = pageDifferences(options.first, options.second);
  for (const std::string& line : lines) std::cout << line << "\n";
  return !lines.empty();
}

void diff(const DiffCommandOptions& options) {
  if (isPicture(options.first) != isPicture(options.second))
    KpgCommand::refuse("a picture can only be compared with a picture, and a page with a page");
  if (isPicture(options.first) ? diffPictures(options) : diffPages(options)) throw CommandFailure(1, "");
}

}  // namespace

void addDiffCommand(CommandLine& line) {
  auto options = std::make_shared<DiffCommandOptions>();
  KpgCommand command = line.command(
      "diff", "Print what differs between two pictures or two pages; exit status 1 when something does, 2 for errors",
      2);
  command.add("first", options->first, "A picture, or a page or its source").required().type("A.png|A.kpg|A.yaml");
  command.add("second", options->second, "What to compare it with").required().type("B.png|B.kpg|B.yaml");
  command.add("-o,--out", options->output, "Of pictures: draw the first, pale, with what differs in red")
      .type("OUT.png");
  command.add("--tolerance", options->tolerance, "Of pictures: how far each of red, green, blue and alpha may be off")
      .between(0, 255);
  command.runs([options] { diff(*options); });
}
