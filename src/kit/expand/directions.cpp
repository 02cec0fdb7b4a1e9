#include "kit/expand/directions.h"

#include <algorithm>

#include "engine/format/attributes.h"

namespace {

using enum DirectionOwner;

// clang-format off: one row a line, whatever its length.
constexpr SourceDirection kDirections[] = {
    {"include", any, "", "source file", "",
     "stands for what the file has; in a map for its pairs, save those that the map has itself"},
    {"template", any, "", "template name", "", "takes all that the template has, save what is said here"},
    {"with", any, "template", "map of parameters", "", "what the template's parameters are"},
    {"repeat", any, "", "list, file or count", "",
     "makes this entry once for each: `$(item)`, its number `$(index)` from 0, of `$(count)`"},
    {"layout", group, "", "`row`, `column`, `grid`", "", "how the children lie"},
    {"columns", group, "layout", "number", "", "of a grid, which is filled row by row"},
    {"gap", group, "layout", "pixels, or `[across, down]`", "0", "between two of them"},
    {"padding", group, "layout", "pixels, or `[top, right, bottom, left]`", "0", "around them all"},
    {"align", group, "layout", "`stretch`, `start`, `center`, `end`", "stretch",
     "of a group that is a row or a column: where the children lie across it"},
    {"links", any, "", "`auto`, `wrap`, `none`", "",
     "makes `up`, `down`, `left` and `right` of all widgets in it, by where they lie; `wrap` leads round the edges, "
     "`none` leaves it out"},
    {"style", styles, "", "style name", "", "takes all that the other style has, save what is said here"},
};
// clang-format on

// Another object may have an attribute of that name.
bool isAttributeElsewhere(std::string_view name) {
  return std::any_of(attributeRows().begin(), attributeRows().end(),
                     [name](const AttributeRow& row) { return row.name == name; });
}

}  // namespace

std::span<const SourceDirection> directions() { return kDirections; }

bool isDirectionName(std::string_view key) {
  return std::any_of(std::begin(kDirections), std::end(kDirections), [key](const SourceDirection& direction) {
    return direction.name == key && direction.needs.empty() && direction.owner != styles;
  });
}

std::vector<std::string> directionNames() {
  std::vector<std::string> names;
  for (const SourceDirection& direction : kDirections)
    if (!isAttributeElsewhere(direction.name)) names.emplace_back(direction.name);
  return names;
}

std::string directionNeededBy(std::string_view key) {
  for (const SourceDirection& direction : kDirections)
    if (direction.name == key && !isAttributeElsewhere(key)) return std::string(direction.needs);
  return "";
}

bool isDirection(const YamlPair& pair, std::string_view key) { return pair.key == key && pair.value.isUntagged(); }

const YamlNode* findDirection(const YamlNode& map, std::string_view key) {
  for (const YamlPair& pair : map.map)
    if (isDirection(pair, key)) return &pair.value;
  return nullptr;
}
