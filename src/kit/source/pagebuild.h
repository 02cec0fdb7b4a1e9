// From a page source to the files of the page.
#pragma once

#include <string>

#include "kit/errors.h"

// Compiles the source to `output`, and the script files that it names to object files beside that. Throws KitError
// before anything is written.
void buildPage(const std::string& source, const std::string& output, const KitWarn& warn = {});
