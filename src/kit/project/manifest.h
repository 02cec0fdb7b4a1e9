// What a build wrote and from what, kept in the output folder between builds.
//
// It is how a build knows which steps are due, and which files are its own: only those are written over or removed.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kit/errors.h"

inline constexpr char kManifestName[] = ".vistrel-build.json";
// The same for what packs have put into folders, which is nothing for the player.
inline constexpr char kPackRecordName[] = ".vistrel-pack.json";

struct FileRecord {
  std::string name, hash;
};

// A file that a page names.
struct FileUse {
  std::string target;     // in the output folder, a plain path
  std::string name;       // as the page has it
  KitMessage at;          // where, relative to the project's folder; the text says which attribute of what
  bool isLoaded = false;  // a script loads it as a page, in place of this one
};

struct StepRecord {
  std::string options;              // all but the inputs that the outputs depend on
  std::vector<FileRecord> inputs;   // relative to the project's folder, or absolute
  std::vector<FileRecord> outputs;  // relative to the output folder
  std::vector<FileUse> uses;        // of a page
  std::string kit{};                // the version of the kit that made the outputs
};

struct Manifest {
  std::map<std::string, StepRecord> steps;  // by the names of steps

  // The hash of a built file as it was last written; empty for a file that no build made.
  std::string hashOf(const std::string& output) const;
};

// Empty when there is none, or when it is damaged. Throws KitError when the disk doesn't give it: a build that began
// anew then would take its own files for somebody else's.
Manifest readManifest(const std::string& file);
std::string manifestText(const Manifest& manifest);
