// What an author has allowed: by a comment, `# kpg: allow NAME`, on the line, alone on the line above, or above
// everything else in the file.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "kit/check/finding.h"

class AllowedFindings {
 public:
  // `everywhere` are names of checks, those of the project.
  explicit AllowedFindings(const std::vector<std::string>& everywhere);

  bool allows(const Finding& finding);

  // Names that no check has, in the comments of the file.
  std::vector<Finding> unknown(const std::string& file);

 private:
  struct Comments {
    std::set<std::string, std::less<>> everywhere;
    std::map<int, std::set<std::string, std::less<>>> lines;  // that they hold for
    std::vector<std::pair<int, std::string>> all;
  };

  const Comments& commentsOf(const std::string& file);

  std::set<std::string, std::less<>> names;
  std::map<std::string, Comments> files;
};
