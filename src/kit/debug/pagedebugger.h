// Debugs the scripts of one run of a page: breakpoints in lines of its sources, as the code in them comes to be known.
//
// Files are called by their full names.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bob/bob.h"
#include "kit/debug/breakpointplaces.h"
#include "kit/run/pagerun.h"

class PageDebugger {
 public:
  // For a run with PageRunOptions::lines that hasn't loaded anything yet. It must outlive the run.
  explicit PageDebugger(PageRun& run);

  std::function<BobResume(const BobStop&)> stopped;              // the page stands until it returns
  std::function<void(const std::string& line)> logged;           // by breakpoints
  std::function<void(const WantedBreakpoint&)> breakpointMoved;  // now that more code is known

  // Replaces those of a file, and says where they are now.
  const std::vector<WantedBreakpoint>& setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all);
  const std::vector<WantedBreakpoint>& breakpointsOf(const std::string& file) { return places.of(file); }
  // Looks for code that has been compiled or read since. The debugger does so itself when code first runs.
  void learn();

  // For what else there is to do, while the page stands.
  BobDebugger& core() { return debugger; }

 private:
  const BobCodeLines* linesOf(BobValue code);

  PageRun& run;
  std::map<const BobCodeLines*, std::unique_ptr<BobCodeLines>> named;  // with the full names of their files
  BreakpointPlaces places;
  size_t known = 0;  // pieces of code when it was last looked
  BobDebugger debugger;
};

// By which a file is called here.
std::string debuggedFileName(const std::string& file);
