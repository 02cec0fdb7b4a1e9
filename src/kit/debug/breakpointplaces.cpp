#include "kit/debug/breakpointplaces.h"

// The next line with code.
int BreakpointPlaces::placeOf(const File& file, int line) {
  const auto next = file.lines.lower_bound(line);
  return next == file.lines.end() ? 0 : *next;
}

void BreakpointPlaces::set(const std::string& name, const std::vector<BobBreakpoint>& all) {
  File& file = files[name];
  file.wanted.clear();
  for (const BobBreakpoint& breakpoint : all)
    file.wanted.push_back({++last, breakpoint, placeOf(file, breakpoint.line)});
}

std::vector<WantedBreakpoint> BreakpointPlaces::learn(const std::string& name, const std::set<int>& lines) {
  File& file = files[name];
  file.lines.insert(lines.begin(), lines.end());
  std::vector<WantedBreakpoint> moved;
  for (WantedBreakpoint& breakpoint : file.wanted) {
    const int line = placeOf(file, breakpoint.wanted.line);
    if (line == breakpoint.line) continue;
    breakpoint.line = line;
    moved.push_back(breakpoint);
  }
  return moved;
}

std::vector<BobBreakpoint> BreakpointPlaces::placed(const std::string& name) {
  std::vector<BobBreakpoint> all;
  for (const WantedBreakpoint& breakpoint : files[name].wanted) {
    if (breakpoint.line == 0) continue;
    all.push_back(breakpoint.wanted);
    all.back().line = breakpoint.line;
  }
  return all;
}
