// Tables as text: RFC 4180, and line ends of every kind.
#pragma once

#include <string>

#include "kit/yaml/yamlnode.h"

// A list of maps, one a row, by the names of columns in the first row. A field in quotes is a quoted scalar. Throws
// KitError.
YamlNode parseCsv(const std::string& file, const std::string& text);
