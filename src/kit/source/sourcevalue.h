// What a scalar of a page source means, for each type that an attribute can have.
//
// Faults have no name of an attribute in their text: whoever knows which attribute it is puts that in front.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kit/source/pagetree.h"
#include "kit/yaml/yamlnode.h"

struct SourceFault {
  YamlPlace at;
  std::string text;
};

// The node's text; a SourceFault for what is no scalar. `what` is what it should be.
const std::string& scalarText(const YamlNode& node, const char* what);

// "a list", "nothing", "'red'": what the source has, as messages call it.
std::string shownNode(const YamlNode& node);

std::optional<int64_t> parseInteger(std::string_view text);

// These throw a SourceFault.
uint16_t positionValue(const YamlNode& node);
PageValue integerValue(const YamlNode& node);
PageValue booleanValue(const YamlNode& node);
PageValue colorValue(const YamlNode& node, bool indexed);  // indexed: of an 8-bit page
PageValue stringValue(const YamlNode& node);
PageValue scriptDataValue(const YamlNode& node);  // base64
