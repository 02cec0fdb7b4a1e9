// In which lines the parts of a scalar were written whose lines YAML has joined: a plain or quoted one over several
// lines, or one after ">". The parser tells only where a scalar begins.
#pragma once

#include <string_view>
#include <vector>

#include "kit/yaml/yamlnode.h"

// `scalar` has its style and text, and `at` is where it begins in the document (its quote, ">" or first character),
// in line `line`. Empty for a scalar in one line.
std::vector<YamlTextLine> foldedLines(const YamlNode& scalar, std::string_view document, size_t at, int line);
