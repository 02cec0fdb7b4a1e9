#include "kit/yaml/edityaml.h"

#include <gtest/gtest.h>

#include <random>

#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace {

// The first map, in the order of the text, that has the name.
const YamlNode* named(const YamlNode& node, const std::string& name) {
  if (node.textOf("name") == name) return &node;
  for (const YamlNode& item : node.list)
    if (const YamlNode* found = named(item, name)) return found;
  for (const YamlPair& pair : node.map)
    if (const YamlNode* found = named(pair.value, name)) return found;
  return nullptr;
}

std::string edit(const std::string& source, const std::string& name, const std::string& key, const std::string& value) {
  const YamlNode root = parseYaml("p", source);
  try {
    return withYamlValue("p", source, named(root, name)->place, key, value);
  } catch (const KitError& e) {
    return e.what();
  }
}

TEST(EditYaml, AValueIsReplacedAndNothingElse) {
  const struct {
    const char *source, *key, *value, *edited;
  } cases[] = {
      {"name: n   # a\nx:  10   # b\ny: 2\n", "x", "-3", "name: n   # a\nx:  -3   # b\ny: 2\n"},
      {"{name: n,x: 10 , y: [1]}", "x", "20", "{name: n,x: 20 , y: [1]}"},
      {"a: [{name: n, t: 'it''s'}, {name: m}]", "t", "now", "a: [{name: n, t: \"now\"}, {name: m}]"},
      {"a:\n- name: n\n  t: \"a \\\" # b\"  # c\n", "t", "x: y", "a:\n- name: n\n  t: \"x: y\"  # c\n"},
      {"name: n\nt: plain\n", "t", "a: b #c", "name: n\nt: \"a: b #c\"\n"},
      {"name: n\nt:\nx: 1\n", "t", "7", "name: n\nt: 7\nx: 1\n"},
      {"name: n\nt:   # none\nx: 1\n", "t", "7", "name: n\nt: 7   # none\nx: 1\n"},
      {"name: n\nt: !int 7 # c\n", "t", "8", "name: n\nt: !int 8 # c\n"},
      {"name: n\nx: 1\r\ny: 2\r\n", "x", "3", "name: n\nx: 3\r\ny: 2\r\n"},
      {"\xEF\xBB\xBFname: n\nx: 1\n", "name", "m", "\xEF\xBB\xBFname: m\nx: 1\n"},
      {"größe: {name: n, ü: ä, x: 1}", "x", "2", "größe: {name: n, ü: ä, x: 2}"},
      {"w:\n  name: n\n  f: |\n    a;\n\n    b;\n\n  # c\n  x: 1\n", "f", "c;\nd;\n",
       "w:\n  name: n\n  f: |\n    c;\n    d;\n\n  # c\n  x: 1\n"},
      {"name: n\nf: >-\n  a\n  b\n", "f", "c", "name: n\nf: c\n"},
      {"name: n\n\"odd: key\" : 1\n", "odd: key", "2", "name: n\n\"odd: key\" : 2\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(edit(c.source, "n", c.key, c.value), c.edited) << c.source;
}

TEST(EditYaml, ANewKeyIsPutAmongTheOthers) {
  const struct {
    const char *source, *edited;
  } cases[] = {
      {"name: n  # a\nchildren:\n  - {y: 1}\n", "name: n  # a\nx: 5\nchildren:\n  - {y: 1}\n"},
      {"c:\n  - f: |\n      a\n    name: n\n", "c:\n  - x: 5\n    f: |\n      a\n    name: n\n"},
      {"c: [{name: n}]", "c: [{name: n, x: 5}]"},
      {"c: {f: [1], name: n}", "c: {x: 5, f: [1], name: n}"},
      {"name: n", "name: n\nx: 5"},
      {"name: n\r\ny: 1\r\n", "name: n\r\ny: 1\r\nx: 5\r\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(edit(c.source, "n", "x", "5"), c.edited) << c.source;
}

std::string without(const std::string& source, const std::string& key) {
  const YamlNode root = parseYaml("p", source);
  try {
    return withoutYamlKey("p", source, named(root, "n")->place, key);
  } catch (const KitError& e) {
    return e.what();
  }
}

TEST(EditYaml, AKeyGoesWithItsLine) {
  const struct {
    const char *source, *key, *edited;
  } cases[] = {
      {"# a\nname: n\n# b\nx: 1  # c\ny: 2\n", "x", "# a\nname: n\n# b\ny: 2\n"},
      {"# a\nx: 1\n# b\nname: n\n", "x", "# a\n# b\nname: n\n"},
      {"name: n\nx: 1", "x", "name: n\n"},
      {"c:\n  - x: 1\n    name: n\n  - y: 2\n", "x", "c:\n  - name: n\n  - y: 2\n"},
      {"c:\n  - x: 1\n    # b\n    name: n\n", "x", "c:\n  - \n    # b\n    name: n\n"},
      {"c:\n  - name: n\n    f: |\n      a\n\n      b\n    y: 1\n", "f", "c:\n  - name: n\n    y: 1\n"},
      {"c: [{x: 1, name: n}, {name: m}]", "x", "c: [{name: n}, {name: m}]"},
      {"c: {name: n , x: 'a, b', y: 2}", "x", "c: {name: n , y: 2}"},
      {"c: {name: n, y: [1], x: 1}", "x", "c: {name: n, y: [1]}"},
      {"name: n\r\nx: 1\r\ny: 2\r\n", "x", "name: n\r\ny: 2\r\n"},
      {"name: n\ny: [1, 2]\n", "y", "p:1: 'y' can't be changed by itself here; edit the file"},
      {"name: n\n? y\n: z\n", "y", "p:1: 'y' can't be changed by itself here; edit the file"},
      {"a: {name: n}\n", "name", "p:1: 'name' can't be changed by itself here; edit the file"},
      {"name: n\n", "x", "p:1: there is no 'x' here"},
  };
  for (const auto& c : cases) EXPECT_EQ(without(c.source, c.key), c.edited) << c.source;
}

TEST(EditYaml, WhatCannotBeChangedByItselfIsLeftAlone) {
  const char* refused = "p:2: 'x' can't be changed by itself here; edit the file";
  EXPECT_EQ(edit("a: &one 5\nb: {name: n, x: *one}\n", "n", "x", "6"), refused);
  EXPECT_EQ(edit("a:\n  name: n\n  x: [1, 2]\n", "n", "x", "6"), refused);
  EXPECT_EQ(edit("a:\n  name: n\n  x: first\n    second\n", "n", "x", "6"), refused);
}

// A copy by an anchor's name changes with its original, and the result says so.
TEST(EditYaml, CopiesChangeWithTheirOriginal) {
  EXPECT_EQ(edit("a: &w {name: n, x: 1}\nb: *w\n", "n", "x", "2"), "a: &w {name: n, x: 2}\nb: *w\n");
}

TEST(EditYaml, EmptyLinesThatBelongToATextGoWithIt) {
  const std::string source = "list:\n  - name: n0\n    t: |+\n      x\n\n\n    u: 1\n";
  EXPECT_EQ(edit(source, "n0", "t", "x\n\n\n"), source);
  EXPECT_EQ(edit(source, "n0", "t", "a"), "list:\n  - name: n0\n    t: a\n    u: 1\n");
}

// Trees at random, written in block style: each value can be changed to any text, and reads back.
TEST(EditYaml, AnyTextComesBackFromAnyPlace) {
  std::mt19937 random(5);
  const std::vector<std::string> texts{"",     "a",    "- a",     "a\nb", "a\n\nb\n", "\n a", "#",          "'",
                                       "\"",   "null", "~",       "1e3",  "a\tb",     " a ",  "|",          "{",
                                       "a: b", "&a",   "*a",      "!t",   "a #",      "ä\nö", "tr\xC3\xA4", "-",
                                       "---",  "...",  "x\n\n\n", "%a",   "@a",       "`a"};
  const auto text = [&] { return texts[random() % texts.size()]; };
  for (int round = 0; round < 500; ++round) {
    std::string source = "# first\nlist:\n";
    for (int item = 0; item < 3; ++item)
      source += "  - name: n" + std::to_string(item) + "  # of it\n    t: " + yamlScalar(text(), 6) +
                "\n    flow: {u: " + yamlOnOneLine(text()) + "}\n";
    const std::string wanted = text(), name = "n" + std::to_string(random() % 3);
    const std::string edited = edit(source, name, random() % 2 ? "t" : "name", wanted);
    EXPECT_NE(edited.find("# first"), std::string::npos) << edited;
    EXPECT_NO_THROW(parseYaml("p", edited)) << source << wanted;
  }
}

}  // namespace
