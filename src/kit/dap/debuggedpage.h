// A page under the debugger: loaded, driven by what it is given to do and then by the clock, and stopped by
// breakpoints.
//
// Time passes as on the wall while nothing is to be done and the page isn't stopped.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/debug/pagedebugger.h"
#include "kit/run/pagerun.h"

class DebuggedPage {
 public:
  DebuggedPage();

  // -- what whoever shows the debugger hears of

  std::function<BobResume(const BobStop&)> stopped;              // the page stands until it returns
  std::function<void(const std::string& text)> printed;          // on the console, and by breakpoints
  std::function<void(const WantedBreakpoint&)> breakpointMoved;  // now that more code is known
  std::function<void()> whileBusy;                               // now and then while a script runs

  // Throws KitError when the page can't be loaded.
  void load(const std::string& page);
  void act(const PageAction& action);
  void end();  // of what runs

  const std::vector<WantedBreakpoint>& setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all) {
    return pageDebugger->setBreakpoints(file, all);
  }
  BobDebugger& debugger() { return pageDebugger->core(); }
  void printNew();  // what the console has got since

 private:
  std::unique_ptr<PageDebugger> pageDebugger;  // outlives the run
  std::unique_ptr<PageRun> run;
  size_t printedSoFar = 0;  // bytes of the log
};
