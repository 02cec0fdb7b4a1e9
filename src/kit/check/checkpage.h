// Reads a page source, opens it in a player, and tells the traps in it.
//
// Nothing is written. What doesn't compile, or can't be made for the page, is an error and no finding.
#pragma once

#include <string>
#include <vector>

#include "kit/check/finding.h"

struct CheckReport {
  std::vector<Finding> findings;   // in the order of files and lines
  std::vector<KitMessage> errors;  // with some there are few findings, or none

  bool isClean() const { return findings.empty() && errors.empty(); }
};

// `allowed` are names of checks that are switched off.
CheckReport checkPageSource(const std::string& path, const std::vector<std::string>& allowed = {});

std::string findingsJson(const std::vector<Finding>& findings);
