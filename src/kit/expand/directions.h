// The keys by which a source says what is to be made of it. They are not written into the page.
//
// One whose value has a tag is an attribute like any other: `layout: !string row`.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/yaml/yamlnode.h"

enum class DirectionOwner { any, group, styles };  // group: what a layout can place the children of

// In the words of the engine's table of attributes (engine/format/attributes.h).
struct SourceDirection {
  std::string_view name;
  DirectionOwner owner;
  std::string_view needs;  // the direction without which it means nothing; empty for none
  std::string_view value, byDefault, help;
};

std::span<const SourceDirection> directions();

// Whether an attribute of that name has to have a tag, on whatever object.
bool isDirectionName(std::string_view key);

// Those and the keys that say more of them, save those that are attributes of some objects, too.
std::vector<std::string> directionNames();

// The direction without which that key means nothing; empty for any other.
std::string directionNeededBy(std::string_view key);

bool isDirection(const YamlPair& pair, std::string_view key);

// The value of that direction; null if the map doesn't have it.
const YamlNode* findDirection(const YamlNode& map, std::string_view key);
