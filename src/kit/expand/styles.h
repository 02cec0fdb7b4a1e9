// Text styles that say what they have of another: `style: body`.
#pragma once

#include <vector>

#include "kit/yaml/yamlnode.h"

// Gives the text styles of a plain source what they take over: every attribute of the other style but its name, save
// those that they have themselves. The other may come later. What is wrong is added to `errors`.
void inheritStyles(YamlNode& source, std::vector<KitMessage>& errors);
