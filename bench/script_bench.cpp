// Scripts on pages: a key whose handler changes ten widgets, up to the presented pixels, and a timer's tick.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <string>

#include "host/headless/headlessdesktop.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"

namespace {

// Ten boxes of 60 x 40 and a handler of the letter S, which sets another colour for each of them.
std::string tenBoxes() {
  std::string text =
      "flags: 16bit\npage:\n  width: 720\n  height: 480\n  type: group\n  bgColor: 0x40808000\n  onLoad: |\n"
      "    n = 0;\n    boxes = \\[";
  for (int i = 0; i < 10; ++i) text += (i ? ", widgets.b" : "widgets.b") + std::to_string(i);
  text +=
      "];\n    frame.OnEvent(0x80011, function (e) {\n      local i;\n      n = n + 1;\n"
      "      for (i = 0; i < 10; ++i) boxes[i].bgColor = (n * 16 + i & 0x7F) << 24 | 0x808000;\n      return true;\n   "
      " "
      "});\n"
      "  children:\n";
  for (int i = 0; i < 10; ++i)
    text += "    - {x: " + std::to_string(20 + 68 * i) + ", y: 100, width: 60, height: 40, name: b" +
            std::to_string(i) + ", bgColor: 1}\n";
  return text;
}

bool open(HeadlessDesktop& desktop, const std::string& source) {
  std::filesystem::current_path(std::filesystem::temp_directory_path());
  writeFile("vistrel-script-bench.yaml", source.data(), source.size());
  buildPage("vistrel-script-bench.yaml", "vistrel-script-bench.kpg");
  desktop.start();
  if (!desktop.shell.loadPage("vistrel-script-bench.kpg")) return false;
  desktop.settle();
  return true;
}

void KeyChangesTenWidgets(benchmark::State& state) {
  HeadlessDesktop desktop;
  if (!open(desktop, tenBoxes())) return state.SkipWithError("the page does not load");
  const auto last = [&] { return desktop.window()[size_t(139) * 720 + 20 + 68 * 9 + 59]; };  // of the last box
  size_t changes = 0;
  for (auto _ : state) {
    const uint32_t before = last();
    desktop.key("S");
    desktop.settle();
    changes += last() != before;
  }
  if (changes != size_t(state.iterations())) state.SkipWithError("a key has changed nothing");
}
BENCHMARK(KeyChangesTenWidgets)->Unit(benchmark::kMicrosecond);

// With the step around it; the same step without a timer is the yardstick.
void TimerTick(benchmark::State& state) {
  HeadlessDesktop desktop;
  const std::string timer = state.range(0) ? "new Timer(function () {}, 1, true);" : "";
  if (!open(desktop, "page:\n  onLoad: '" + timer + "'\n")) return state.SkipWithError("the page does not load");
  for (auto _ : state) desktop.wait(1);
}
BENCHMARK(TimerTick)->ArgName("timer")->Arg(1)->Arg(0)->Unit(benchmark::kNanosecond);

}  // namespace
