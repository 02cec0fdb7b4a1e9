#include "kpg/progressbar.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "kpg/process.h"

namespace {

constexpr size_t kBarWidth = 24, kUsualColumns = 80;

}  // namespace

ProgressBar::ProgressBar() : shown(isatty(STDERR_FILENO)), colored(shown && !std::getenv("NO_COLOR")) {}

void ProgressBar::show(size_t done, size_t all, const std::string& what) {
  if (!shown || all == 0) return;
  const size_t filled = kBarWidth * done / all;
  std::string line = "[" + std::string(filled, '#') + std::string(kBarWidth - filled, ' ') + "] " +
                     std::to_string(done) + "/" + std::to_string(all) + " " + what;
  line.resize(std::min(line.size(), terminalColumns(kUsualColumns) - 1));
  if (colored && line.size() > kBarWidth)
    line = "\x1b[32m" + line.substr(0, kBarWidth + 2) + "\x1b[0m" + line.substr(kBarWidth + 2);
  std::fprintf(stderr, "\r\x1b[K%s", line.c_str());
  std::fflush(stderr);
  drawn = true;
}

void ProgressBar::clear() {
  if (drawn) std::fprintf(stderr, "\r\x1b[K");
  drawn = false;
}
