// From a key to pixels, from video colour to the desktop's, and a whole run of kpg shot.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "engine/events/timer.h"
#include "engine/screen/display.h"
#include "host/headless/headlessdesktop.h"
#include "kit/files.h"
#include "kit/source/pagewriter.h"

namespace {

PageEntry text(const char* name, const std::string& value) { return {name, {PageTag::string, 0, value, {}, {}}}; }
PageEntry number(const char* name, PageTag tag, uint32_t value) { return {name, {tag, value, "", {}, {}}}; }

std::string nameOf(int i) { return "w" + std::to_string(i); }

// 500 boxes in rows of 25, linked in a ring, each with a highlight frame.
PageTree ringPage() {
  constexpr int kCount = 500;
  PageEntry children{"children", {PageTag::table, 0, "", {}, {}}};
  for (int i = 0; i < kCount; ++i) {
    PageNode node{uint16_t(10 + i % 25 * 28), uint16_t(10 + i / 25 * 23), 20, 15, {}};
    node.attributes = {text("name", nameOf(i)), number("bgColor", PageTag::color, uint32_t(i) << 25 | 0x808000),
                       number("highlightFrame", PageTag::boolean, 1), number("frameColor", PageTag::color, 0xEB808000),
                       text("right", nameOf((i + 1) % kCount))};
    children.value.table.push_back({PageTag::object, 0, "", {node}, {}});
  }
  PageTree page;
  page.root = {0, 0, 720, 480, {text("type", "group"), text("start", "w0"), children}};
  page.root.attributes.push_back(number("bgColor", PageTag::color, 0x40808000));
  return page;
}

void writeRing(const std::string& path) {
  const auto bytes = writePage(ringPage());
  writeFile(path, bytes.data(), bytes.size());
}

void KeyToPixels(benchmark::State& state) {
  std::filesystem::current_path(std::filesystem::temp_directory_path());
  writeRing("vistrel-bench.kpg");
  HeadlessDesktop desktop;
  desktop.start();
  if (!desktop.shell.loadPage("vistrel-bench.kpg")) return state.SkipWithError("the page does not load");
  desktop.settle();
  for (auto _ : state) {
    desktop.key("Right");
    desktop.settle();
  }
}
BENCHMARK(KeyToPixels)->Unit(benchmark::kMicrosecond);

// A page of so many boxes, each a slave of the one before it, which is found by its name.
void LoadSlaves(benchmark::State& state) {
  PageTree page = ringPage();
  PageEntry& children = page.root.attributes[2];
  children.value.table.clear();
  for (int i = 0; i < state.range(0); ++i) {
    PageNode node{0, 0, 1, 1, {text("name", nameOf(i)), text("master", nameOf(std::max(i - 1, 0)))}};
    children.value.table.push_back({PageTag::object, 0, "", {node}, {}});
  }
  const auto bytes = writePage(page);
  const std::string path = std::filesystem::temp_directory_path() / "vistrel-bench-slaves.kpg";
  writeFile(path, bytes.data(), bytes.size());
  HeadlessDesktop desktop;
  desktop.start();
  for (auto _ : state)
    if (!desktop.shell.loadPage(path)) return state.SkipWithError("the page does not load");
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(LoadSlaves)->Arg(500)->Arg(5000)->Arg(50000)->Unit(benchmark::kMillisecond);

// So many timers that wait; as many are started anew, now this one and now that, so that no run is like the last.
void StartTimers(benchmark::State& state) {
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  std::mt19937 random(5);
  const auto interval = [&] { return 1 + uint32_t(random() % 60'000); };
  std::vector<Timer*> timers;
  for (int64_t i = 0; i < state.range(0); ++i) {
    timers.push_back(new Timer([](Timer*, TimerReason) {}));
    timerStart(timers.back(), interval(), false);
  }
  struct Start {
    Timer* timer;
    uint32_t interval;
  };
  std::vector<Start> starts(1 << 16);
  for (Start& start : starts) start = {timers[random() % timers.size()], interval()};
  size_t at = 0;
  for (auto _ : state)
    for (size_t i = 0; i < timers.size(); ++i) {
      const Start& start = starts[at++ % starts.size()];
      timerStart(start.timer, start.interval, false);
    }
  for (Timer* timer : timers) timerDestroy(timer);
}
BENCHMARK(StartTimers)->Arg(100)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

// Squares all over the screen, each fill with its flush: display surface, device, converter, blitter, and the
// conversion of what changed.
void fillRectAndFlush(benchmark::State& state, int depth, int width, int height) {
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  displaySetDepth(depth);
  std::mt19937 random(4);
  std::vector<Bounds> rects;
  for (int i = 0; i < 64; ++i)
    rects.push_back({int(random() % unsigned(721 - width)), int(random() % unsigned(481 - height)), width, height});
  uint32_t color = 0x10808000;
  for (auto _ : state)
    for (const Bounds& rect : rects) displayFillRect(rect, color += 0x01030500);
  state.SetItemsProcessed(state.iterations() * int64_t(rects.size()));
}
void FillRectAndFlush(benchmark::State& state, int depth) {
  fillRectAndFlush(state, depth, int(state.range(0)), int(state.range(0)));
}
BENCHMARK_CAPTURE(FillRectAndFlush, 8, 8)
    ->Name("fill8_and_flush")
    ->Arg(16)
    ->Arg(64)
    ->Arg(360)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FillRectAndFlush, 16, 16)
    ->Name("fill8_and_flush/16")
    ->Arg(16)
    ->Arg(64)
    ->Arg(360)
    ->Unit(benchmark::kMicrosecond);

// How the cost grows: range(0) rows of 100 pixels each.
void FillRowsAndFlush(benchmark::State& state) { fillRectAndFlush(state, 8, 100, int(state.range(0))); }
BENCHMARK(FillRowsAndFlush)->Name("fill8_rows")->Arg(4)->Arg(40)->Arg(400)->Unit(benchmark::kMicrosecond);

void screenToRgb16(benchmark::State& state, bool noise, int rows) {
  ScreenSurface screen;
  screen.create(720, 480, 16);
  std::vector<uint16_t> pixels(720 * 480);
  std::mt19937 random(1);
  if (noise) {
    for (auto& p : pixels) p = uint16_t(random());
  } else {
    for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = uint16_t(i / 720 / 60 * 2000);  // flat, as pages are
  }
  for (auto _ : state) {
    screen.convert(pixels.data(), 0, 0, 720, rows);
    benchmark::ClobberMemory();
  }
}
void RowsToRgb16(benchmark::State& state, bool noise) { screenToRgb16(state, noise, int(state.range(0))); }
BENCHMARK_CAPTURE(RowsToRgb16, flat, false)->Name("rgb_rows/flat")->Arg(4)->Arg(40)->Arg(400);
BENCHMARK_CAPTURE(RowsToRgb16, noise, true)->Name("rgb_rows/noise")->Arg(4)->Arg(40)->Arg(400);

void ScreenToRgb16(benchmark::State& state) { screenToRgb16(state, state.range(0), 480); }
BENCHMARK(ScreenToRgb16)->Name("rgb")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

// The yardstick: a plain copy of as many bytes as the conversion writes.
void CopyOfRgb(benchmark::State& state) {
  std::vector<uint32_t> from(720 * 480, 1), to(720 * 480);
  for (auto _ : state) {
    std::memcpy(to.data(), from.data(), from.size() * 4);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(CopyOfRgb)->Name("rgb/copy")->Unit(benchmark::kMicrosecond);

void ShotProcess(benchmark::State& state) {
  const std::string folder = std::filesystem::temp_directory_path();
  writeRing(folder + "/vistrel-bench.kpg");
  const std::string command =
      std::string(KPG_PROGRAM) + " shot " + folder + "/vistrel-bench.kpg -o " + folder + "/b.png";
  for (auto _ : state)
    if (std::system(command.c_str()) != 0) return state.SkipWithError("kpg shot failed");
}
BENCHMARK(ShotProcess)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
