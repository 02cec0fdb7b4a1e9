// A page under the debugger: loaded, driven by what it is given to do and then by the clock, and stopped by
// breakpoints.
//
// Time passes as on the wall while nothing is to be done and the page isn't stopped.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kit/dap/dappage.h"
#include "kit/debug/pagedebugger.h"
#include "kit/project/livefiles.h"
#include "kit/run/pagerun.h"

class DebuggedPage final : public DapPage {
 public:
  explicit DebuggedPage(const RunLimits& limits);

  std::function<BobResume(const BobStop&)> stopped;  // the page stands until it returns
  std::function<void()> whileBusy;                   // now and then while a script runs

  // A page source is compiled, with what its project or the files beside it give, in memory. Throws KitError when the
  // page can't be loaded.
  void load(const std::string& page);

  std::vector<WantedBreakpoint> setBreakpoints(const std::string& file,
                                               const std::vector<BobBreakpoint>& all) override {
    return pageDebugger->setBreakpoints(file, all);
  }
  void setStopsAtErrors(bool on) override { debugger().setStopsAtErrors(on); }
  void pause() override { debugger().pause(); }
  void leave() override { run->player().interrupt(); }
  void act(const PageAction& action) override;
  void endEvaluation() { run->player().interrupt(); }
  bool goOnIfEnded();  // lets scripts run again, if one was ended
  BobDebugger& debugger() override { return pageDebugger->core(); }

 private:
  void printNew();  // what the console has got since, and what couldn't be made

  std::unique_ptr<LiveFiles> files;  // of a page source; these two outlive the run
  std::unique_ptr<PageDebugger> pageDebugger;
  std::unique_ptr<PageRun> run;
  bool isLoaded = false;
  size_t printedSoFar = 0;  // bytes of the log
  size_t errorsSoFar = 0;   // of files that the page has asked for since it was loaded
};
