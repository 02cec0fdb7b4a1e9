// From what an author writes to a plain source: constants, includes, templates and repetitions are replaced by what
// they produce.
//
// A source that has none of them is returned as it is.
#pragma once

#include <string>
#include <vector>

#include "kit/files.h"
#include "kit/yaml/yamlnode.h"

struct ExpandedSource {
  YamlNode plain;
  std::vector<std::string> files;  // that were read or looked for: includes and data
};

// What is wrong is added to `errors`, and left out of the result. That is null if nothing is left.
ExpandedSource expandSource(YamlNode source, std::vector<KitMessage>& errors, const ReadFile& read = readFile);

// The text of an expanded source, which expands to the same again.
std::string expandedText(const YamlNode& plain);
