#include "kit/run/pagerun.h"

#include <filesystem>

PageRun::PageRun(bool readOnly) {
  desktop.shell.engine.scriptsMayWriteFiles = !readOnly;
  desktop.start();
  desktop.settle();
}

bool PageRun::load(const std::string& path) {
  if (!desktop.shell.loadPage(std::filesystem::absolute(path).string())) return false;
  desktop.settle();
  return true;
}

void PageRun::act(const PageAction& action) {
  switch (action.kind) {
    case PageAction::key: desktop.key(action.argument); return desktop.settle();
    case PageAction::wait: return desktop.wait(uint32_t(std::stoul(action.argument)));
    case PageAction::eval: desktop.typeLine(action.argument); return desktop.settle();
  }
}

PagePicture PageRun::take() {
  auto& screen = desktop.shell.screen;
  return {screen.screenWidth, screen.screenHeight, screen.take()};
}
