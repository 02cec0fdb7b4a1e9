#include "kit/dap/dapserver.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "kit/errors.h"

using nlohmann::json;

namespace {

constexpr int kThread = 1;  // a page has one
constexpr std::chrono::milliseconds kTick{15}, kForever{1000}, kNow{0};

// References to what unfolds: values by even numbers, groups of variables by odd ones. 0 is nothing.
int referenceOf(size_t valueNumber) { return int(2 * valueNumber); }
int groupReference(size_t group) { return int(2 * group + 1); }

std::string textOf(const json& arguments, const char* key) {
  const auto found = arguments.find(key);
  return found != arguments.end() && found->is_string() ? found->get<std::string>() : "";
}

int numberOf(const json& arguments, const char* key, int otherwise) {
  const auto found = arguments.find(key);
  return found != arguments.end() && found->is_number() ? found->get<int>() : otherwise;
}

bool isTrue(const json& arguments, const char* key) {
  const auto found = arguments.find(key);
  return found != arguments.end() && found->is_boolean() && found->get<bool>();
}

json sourceOf(const std::string& file) {
  if (file.empty()) return nullptr;
  return {{"name", std::filesystem::path(file).filename().string()}, {"path", file}};
}

// As a step of a recording has it: {"key": "Down"}, {"wait": 500}, {"eval": "x = 3;"}.
PageAction actionOf(const json& step) {
  if (step.is_object() && step.size() == 1) {
    const json& value = step.begin().value();
    const std::string argument = value.is_string() ? value.get<std::string>() : value.dump();
    if (step.contains("key")) return {PageAction::key, argument};
    if (step.contains("eval")) return {PageAction::eval, argument};
    if (step.contains("wait") && value.is_number_unsigned() && value.get<uint64_t>() <= uint64_t(kLongestWait))
      return {PageAction::wait, argument};
  }
  throw KitError("a step is {\"key\": NAME}, {\"wait\": MILLISECONDS} or {\"eval\": TEXT}");
}

const char* reasonOf(const BobStop& stop) {
  switch (stop.reason) {
    case BobStop::breakpoint: return "breakpoint";
    case BobStop::step: return "step";
    case BobStop::pause: return "pause";
    default: return "exception";
  }
}

}  // namespace

struct DapServer::Request {
  const char* command;
  Handler handler;
  enum When { always, standing, resting } when;
};

const DapServer::Request* DapServer::find(const std::string& command) {
  static constexpr Request kRequests[] = {
      {"initialize", &DapServer::initialize, Request::always},
      {"launch", &DapServer::launch, Request::always},
      {"attach", &DapServer::attach, Request::always},
      {"configurationDone", &DapServer::configurationDone, Request::always},
      {"setBreakpoints", &DapServer::setBreakpoints, Request::always},
      {"setExceptionBreakpoints", &DapServer::setExceptionBreakpoints, Request::always},
      {"threads", &DapServer::threads, Request::always},
      {"pause", &DapServer::pause, Request::always},
      {"disconnect", &DapServer::disconnect, Request::always},
      {"terminate", &DapServer::disconnect, Request::always},
      {"stackTrace", &DapServer::stackTrace, Request::standing},
      {"scopes", &DapServer::scopes, Request::standing},
      {"variables", &DapServer::variables, Request::standing},
      {"setVariable", &DapServer::setVariable, Request::standing},
      {"continue", &DapServer::goOn, Request::standing},
      {"next", &DapServer::next, Request::standing},
      {"stepIn", &DapServer::stepIn, Request::standing},
      {"stepOut", &DapServer::stepOut, Request::standing},
      {"evaluate", &DapServer::evaluate, Request::resting},
  };
  for (const Request& request : kRequests)
    if (command == request.command) return &request;
  return nullptr;
}

DapServer::DapServer(RpcConnection& c, const RunLimits& limits)
    : connection(c), launched(std::make_unique<DebuggedPage>(limits)), page(*launched) {
  listen();
  launched->stopped = [this](const BobStop& stop) {
    if (hasEnded) return BobResume::run;
    stand(stop);
    while (!resume && !hasEnded) serveAll(kForever);
    const BobResume how = resume.value_or(BobResume::run);
    goesOn();
    return how;
  };
  launched->whileBusy = [this] { serveInMiddle(); };
}

DapServer::DapServer(RpcConnection& c, DapPage& p) : connection(c), page(p) { listen(); }

void DapServer::listen() {
  page.printed = [this](const std::string& text) { event("output", {{"category", "stdout"}, {"output", text}}); };
  page.breakpointMoved = [this](const WantedBreakpoint& breakpoint) {
    event("breakpoint", {{"reason", "changed"}, {"breakpoint", breakpointJson(breakpoint)}});
  };
}

void DapServer::send(json message) {
  message["seq"] = ++sent;
  connection.send(message);
}

void DapServer::event(const std::string& name, json body) {
  send({{"type", "event"}, {"event", name}, {"body", std::move(body)}});
}

// ---- who is served when

void DapServer::serve(const json& message) {
  if (!message.is_object()) return;  // nobody could be answered
  const std::string command = textOf(message, "command");
  json response = {
      {"type", "response"}, {"request_seq", numberOf(message, "seq", 0)}, {"command", command}, {"success", true}};
  const auto given = message.find("arguments");
  const json arguments = given != message.end() && given->is_object() ? *given : json::object();
  try {
    const Request* request = find(command);
    if (!request) throw KitError("'" + command + "' is no request that is known here");
    if (request->when == Request::standing && !stands) throw KitError("the page isn't stopped");
    json body = (this->*request->handler)(arguments);
    if (!body.is_null()) response["body"] = std::move(body);
  } catch (const std::exception& e) {
    response["success"] = false;
    response["message"] = e.what();
    response["body"] = json::object();
  }
  const bool isDone = response["success"];
  send(std::move(response));
  if (command == "initialize" && isDone) event("initialized", json::object());
}

void DapServer::serveAll(std::chrono::milliseconds wait) {
  while (!waiting.empty()) {
    const json message = std::move(waiting.front());
    waiting.pop_front();
    serve(message);
  }
  while (const auto message = connection.take(wait)) {
    serve(*message);
    wait = kNow;
    if (resume || hasEnded || isToBegin()) return;
  }
  if (connection.hasEnded()) disconnect({});
}

// Only what leaves the engine alone; the rest waits.
void DapServer::serveInMiddle() {
  while (const auto message = connection.take(kNow)) {
    const Request* request = find(textOf(*message, "command"));
    const bool waits = request && (isEvaluating ? request->when != Request::always : request->when == Request::resting);
    if (waits)
      waiting.push_back(*message);
    else
      serve(*message);
  }
  if (connection.hasEnded()) disconnect({});
}

void DapServer::serveNow(bool scriptRuns) { scriptRuns || isEvaluating ? serveInMiddle() : serveAll(kNow); }

void DapServer::stand(const BobStop& stop) {
  stands = true;
  resume.reset();
  json body = {{"reason", reasonOf(stop)}, {"threadId", kThread}, {"allThreadsStopped", true}};
  if (!stop.text.empty()) body["text"] = body["description"] = stop.text;
  event("stopped", body);
}

void DapServer::goesOn() {
  if (!resume && !hasEnded) event("continued", {{"threadId", kThread}, {"allThreadsContinued", true}});
  stands = false;
  resume.reset();
  groups.clear();
}

void DapServer::run() {
  while (!hasEnded) {
    if (isToBegin())
      begin();
    else if (isBegun)
      live();
    else
      serveAll(kForever);
  }
}

void DapServer::begin() {
  isBegun = true;
  if (stopsOnEntry) page.pause();
  try {
    launched->load(program);
    for (const PageAction& step : steps)
      if (!hasEnded) page.act(step);
  } catch (const KitError& e) {
    event("output", {{"category", "stderr"}, {"output", std::string(e.what()) + "\n"}});
    event("terminated", json::object());
  }
}

// Time passes while nobody asks for anything.
void DapServer::live() {
  const auto before = std::chrono::steady_clock::now();
  serveAll(kTick);
  const auto passed = std::chrono::steady_clock::now() - before;
  const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(passed).count();
  if (!hasEnded && milliseconds > 0) page.act({PageAction::wait, std::to_string(milliseconds)});
}

// ---- requests at any time

json DapServer::initialize(const json& arguments) {
  linesFromOne = !arguments.contains("linesStartAt1") || isTrue(arguments, "linesStartAt1");
  const json errors = {{"filter", "errors"}, {"label", "Errors of scripts"}, {"default", true}};
  return {{"supportsConfigurationDoneRequest", true},
          {"supportsConditionalBreakpoints", true},
          {"supportsHitConditionalBreakpoints", true},
          {"supportsLogPoints", true},
          {"supportsSetVariable", true},
          {"supportsEvaluateForHovers", true},
          {"supportsTerminateRequest", true},
          {"exceptionBreakpointFilters", json::array({errors})}};
}

json DapServer::launch(const json& arguments) {
  if (!launched) throw KitError("the page is open in the studio: attach to it");
  if (!program.empty()) throw KitError("a page has been launched already");
  const std::string name = textOf(arguments, "program");
  if (name.empty()) throw KitError("'program' must name a page or a page source");
  if (const auto found = arguments.find("steps"); found != arguments.end())
    for (const json& step : *found) steps.push_back(actionOf(step));
  stopsOnEntry = isTrue(arguments, "stopOnEntry");
  program = name;
  return nullptr;
}

json DapServer::attach(const json&) {
  if (launched) throw KitError("there is nothing to attach to: kpg dap --attach PATH attaches to the studio");
  isBegun = true;
  return nullptr;
}

json DapServer::configurationDone(const json&) {
  isConfigured = true;
  return nullptr;
}

json DapServer::breakpointJson(const WantedBreakpoint& breakpoint) const {
  json shown = {{"id", breakpoint.number}, {"verified", breakpoint.line > 0}};
  const int line = breakpoint.line > 0 ? breakpoint.line : breakpoint.wanted.line;
  shown["line"] = line - (linesFromOne ? 0 : 1);
  if (breakpoint.line == 0) shown["message"] = "No code is known here yet";
  return shown;
}

json DapServer::setBreakpoints(const json& arguments) {
  const auto source = arguments.find("source");
  const std::string file = source != arguments.end() && source->is_object() ? textOf(*source, "path") : "";
  if (file.empty()) throw KitError("'source' must have a path");
  std::vector<BobBreakpoint> wanted;
  const auto given = arguments.find("breakpoints");
  if (given != arguments.end() && given->is_array())
    for (const json& one : *given) {
      const std::string hits = textOf(one, "hitCondition");
      if (hits.find_first_not_of("0123456789") != std::string::npos || hits.size() > 9)
        throw KitError("'hitCondition' is a number: the hit at which to stop first");
      wanted.push_back({numberOf(one, "line", 0) + (linesFromOne ? 0 : 1), textOf(one, "condition"),
                        hits.empty() ? 0 : uint32_t(std::max(std::stoi(hits), 1) - 1), textOf(one, "logMessage")});
    }
  json all = json::array();
  for (const WantedBreakpoint& breakpoint : page.setBreakpoints(file, wanted))
    all.push_back(breakpointJson(breakpoint));
  return {{"breakpoints", all}};
}

json DapServer::setExceptionBreakpoints(const json& arguments) {
  const auto filters = arguments.find("filters");
  const bool errors =
      filters != arguments.end() && std::find(filters->begin(), filters->end(), "errors") != filters->end();
  page.setStopsAtErrors(errors);
  return nullptr;
}

json DapServer::threads(const json&) { return {{"threads", json::array({{{"id", kThread}, {"name", "page"}}})}}; }

json DapServer::pause(const json&) {
  if (!stands) page.pause();
  if (isEvaluating && launched) launched->endEvaluation();
  return nullptr;
}

json DapServer::disconnect(const json&) {
  if (!hasEnded) page.leave();
  hasEnded = true;
  return nullptr;
}

// ---- requests while the page stands

// For what may run for long, and is ended by a pause then.
void DapServer::evaluating(const std::function<void(BobDebugger&)>& work) {
  BobDebugger& debugger = page.debugger();
  isEvaluating = true;
  work(debugger);  // throws nothing
  isEvaluating = false;
  if (launched && !hasEnded && launched->goOnIfEnded()) throw KitError("the evaluation was ended");
}

json DapServer::stackTrace(const json& arguments) {
  const std::vector<BobFrameView> frames = page.debugger().frames();
  const size_t first = size_t(std::max(numberOf(arguments, "startFrame", 0), 0));
  const int levels = numberOf(arguments, "levels", 0);
  const size_t end = levels > 0 ? std::min(frames.size(), first + size_t(levels)) : frames.size();
  json all = json::array();
  for (size_t n = first; n < end; ++n) {
    json frame = {{"id", int(n + 1)},
                  {"name", frames[n].function.empty() ? "(statement)" : frames[n].function},
                  {"line", frames[n].line - (linesFromOne || frames[n].line == 0 ? 0 : 1)},
                  {"column", 0}};
    if (json source = sourceOf(frames[n].file); !source.is_null()) frame["source"] = std::move(source);
    all.push_back(std::move(frame));
  }
  return {{"stackFrames", all}, {"totalFrames", frames.size()}};
}

json DapServer::scopes(const json& arguments) {
  const int frame = numberOf(arguments, "frameId", 1) - 1;
  json all = json::array();
  for (BobVariableGroup& group : page.debugger().variables(size_t(frame))) {
    const char* const kNames[] = {"Locals", "Arguments", "Around", "Globals"};
    const bool isGlobals = group.kind == BobVariableGroup::globals;
    if (isGlobals) {
      // A scope of globals is an object, so it is shown as its members.
      for (const BobVariableView& scope : group.variables)
        all.push_back({{"name", scope.name == "globals" ? "Globals" : "Globals of the page"},
                       {"variablesReference", referenceOf(scope.number)},
                       {"expensive", true}});
      continue;
    }
    groups.push_back({size_t(frame), std::move(group.variables)});
    all.push_back(
        {{"name", kNames[group.kind]}, {"variablesReference", groupReference(groups.size())}, {"expensive", false}});
  }
  return {{"scopes", all}};
}

json DapServer::variableJson(const BobVariableView& view) {
  json variable = {
      {"name", view.name}, {"value", view.text}, {"type", view.type}, {"variablesReference", referenceOf(view.number)}};
  if (view.type == "Vector")
    variable["indexedVariables"] = view.members;
  else if (view.members > 0)
    variable["namedVariables"] = view.members;
  return variable;
}

json DapServer::variables(const json& arguments) {
  constexpr int kMostMembers = 1000;
  const int reference = numberOf(arguments, "variablesReference", 0);
  std::vector<BobVariableView> views;
  if (reference % 2 == 0) {
    const int first = std::max(numberOf(arguments, "start", 0), 0), count = numberOf(arguments, "count", 0);
    views = page.debugger().members(size_t(reference / 2), size_t(first),
                                    size_t(count > 0 ? std::min(count, kMostMembers) : kMostMembers));
  } else if (size_t(reference / 2) <= groups.size() && reference > 1) {
    views = groups[size_t(reference / 2) - 1].variables;
  }
  json all = json::array();
  for (const BobVariableView& view : views) all.push_back(variableJson(view));
  return {{"variables", all}};
}

json DapServer::setVariable(const json& arguments) {
  const int reference = numberOf(arguments, "variablesReference", 0);
  const std::string name = textOf(arguments, "name"), text = textOf(arguments, "value");
  std::string error;
  std::optional<BobVariableView> view;
  if (reference % 2 == 0) {
    evaluating([&](BobDebugger& at) { view = at.setMember(size_t(reference / 2), name, 0, text, &error); });
  } else if (size_t(reference / 2) <= groups.size() && reference > 1) {
    Scope& group = groups[size_t(reference / 2) - 1];
    if (name == "this") throw KitError("'this' can't be set");
    evaluating([&](BobDebugger& at) { view = at.evaluate(group.frame, name + " = (" + text + ")", &error); });
    for (BobVariableView& known : group.variables)
      if (view && known.name == name) known = *view, known.name = name;
  } else {
    error = "there is no such variable";
  }
  if (!view) throw KitError(error);
  return {{"value", view->text}, {"type", view->type}, {"variablesReference", referenceOf(view->number)}};
}

// In a frame while the page stands, otherwise on the console.
json DapServer::evaluate(const json& arguments) {
  const std::string text = textOf(arguments, "expression");
  if (!stands) {
    if (textOf(arguments, "context") != "repl") throw KitError("the page isn't stopped");
    if (isBegun) page.act({PageAction::eval, text});
    return {{"result", ""}, {"variablesReference", 0}};
  }
  std::string error;
  const size_t frame = size_t(numberOf(arguments, "frameId", 1) - 1);
  std::optional<BobVariableView> view;
  evaluating([&](BobDebugger& at) { view = at.evaluate(frame, text, &error); });
  if (!view) throw KitError(error);
  return {{"result", view->text}, {"type", view->type}, {"variablesReference", referenceOf(view->number)}};
}

json DapServer::goOn(const json&) {
  resume = BobResume::run;
  return {{"allThreadsContinued", true}};
}
json DapServer::next(const json&) {
  resume = BobResume::stepOver;
  return nullptr;
}
json DapServer::stepIn(const json&) {
  resume = BobResume::stepInto;
  return nullptr;
}
json DapServer::stepOut(const json&) {
  resume = BobResume::stepOut;
  return nullptr;
}
