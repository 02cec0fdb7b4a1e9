#include "kit/source/sourcekeys.h"

#include <algorithm>

#include "kit/expand/directions.h"

namespace {

constexpr SourceKey kTopKeys[] = {
    {"flags", "`8bit`, `16bit`", "16bit", "the screen that the page is for"},
    {"page", "map of attributes", "", "the root, a widget that holds all others"},
    {"include", "source file, or list of files", "", "brings the constants and templates of other files"},
    {"constants", "map of names and values", "", "values to use by their names, as in `$(accent)`"},
    {"templates", "map of names and templates", "", "what is made more than once, by `template: NAME`"},
};

constexpr SourceKey kRectangle[] = {
    {"x", "pixels", "0", "from the left edge of the widget around it; of a line, where its text begins"},
    {"y", "pixels", "0", "from the upper edge of the widget around it; of a line, its baseline"},
    {"width", "pixels", "0", "nothing inside is cut to it"},
    {"height", "pixels", "0", "nothing inside is cut to it"},
};

bool isFor(const SourceDirection& direction, ObjectKind kind, std::string_view type) {
  switch (direction.owner) {
    case DirectionOwner::any:
      return direction.name != "links" || kind == ObjectKind::root || kind == ObjectKind::widget;
    case DirectionOwner::group: return type == "group" || (type == "textContainer" && direction.name != "align");
    case DirectionOwner::styles: return kind == ObjectKind::style;
  }
  return false;
}

bool hasRectangle(ObjectKind kind) { return kind != ObjectKind::style && kind != ObjectKind::other; }

}  // namespace

std::span<const SourceKey> topKeys() { return kTopKeys; }

std::vector<SourceKey> objectKeys(ObjectKind kind, std::string_view type) {
  std::vector<SourceKey> keys;
  if (hasRectangle(kind)) keys.assign(std::begin(kRectangle), std::end(kRectangle));
  for (const std::string& name : attributeNames(kind, type)) {
    const AttributeRow* row = rowOfAttribute(kind, type, name);
    const bool isKnown =
        std::any_of(keys.begin(), keys.end(), [&](const SourceKey& key) { return key.name == std::string_view(name); });
    if (row && !isKnown) keys.push_back({row->name, row->value, row->byDefault, row->help, row->kind});
  }
  for (const SourceDirection& direction : directions())
    if (isFor(direction, kind, type))
      keys.push_back({direction.name, direction.value, direction.byDefault, direction.help});
  return keys;
}

std::optional<SourceKey> objectKey(ObjectKind kind, std::string_view type, std::string_view name) {
  for (const SourceKey& key : objectKeys(kind, type))
    if (key.name == name) return key;
  return std::nullopt;
}

std::vector<std::string> wordsOf(const SourceKey& key) { return wordsInCell(key.value); }

std::string keyHelp(const SourceKey& key) {
  std::string text(key.help);
  text += "\n\nValue: " + std::string(key.value);
  if (!key.byDefault.empty()) text += "; without it: " + std::string(key.byDefault);
  return text;
}
