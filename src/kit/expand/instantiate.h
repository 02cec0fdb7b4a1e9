// A source without its expressions, includes, templates and repetitions: each is replaced by what it produces.
#pragma once

#include <vector>

#include "kit/expand/definitions.h"
#include "kit/yaml/yamlnode.h"

// What is wrong is added to `errors`, and left out of the result.
YamlNode instantiate(const YamlNode& node, const Definitions& definitions, SourceFiles& files,
                     std::vector<KitMessage>& errors);
