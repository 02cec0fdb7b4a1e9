#include "kit/expand/mapedit.h"

#include <algorithm>
#include <map>

#include "kit/expand/directions.h"
#include "kit/source/sourcevalue.h"

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

void refuseRepeatedKeys(const YamlNode& map, const std::vector<std::string>& keys) {
  std::map<std::string_view, int> lines;
  for (const YamlPair& pair : map.map) {
    if (!keys.empty() && std::find(keys.begin(), keys.end(), pair.key) == keys.end()) continue;
    const auto [first, isNew] = lines.emplace(pair.key, pair.place.line);
    if (!isNew)
      throw SourceFault{pair.place,
                        "'" + pair.key + "' is given twice, first in line " + std::to_string(first->second)};
  }
}
