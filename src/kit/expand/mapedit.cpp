#include "kit/expand/mapedit.h"

#include "kit/expand/directions.h"

YamlNode* findValue(YamlNode& map, std::string_view key) {
  for (YamlPair& pair : map.map)
    if (pair.key == key) return &pair.value;
  return nullptr;
}

void addPair(YamlNode& map, const std::string& key, const std::string& text) {
  YamlNode value;
  value.kind = YamlNode::Kind::scalar;
  value.text = text;
  value.place = map.place;
  value.textLine = map.textLine;
  map.map.push_back({key, map.place, std::move(value)});
}

void removeDirection(YamlNode& map, std::string_view key) {
  std::erase_if(map.map, [&](const YamlPair& pair) { return isDirection(pair, key); });
}
