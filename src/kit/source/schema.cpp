#include "kit/source/schema.h"

#include <algorithm>

#include "kit/suggest.h"

namespace {

std::optional<AttributeOwner> ownerOf(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::root: return AttributeOwner::root;
    case ObjectKind::widget: return AttributeOwner::widget;
    case ObjectKind::style: return AttributeOwner::style;
    case ObjectKind::line: return AttributeOwner::line;
    case ObjectKind::other: break;
  }
  return std::nullopt;
}

std::string ownerName(const AttributeRow& row) {
  switch (row.owner) {
    case AttributeOwner::root: return "the page";
    case AttributeOwner::style: return "a text style";
    case AttributeOwner::line: return "a line of a textContainer";
    case AttributeOwner::widget: break;
  }
  if (row.type.empty()) return "any widget";
  return (row.type == "image" ? "an " : "a ") + std::string(row.type);
}

// No longer than a line of a traceback can be read, and on one line.
std::string shortened(std::string_view name) {
  constexpr size_t kMost = 40;
  std::string text(name.substr(0, kMost));
  if (name.size() > kMost) {
    while (!text.empty() && (uint8_t(name[text.size()]) & 0xC0) == 0x80) text.pop_back();  // whole letters of UTF-8
    text += "...";
  }
  for (char& c : text)
    if (uint8_t(c) < ' ' || c == 0x7F) c = '?';
  return text;
}

}  // namespace

const AttributeRow* rowOfAttribute(ObjectKind kind, std::string_view type, std::string_view name) {
  const auto owner = ownerOf(kind);
  return owner ? attributeRow(*owner, type, name) : nullptr;
}

std::vector<std::string> wordsInCell(std::string_view cell) {
  std::vector<std::string> words;
  while (cell.starts_with('`')) {
    const size_t end = cell.find('`', 1);
    words.emplace_back(cell.substr(1, end - 1));
    cell.remove_prefix(end + 1);
    if (cell.starts_with(", ")) cell.remove_prefix(2);
  }
  return cell.empty() ? words : std::vector<std::string>();
}

AttributeForm attributeForm(ObjectKind kind, std::string_view type, std::string_view name) {
  const AttributeRow* row = rowOfAttribute(kind, type, name);
  return row ? AttributeForm(row->kind) : std::nullopt;
}

std::vector<std::string> attributeWords(ObjectKind kind, std::string_view type, std::string_view name) {
  const AttributeRow* row = rowOfAttribute(kind, type, name);
  return row ? wordsInCell(row->value) : std::vector<std::string>();
}

bool isAttributeWord(ObjectKind kind, std::string_view type, std::string_view name, std::string_view text) {
  const std::vector<std::string> words = attributeWords(kind, type, name);
  return words.empty() || std::find(words.begin(), words.end(), text) != words.end();
}

std::vector<std::string> attributeNames(ObjectKind kind, std::string_view type) {
  std::vector<std::string> names = {"x", "y", "width", "height"};
  for (const AttributeRow& row : attributeRows())
    if (rowOfAttribute(kind, type, row.name)) names.emplace_back(row.name);
  return names;
}

NamedThing namedBy(ObjectKind kind, std::string_view type, std::string_view name) {
  const AttributeRow* row = rowOfAttribute(kind, type, name);
  return row ? namedBy(*row) : NamedThing::nothing;
}

NamedThing namedBy(const AttributeRow& row) {
  if (row.value == "widget name") return NamedThing::widget;
  if (row.value == "style name") return NamedThing::style;
  return row.value.ends_with("file") || row.kind == AttributeKind::files ? NamedThing::file : NamedThing::nothing;
}

std::string whatHas(std::string_view name) {
  std::vector<std::string> owners;
  for (const AttributeRow& row : attributeRows())
    if (row.name == name) owners.push_back(ownerName(row));
  return listOfWords(owners, "or");
}

bool isNeverSeen(std::string_view type, std::string_view name) {
  return type == "slider" && (name == "highlightFrame" || name == "background");
}

bool isWidgetType(std::string_view type) {
  const auto isOfType = [type](const AttributeRow& row) { return row.type == type; };
  return !type.empty() && std::any_of(attributeRows().begin(), attributeRows().end(), isOfType);
}

bool isChildrenOfPlainBox(ObjectKind kind, std::string_view type, std::string_view name) {
  return (kind == ObjectKind::root || kind == ObjectKind::widget) && name == "children" && !isWidgetType(type);
}

std::string whyNumberIsRefused(ObjectKind kind, std::string_view type, std::string_view name, int32_t number) {
  const bool isWidget = kind == ObjectKind::root || kind == ObjectKind::widget;
  if (!isWidget || type != "text" || name != "maxLength" || number >= 0) return "";
  return std::to_string(number) + " is no number of bytes; the player doesn't load a page with a negative one";
}

bool isMisspeltType(ObjectKind kind, std::string_view name) {
  const bool isWidget = kind == ObjectKind::root || kind == ObjectKind::widget;
  if (!isWidget || nearestWord(name, {"type"}).empty()) return false;  // most names are nowhere near
  return whatHas(name).empty() && nearestWord(name, attributeNames(kind, "")) == "type";
}

ObjectKind tableObjectKind(AttributeForm form) {
  if (form == AttributeKind::widgets) return ObjectKind::widget;
  if (form == AttributeKind::styles) return ObjectKind::style;
  if (form == AttributeKind::lines) return ObjectKind::line;
  return ObjectKind::other;
}

std::string objectLabel(ObjectKind kind, std::string_view type, std::string_view name, size_t number) {
  if (!name.empty()) return shortened(name);
  switch (kind) {
    case ObjectKind::root: return "page";
    case ObjectKind::style: return "style" + std::to_string(number);
    case ObjectKind::line: return "line" + std::to_string(number);
    case ObjectKind::other: return "object" + std::to_string(number);
    case ObjectKind::widget: break;
  }
  return (isWidgetType(type) ? std::string(type) : "box") + std::to_string(number);
}
