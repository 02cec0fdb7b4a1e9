// A page under the debugger: loaded, driven by what it is given to do and then by the clock, and stopped by
// breakpoints.
//
// Files are called by their full names. Time passes as on the wall while nothing is to be done and the page isn't
// stopped.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "bob/bob.h"
#include "kit/dap/breakpointplaces.h"
#include "kit/run/pagerun.h"

class DebuggedPage {
 public:
  DebuggedPage();
  ~DebuggedPage();

  // -- what whoever shows the debugger hears of

  std::function<BobResume(const BobStop&)> stopped;              // the page stands until it returns
  std::function<void(const std::string& text)> printed;          // on the console, and by breakpoints
  std::function<void(const WantedBreakpoint&)> breakpointMoved;  // now that more code is known
  std::function<void()> whileBusy;                               // now and then while a script runs

  // Throws KitError when the page can't be loaded.
  void load(const std::string& page);
  void act(const PageAction& action);
  void end();  // of what runs

  std::vector<WantedBreakpoint> setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all);
  BobDebugger& debugger() { return theDebugger; }
  void printNew();  // what the console has got since

 private:
  const BobCodeLines* linesOf(BobValue code);
  void learn();

  std::map<const BobCodeLines*, std::unique_ptr<BobCodeLines>> named;  // with the full names of their files
  BreakpointPlaces places;
  size_t known = 0;  // pieces of code when it was last looked
  BobDebugger theDebugger;
  std::unique_ptr<PageRun> run;
  size_t printedSoFar = 0;  // bytes of the log
};
