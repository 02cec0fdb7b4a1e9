// A YAML document as a tree of plain values, for everything that the kit reads in YAML: page sources, projects, tests.
//
// Every node knows where it was written, also when it was copied: a name after an asterisk is a copy of the node that
// the anchor names, and a node that an include or a template brought in says by whom it was used. Keys are texts and
// stay in the order of the file; whoever reads a map decides what a repeated one means.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kit/errors.h"

// What a tag is made of that isn't between angle brackets.
inline constexpr std::string_view kYamlTagCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-!#;/?:@&=+$_.~*'()%";

struct YamlUse;

struct YamlPlace {
  std::shared_ptr<const std::string> file;
  int line = 0, column = 0;            // from 1
  std::shared_ptr<const YamlUse> use;  // null for what the file says itself
};

// Why a node appears where it wasn't written: "template 'button'", say, used at a place.
struct YamlUse {
  std::string what;
  YamlPlace at;
};

struct YamlPair;

// From byte `at` of a scalar's text on, what follows was written in that line.
struct YamlTextLine {
  size_t at;
  int line;
};

struct YamlNode {
  enum class Kind { null, scalar, list, map };
  enum class Style { plain, quoted, block, folded };  // of a scalar; block: after |, folded: after >

  Kind kind = Kind::null;
  Style style = Style::plain;
  std::string tag;             // "!color", or empty; YAML's own !!str is "!!str", and !<x> is "x"
  std::string text;            // of a scalar
  std::vector<YamlNode> list;  // of a list
  std::vector<YamlPair> map;   // of a map
  YamlPlace place;
  int textLine = 0;                     // where a scalar's own text begins: a block's on the line after its indicator
  std::vector<YamlTextLine> textLines;  // of a scalar over several lines whose text has others than the file

  bool isNull() const { return kind == Kind::null; }
  bool isScalar() const { return kind == Kind::scalar; }
  bool isList() const { return kind == Kind::list; }
  bool isMap() const { return kind == Kind::map; }

  bool isUntagged() const { return tag.empty() || tag.starts_with("!!"); }  // but for YAML's own tags

  // The lines of a scalar's text, one at least, the first from byte 0 on.
  std::vector<YamlTextLine> linesOfText() const;

  // The value of the first pair of that name; null if there is none or this is no map.
  const YamlNode* find(std::string_view key) const;

  // Its text, if it is a scalar; else empty.
  std::string textOf(std::string_view key) const;
};

struct YamlPair {
  std::string key;
  YamlPlace place;  // of the key
  YamlNode value;
};

// The line of the byte, of such lines.
int lineOfByte(const std::vector<YamlTextLine>& lines, size_t at);

// What is wrong at a place, with its uses.
KitMessage messageAt(const YamlPlace& place, std::string text);
