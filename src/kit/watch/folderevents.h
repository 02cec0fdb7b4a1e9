// Wakes whoever waits for changes in folders, as far as the desktop can tell of them.
//
// It is a hint only: an event can be lost, or come for nothing. FileWatch looks at the files themselves.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <vector>

struct FolderEvent {
  std::filesystem::path file;
  bool isBeingWritten;  // whoever writes it hasn't closed it since
};

class FolderEvents {
 public:
  virtual ~FolderEvents() = default;

  // Replaces the folders. Those that don't exist are left out.
  virtual void watch(const std::set<std::filesystem::path>& folders) = 0;

  // Returns at the first events, after `limit` without one, or when interrupted; it can return early for no reason.
  virtual std::vector<FolderEvent> wait(std::chrono::milliseconds limit) = 0;

  // Ends a wait, or the next one; from any thread.
  virtual void interrupt() = 0;

  // Whether a change ends a wait. Otherwise a wait is short, and the files are to be looked at after each.
  virtual bool tells() const = 0;
};

// What the desktop offers; never null.
std::unique_ptr<FolderEvents> openFolderEvents();

// For desktops and file systems that tell nothing.
std::unique_ptr<FolderEvents> openFolderPolling();
