#include "kit/expand/directions.h"

#include <algorithm>
#include <array>

bool isDirectionName(std::string_view key) {
  constexpr std::array<std::string_view, 5> kNames{"include", "layout", "links", "repeat", "template"};
  return std::find(kNames.begin(), kNames.end(), key) != kNames.end();
}

std::vector<std::string> directionNames() {
  return {"include", "layout", "links", "repeat", "template", "with", "gap", "padding", "columns"};
}

std::string directionNeededBy(std::string_view key) {
  if (key == "with") return "template";
  return key == "gap" || key == "padding" || key == "columns" ? "layout" : "";
}

bool isDirection(const YamlPair& pair, std::string_view key) { return pair.key == key && pair.value.isUntagged(); }

const YamlNode* findDirection(const YamlNode& map, std::string_view key) {
  for (const YamlPair& pair : map.map)
    if (isDirection(pair, key)) return &pair.value;
  return nullptr;
}
