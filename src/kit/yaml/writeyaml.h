// A tree of YAML nodes as text that reads back as the same tree.
#pragma once

#include <string>

#include "kit/yaml/yamlnode.h"

// In block style. A text of several lines, as scripts have, goes after a bar where it can; places are not kept.
std::string writeYaml(const YamlNode& node);
