#include "kit/run/preparedpages.h"

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "kit/project/build.h"

namespace fs = std::filesystem;

namespace {

// The page that the project around the source makes of it; empty if there is no such project.
std::string builtByProject(const std::string& source, const KitWarn& warn) {
  const std::string file = findProject(fs::path(source).parent_path().string());
  if (file.empty()) return {};
  const Project project = readProject(file);
  BuildOptions options;
  options.page = pageOfProject(project, source);
  if (options.page.empty()) return {};
  options.warn = warn;
  buildProject(project, options);
  for (const BuildStep& step : planProject(project).steps)
    if (step.name == pageStepName(options.page)) return outputPath(project, step.outputs.front());
  return {};
}

}  // namespace

void PreparedPages::prepare(const std::string& page) {
  if (pages.contains(page)) return;
  Prepared& prepared = pages[page];
  try {
    prepared = make(page);
  } catch (const KitError& e) {
    prepared.errors = e.messages;
  }
}

PreparedPages::Prepared PreparedPages::make(const std::string& page) const {
  std::error_code error;
  if (!fs::is_regular_file(page, error)) throw KitError(page, std::strerror(ENOENT));
  if (!isPageSource(page)) return {page, nullptr, {}};
  const std::string built = builtByProject(page, warn);
  if (!built.empty()) return {built, nullptr, {}};
  PageSourceOptions options;
  options.lines = true;
  return {page, std::make_shared<BuiltPage>(compilePage(page, warn, options)), {}};
}

bool PreparedPages::open(PageRun& run, const std::string& page) const {
  const Prepared& prepared = pages.at(page);
  if (!prepared.errors.empty()) throw KitError(prepared.errors);
  return prepared.built ? run.load(page, *prepared.built) : run.load(prepared.path);
}
