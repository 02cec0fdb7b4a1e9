// What the steps do with the maps of a source.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "kit/yaml/yamlnode.h"

// The value of the first pair of that key; null if there is none.
YamlNode* findValue(YamlNode& map, std::string_view key);

// A plain scalar pair at the map's end, at the map's own place.
void addPair(YamlNode& map, const std::string& key, const std::string& text);

void removeDirection(YamlNode& map, std::string_view key);

// Throws a SourceFault at the first key that the map has had before; only one of those keys, if any are given.
void refuseRepeatedKeys(const YamlNode& map, const std::vector<std::string>& keys = {});
