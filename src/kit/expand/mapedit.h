// Changes to the maps of a source.
#pragma once

#include <string>
#include <string_view>

#include "kit/yaml/yamlnode.h"

// The value of the first pair of that key; null if there is none.
YamlNode* findValue(YamlNode& map, std::string_view key);

// A plain scalar pair at the map's end, at the map's own place.
void addPair(YamlNode& map, const std::string& key, const std::string& text);

void removeDirection(YamlNode& map, std::string_view key);
