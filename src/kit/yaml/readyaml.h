// From the text of a file to a tree of YAML nodes.
#pragma once

#include <string>

#include "kit/yaml/yamlnode.h"

// `file` is the name that places have. One document; an empty one is a null node. Throws KitError for what is no YAML,
// for a key that is no text, and for aliases that lead to themselves or multiply without bounds.
YamlNode parseYaml(const std::string& file, const std::string& text);

// The same for a whole file.
YamlNode readYaml(const std::string& file);
