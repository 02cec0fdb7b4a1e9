#include "kit/check/openedpage.h"

#include <algorithm>

#include "engine/base/hostfile.h"
#include "engine/engine.h"
#include "engine/inspect/walk.h"
#include "gfx/foundation/hsascii.h"

namespace fs = std::filesystem;

namespace {

constexpr double kMostSeconds = 10;  // of processor time, for scripts that never end

PageRunOptions optionsOf(LiveFiles& files) {
  PageRunOptions options;
  options.readOnly = true;
  options.limitSeconds = kMostSeconds;
  options.files = &files;
  return options;
}

}  // namespace

OpenedPage::OpenedPage(const std::string& source) : files(source), run(optionsOf(files)) {
  files.begin();
  path = files.pageOf(source);
  folder = fs::path(path).parent_path();
  try {
    run.load(source);
  } catch (const KitError& e) {
    problems = e.messages;
  }
}

FileLook OpenedPage::look(const std::string& name) {
  std::string plain = name;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  const fs::path file = (folder / plain).lexically_normal();
  std::error_code error;
  if (files.find(file) || fs::is_regular_file(file, error)) return {FileLook::exactly, name};
  const auto isEqual = [&](const fs::path& other) { return hsAsciiEqualIgnoringCase(other.c_str(), file.c_str()); };
  const EngineScope here(engine());
  fs::path found = files.findIgnoringCase(file);
  if (found.empty() && openHostFile(name.c_str())) {
    const auto& read = run.player().filesRead();
    const auto known =
        std::find_if(read.begin(), read.end(), [&](const fs::path& f) { return isEqual(f.lexically_normal()); });
    if (known != read.end()) found = known->lexically_normal();
  }
  if (found.empty()) return {FileLook::nowhere, ""};
  return {FileLook::ignoringCase, found.lexically_relative(folder).string()};
}

std::vector<Widget*> OpenedPage::widgetsOf(const CheckedPage& page) {
  const Frame* top = engine().topFrame;
  if (!top || !top->pageData || top->pageName != fs::absolute(path).string()) return {};
  std::vector<Widget*> made = walkWidgets(engine());
  std::erase_if(made, [&](const Widget* widget) { return frameOf(widget) != top; });
  if (made.size() != page.widgets.size()) return {};
  return made;
}
