#include "kit/run/preparedpages.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "kit/project/build.h"

namespace fs = std::filesystem;

void PreparedPages::prepare(const std::string& page) {
  if (pages.contains(page)) return;
  Prepared& prepared = pages[page];
  try {
    prepared = make(page);
  } catch (const KitError& e) {
    prepared = {page, nullptr, e.messages};
  }
}

PreparedPages::Prepared PreparedPages::make(const std::string& page) {
  std::error_code error;
  if (!fs::is_regular_file(page, error)) throw KitError(page, std::strerror(ENOENT));
  if (!isPageSource(page)) return {page, nullptr, {}};
  const std::string built = builtByProject(page);
  if (!built.empty()) return {built, nullptr, {}};
  PageSourceOptions options;
  options.lines = true;
  return {page, std::make_shared<BuiltPage>(compilePage(page, warn, options)), {}};
}

// What the project around the source makes of it; empty if that has no such page. Then all of the project is built,
// since scripts open other pages; what is wrong with those is said, and no more.
std::string PreparedPages::builtByProject(const std::string& source) {
  const std::string file = findProject(fs::path(source).parent_path().generic_string());
  if (file.empty()) return {};
  const Project project = readProject(file);
  BuildOptions options;
  const std::string name = options.page = pageOfProject(project, source);
  if (name.empty()) return {};
  options.warn = warn;
  buildProject(project, options);
  options.page.clear();
  if (projects.insert(file).second) try {
      buildProject(project, options);
    } catch (const KitError& e) {
      for (const KitMessage& message : e.messages)
        if (warn) warn(message);
    }
  for (const BuildStep& step : planProject(project).steps)
    if (step.name == pageStepName(name)) return outputPath(project, step.outputs.front());
  return {};
}

bool PreparedPages::open(PageRun& run, const std::string& page) const {
  const Prepared& prepared = pages.at(page);
  if (!prepared.errors.empty()) throw KitError(prepared.errors);
  return prepared.built ? run.load(page, *prepared.built) : run.load(prepared.path);
}
