#include "kpg/projectbuild.h"

#include <filesystem>
#include <iostream>

#include "kit/errors.h"
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
    file = (fs::path(folder) / kProjectFileName).string();
    if (!fs::exists(file, error)) throw KitError(folder, std::string("has no ") + kProjectFileName);
  }
  Project project = readProject(file);
  if (!output.empty()) project.output = fs::absolute(output).lexically_normal().string();
  return project;
}

BuildReport buildOnTerminal(const Project& project, BuildOptions options) {
  ProgressBar bar;
  options.warn = [&](const KitMessage& warning) {
    bar.clear();
    std::cerr << warning.whole() << "\n";
  };
  if (bar.isShown()) {
    options.progress = [&](size_t done, size_t steps, const std::string& step) { bar.show(done, steps, step); };
  } else {
    options.made = [&](const std::string& file) { std::cout << outputPath(project, file) << "\n"; };
  }
  const BuildReport report = buildProject(project, options);
  bar.clear();
  if (bar.isShown() || report.made == 0)
    std::cout << (report.made == 0 ? "nothing has changed" : std::to_string(report.made) + " files made") << ", "
              << report.files.size() << " in " << outputPath(project, "") << "\n";
  return report;
}
