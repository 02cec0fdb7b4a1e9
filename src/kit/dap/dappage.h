// A page that an editor debugs: one without a window that it has launched, or one that is open elsewhere.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kit/debug/breakpointplaces.h"
#include "kit/run/pageaction.h"

class DapPage {
 public:
  virtual ~DapPage() = default;

  // -- what the server wants to hear; to be called on its thread

  std::function<void(const std::string& text)> printed;          // on the console, and by breakpoints
  std::function<void(const WantedBreakpoint&)> breakpointMoved;  // now that more code is known

  // -- what an editor may ask for at any time

  virtual std::vector<WantedBreakpoint> setBreakpoints(const std::string& file,
                                                       const std::vector<BobBreakpoint>& all) = 0;
  virtual void setStopsAtErrors(bool on) = 0;
  virtual void pause() = 0;
  virtual void leave() = 0;  // the editor goes

  // -- while no script runs
  virtual void act(const PageAction& action) = 0;

  // -- while it stands
  virtual BobDebugger& debugger() = 0;
};
