// All keys that a page source can have, each with what an author writes and one line of help: those of the source
// itself, and those of its objects, be they attributes or directions to kpg.
//
// Texts are in the guide's own marks, those of engine/format/attributes.h, which has most of them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/source/schema.h"

struct SourceKey {
  std::string_view name;
  std::string_view value;      // a range, a unit, or the words to choose from, between commas
  std::string_view byDefault;  // what counts without it; empty when that is nothing
  std::string_view help;       // one line
  AttributeForm form{};        // of an attribute
};

std::span<const SourceKey> topKeys();

// All that such an object has: its rectangle, its attributes, and directions. `other` objects have those alone that any
// object has.
std::vector<SourceKey> objectKeys(ObjectKind kind, std::string_view type);

std::optional<SourceKey> objectKey(ObjectKind kind, std::string_view type, std::string_view name);

// The words to choose from; none when any value will do.
std::vector<std::string> wordsOf(const SourceKey& key);

// Value, default and help, as a few lines of Markdown.
std::string keyHelp(const SourceKey& key);
