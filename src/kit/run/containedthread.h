// Runs a page where the kernel keeps it to some folders, on systems that can: Linux with Landlock, from 5.13 on.
// Elsewhere the player's own look at each name stands alone.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

struct ThreadFolders {
  std::optional<std::vector<std::filesystem::path>> readable;  // files too; no list for all of the disk
  std::vector<std::filesystem::path> writable;                 // and readable
};

// Does the work on a thread of its own, which can open, make and cut no file outside those folders, and waits for it.
// It can still see names of files. What is open already stays so. What the work throws arrives here.
void runContained(const ThreadFolders& folders, const std::function<void()>& work);

// The version of Landlock by which the kernel does its part; 0 where it doesn't. From 3 on it also keeps files from
// being cut.
int containmentVersion();
