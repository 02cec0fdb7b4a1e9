// An editor that debugs the page of the studio, by the Debug Adapter Protocol over a local socket; one at a time.
//
// Breakpoints of both are the same: those that the editor sets in a file replace what was there.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kit/dap/dapserver.h"
#include "studio/control/privatelistener.h"
#include "studio/debug/debugdesk.h"

class AttachedEditor final : public DapPage {
 public:
  // Throws what PrivateListener does.
  AttachedEditor(const std::string& path, DebugDesk& desk);
  ~AttachedEditor() override;

  std::function<void(const PageAction&)> wanted;   // the editor wants that done
  std::function<void(BobResume how)> wantsToGoOn;  // from where the page stands
  std::function<void()> breakpointsChanged;

  // Does what can be done now.
  void step(bool scriptRuns);
  void stand(const BobStop& stop);
  void goesOn();
  // The log as it is now, with places; of another run when it is shorter.
  void showLog(const std::string& log);
  bool isThere() const { return client != nullptr; }
  void print(const std::string& line);

  std::vector<WantedBreakpoint> setBreakpoints(const std::string& file, const std::vector<BobBreakpoint>& all) override;
  void setStopsAtErrors(bool on) override { desk.setStopsAtErrors(on); }
  void pause() override { desk.pause(); }
  void leave() override;
  void act(const PageAction& action) override;
  BobDebugger& debugger() override;

 private:
  struct Client;

  PrivateListener listener;
  DebugDesk& desk;
  std::unique_ptr<Client> client;
  bool stands = false;
  int depth = 0;            // of steps: what an editor asks for may run for long, or stop
  size_t printedSoFar = 0;  // bytes of the log
};
