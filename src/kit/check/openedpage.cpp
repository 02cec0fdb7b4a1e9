#include "kit/check/openedpage.h"

#include <algorithm>

#include "engine/base/hostfile.h"
#include "engine/engine.h"
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
  folder = fs::path(files.pageOf(source)).parent_path();
  try {
    run.load(source);
  } catch (const KitError& e) {
    problems = e.messages;
  }
}

FileLook OpenedPage::look(const std::string& name) {
  std::string path = name;
  std::replace(path.begin(), path.end(), '\\', '/');
  const fs::path file = (folder / path).lexically_normal();
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
