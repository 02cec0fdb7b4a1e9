#include "kit/run/rundesktop.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <iterator>

#include "platform/residentmemory.h"

namespace {

constexpr size_t kMostLog = size_t{16} << 20;     // bytes
constexpr size_t kMostComplaints = 1000;          // more tell nobody anything new
constexpr uint32_t kStepsBetweenLooks = 1 << 11;  // a step may take tens of kilobytes

// They share the process's memory, so it may grow by as many limits.
std::atomic<size_t> desktopsThatRun = 0;

// What the system says while all is well.
constexpr std::string_view kReports[] = {"Loading image '", "Loading CLUT '", "Caching '"};

double processorTime() {
  timespec now;
  if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now) != 0) return double(std::clock()) / CLOCKS_PER_SEC;  // one thread
  return double(now.tv_sec) + double(now.tv_nsec) * 1e-9;
}

}  // namespace

bool isComplaint(std::string_view systemMessage) {
  return std::none_of(std::begin(kReports), std::end(kReports),
                      [&](std::string_view report) { return systemMessage.starts_with(report); });
}

RunDesktop::RunDesktop(const RunLimits& l) : limits(l), memoryBefore(residentMemory()) { ++desktopsThatRun; }

RunDesktop::~RunDesktop() { --desktopsThatRun; }

RunDesktop& RunDesktop::ofThisThread() {
  return static_cast<RunDesktop&>(static_cast<Shell&>(currentEngine()->host).desktop);
}

void RunDesktop::watchScripts(ScriptPlaces* p) {
  const EngineScope here(shell.engine);
  BobInterp* interp = scriptInterp();
  if (!interp) return;
  places = p;
  if (places) places->listen(interp, [](const std::string& source) { return hostFullName(source.c_str()); });
  bobSetErrorHandler(interp, [](BobInterp* i, int code, const BobErrorArgument& argument) {
    ofThisThread().scriptFailed(i, code, argument);
  });
  bobSetRest(interp, [](BobInterp* i) {
    RunDesktop& desktop = ofThisThread();
    const bool wasStopped = !desktop.stopped().empty();
    desktop.steps += desktop.stepsOfThisTurn;
    // The first script to be ended says where it was; those that would still run end without a word.
    if (!desktop.mayGoOn(i)) bobRaise(i, wasStopped ? kBobRestart : kBobExit);
    desktop.beginTurn(i);
  });
  beginTurn(interp);
}

void RunDesktop::beginActivity() {
  begun.reset();
  steps = 0;
  if (limits.limitSteps == 0 || !reason.empty()) return;
  const EngineScope here(shell.engine);
  if (BobInterp* interp = scriptInterp()) beginTurn(interp);
}

void RunDesktop::beginTurn(BobInterp* interp) {
  stepsOfThisTurn = kStepsBetweenLooks;
  if (limits.limitSteps != 0) stepsOfThisTurn = uint32_t(std::min<size_t>(stepsOfThisTurn, limits.limitSteps - steps));
  bobRestOften(interp, stepsOfThisTurn);
}

void RunDesktop::scriptFailed(BobInterp* interp, int code, const BobErrorArgument& argument) {
  const size_t begin = log.size();
  if (places && code != kBobRestart) {
    reportWithPlaces(interp, code, argument);
  } else {
    bobStandardErrorHandler(interp, code, argument);
  }
  if (log.size() > begin && complained.size() < kMostComplaints) complained.push_back({begin, log.size()});
}

// What the standard handler prints, and notes of where the places belong.
void RunDesktop::reportWithPlaces(BobInterp* interp, int code, const BobErrorArgument& argument) {
  bobPrintError(interp, code, argument);
  const std::vector<std::string> all = places->runningPlaces(interp, read);
  auto place = all.begin();
  bobPrintTraceback(interp, [&] {
    if (place == all.end()) return;
    if (!place->empty()) inserted.push_back({log.size(), " at " + *place});
    ++place;
  });
}

std::string RunDesktop::withPlaces(std::string_view part) const {
  std::string text;
  size_t from = size_t(part.data() - log.data());
  const size_t end = from + part.size();
  for (const Insertion& insertion : inserted) {
    if (insertion.at < from || insertion.at > end) continue;
    text.append(log, from, insertion.at - from).append(insertion.text);
    from = insertion.at;
  }
  return text.append(log, from, end - from);
}

// A message that goes on from the one before, such as " -- not found", belongs to it.
void RunDesktop::systemMessage(std::string_view text) {
  if (text.size() > log.size()) return;  // there is no console yet
  size_t begin = log.size() - text.size();
  if (text.starts_with(" -- ") && lastMessageEnd == begin) begin = lastMessage;
  if (isComplaint(text) && complained.size() < kMostComplaints) {
    if (!complained.empty() && complained.back().begin == begin) complained.pop_back();
    complained.push_back({begin, log.size()});
  }
  lastMessage = begin;
  lastMessageEnd = log.size();
}

std::vector<std::string_view> RunDesktop::complaints() const {
  std::vector<std::string_view> texts;
  for (const Range& range : complained)
    texts.push_back(std::string_view(log).substr(range.begin, range.end - range.begin));
  return texts;
}

// Fonts, tables and pages are read whole.
void RunDesktop::fileOpened(const std::filesystem::path& path) {
  read.insert(path);
  const EngineScope here(shell.engine);
  if (reason.empty()) stopAboveLimitOfMemory(scriptInterp());
}

void RunDesktop::stopAboveLimitOfMemory(BobInterp* running) {
  const size_t limit = limits.limitMemory;
  if (limit == 0 || residentMemory() <= memoryBefore + (limit << 20) * desktopsThatRun) return;
  stop(double(limit), limit == 1 ? " megabyte of memory" : " megabytes of memory", running);
}

bool RunDesktop::mayGoOn(BobInterp* running) {
  if (!reason.empty()) return false;
  if (whileBusy) whileBusy();
  if (interrupted.exchange(false)) {
    stop("stopped", running);
  } else if (log.size() > kMostLog) {
    stop(double(kMostLog >> 20), " megabytes of log", running);
  } else if (limits.limitSteps != 0 && steps >= limits.limitSteps) {
    stop(double(limits.limitSteps), limits.limitSteps == 1 ? " step of its scripts" : " steps of its scripts", running);
  } else if (const double limit = limits.limitSeconds; limit != 0) {
    const double now = processorTime();
    if (!begun) begun = now;
    if (now - *begun > limit)
      stop(limit, limit == 1 ? " second of processor time" : " seconds of processor time", running);
  }
  if (reason.empty()) stopAboveLimitOfMemory(running);
  return reason.empty();
}

void RunDesktop::goOn() {
  const EngineScope here(shell.engine);
  steps = 0;
  if (BobInterp* interp = scriptInterp()) beginTurn(interp);
  reason.clear();
  interrupted = false;
  beginActivity();
}

void RunDesktop::stop(double count, const char* unit, BobInterp* running) {
  char number[32];
  std::snprintf(number, sizeof number, "%.15g", count);
  stop(std::string("stopped after ") + number + unit, running);
}

void RunDesktop::stop(const std::string& why, BobInterp* running) {
  const EngineScope here(shell.engine);
  if (BobInterp* interp = scriptInterp()) bobRestOften(interp, 1);  // all other scripts end at once
  reason = why;
  const std::string name = running ? bobRunningName(running) : "";
  if (!name.empty()) reason.append(" in ").append(name);
}
