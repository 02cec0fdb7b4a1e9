// A debug adapter: an editor's requests, carried out on a page without a window.
//
// An editor launches a page without a window, with {"program": "menu.yaml", "steps": [{"key": "Down"}, {"wait": 500}],
// "stopOnEntry": false}, or it attaches to a page that somebody else runs.
//
// What surprises: one thread does everything. While a script runs, only what can be done in its middle is answered; the
// rest waits until the page stands or rests.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "kit/dap/debuggedpage.h"
#include "kit/rpc/rpcconnection.h"

class DapServer {
 public:
  // For an editor that launches its page, which is held to these limits.
  DapServer(RpcConnection& connection, const RunLimits& limits);
  // Until the client disconnects, or goes away.
  void run();

  // For one that attaches to a page, whose owner says when something can be served.
  DapServer(RpcConnection& connection, DapPage& page);
  // All that has come; while a script runs only what can be done in its middle.
  void serveNow(bool scriptRuns);
  // The page stands from here on until goesOn(), or until the editor wants it to go on in some way.
  void stand(const BobStop& stop);
  std::optional<BobResume> wanted() const { return resume; }
  void goesOn();
  bool ended() const { return hasEnded; }

 private:
  using json = nlohmann::json;
  using Handler = json (DapServer::*)(const json& arguments);  // answers the body, or throws KitError
  struct Request;

  static const Request* find(const std::string& command);
  void serve(const json& message);
  void serveAll(std::chrono::milliseconds wait);
  void serveInMiddle();
  void listen();
  bool isToBegin() const { return isConfigured && !isBegun && !program.empty(); }
  void begin();
  void live();
  void send(json message);
  void event(const std::string& name, json body);
  void evaluating(const std::function<void(BobDebugger&)>& work);  // throws KitError when it was ended

  json initialize(const json& arguments);
  json launch(const json& arguments);
  json attach(const json& arguments);
  json configurationDone(const json& arguments);
  json setBreakpoints(const json& arguments);
  json setExceptionBreakpoints(const json& arguments);
  json threads(const json& arguments);
  json stackTrace(const json& arguments);
  json scopes(const json& arguments);
  json variables(const json& arguments);
  json setVariable(const json& arguments);
  json evaluate(const json& arguments);
  json goOn(const json& arguments);
  json next(const json& arguments);
  json stepIn(const json& arguments);
  json stepOut(const json& arguments);
  json pause(const json& arguments);
  json disconnect(const json& arguments);

  struct Scope {
    size_t frame;
    std::vector<BobVariableView> variables;
  };
  json variableJson(const BobVariableView& view);
  json breakpointJson(const WantedBreakpoint& breakpoint) const;

  RpcConnection& connection;
  int sent = 0;                            // messages
  std::unique_ptr<DebuggedPage> launched;  // null for a page of somebody else's
  DapPage& page;
  std::deque<json> waiting;  // requests that can't be done in the middle of a script
  std::vector<PageAction> steps;
  std::string program;
  std::vector<Scope> groups;  // while the page stands: reference n is groups[n - 1]
  std::optional<BobResume> resume;
  bool isConfigured = false, isBegun = false, stands = false, hasEnded = false, stopsOnEntry = false;
  bool isEvaluating = false;  // runs code of its own while the page stands
  bool linesFromOne = true;
};
