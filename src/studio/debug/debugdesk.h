// The debugger over the reloads of a page: what is to stop it stays, while each run has a debugger of its own.
//
// A run's scripts are followed only once something may stop them, since that makes them slower.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "kit/debug/pagedebugger.h"

class DebugDesk {
 public:
  std::function<BobResume(const BobStop&)> stopped;     // the page stands until it returns
  std::function<void(const std::string& line)> logged;  // by breakpoints
  std::function<void(const WantedBreakpoint&)> breakpointMoved;
  std::function<bool()> isBusy;  // whether a script may run, in whose middle no run can begin to be followed

  // -- runs

  void begin(PageRun& run);                 // each new one, before it loads anything
  void keepOnly(PageRun* run);              // all others have ended; null for all
  void followNow();                         // what was wanted while they were busy
  void setSilent(bool on) { silent = on; }  // stops at nothing meanwhile, as while what was done is done again

  // -- what stops them

  // Replaces those of a file.
  void setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all);
  // A breakpoint in a line, or none there any more.
  void toggle(const std::string& file, int line);
  // Of one that is there: when it stops, or what it logs in place of that.
  void change(const std::string& file, const BobBreakpoint& breakpoint);
  void setStopsAtErrors(bool on);
  bool stopsAtErrors() const { return atErrors; }
  void pause();

  // Where they are now.
  std::vector<WantedBreakpoint> breakpointsOf(const std::string& file);
  // Sources of the latest run that have code, as far as it is known; sorted.
  std::vector<std::string> filesWithCode() const;

  // -- while a run stands: its debugger; null at any other time
  BobDebugger* standing() { return isStanding ? &latest->core() : nullptr; }

 private:
  struct Followed {
    PageRun* run;
    std::unique_ptr<PageDebugger> debugger;  // null until it is needed
  };

  bool isNeeded() const;
  void attach(Followed& followed);
  void follow(Followed& followed);
  void set(const std::string& file);
  BobResume stand(PageDebugger& debugger, const BobStop& stop);

  std::map<std::string, std::vector<BobBreakpoint>> wanted;  // by file
  std::vector<Followed> runs;                                // the latest last
  PageDebugger* latest = nullptr;                            // that stands
  bool atErrors = false, silent = false, isStanding = false, wantsPause = false;
};
