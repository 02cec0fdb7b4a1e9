#include "studio/debug/debugdesk.h"

#include <algorithm>
#include <set>

// ---- runs

bool DebugDesk::isNeeded() const {
  return atErrors || std::any_of(wanted.begin(), wanted.end(), [](const auto& file) { return !file.second.empty(); });
}

void DebugDesk::begin(PageRun& run) {
  runs.push_back({&run, nullptr});
  if (isNeeded()) attach(runs.back());
}

void DebugDesk::keepOnly(PageRun* run) {
  std::erase_if(runs, [&](const Followed& each) { return each.run != run; });
}

void DebugDesk::follow(Followed& followed) {
  if (!followed.debugger && !(isBusy && isBusy())) attach(followed);
}

void DebugDesk::followNow() {
  if (runs.empty() || !(isNeeded() || wantsPause)) return;
  for (Followed& each : runs) follow(each);
  if (wantsPause) pause();
}

void DebugDesk::attach(Followed& followed) {
  followed.debugger = std::make_unique<PageDebugger>(*followed.run);
  PageDebugger& debugger = *followed.debugger;
  debugger.stopped = [this, &debugger](const BobStop& stop) { return stand(debugger, stop); };
  debugger.logged = [this](const std::string& line) {
    if (logged && !silent) logged(line);
  };
  debugger.breakpointMoved = [this](const WantedBreakpoint& breakpoint) {
    if (breakpointMoved) breakpointMoved(breakpoint);
  };
  debugger.learn();
  debugger.core().setStopsAtErrors(atErrors);
  for (const auto& [file, all] : wanted) debugger.setBreakpoints(file, all);
}

BobResume DebugDesk::stand(PageDebugger& debugger, const BobStop& stop) {
  if (silent || !stopped) return BobResume::run;
  latest = &debugger;
  isStanding = true;
  const BobResume answer = stopped(stop);
  isStanding = false;
  return answer;
}

// ---- what stops them

void DebugDesk::set(const std::string& file) {
  for (Followed& each : runs) {
    if (isNeeded()) follow(each);
    if (each.debugger) each.debugger->setBreakpoints(file, wanted[file]);
  }
}

void DebugDesk::setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all) {
  wanted[file] = all;
  set(file);
}

void DebugDesk::toggle(const std::string& file, int line) {
  // The line where one is now counts, as well as that where it was wanted.
  std::set<int> there{line};
  for (const WantedBreakpoint& breakpoint : breakpointsOf(file))
    if (breakpoint.line == line) there.insert(breakpoint.wanted.line);
  std::vector<BobBreakpoint>& all = wanted[file];
  if (std::erase_if(all, [&](const BobBreakpoint& each) { return there.contains(each.line); }) == 0)
    all.push_back({line, "", 0, ""});
  set(file);
}

void DebugDesk::change(const std::string& file, const BobBreakpoint& breakpoint) {
  for (BobBreakpoint& each : wanted[file])
    if (each.line == breakpoint.line) each = breakpoint;
  set(file);
}

void DebugDesk::setStopsAtErrors(bool on) {
  atErrors = on;
  for (Followed& each : runs) {
    if (on) follow(each);
    if (each.debugger) each.debugger->core().setStopsAtErrors(on);
  }
}

void DebugDesk::pause() {
  if (runs.empty()) return;
  follow(runs.back());
  wantsPause = !runs.back().debugger;
  if (!wantsPause) runs.back().debugger->core().pause();
}

std::vector<WantedBreakpoint> DebugDesk::breakpointsOf(const std::string& file) {
  if (!runs.empty() && runs.back().debugger) return runs.back().debugger->breakpointsOf(file);
  std::vector<WantedBreakpoint> all;
  for (const BobBreakpoint& each : wanted[file]) all.push_back({0, each, 0});
  return all;
}

std::vector<std::string> DebugDesk::filesWithCode() const {
  std::set<std::string> files;
  if (!runs.empty())
    runs.back().run->knownCode().forEach([&](const BobCodeLines& code) { files.insert(debuggedFileName(code.file)); });
  return {files.begin(), files.end()};
}
