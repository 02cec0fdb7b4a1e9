// A tree of any YAML text, also while somebody is in the middle of writing it, with the bytes that each part of it lies
// in. For editors; what a page source means is what readyaml.h reads.
//
// A line that is no YAML where it stands becomes a key without a value, and all around it stays as it is. Of what
// parseYaml takes the trees are the same, but for aliases, which are not followed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kit/yaml/yamlnode.h"

struct LoosePair;

// From byte `at` of a scalar's text on, the text has been written at byte `source` and what follows it.
struct LooseSegment {
  size_t at, source;
};

struct LooseNode {
  YamlNode::Kind kind = YamlNode::Kind::null;
  YamlNode::Style style = YamlNode::Style::plain;
  std::string tag;   // as written
  std::string text;  // of a scalar; of an alias with its asterisk
  size_t begin = 0;  // of the value, after its tag, quotes included; of a null where a value could be written
  size_t end = 0;
  bool isFlow = false;   // a list in brackets, a map in braces
  bool isClosed = true;  // false for a quote or bracket without its end
  std::vector<LooseNode> list;
  std::vector<LoosePair> map;
  std::vector<LooseSegment> segments;  // of a scalar that has any text, the first from byte 0 on

  bool isScalar() const { return kind == YamlNode::Kind::scalar; }
  bool isMap() const { return kind == YamlNode::Kind::map; }
  bool isList() const { return kind == YamlNode::Kind::list; }
  bool isUntagged() const { return tag.empty() || tag.starts_with("!!"); }

  const LoosePair* find(std::string_view key) const;  // the first of that name; null if there is none
  std::string textOf(std::string_view key) const;     // of a scalar; else empty

  // Between a scalar's text and the source. An offset between two letters that were not written side by side is that
  // of the first.
  size_t sourceOf(size_t textOffset) const;
  size_t textOffsetOf(size_t source) const;
};

struct LoosePair {
  std::string key;
  size_t begin = 0, end = 0;  // of the key, quotes included
  bool hasColon = true;
  LooseNode value;
};

// In time linear in the text's length, whatever it is.
LooseNode parseLooseYaml(std::string_view text);
