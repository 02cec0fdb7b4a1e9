#include "kpg/projectbuild.h"

#include <filesystem>
#include <iostream>

#include "kit/errors.h"
#include "kit/files.h"
#include "kpg/progressbar.h"

namespace fs = std::filesystem;

void addProjectFolder(KpgCommand& command, std::string& folder) {
  command.add("project", folder, "The folder of the project; by default the one around").type("FOLDER");
}

Project openProject(const std::string& folder, const std::string& output) {
  std::error_code error;
  std::string file = folder;
  if (folder.empty()) {
    file = findProject("");
    if (file.empty())
      throw KitError(std::string("there is no ") + kProjectFileName +
                     " here or in a folder around; kpg new NAME begins a project");
  } else if (fs::is_directory(folder, error)) {
    file = (fs::path(folder) / kProjectFileName).generic_string();
    if (!fs::exists(file, error)) throw KitError(folder, std::string("has no ") + kProjectFileName);
  }
  Project project = readProject(file);
  if (output.empty()) return project;
  if (isStandardOutput(output)) throw KitError("a project is built into a folder; -o names that");
  project.output = fs::absolute(output).lexically_normal().generic_string();
  if (fs::equivalent(project.output, project.folder.empty() ? "." : project.folder, error))
    throw KitError(output, "is the project's own folder; built files need one of their own");
  return project;
}

void sayWarning(const KitMessage& warning, bool checkFollows) {
  if (!checkFollows || warning.check.empty()) std::cerr << warning.whole() << "\n";
}

BuildReport buildOnTerminal(const Project& project, BuildOptions options, bool checkFollows) {
  ProgressBar bar;
  options.warn = [&](const KitMessage& warning) {
    bar.clear();
    sayWarning(warning, checkFollows);
  };
  if (bar.isShown()) {
    options.progress = [&](size_t done, size_t steps, const std::string& step) { bar.show(done, steps, step); };
  } else {
    options.made = [&](const std::string& file) { std::cout << outputPath(project, file) << "\n"; };
  }
  const BuildReport report = buildProject(project, options);
  bar.clear();
  const auto files = [](size_t n) { return std::to_string(n) + (n == 1 ? " file" : " files"); };
  if (report.removed > 0) std::cout << files(report.removed) << " removed, which the project no longer makes\n";
  if (!bar.isShown() && report.made > 0) return report;
  const char* const unchanged = options.all ? "all built again, and nothing has changed" : "nothing has changed";
  std::cout << (report.made > 0      ? files(report.made) + " made"
                : report.removed > 0 ? "nothing made"
                                     : unchanged)
            << ", " << report.files.size() << " in " << outputPath(project, "") << "\n";
  return report;
}
