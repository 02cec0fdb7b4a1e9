// What a page that runs may use: files, time, steps of its scripts. Pages come from strangers, too.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

// Which files a page opens, and its scripts.
enum class FileReach {
  page,  // read: what is in the page's folder, in its project's, and the machine's fonts; written: in the page's folder
  all,   // whatever the user may
  none,  // as for `page`, but scripts open none themselves
};

// The names above, in their order; nothing for others.
inline constexpr std::array<std::string_view, 3> kFileReachNames = {"page", "all", "none"};
std::optional<FileReach> fileReachNamed(std::string_view name);

// What programs say of the option that takes such a name.
inline constexpr char kFileReachHelp[] =
    "Which files scripts may open: those of the page's folder, its project and the machine's fonts (page, the "
    "default), "
    "all, or none";

// Limits of seconds and steps hold for each of these by itself: the load, a key, an evaluation, one millisecond of a
// wait; that of memory holds for all together. What goes beyond is ended, and so is the run.
inline constexpr size_t kUsualMemory = 128;          // megabytes
inline constexpr uintmax_t kMostWritten = 64 << 20;  // bytes of files that scripts write, but with FileReach::all

struct RunLimits {
  FileReach reach = FileReach::page;
  bool readOnly = false;    // every script's attempt to write a file fails
  double limitSeconds = 0;  // of processor time; 0 for no limit
  size_t limitSteps = 0;    // branches and calls of scripts; 0 for no limit
  size_t limitMemory = 0;   // megabytes by which the process grows after the player has started; 0 for no limit
};
