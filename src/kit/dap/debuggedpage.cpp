#include "kit/dap/debuggedpage.h"

#include "kit/errors.h"

DebuggedPage::DebuggedPage(const RunLimits& limits) {
  PageRunOptions options{limits};
  options.lines = true;
  run = std::make_unique<PageRun>(options);
  run->player().whileBusy = [this] {
    if (whileBusy) whileBusy();
  };
  pageDebugger = std::make_unique<PageDebugger>(*run);
  pageDebugger->stopped = [this](const BobStop& stop) {
    printNew();
    return stopped ? stopped(stop) : BobResume::run;
  };
  pageDebugger->logged = [this](const std::string& line) {
    printNew();
    if (printed) printed(line + "\n");
  };
  pageDebugger->breakpointMoved = [this](const WantedBreakpoint& breakpoint) {
    if (breakpointMoved) breakpointMoved(breakpoint);
  };
}

void DebuggedPage::load(const std::string& page) {
  if (isPageSource(page)) {
    files = std::make_unique<LiveFiles>(page);
    files->begin();
    run->use(*files);
  }
  const bool loaded = run->load(page, [this](const KitMessage& warning) {
    if (printed) printed(warning.whole() + "\n");
  });
  printNew();
  if (!loaded) throw KitError(page, "can't be loaded");
  isLoaded = true;
  pageDebugger->learn();
}

void DebuggedPage::act(const PageAction& action) {
  run->act(action);
  printNew();
}

bool DebuggedPage::goOnIfEnded() {
  if (run->player().stopped().empty()) return false;
  run->player().goOn();
  return true;
}

void DebuggedPage::printNew() {
  const std::string all = run->logWithPlaces();
  if (all.size() > printedSoFar && printed) printed(all.substr(printedSoFar));
  printedSoFar = all.size();
  if (!files || !isLoaded) return;
  const std::vector<KitMessage> errors = files->errors();
  for (; errorsSoFar < errors.size(); ++errorsSoFar)
    if (printed) printed(errors[errorsSoFar].whole() + "\n");
}
