// Pictures from the cache to presented pixels, on screens of both depths; and from files into the cache.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "engine/images/imagedraw.h"
#include "engine/images/imageload.h"
#include "engine/screen/display.h"
#include "host/headless/headlessdesktop.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/kpxfile.h"
#include "kit/pictures/standardclut.h"

namespace {

void WriteFiles() {
  std::filesystem::current_path(std::filesystem::temp_directory_path());
  const auto colors = standardClut();
  writeClutFile("vistrel-bench.clut", {colors.begin(), colors.end()});
  const std::pair<const char*, std::pair<uint32_t, uint32_t>> pictures[] = {{"vistrel-bench-screen.kpx", {720, 480}},
                                                                            {"vistrel-bench-other.kpx", {720, 480}},
                                                                            {"vistrel-bench-tile.kpx", {48, 48}}};
  for (const auto& [name, size] : pictures) {
    KpxFile picture{size.first, size.second, "vistrel-bench.clut", {}};
    for (uint32_t i = 0; i < size.first * size.second; ++i) picture.pixels.push_back(uint8_t(i / 3 % 216));
    writeKpxFile(name, picture);
  }
}

void Draw(benchmark::State& state, const char* name, bool tile) {
  WriteFiles();
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  desktop.settle();
  displaySetDepth(int(state.range(0)));
  for (auto _ : state) {
    Bounds screen = {0, 0, 720, 480};
    if (!imageDraw(name, 0, 0, &screen, tile)) return state.SkipWithError("the picture can't be read");
  }
  state.SetItemsProcessed(state.iterations() * 720 * 480);
}

void WholeScreen(benchmark::State& state) { Draw(state, "vistrel-bench-screen.kpx", false); }
void Tiles(benchmark::State& state) { Draw(state, "vistrel-bench-tile.kpx", true); }
BENCHMARK(WholeScreen)->ArgName("depth")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(Tiles)->ArgName("depth")->Arg(8)->Arg(16)->Unit(benchmark::kMicrosecond);

// Two pictures that the cache can't hold together, so that each is read each time.
void ReadFromFile(benchmark::State& state) {
  WriteFiles();
  HeadlessDesktop desktop;
  const EngineScope here(desktop.shell.engine);
  desktop.start();
  desktop.settle();
  for (auto _ : state)
    if (!imagePreload("vistrel-bench-screen.kpx") || !imagePreload("vistrel-bench-other.kpx"))
      return state.SkipWithError("the pictures can't be read");
  state.SetItemsProcessed(state.iterations() * 2);
}
BENCHMARK(ReadFromFile)->Unit(benchmark::kMicrosecond);

}  // namespace
