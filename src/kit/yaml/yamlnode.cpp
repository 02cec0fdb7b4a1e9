#include "kit/yaml/yamlnode.h"

#include <algorithm>

const YamlNode* YamlNode::find(std::string_view key) const {
  for (const YamlPair& pair : map)
    if (pair.key == key) return &pair.value;
  return nullptr;
}

std::string YamlNode::textOf(std::string_view key) const {
  const YamlNode* value = find(key);
  return value && value->isScalar() ? value->text : "";
}

std::vector<YamlTextLine> YamlNode::linesOfText() const {
  std::vector<YamlTextLine> lines = textLines;
  if (lines.empty()) lines.push_back({0, textLine});
  lines.front().at = 0;
  if (!textLines.empty() || style != Style::block) return lines;
  for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', end + 1))
    lines.push_back({end + 1, lines.back().line + 1});
  return lines;
}

int lineOfByte(const std::vector<YamlTextLine>& lines, size_t at) {
  const auto after =
      std::upper_bound(lines.begin(), lines.end(), at, [](size_t byte, const YamlTextLine& l) { return byte < l.at; });
  return after == lines.begin() ? lines.front().line : after[-1].line;
}

KitMessage messageAt(const YamlPlace& place, std::string text) {
  KitMessage message{*place.file, place.line, std::move(text)};
  for (const YamlUse* use = place.use.get(); use; use = use->at.use.get())
    message.uses.push_back({*use->at.file, use->at.line, "used here: " + use->what});
  return message;
}
