// Changes or removes one value of a YAML text and leaves everything else as the author wrote it: comments, order,
// spaces, quotes.
#pragma once

#include <string>

#include "kit/yaml/yamlnode.h"

// The text with `key` of the map that begins at `map` set to a scalar; a key that is not there is added after the
// map's first plain lines. Several lines of text go after a bar, where they can.
//
// The result is read again and compared, so that nothing else can have changed: what can't be changed by itself, such
// as a list or the name of an anchor, is a KitError, and so is a text that is no YAML.
std::string withYamlValue(const std::string& file, const std::string& source, const YamlPlace& map,
                          const std::string& key, const std::string& value);

// The text without `key` of that map, its value, and a comment after it on the line. Only a scalar can go, and only if
// the map has something left; anything else is a KitError.
std::string withoutYamlKey(const std::string& file, const std::string& source, const YamlPlace& map,
                           const std::string& key);
