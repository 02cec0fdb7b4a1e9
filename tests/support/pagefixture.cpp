#include "support/pagefixture.h"

#include <fstream>

#include "engine/engine.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"

namespace fs = std::filesystem;

PageTest::PageTest() : before(fs::current_path()) {
  fs::current_path(folder);
  desktop.start();
  desktop.settle();
  desktop.log.clear();
}

PageTest::~PageTest() { fs::current_path(before); }

void PageTest::writeText(const std::string& name, const std::string& text) {
  writeFile(name, text.data(), text.size());
}

void PageTest::build(const std::string& name, const std::string& source) {
  writeText(name + ".yaml", source);
  buildPage(name + ".yaml", name);
}

bool PageTest::loadFile(const std::string& name) {
  const bool loaded = desktop.shell.loadPage((folder / name).generic_string());
  if (loaded) desktop.settle();
  return loaded;
}

bool PageTest::load(const std::string& source) {
  build("page.kpg", source);
  return loadFile("page.kpg");
}

void PageTest::key(const std::string& name) {
  ASSERT_TRUE(desktop.key(name)) << name;
  desktop.settle();
}

std::string PageTest::log() const {
  std::string text = desktop.log;
  for (size_t at; (at = text.find("[GC - ")) != std::string::npos;) text.erase(at, text.find('\n', at) + 1 - at);
  return text;
}

std::string PageTest::focusName() const {
  const Widget* focus = topFrame()->focus;
  return focus ? focus->name ? focus->name : "(unnamed)" : "(none)";
}
