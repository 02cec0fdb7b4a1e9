// Reports the files that have been saved, whatever way an editor saves: in place, beside and renamed over, or with the
// old file deleted first.
//
// What counts is what a file holds: a save that changes no byte is not reported. A save that is under way is waited
// for, so that nobody reads half a file; saves that come together are reported together. A file that doesn't exist yet
// is waited for, too.
#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kit/watch/folderevents.h"

class FileWatch {
 public:
  using Time = std::filesystem::file_time_type;

  explicit FileWatch(std::unique_ptr<FolderEvents> events = openFolderEvents());

  // Replaces the set. A file that is new in it counts as saved if it was written at or after `readSince`, which is when
  // whoever asks began to read it.
  void watch(const std::vector<std::filesystem::path>& files, Time readSince = Time::clock::now());

  // The files that were saved since they were last reported, in order of their names; waits for the first of them for
  // at most `limit`, and for the end of a save that is under way a little longer. Empty when time is up, or
  // interrupted.
  std::vector<std::filesystem::path> wait(std::chrono::milliseconds limit);

  // Ends a wait, or the next one; from any thread. Everything else is for one thread.
  void interrupt();

 private:
  using Clock = std::chrono::steady_clock;

  struct Stamp {
    Time written{};
    uintmax_t size = 0;
    bool exists = false;
    bool operator==(const Stamp&) const = default;
  };
  struct File {
    Stamp seen;        // when it was last read
    std::string hash;  // what it held then
    // From when a change was first seen until the file has been read again:
    std::optional<Clock::time_point> changing{};
    Stamp last{};               // as it was at the last look
    Clock::time_point since{};  // when it became so
    bool isBeingWritten = false;
  };

  static Stamp stampOf(const std::filesystem::path& path);
  void watchFolders();
  void take(const std::vector<FolderEvent>& events);
  void look(Clock::time_point now);
  static Clock::time_point restsFrom(const File& file);
  std::optional<Clock::time_point> allRestFrom() const;
  std::vector<std::filesystem::path> readChanged();

  std::unique_ptr<FolderEvents> folderEvents;
  std::map<std::filesystem::path, File> files;
  std::atomic<bool> interrupted = false;
};
