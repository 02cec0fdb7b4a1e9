#include "kit/yaml/yamlnode.h"

const YamlNode* YamlNode::find(std::string_view key) const {
  for (const YamlPair& pair : map)
    if (pair.key == key) return &pair.value;
  return nullptr;
}

std::string YamlNode::textOf(std::string_view key) const {
  const YamlNode* value = find(key);
  return value && value->isScalar() ? value->text : "";
}

KitMessage messageAt(const YamlPlace& place, std::string text) {
  KitMessage message{*place.file, place.line, std::move(text)};
  for (const YamlUse* use = place.use.get(); use; use = use->at.use.get())
    message.uses.push_back({*use->at.file, use->at.line, "used here: " + use->what});
  return message;
}
