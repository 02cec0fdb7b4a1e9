// kpg color: what a 16-bit page makes of a colour.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "kit/pictures/showncolor.h"
#include "kpg/colorword.h"
#include "kpg/commands.h"

namespace {

std::string swatch(uint32_t rgb) {
  if (!isatty(STDOUT_FILENO) || std::getenv("NO_COLOR")) return "";
  char text[48];
  std::snprintf(text, sizeof text, "\x1b[48;2;%u;%u;%um    \x1b[0m  ", rgb >> 16 & 255, rgb >> 8 & 255, rgb & 255);
  return text;
}

std::string hex(uint32_t rgb) {
  char text[16];
  std::snprintf(text, sizeof text, "#%06X", rgb);
  return text;
}

std::string hue(uint32_t rgb) {
  const double degrees = hueOf(rgb);
  return degrees < 0 ? "grey" : "hue " + std::to_string(int(degrees + 0.5) % 360);
}

void tell(const std::string& text) {
  const uint32_t meant = *colorFromWord(text), other = colorOfSameHue(meant);
  const auto line = [](const char* what, uint32_t rgb) {
    std::cout << what << swatch(rgb) << hex(rgb) << "  " << hue(rgb) << "\n";
  };
  line("you write            ", meant);
  line("it shows as          ", shownColor(meant));
  std::cout << "nearest of that hue: write " << hex(other) << "\n";
  line("that shows as        ", shownColor(other));
}

}  // namespace

void addColorCommand(CommandLine& line) {
  auto colors = std::make_shared<std::vector<std::string>>();
  KpgCommand command =
      line.command("color", "Print what a 16-bit page shows for a colour, and what to write to keep its hue");
  command.add("color", *colors, "The colour; a # needs quotes in a shell, and can be left out")
      .required()
      .check(problemOfColor)
      .type("#RRGGBB");
  command.runs([colors] {
    for (const std::string& color : *colors) tell(color);
  });
}
