// kpg test's runner: a suite of 1,000 tests of the demo's guide with ten steps each, on two threads.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <string>

#include "kit/files.h"
#include "kit/testing/suite.h"

namespace {

constexpr int kTests = 1000;

// Keys and pauses at random, and expectations that hold.
std::string suiteText() {
  constexpr const char* kSteps[] = {"key: Up", "key: Down", "key: Left", "key: Right", "wait: 50"};
  std::mt19937 random(3);
  std::string text = "page: " DEMO_FOLDER "/guide.kpg\ntests:\n";
  for (int i = 0; i < kTests; ++i) {
    text += "  - name: n" + std::to_string(i) + "\n    steps:\n";
    for (int k = 0; k < 8; ++k) text += std::string("      - ") + kSteps[random() % std::size(kSteps)] + "\n";
    text += "      - log: none\n      - {value: 6 * 7, is: 42}\n";
  }
  return text;
}

void PageTests(benchmark::State& state) {
  const auto file = std::filesystem::temp_directory_path() / ("bench" + std::to_string(getpid()) + ".test.yaml");
  const std::string text = suiteText();
  writeFile(file.string(), text.data(), text.size());
  SuiteOptions options;
  options.paths = {file.string()};
  options.jobs = 2;
  for (auto _ : state) {
    const SuiteCount count = countOf(runSuite(options).results);
    if (count.passed != kTests) state.SkipWithError("a test has failed");
  }
  state.SetItemsProcessed(state.iterations() * kTests);
  std::filesystem::remove(file);
}
BENCHMARK(PageTests)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
