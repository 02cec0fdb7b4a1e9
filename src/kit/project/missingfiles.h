// Whether everything that the built pages name is there.
#pragma once

#include <vector>

#include "kit/errors.h"
#include "kit/project/manifest.h"
#include "kit/project/project.h"

// What the pages name, and the colour tables that the pictures among that name. Their places are as files can be
// opened from here.
std::vector<FileUse> usesInProject(const Project& project, const Manifest& built);

// A message for each use of a file that is neither built nor `planned`.
std::vector<KitMessage> missingFiles(const Project& project, const Manifest& built,
                                     const std::vector<std::string>& planned);

// The built file that a name leads to, without regard to case as the player looks; null if there is none.
const std::string* findBuilt(const std::vector<std::string>& files, const std::string& target);
std::vector<std::string> builtFiles(const Manifest& built);  // sorted
