// A page of 40 lines of text, 60 characters each, to presented pixels: with every glyph in the cache, and with none.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "engine/engine.h"
#include "engine/page/frame.h"
#include "gfx/text/hsgglyphcache.h"
#include "host/headless/headlessdesktop.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"

namespace {

// Every letter, figure and mark of ASCII comes up.
std::string lineOf60(int first) {
  std::string text;
  for (int i = 0; i < 60; ++i) text += char('!' + (first * 7 + i * 5) % 94);
  for (char& c : text)
    if (c == '"' || c == '\\') c = ' ';
  return text;
}

std::string pageOfText(bool antialias) {
  std::string source =
      "flags: 16bit\npage:\n  type: group\n  width: 720\n  height: 480\n  bgColor: black\n  textStyles:\n    - {name: "
      "body, "
      "font: " DEJAVU_FONTS "/DejaVuSans.ttf, size: 11, color: white, antialias: ";
  source += antialias ? "true" : "false";
  source +=
      "}\n  children:\n    - type: textContainer\n      name: lines\n      width: 720\n      height: 490\n      "
      "children:\n";
  for (int i = 0; i < 40; ++i)
    source +=
        "        - {x: 8, y: " + std::to_string(12 + 12 * i) + ", style: body, content: \"" + lineOf60(i) + "\"}\n";
  return source;
}

void drawPage(benchmark::State& state, bool warm) {
  std::filesystem::current_path(std::filesystem::temp_directory_path());
  const std::string source = pageOfText(state.range(0));
  writeFile("vistrel-text.yaml", source.data(), source.size());
  buildPage("vistrel-text.yaml", "vistrel-text.kpg");
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  if (!desktop.shell.loadPage("vistrel-text.kpg")) return state.SkipWithError("the page does not load");
  desktop.settle();
  Widget* lines = frameFindWidget(topFrame(), "lines");
  for (auto _ : state) {
    if (!warm) hsGGlyphCache::Instance()->Purge();
    widgetMarkDirty(lines, kWidgetFullRedraw);
    desktop.settle();
  }
}

void TextPageWarm(benchmark::State& state) { drawPage(state, true); }
void TextPageCold(benchmark::State& state) { drawPage(state, false); }
BENCHMARK(TextPageWarm)->ArgName("antialias")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);
BENCHMARK(TextPageCold)->ArgName("antialias")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace
