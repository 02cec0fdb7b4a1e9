// What a source defines for its own use: constants and templates, its own and those of the files that it includes.
//
// The source's own win over included ones, and of two files the later one.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "kit/expand/files.h"
#include "kit/expand/scope.h"
#include "kit/yaml/yamlnode.h"

struct Template {
  std::vector<YamlPair> parameters;  // without a value: must be given
  YamlNode body;                     // a map
  bool isBroken = false;             // for a reason that has been reported
};

struct Definitions {
  std::map<std::string, YamlNode> constants;
  std::map<std::string, Template> templates;

  std::vector<std::string> templateNames() const;
};

// Reads `include`, `constants` and `templates` of a source. What is wrong is added to `errors`.
Definitions readDefinitions(const YamlNode& top, SourceFiles& files, std::vector<KitMessage>& errors);

inline constexpr size_t kMaxUses = 64;  // of templates, and of includes, in one another
