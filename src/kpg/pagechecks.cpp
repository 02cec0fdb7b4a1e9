#include "kpg/pagechecks.h"

#include <filesystem>
#include <ostream>

#include "kit/source/pagebuild.h"

namespace {

void add(std::vector<Finding>& all, std::vector<Finding> more) {
  for (Finding& finding : more) all.push_back(std::move(finding));
}

}  // namespace

std::vector<Finding> checkProject(const Project& project) {
  std::vector<Finding> all;
  for (const ProjectName& page : project.pages) add(all, checkPageSource(project.pathOf(page.text), project.allow));
  return all;
}

std::vector<Finding> checkPages(const std::vector<std::string>& sources) {
  std::vector<Finding> all;
  for (const std::string& source : sources) {
    if (!isPageSource(source)) throw KitError(source, "is no page source; only sources can be checked");
    const std::string project = findProject(std::filesystem::path(source).parent_path().string());
    add(all, checkPageSource(source, project.empty() ? std::vector<std::string>() : readProject(project).allow));
  }
  return all;
}

void printFindings(const std::vector<Finding>& findings, std::ostream& out) {
  for (const Finding& finding : findings) out << finding.whole() << "\n";
}
