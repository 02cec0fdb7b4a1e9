// The files that a source includes or takes data from, each read once.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "kit/files.h"
#include "kit/yaml/yamlnode.h"

class SourceFiles {
 public:
  explicit SourceFiles(ReadFile r = readFile) : readBytes(std::move(r)) {}

  // The file of that name beside the one at `from`, as YAML or, called .csv, as a table. Throws a SourceFault at `from`
  // when it can't be read, and KitError for what is wrong in it.
  const YamlNode& read(const std::string& name, const YamlPlace& from);

  // Where read looks for it.
  static std::string pathOf(const std::string& name, const YamlPlace& from);

  // All that were read or looked for, in order.
  const std::vector<std::string>& paths() const { return order; }

 private:
  const ReadFile readBytes;
  std::map<std::string, YamlNode> parsed;  // by path
  std::vector<std::string> order;
};
