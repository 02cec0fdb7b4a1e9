// A tree of YAML nodes as text that reads back as the same tree.
#pragma once

#include <string>

#include "kit/yaml/yamlnode.h"

// In block style. A text of several lines, as scripts have, goes after a bar where it can; places are not kept.
std::string writeYaml(const YamlNode& node);

// One scalar, quoted where it must be; also for where flow style needs one line.
std::string yamlOnOneLine(const std::string& text);
std::string quotedYaml(const std::string& text);

// The same, but several lines go after a bar, indented so far, where they can. There is no line end after it.
std::string yamlScalar(const std::string& text, int indent);
