#include "kit/project/missingfiles.h"

#include <algorithm>
#include <filesystem>
#include <set>

#include "gfx/foundation/hsascii.h"
#include "kit/files.h"
#include "kit/pictures/kpxfile.h"
#include "kit/project/build.h"
#include "kit/suggest.h"

namespace fs = std::filesystem;

namespace {

bool hasExtension(const std::string& file, const char* extension) {
  return hsAsciiEqualIgnoringCase(fs::path(file).extension().string().c_str(), extension);
}

// The table that a built picture names; empty for the page's.
std::string tableOf(const std::string& path) try {
  return parseKpx(path, readFile(path)).clut;
} catch (const KitError&) {
  return "";
}

void openFrom(const Project& project, KitMessage* at) {
  at->file = project.pathOf(at->file);
  for (KitMessage& use : at->uses) openFrom(project, &use);
}

// What an author has to do to have the file.
std::string advice(const Project& project, const std::vector<std::string>& files, const FileUse& use) {
  struct Source {
    const char *built, *source, *key;
  };
  constexpr Source kSources[] = {{".kpg", ".yaml", "pages"},
                                 {".kpx", ".png", "pictures"},
                                 {".kpx", ".gif", "pictures"},
                                 {".bobo", ".bob", "scripts"}};
  for (const Source& each : kSources) {
    const std::string source = fs::path(use.target).replace_extension(each.source).generic_string();
    std::error_code error;
    if (hasExtension(use.target, each.built) && fs::is_regular_file(project.pathOf(source), error))
      return "; add " + source + " to " + each.key;
  }
  const fs::path name = fs::path(use.target).filename();
  for (const std::string& file : files)
    if (fs::path(file).filename() == name) return "; there is '" + file + "'";
  return suggestion(use.target, files);
}

}  // namespace

std::vector<std::string> builtFiles(const Manifest& built) {
  std::set<std::string> files;
  for (const auto& [name, step] : built.steps)
    for (const FileRecord& output : step.outputs) files.insert(output.name);
  return {files.begin(), files.end()};
}

const std::string* findBuilt(const std::vector<std::string>& files, const std::string& target) {
  auto found = std::find(files.begin(), files.end(), target);
  const auto isEqual = [&](const std::string& file) { return hsAsciiEqualIgnoringCase(file.c_str(), target.c_str()); };
  if (found == files.end()) found = std::find_if(files.begin(), files.end(), isEqual);
  return found == files.end() ? nullptr : &*found;
}

std::vector<FileUse> usesInProject(const Project& project, const Manifest& built) {
  const std::vector<std::string> files = builtFiles(built);
  std::vector<FileUse> uses;
  for (const auto& [name, step] : built.steps) {
    if (step.uses.empty()) continue;
    const fs::path folder = fs::path(step.outputs.front().name).parent_path();
    for (const FileUse& use : step.uses) {
      uses.push_back(use);
      openFrom(project, &uses.back().at);
      const std::string* picture = hasExtension(use.target, ".kpx") ? findBuilt(files, use.target) : nullptr;
      const std::string table = picture ? tableOf(outputPath(project, *picture)) : "";
      if (table.empty()) continue;
      KitMessage at = uses.back().at;
      at.text = "the colour table of " + use.name;
      uses.push_back({(folder / table).lexically_normal().generic_string(), table, at});
    }
  }
  return uses;
}

std::vector<KitMessage> missingFiles(const Project& project, const Manifest& built,
                                     const std::vector<std::string>& planned) {
  std::vector<std::string> files = builtFiles(built);
  files.insert(files.end(), planned.begin(), planned.end());
  std::vector<KitMessage> missing;
  for (const FileUse& use : usesInProject(project, built)) {
    if (findBuilt(files, use.target)) continue;
    KitMessage message = use.at;
    message.text += ": '" + use.name + "' is not in the project" + advice(project, files, use);
    missing.push_back(std::move(message));
  }
  return missing;
}
