#include "kpg/pagechecks.h"

#include <filesystem>
#include <iostream>
#include <set>

#include "kit/run/stdoutaside.h"
#include "kit/source/pagebuild.h"
#include "kpg/commandline.h"

namespace {

// What is wrong with a file that several pages need is said once.
class Reports {
 public:
  void add(CheckReport more) {
    for (Finding& finding : more.findings) all.findings.push_back(std::move(finding));
    for (KitMessage& error : more.errors)
      if (said.insert(error.whole()).second) all.errors.push_back(std::move(error));
  }
  CheckReport take() { return std::move(all); }

 private:
  CheckReport all;
  std::set<std::string> said;
};

}  // namespace

CheckReport checkProject(const Project& project) {
  const StandardOutputAside aside;
  Reports all;
  for (const ProjectName& page : project.pages) all.add(checkPageSource(project.pathOf(page.text), project.allow));
  return all.take();
}

CheckReport checkPages(const std::vector<std::string>& sources) {
  const StandardOutputAside aside;
  Reports all;
  for (const std::string& source : sources) {
    if (!isPageSource(source)) throw KitError(source, "is no page source; only sources can be checked");
    const std::string project = findProject(std::filesystem::path(source).parent_path().generic_string());
    all.add(checkPageSource(source, project.empty() ? std::vector<std::string>() : readProject(project).allow));
  }
  return all.take();
}

void report(const CheckReport& checked, std::ostream& out, bool asJson) {
  for (const KitMessage& error : checked.errors) std::cerr << error.whole() << "\n";
  if (asJson) out << findingsJson(checked.findings);
  if (!asJson)
    for (const Finding& finding : checked.findings) out << finding.whole() << "\n";
  if (!checked.isClean()) throw CommandFailure(1, "");
}
