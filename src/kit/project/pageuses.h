// Which files a page names, and where.
//
// Only attributes are looked at. What a script opens by itself can't be known.
#pragma once

#include <string>
#include <vector>

#include "kit/project/manifest.h"
#include "kit/source/pagebuild.h"

// `folder` is the page's in the output folder, from which its names count.
std::vector<FileUse> pageUses(const std::string& source, const std::string& folder, const BuiltPage& page);
