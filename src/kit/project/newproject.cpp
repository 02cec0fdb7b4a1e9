#include "kit/project/newproject.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/fonts/fontreport.h"
#include "kit/fonts/machinefonts.h"
#include "kit/pictures/png.h"
#include "kit/project/project.h"

namespace fs = std::filesystem;

namespace {

constexpr char kProject[] =
    R"(# What this project consists of. `kpg build` makes it, `kpg pack` makes the folder that goes to the player.
pages: [main.yaml]
pictures:
  - {files: [sun.png], background: "#142434"}  # the page's colour, under what is transparent

# Copied from $FONTPATH.
# See what its licence allows before you ship it, or name another font here and in main.yaml.
fonts: [$FONT]
)";

constexpr char kPage[] = R"(# The first page. Left and right lead from button to button, select runs what onClick says.
flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: "#142434"
  start: guide
  scripts: [main.bob]
  textStyles:
    - {name: title, font: $FONT, size: 44, color: white}
    - {name: body, font: $FONT, size: 22, color: "#D8E0E8"}
    - {name: chosen, font: $FONT, size: 22, color: "#F4D860"}
  children:
    - {x: 0, y: 0, width: 720, height: 6, bgColor: "#F4D860"}
    - {type: image, x: 48, y: 64, width: 160, height: 160, src: sun.kpx}
    - {type: text, x: 248, y: 92, width: 424, height: 56, textStyle: title, value: $TITLE}
    - {type: text, x: 248, y: 156, width: 424, height: 32, textStyle: body, value: A page to begin with}

    - {type: text, name: guide, x: 48, y: 288, width: 192, height: 56, bgColor: "#20405C", highlightFrame: true, frameColor: "#F4D860", frameWidth: 3, textStyle: body, highlightTextStyle: chosen, align: center, valign: center, value: Guide, right: films, left: radio, onClick: choose("the guide");}
    - {type: text, name: films, x: 264, y: 288, width: 192, height: 56, bgColor: "#20405C", highlightFrame: true, frameColor: "#F4D860", frameWidth: 3, textStyle: body, highlightTextStyle: chosen, align: center, valign: center, value: Films, right: radio, left: guide, onClick: choose("films");}
    - {type: text, name: radio, x: 480, y: 288, width: 192, height: 56, bgColor: "#20405C", highlightFrame: true, frameColor: "#F4D860", frameWidth: 3, textStyle: body, highlightTextStyle: chosen, align: center, valign: center, value: Radio, right: guide, left: films, onClick: choose("radio");}

    - {type: text, name: said, x: 48, y: 392, width: 624, height: 36, bgColor: "#142434", textStyle: body, align: center, value: Press select}
)";

constexpr char kScript[] = R"(// What the buttons of main.yaml do.
define choose(what) {
  widgets.said.value = "You have chosen " + what;
}
)";

constexpr int kSize = 160;

// A sun with rays and soft edges.
std::vector<uint32_t> sun() {
  std::vector<uint32_t> pixels;
  for (int y = 0; y < kSize; ++y)
    for (int x = 0; x < kSize; ++x) {
      const double dx = x - (kSize - 1) / 2.0, dy = y - (kSize - 1) / 2.0;
      const double r = std::hypot(dx, dy) / (kSize / 2.0), tip = 0.72 + 0.27 * std::cos(12 * std::atan2(dy, dx));
      const double inside = r < 0.53 ? 0.5 - r : std::min(r - 0.56, tip - r);
      const int alpha = int(255 * std::clamp(0.5 + inside * kSize / 2, 0.0, 1.0));
      const auto channel = [&](int from, int to) { return uint32_t(from + int((to - from) * std::min(r, 1.0))); };
      pixels.push_back(uint32_t(alpha) << 24 | channel(255, 240) << 16 | channel(236, 120) << 8 | channel(150, 40));
    }
  return pixels;
}

bool canDraw(const std::string& font) try { return reportFont(font).problem.empty(); } catch (const KitError&) {
  return false;
}

// One that looks well on a television, else any.
std::string chooseFont() {
  const MachineFonts fonts;
  std::vector<std::string> names = {"DejaVu Sans", "Liberation Sans", "Noto Sans", "Open Sans", "Arial", "Verdana"};
  const std::vector<std::string> others = fonts.names();
  names.insert(names.end(), others.begin(), others.end());
  for (const std::string& name : names) {
    const std::string file = fonts.find(name);
    if (!file.empty() && canDraw(file)) return file;
  }
  throw KitError("this machine has no font that the player can draw with; install one, DejaVu Sans for example");
}

std::string quoted(const std::string& text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += uint8_t(c) < ' ' ? ' ' : c;
  }
  return out + "\"";
}

std::string filledIn(std::string text, const std::vector<std::pair<std::string, std::string>>& words) {
  for (const auto& [word, value] : words)
    for (size_t at = 0; (at = text.find(word, at)) != std::string::npos; at += value.size())
      text.replace(at, word.size(), value);
  return text;
}

}  // namespace

std::vector<std::string> newProject(const std::string& folder) {
  std::error_code error;
  const fs::path at = folder;
  if (fs::exists(at, error) && (!fs::is_directory(at, error) || !fs::is_empty(at, error)))
    throw KitError(folder, "is there and not empty");
  const std::string font = chooseFont();
  const std::string title = fs::absolute(at, error).lexically_normal().filename().string();
  const std::vector<std::pair<std::string, std::string>> words = {
      {"$FONTPATH", font}, {"$FONT", quoted(fs::path(font).filename().string())}, {"$TITLE", quoted(title)}};

  fs::create_directories(at, error);
  if (error) throw KitError(folder, "can't be made: " + error.message());
  std::vector<std::string> made;
  OutputFiles files;
  const auto add = [&](const std::string& name, const auto& bytes) {
    made.push_back((at / name).generic_string());
    files.add(made.back(), bytes.data(), bytes.size());
  };
  add(kProjectFileName, filledIn(kProject, words));
  add("main.yaml", filledIn(kPage, words));
  add("main.bob", std::string(kScript));
  add(fs::path(font).filename().string(), readFile(font));
  files.finish();
  made.push_back((at / "sun.png").generic_string());
  writePngWithAlpha(made.back(), kSize, kSize, sun());
  return made;
}
