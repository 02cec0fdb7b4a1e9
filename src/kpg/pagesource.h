// Page sources: YAML to a page tree.
#pragma once

#include <functional>
#include <string>

#include "kpg/pagetree.h"

// Reads the source at `path`. Throws SourceError, or CommandError when the file can't be read. Each warning is a whole
// line, "FILE:LINE: warning: ...".
PageTree readPageSource(const std::string& path, const std::function<void(const std::string&)>& warn);
