#include "kit/project/pack.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <string_view>

#include "engine/images/imagecache.h"
#include "gfx/foundation/hsascii.h"
#include "kit/files.h"
#include "kit/pictures/gifpicture.h"
#include "kit/pictures/kpxfile.h"
#include "kit/project/archive.h"
#include "kit/project/contenthash.h"
#include "kit/project/manifest.h"
#include "kit/project/mentions.h"
#include "kit/project/missingfiles.h"
#include "kit/wildcards.h"

namespace fs = std::filesystem;

namespace {

class Packer {
 public:
  Packer(const Project& p, const BuildReport& b) : project(p), built(b) {}

  Pack run() {
    for (const PageBuildRecord& page : built.pages) {
      take(page.page);
      for (const FileUse& use : page.uses)
        if (const std::string* file = findBuilt(built.files, use.target)) take(*file);
      pack.pages.push_back(picturesOf(page));
    }
    takeListed();
    while (!toSearch.empty()) {
      const std::string file = std::move(toSearch.back());
      toSearch.pop_back();
      takeMentioned(file);
    }
    for (const std::string& file : built.files) {
      if (taken.contains(file)) {
        pack.files.push_back({file, size_t(fs::file_size(outputPath(project, file)))});
      } else {
        pack.unused.push_back(file);
      }
    }
    return std::move(pack);
  }

 private:
  void take(const std::string& file) {
    if (!taken.insert(file).second) return;
    toSearch.push_back(file);
  }

  void takeListed() {
    for (const ProjectName& listed : project.files)
      if (const std::string* file = findBuilt(built.files, fs::path(listed.text).lexically_normal().generic_string()))
        take(*file);
    for (const std::string& pattern : project.keep)
      for (const std::string& file : built.files)
        if (matchesWildcards(pattern, file)) take(file);
  }

  // A picture mentions its table, a page or a script whatever it may open.
  void takeMentioned(const std::string& file) {
    const std::vector<uint8_t> bytes = readFile(outputPath(project, file));
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::string kind = fs::path(file).extension().string();
    const bool hasScripts = kind == ".kpg" || kind == ".bobo";
    if (!hasScripts && kind != ".kpx") return;
    for (const std::string& other : built.files)
      if (hasScripts ? scriptMentions(text, other) : mentions(text, other)) take(other);
  }

  PagePictures picturesOf(const PageBuildRecord& page) const {
    PagePictures result{page.page};
    std::set<std::string> met;
    for (const FileUse& use : page.uses) {
      const std::string* file = findBuilt(built.files, use.target);
      if (!file || !met.insert(*file).second) continue;
      const uint64_t pixels = pixelsOf(outputPath(project, *file));
      if (pixels == 0) continue;
      ++result.pictures;
      result.memory += imageMemory(pixels, use.name.size());
    }
    return result;
  }

  // 0 for what is no picture.
  static uint64_t pixelsOf(const std::string& path) try {
    const std::string extension = fs::path(path).extension().string();
    const bool isOurs = hsAsciiEqualIgnoringCase(extension.c_str(), ".kpx");
    if (!isOurs && !hsAsciiEqualIgnoringCase(extension.c_str(), ".gif")) return 0;
    const std::vector<uint8_t> bytes = readFile(path);
    if (isOurs) return parseKpx(path, bytes).pixels.size();
    const GifSummary gif = summarizeGif(path, bytes);
    return uint64_t{gif.width} * gif.height;
  } catch (const KitError&) {
    return 0;
  }

  const Project& project;
  const BuildReport& built;
  std::set<std::string> taken;
  std::vector<std::string> toSearch;
  Pack pack;
};

std::vector<ArchivedFile> filesOf(const Project& project, const Pack& pack) {
  std::vector<ArchivedFile> files;
  for (const PackedFile& file : pack.files) files.push_back({file.name, readFile(outputPath(project, file.name))});
  return files;
}

void writeFolder(const Project& project, const std::vector<ArchivedFile>& files, const std::string& folder) {
  std::error_code error;
  const std::string recordFile = outputPath(project, kPackRecordName);
  Manifest record = readManifest(recordFile);
  StepRecord& before = record.steps[fs::weakly_canonical(fs::absolute(folder, error), error).generic_string()];
  std::map<std::string, std::string> ours;
  for (const FileRecord& file : before.outputs) ours[file.name] = file.hash;
  std::vector<std::string> stale;
  if (fs::exists(folder, error))
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.is_directory(error)) continue;
      const std::string name = entry.path().lexically_relative(folder).generic_string();
      const auto known = ours.find(name);
      if (known == ours.end() || known->second != fileHash(entry.path().generic_string()))
        throw KitError(entry.path().generic_string(),
                       "is there and no pack put it there; name a folder that is empty or new");
      if (std::none_of(files.begin(), files.end(), [&](const auto& file) { return file.name == name; }))
        stale.push_back(entry.path().generic_string());
    }
  OutputFiles outputs;
  before.outputs.clear();
  for (const ArchivedFile& file : files) {
    const fs::path path = fs::path(folder) / file.name;
    fs::create_directories(path.parent_path(), error);
    outputs.add(path.generic_string(), file.bytes.data(), file.bytes.size());
    before.outputs.push_back({file.name, contentHash(file.bytes)});
  }
  outputs.finish();
  for (const std::string& file : stale) fs::remove(file, error);
  const std::string text = manifestText(record);
  writeFile(recordFile, text.data(), text.size());
}

bool endsWith(const std::string& name, std::string_view ending) {
  return name.size() >= ending.size() &&
         hsAsciiEqualIgnoringCase(name.c_str() + (name.size() - ending.size()), ending.data());
}

}  // namespace

void checkPackName(const std::string& output) {
  if (isStandardOutput(output)) throw KitError("a pack is a folder or a file; -o names that");
  for (const char* ours : {".zip", ".tar.gz", ".tgz"})
    if (endsWith(output, ours)) return;
  for (const char* other : {".rar", ".7z", ".gz", ".tar", ".bz2", ".xz", ".zst", ".lz", ".cab", ".jar", ".iso"})
    if (endsWith(output, other)) throw KitError(output, "is no kind of archive that pack makes; say .zip or .tar.gz");
  std::error_code error;
  if (fs::exists(output, error) && !fs::is_directory(output, error))
    throw KitError(output, "is a file; name a folder, or an archive .zip or .tar.gz");
}

Pack planPack(const Project& project, const BuildReport& built) { return Packer(project, built).run(); }

size_t writePack(const Project& project, const Pack& pack, const std::string& output) {
  const std::vector<ArchivedFile> files = filesOf(project, pack);
  const bool isTar = endsWith(output, ".tar.gz") || endsWith(output, ".tgz");
  if (!isTar && !endsWith(output, ".zip")) {
    writeFolder(project, files, output);
    return 0;
  }
  const std::vector<uint8_t> bytes = isTar ? tarGzArchive(files) : zipArchive(files);
  writeFile(output, bytes.data(), bytes.size());
  return bytes.size();
}

std::string defaultPackName(const Project& project) {
  std::error_code error;
  const fs::path folder =
      fs::weakly_canonical(fs::absolute(project.folder.empty() ? "." : project.folder, error), error);
  return project.pathOf(folder.filename().string() + ".zip");
}
