// What kpg check and kpg build --check share.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kit/check/checkpage.h"
#include "kit/project/project.h"

// Of all pages of the project.
CheckReport checkProject(const Project& project);

// Of sources, each with what the project around it allows.
CheckReport checkPages(const std::vector<std::string>& sources);

// Prints errors to the standard error stream and findings to `out`, and fails when there are any.
void report(const CheckReport& checked, std::ostream& out, bool asJson = false);
