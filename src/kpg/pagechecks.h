// What kpg check and kpg build --check share.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "kit/check/checkpage.h"
#include "kit/project/project.h"

// Of all pages of the project.
std::vector<Finding> checkProject(const Project& project);

// Of sources, each with what the project around it allows.
std::vector<Finding> checkPages(const std::vector<std::string>& sources);

void printFindings(const std::vector<Finding>& findings, std::ostream& out);
