// From a save to pixels, as in the studio: a source of the demo's guide page is saved in a copy of the demo, the watch
// notices it, and the session opens the page anew from what is made in memory.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "kit/watch/filewatch.h"
#include "studio/session/session.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begun) {
  return std::chrono::duration<double, std::milli>(Clock::now() - begun).count();
}

std::string textOf(const fs::path& file) {
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// As most editors do.
void save(const fs::path& file, const std::string& text) {
  const fs::path beside = file.string() + "~";
  std::ofstream(beside) << text;
  fs::rename(beside, file);
}

struct Times {
  std::vector<double> noticed, opened, all;
  static void print(const char* name, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    std::printf("  %-28s median %6.1f ms, from %.1f to %.1f\n", name, times[times.size() / 2], times.front(),
                times.back());
  }
  void print() const {
    print("until the watch tells", noticed);
    print("until the page is open", opened);
    print("from save to pixels", all);
  }
};

// One more save of a file, each with other contents.
void measure(const char* what, Session& session, const fs::path& file, const std::string& before,
             const std::string& after, int count) {
  Times times;
  FileWatch watch;
  watch.watch(session.dependencies());
  for (int n = 0; n < count; ++n) {
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    const auto saved = Clock::now();
    save(file, before + std::to_string(n) + after);
    while (watch.wait(std::chrono::milliseconds(1000)).empty()) {
    }
    times.noticed.push_back(millisecondsSince(saved));
    const auto begun = Clock::now();
    if (!session.reload()) std::printf("%s\n", session.errors().front().whole().c_str());
    times.opened.push_back(millisecondsSince(begun));
    times.all.push_back(millisecondsSince(saved));
  }
  std::printf("%s\n", what);
  times.print();
}

}  // namespace

int main() {
  constexpr int kSaves = 20;
  const fs::path folder = fs::temp_directory_path() / "vistrel-save-bench";
  fs::remove_all(folder);
  fs::copy(DEMO_FOLDER, folder, fs::copy_options::recursive);
  const fs::path page = folder / "guide.yaml", script = folder / "guide.bob";

  const auto begun = Clock::now();
  Session session(page.string());
  if (!session.restart()) {
    std::printf("%s\n", session.errors().front().whole().c_str());
    return 1;
  }
  std::printf("first opening, nothing built: %.1f ms\n", millisecondsSince(begun));
  for (const char* key : {"Down", "Down", "Right", "Select"}) session.act({PageAction::key, key});
  session.pass(1000);

  measure("the page source", session, page, textOf(page) + "# ", "\n", kSaves);
  measure("a script", session, script, textOf(script) + "// ", "\n", kSaves);
  fs::remove_all(folder);
  return 0;
}
