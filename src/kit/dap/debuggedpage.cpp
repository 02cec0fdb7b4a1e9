#include "kit/dap/debuggedpage.h"

#include <filesystem>
#include <utility>

#include "kit/errors.h"

namespace fs = std::filesystem;

namespace {

std::string fullName(const std::string& file) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(file, error);
  return error ? file : path.string();
}

}  // namespace

DebuggedPage::DebuggedPage() : theDebugger([this](BobInterp*, BobValue code) { return linesOf(code); }) {
  theDebugger.stopped = [this](const BobStop& stop) {
    printNew();
    return stopped ? stopped(stop) : BobResume::run;
  };
  theDebugger.logged = [this](const std::string& line) {
    printNew();
    if (printed) printed(line + "\n");
  };
  PageRunOptions options;
  options.lines = true;
  run = std::make_unique<PageRun>(options);
  run->player().whileBusy = [this] {
    if (whileBusy) whileBusy();
  };
  run->trace(theDebugger);
}

DebuggedPage::~DebuggedPage() = default;

void DebuggedPage::load(const std::string& page) {
  const bool loaded = run->load(page, [this](const KitMessage& warning) {
    if (printed) printed(warning.whole() + "\n");
  });
  printNew();
  if (!loaded) throw KitError(page, "can't be loaded");
  learn();
}

void DebuggedPage::act(const PageAction& action) {
  run->act(action);
  printNew();
}

void DebuggedPage::end() { run->player().interrupt(); }

std::vector<WantedBreakpoint> DebuggedPage::setBreakpoints(const std::string& file,
                                                           const std::vector<BobBreakpoint>& all) {
  const std::string name = fullName(file);
  places.set(name, all);
  theDebugger.setBreakpoints(name, places.placed(name));
  return places.of(name);
}

void DebuggedPage::printNew() {
  const std::string all = run->logWithPlaces();
  if (all.size() > printedSoFar && printed) printed(all.substr(printedSoFar));
  printedSoFar = all.size();
}

// The debugger asks when code is about to run for the first time, which is when more of it may be known.
const BobCodeLines* DebuggedPage::linesOf(BobValue code) {
  const BobCodeLines* lines = run ? run->linesOf(code) : nullptr;
  learn();
  if (!lines) return nullptr;
  std::unique_ptr<BobCodeLines>& copy = named[lines];
  if (!copy) {
    copy = std::make_unique<BobCodeLines>(*lines);
    copy->file = fullName(lines->file);
  }
  return copy.get();
}

void DebuggedPage::learn() {
  if (!run || run->knownCode().size() == known) return;
  known = run->knownCode().size();
  std::map<std::string, std::set<int>> lines;
  run->knownCode().forEach([&](const BobCodeLines& code) {
    for (const BobCodeLines::Start& start : code.firstStarts()) lines[code.file].insert(start.line);
  });
  for (const auto& [file, all] : lines) {
    const std::string name = fullName(file);
    const std::vector<WantedBreakpoint> moved = places.learn(name, all);
    if (moved.empty()) continue;
    theDebugger.setBreakpoints(name, places.placed(name));
    for (const WantedBreakpoint& breakpoint : moved)
      if (breakpointMoved) breakpointMoved(breakpoint);
  }
}
