// Reads a page source as the player would and tells the traps in it.
//
// Nothing is written. What doesn't compile is no finding but a BuildError.
#pragma once

#include <string>
#include <vector>

#include "kit/check/finding.h"

// `allowed` are names of checks that are switched off. In the order of files and lines. Throws BuildError.
std::vector<Finding> checkPageSource(const std::string& path, const std::vector<std::string>& allowed = {});

std::string findingsJson(const std::vector<Finding>& findings);
