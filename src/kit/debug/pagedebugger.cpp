#include "kit/debug/pagedebugger.h"

#include <filesystem>
#include <set>

namespace fs = std::filesystem;

std::string debuggedFileName(const std::string& file) {
  std::error_code error;
  const fs::path path = fs::weakly_canonical(file, error);
  return error ? file : path.generic_string();
}

PageDebugger::PageDebugger(PageRun& r) : run(r), debugger([this](BobInterp*, BobValue code) { return linesOf(code); }) {
  debugger.stopped = [this](const BobStop& stop) { return stopped ? stopped(stop) : BobResume::run; };
  debugger.logged = [this](const std::string& line) {
    if (logged) logged(line);
  };
  run.trace(debugger);
}

const std::vector<WantedBreakpoint>& PageDebugger::setBreakpoints(const std::string& file,
                                                                  const std::vector<BobBreakpoint>& all) {
  const std::string name = debuggedFileName(file);
  places.set(name, all);
  debugger.setBreakpoints(name, places.placed(name));
  return places.of(name);
}

// The debugger asks when code is about to run for the first time, which is when more of it may be known.
const BobCodeLines* PageDebugger::linesOf(BobValue code) {
  const BobCodeLines* lines = run.linesOf(code);
  learn();
  if (!lines) return nullptr;
  std::unique_ptr<BobCodeLines>& copy = named[lines];
  if (!copy) {
    copy = std::make_unique<BobCodeLines>(*lines);
    copy->file = debuggedFileName(lines->file);
  }
  return copy.get();
}

void PageDebugger::learn() {
  if (run.knownCode().size() == known) return;
  known = run.knownCode().size();
  std::map<std::string, std::set<int>> lines;
  run.knownCode().forEach([&](const BobCodeLines& code) {
    for (const BobCodeLines::Start& start : code.firstStarts()) lines[code.file].insert(start.line);
  });
  for (const auto& [file, all] : lines) {
    const std::string name = debuggedFileName(file);
    const std::vector<WantedBreakpoint> moved = places.learn(name, all);
    if (moved.empty()) continue;
    debugger.setBreakpoints(name, places.placed(name));
    for (const WantedBreakpoint& breakpoint : moved)
      if (breakpointMoved) breakpointMoved(breakpoint);
  }
}
