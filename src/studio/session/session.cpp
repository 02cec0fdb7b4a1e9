#include "studio/session/session.h"

#include <algorithm>
#include <ctime>

namespace {

double processorTime() { return double(std::clock()) / CLOCKS_PER_SEC; }

std::string lastLine(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text.substr(text.rfind('\n') + 1);
}

}  // namespace

Session::Session(std::string p, const SessionOptions& o) : page(std::move(p)), options(o), files(page) {
  files.edited = options.edited;
}

std::unique_ptr<PageRun> Session::open() {
  problems.clear();
  remarks.clear();
  files.begin();
  PageRunOptions runOptions = options;
  runOptions.files = &files;
  runOptions.written = &written;
  auto run = std::make_unique<PageRun>(runOptions);
  if (options.prepare) options.prepare(*run);
  bool loaded = false;
  try {
    loaded = run->load(page, [&](const KitMessage& warning) { remarks.push_back(warning); });
    if (!loaded) problems.push_back({page, 0, "can't be opened: " + lastLine(run->log())});
  } catch (const KitError& e) {
    problems = e.messages;
  }
  read.clear();
  for (const std::string& file : run->dependencies()) read.push_back(file);
  return loaded ? std::move(run) : nullptr;
}

bool Session::restart() {
  done = {page, {}};
  auto next = open();
  if (!next) return false;
  opened = readKeptState(next->engine());
  current = std::move(next);
  ++timesOpened;
  return true;
}

bool Session::reload() {
  if (!current) return restart();
  auto next = open();
  if (!next) return false;
  const KeptState wanted = changedState(opened, readKeptState(current->engine()));
  opened = readKeptState(next->engine());
  replay(*next);
  restoreKeptState(next->engine(), wanted);
  next->player().settle();
  current = std::move(next);
  ++timesOpened;
  return true;
}

// Whether all of it was done. A long pause is the dear part, so it is taken in pieces.
bool Session::replay(PageRun& run) const {
  constexpr int64_t kPiece = 100;  // milliseconds
  const double end = processorTime() + options.replaySeconds;
  for (const PageAction& action : done.actions) {
    if (action.kind != PageAction::wait) {
      if (processorTime() > end) return false;
      run.act(action);
      if (!run.stopped().empty()) {
        run.player().goOn();
        return false;
      }
      continue;
    }
    for (int64_t left = std::stoll(action.argument); left > 0; left -= kPiece) {
      if (processorTime() > end) return false;
      run.act({PageAction::wait, std::to_string(std::min(left, kPiece))});
    }
  }
  return true;
}

void Session::act(const PageAction& action) {
  if (!current) return;
  current->act(action);
  // What had to be ended would have to be ended at each replay.
  if (current->stopped().empty()) done.add(action);
}

void Session::pass(uint32_t milliseconds) { act({PageAction::wait, std::to_string(milliseconds)}); }

std::vector<std::filesystem::path> Session::dependencies() const {
  std::vector<std::filesystem::path> all = read;
  if (current)
    for (const std::string& file : current->dependencies()) all.push_back(file);
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}
