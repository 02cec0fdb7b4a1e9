// Building a project: which steps are due, running them on several threads, and what became of it.
//
// A step is due when anything that it depends on has changed, by contents and not by times, or when one of its files
// isn't as it was written. Messages come in the order of the project, whatever the threads did. One step's error
// doesn't keep the others from being built.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kit/project/plan.h"
#include "kit/project/project.h"

struct BuildOptions {
  std::string page;  // only that page, as the project calls it, and what it needs; empty for all
  bool all = false;  // also what isn't due
  size_t jobs = 0;   // threads; 0 for as many as the machine runs at once
  KitWarn warn;
  // All are called by one thread at a time, but not by the same.
  std::function<void(const std::string& file)> made;                               // in order
  std::function<void(size_t done, size_t all, const std::string& step)> progress;  // as it happens
};

struct PageBuildRecord {
  std::string page;  // in the output folder
  std::vector<FileUse> uses;
};

// Line tables are written and kept like all that is built, but nobody has to hear of them: they aren't for the player.
struct BuildReport {
  std::vector<std::string> files;   // in the output folder, sorted
  std::vector<std::string> inputs;  // all that was read, as it can be opened from here, sorted
  std::vector<PageBuildRecord> pages;
  size_t made = 0;     // files written
  size_t removed = 0;  // files that the project no longer makes
};

// Throws BuildError with all errors; whatever could be built has been.
BuildReport buildProject(const Project& project, const BuildOptions& options);

// Removes what builds of the project have written, and folders that are then empty; returns the files. A file that was
// changed since stays, and `warn` hears of it.
std::vector<std::string> cleanProject(const Project& project, const KitWarn& warn);

std::string outputPath(const Project& project, const std::string& name);
