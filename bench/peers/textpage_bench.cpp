// A page of 40 lines of text, 60 characters each, to presented pixels, beside Cairo drawing the same lines over black:
// with every glyph in the cache ("warm"), and with none. Cairo draws into the desktop's own format, unhinted.
#include <benchmark/benchmark.h>
#include <cairo-ft.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "engine/page/frame.h"
#include "facepeer.h"
#include "gfx/text/hsgglyphcache.h"
#include "host/headless/headlessdesktop.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"

namespace {

constexpr int kLines = 40, kWidth = 720, kHeight = 480, kSize = 11, kLeft = 8, kLineHeight = 12;
constexpr const char kFont[] = DEJAVU_FONTS "/DejaVuSans.ttf";

// Every letter, figure and mark of ASCII comes up.
std::string lineOf60(int first) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += char('!' + (first * 7 + i * 5) % 94);
  for (char& c : text)
    if (c == '"' || c == '\\') c = ' ';
  return text;
}

// More lines than the screen has room for begin again at its top.
int topOf(int line) { return kLineHeight * (1 + line % kLines); }

std::string pageOfText(bool antialias, int count) {
  std::string source =
      "flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  bgColor: black\n  textStyles:\n    - {name: "
      "body, font: " +
      std::string(kFont) + ", size: " + std::to_string(kSize) + ", color: white, antialias: ";
  source += antialias ? "true" : "false";
  source +=
      "}\n  children:\n    - type: textContainer\n      name: lines\n      width: 720\n      height: 490\n      "
      "children:\n";
  for (int i = 0; i < count; ++i)
    source += "        - {x: " + std::to_string(kLeft) + ", y: " + std::to_string(topOf(i)) +
              ", style: body, content: \"" + lineOf60(i) + "\"}\n";
  return source;
}

// Pixels that aren't black. How bright they are is no measure: the player's grey is dark.
template <class Pixels>
double inkedOf(const Pixels& pixels) {
  return double(std::count_if(pixels.begin(), pixels.end(), [](uint32_t pixel) { return (pixel & 0xFFFFFF) != 0; }));
}

// Returns the inked pixels of the last picture, 0 after an error.
double drawPage(benchmark::State& state, bool antialias, int count, bool warm) {
  std::filesystem::current_path(std::filesystem::temp_directory_path());
  const std::string source = pageOfText(antialias, count);
  writeFile("vistrel-text.yaml", source.data(), source.size());
  buildPage("vistrel-text.yaml", "vistrel-text.kpg");
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  if (!desktop.shell.loadPage("vistrel-text.kpg")) {
    state.SkipWithError("the page does not load");
    return 0;
  }
  desktop.settle();
  Widget* lines = frameFindWidget(topFrame(), "lines");
  for (auto _ : state) {
    if (!warm) hsGGlyphCache::Instance()->Purge();
    widgetMarkDirty(lines, kWidgetFullRedraw);
    desktop.settle();
  }
  return inkedOf(desktop.shell.screen.dibBits);
}

void drawCairo(benchmark::State& state, bool antialias, bool warm) {
  if (!PeerFace(kFont)) return state.SkipWithError("no font");
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, kWidth, kHeight);
  cairo_t* cairo = cairo_create(surface);
  cairo_font_face_t* cairoFace = cairo_ft_font_face_create_for_ft_face(PeerFace(kFont), FT_LOAD_NO_HINTING);
  cairo_font_options_t* options = cairo_font_options_create();
  cairo_font_options_set_antialias(options, antialias ? CAIRO_ANTIALIAS_GRAY : CAIRO_ANTIALIAS_NONE);
  cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
  cairo_set_font_face(cairo, cairoFace);
  cairo_set_font_options(cairo, options);
  std::vector<std::string> lines;
  for (int i = 0; i < kLines; ++i) lines.push_back(lineOf60(i));
  // A font of another size, if only by a hair, has no glyphs yet.
  double size = kSize;
  for (auto _ : state) {
    if (!warm) size += 1e-6;
    cairo_matrix_t matrix;
    cairo_matrix_init_scale(&matrix, size * 8 / 9, size);  // the shape of the player's pixels
    cairo_set_font_matrix(cairo, &matrix);
    cairo_set_source_rgb(cairo, 0, 0, 0);
    cairo_paint(cairo);
    cairo_set_source_rgb(cairo, 1, 1, 1);
    for (int i = 0; i < kLines; ++i) {
      cairo_move_to(cairo, kLeft, topOf(i));
      cairo_show_text(cairo, lines[size_t(i)].c_str());
    }
    cairo_surface_flush(surface);
  }
  const auto* const pixels = reinterpret_cast<const uint32_t*>(cairo_image_surface_get_data(surface));
  state.counters["inked"] = inkedOf(std::vector<uint32_t>(pixels, pixels + kWidth * kHeight));
  cairo_font_options_destroy(options);
  cairo_font_face_destroy(cairoFace);
  cairo_destroy(cairo);
  cairo_surface_destroy(surface);
}

// range(0): grey or bits.
void Page(benchmark::State& state, bool warm) {
  const double inked = drawPage(state, state.range(0), kLines, warm);
  if (inked > 0) state.counters["inked"] = inked;
}
void CairosPage(benchmark::State& state, bool warm) { drawCairo(state, state.range(0), warm); }

BENCHMARK_CAPTURE(Page, warm, true)->Name("warm")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CairosPage, warm, true)->Name("warm/cairo")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Page, cold, false)->Name("cold")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CairosPage, cold, false)->Name("cold/cairo")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void Lines(benchmark::State& state, bool warm) { drawPage(state, true, int(state.range(0)), warm); }
BENCHMARK_CAPTURE(Lines, warm, true)->Name("lines/warm")->Arg(4)->Arg(40)->Arg(400)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(Lines, cold, false)->Name("lines/cold")->Arg(4)->Arg(40)->Arg(400)->Unit(benchmark::kMicrosecond);

}  // namespace
