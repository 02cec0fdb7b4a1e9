// Page sources: YAML to a page tree.
#pragma once

#include <string>

#include "kit/errors.h"
#include "kit/source/pagetree.h"

// Reads the source at `path` and compiles its scripts. Throws KitError.
PageTree readPageSource(const std::string& path, const KitWarn& warn = {});
