#include "kit/watch/filewatch.h"

#include <algorithm>
#include <set>

#include "kit/project/contenthash.h"
#include "platform/diskfiles.h"

namespace fs = std::filesystem;

namespace {

using std::chrono::milliseconds;

// How long a file must stay as it is to count as saved. A writer that keeps it open, and one that has emptied or
// removed it, will most likely go on.
constexpr milliseconds kRest{10}, kRestWhileWritten{1000}, kRestWhileEmptyOrGone{100};
constexpr milliseconds kLongestSave{3000};     // what changes for ever is read then
constexpr milliseconds kBetweenLooks{250};     // for folders that don't tell all, as on a network
constexpr milliseconds kClockGranularity{10};  // of the times that a file system keeps

// The folder of a file, or the nearest one around it that exists.
fs::path watchableFolder(const fs::path& file) {
  fs::path folder = file.parent_path();
  std::error_code error;
  while (!fs::is_directory(folder, error) && folder.has_relative_path()) folder = folder.parent_path();
  return folder;
}

}  // namespace

FileWatch::FileWatch(std::unique_ptr<FolderEvents> events) : folderEvents(std::move(events)) {}

FileWatch::Stamp FileWatch::stampOf(const fs::path& path) {
  std::error_code error;
  Stamp stamp;
  stamp.exists = fs::is_regular_file(path, error);
  if (!stamp.exists) return stamp;
  stamp.size = fs::file_size(path, error);
  stamp.written = lastWriteTime(path, error);
  return error ? Stamp{} : stamp;
}

void FileWatch::watch(const std::vector<fs::path>& paths, Time readSince) {
  std::map<fs::path, File> now;
  for (const fs::path& path : paths) {
    const fs::path name = fs::absolute(path).lexically_normal();
    const auto known = files.find(name);
    if (known != files.end()) {
      now.insert(files.extract(known));
      continue;
    }
    // The hash first: a save after it has a stamp that shows it.
    const std::string hash = fileHash(name.generic_string());
    File file{stampOf(name), hash};
    if (file.seen.exists && file.seen.written + kClockGranularity >= readSince) file = File{};
    now.emplace(name, file);
  }
  files = std::move(now);
  watchFolders();
}

void FileWatch::watchFolders() {
  std::set<fs::path> folders;
  for (const auto& [path, file] : files) folders.insert(watchableFolder(path));
  folderEvents->watch(folders);
}

void FileWatch::interrupt() {
  interrupted = true;
  folderEvents->interrupt();
}

std::vector<fs::path> FileWatch::wait(milliseconds limit) {
  const Clock::time_point end = Clock::now() + limit;
  for (;;) {
    const Clock::time_point now = Clock::now();
    look(now);
    const auto rest = allRestFrom();
    if (rest && *rest <= now) {
      if (auto saved = readChanged(); !saved.empty()) return saved;
      continue;
    }
    if (interrupted.exchange(false) || (!rest && now >= end)) return {};
    const auto next = std::min(rest ? *rest : end, now + kBetweenLooks);
    take(folderEvents->wait(std::chrono::ceil<milliseconds>(next - now)));
  }
}

// An event says more than a look: two saves within one tick of the file system's clock look like one.
void FileWatch::take(const std::vector<FolderEvent>& events) {
  if (events.empty()) return;
  bool foldersChanged = false;
  for (const FolderEvent& event : events) {
    const auto found = files.find(event.file);
    if (found == files.end()) {
      std::error_code error;
      foldersChanged |= fs::is_directory(event.file, error);
      continue;
    }
    File& file = found->second;
    file.isBeingWritten = event.isBeingWritten;
    file.since = Clock::now();
    if (!file.changing) file.changing = file.since;
  }
  if (foldersChanged) watchFolders();
}

void FileWatch::look(Clock::time_point now) {
  for (auto& [path, file] : files) {
    const Stamp stamp = stampOf(path);
    if (!file.changing && stamp == file.seen) continue;
    if (file.changing && stamp == file.last) continue;
    if (!file.changing) file.changing = now;
    file.last = stamp;
    file.since = now;
  }
}

FileWatch::Clock::time_point FileWatch::restsFrom(const File& file) {
  const bool isEmptyOrGone = file.last.size == 0;
  const milliseconds rest = file.isBeingWritten ? kRestWhileWritten : isEmptyOrGone ? kRestWhileEmptyOrGone : kRest;
  return std::min(file.since + rest, *file.changing + kLongestSave);
}

// When every file that changes will have come to rest; nothing when none changes.
std::optional<FileWatch::Clock::time_point> FileWatch::allRestFrom() const {
  std::optional<Clock::time_point> latest;
  for (const auto& [path, file] : files)
    if (file.changing) latest = std::max(latest.value_or(Clock::time_point::min()), restsFrom(file));
  return latest;
}

std::vector<fs::path> FileWatch::readChanged() {
  std::vector<fs::path> saved;
  for (auto& [path, file] : files) {
    if (!file.changing) continue;
    const std::string hash = fileHash(path.generic_string());
    if (hash != file.hash) saved.push_back(path);
    file = File{file.last, hash};
  }
  watchFolders();  // one can have been removed and made again
  return saved;
}
