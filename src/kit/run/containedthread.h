// Runs a page where the kernel keeps it to some folders, on systems that can: Linux with Landlock, from 5.13 on.
// Elsewhere the player's own look at each name stands alone.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

struct ThreadFolders {
  std::optional<std::vector<std::filesystem::path>> readable;  // files too; nothing for all of the disk
  std::vector<std::filesystem::path> writable;                 // and readable
};

// Does the work on a thread of its own, which can open nothing outside those folders, and waits for it. What is open
// already stays so. What the work throws arrives here.
void runContained(const ThreadFolders& folders, const std::function<void()>& work);

// Whether the kernel does its part.
bool canContainThreads();
