// What a page that runs may use: files, time, steps of its scripts. Pages come from strangers, too.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

// Which files a page opens, and its scripts.
enum class FileReach {
  page,  // read: what is in the page's folder, in its project's, and the machine's fonts; written: in the page's folder
  all,   // whatever the user may
  none,  // as for `page`, but scripts open none themselves
};

// The names above; nothing for others.
std::optional<FileReach> fileReachNamed(std::string_view name);

// A limit holds for each of these by itself: the load, a key, an evaluation, one millisecond of a wait. What goes
// beyond is ended, and so is the run.
struct RunLimits {
  FileReach reach = FileReach::page;
  bool readOnly = false;    // every script's attempt to write a file fails
  double limitSeconds = 0;  // of processor time; 0 for no limit
  size_t limitSteps = 0;    // branches and calls of scripts; 0 for no limit
};
