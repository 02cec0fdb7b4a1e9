// Which files a page names, and where.
//
// Attributes are looked at, and the pages that scripts load by names that they spell out. What else a script opens
// can't be known.
#pragma once

#include <string>
#include <vector>

#include "kit/project/manifest.h"
#include "kit/source/pagebuild.h"

// `folder` is the page's in the output folder, from which its names count.
std::vector<FileUse> pageUses(const std::string& source, const std::string& folder, const BuiltPage& page);

// The file that the player reads for a picture of that name: one with another ending is the .kpx of the name.
std::string pictureFile(const std::string& name);
