#include "kit/yaml/readyaml.h"

#include <gtest/gtest.h>

#include "kit/errors.h"
#include "kit/yaml/writeyaml.h"
#include "support/sameyaml.h"

namespace {

// A node as text: scalars with the first letter of their style, tag, line:column and the line of their own text.
std::string shown(const YamlNode& node) {
  const std::string place = std::to_string(node.place.line) + ":" + std::to_string(node.place.column);
  std::string out = node.tag;
  if (node.isNull()) return out + "null@" + place;
  if (node.isScalar())
    return out + "pqbf"[int(node.style)] + "'" + node.text + "'@" + place + "+" + std::to_string(node.textLine);
  for (const YamlNode& item : node.list) out += (&item == &node.list[0] ? "" : " ") + shown(item);
  for (const YamlPair& pair : node.map) out += (&pair == &node.map[0] ? "" : " ") + pair.key + "=" + shown(pair.value);
  return node.isList() ? "[" + out + "]" : "{" + out + "}";
}

std::string errorOf(const std::string& text) {
  try {
    return shown(parseYaml("f.yaml", text));
  } catch (const KitError& e) {
    return e.what();
  }
}

TEST(ReadYaml, NodesKnowWhereTheyWereWrittenAndHow) {
  EXPECT_EQ(shown(parseYaml("f", "a: 1\nb: '1'\nc: |\n  x\n  y\nd: !color   &n >\n  z\n\ne: [~, !!str 5, ]\n")),
            "{a=p'1'@1:4+1 b=q'1'@2:4+2 c=b'x\ny\n'@3:4+4 d=!colorf'z\n'@6:4+7 e=[null@9:5 !!strp'5'@9:8+9]}");
  // After a mark of byte order and with the line ends of other systems.
  EXPECT_EQ(shown(parseYaml("f",
                            "\xEF\xBB\xBF"
                            "a: \"1\"\r\nb: |\r\n  x\r\n")),
            "{a=q'1'@1:4+1 b=b'x\n'@2:4+3}");
  EXPECT_EQ(shown(parseYaml("f", "")), "null@1:1");
  EXPECT_EQ(shown(parseYaml("f", "# nothing\n---\n")), "null@3:1");
}

// A tag may end where a quote begins, stand lines above its text, or have none.
TEST(ReadYaml, ATextBeginsAfterItsTagWhereverThatIs) {
  EXPECT_EQ(shown(parseYaml("f", "a: !t\nb: !u # why\n  \"two\n  lines\"\nc: !v'q'\n\"d\": !w\"r\"\ne: !<x> f\n")),
            "{a=!tp''@1:4+1 b=!uq'two lines'@2:4+3 c=!v'q'p''@5:4+5 d=!wq'r'@6:6+6 e=xp'f'@7:4+7}");
  for (const char* text : {"!t", "!t 'x'", "a: !t\n\"b\": 1\n", "- !t\n- !t >\n", "!<::>x y"}) {
    const YamlNode node = parseYaml("f", text);
    EXPECT_TRUE(isSameYaml(parseYaml("f", writeYaml(node)), node)) << text;
  }
  EXPECT_EQ(errorOf("a: !t\"b\n"), "f.yaml:1: the quote \" is never closed");
}

TEST(ReadYaml, AnAliasIsACopyThatKeepsThePlaceOfItsAnchor) {
  EXPECT_EQ(shown(parseYaml("f", "a: &x [1, {k: v}]\nb: *x\n")),
            "{a=[p'1'@1:8+1 {k=p'v'@1:15+1}] b=[p'1'@1:8+1 {k=p'v'@1:15+1}]}");
}

TEST(ReadYaml, WhatIsNoTreeIsRefusedAtItsLine) {
  std::string laughs = "l0: &l0 [1, 2, 3, 4, 5, 6, 7, 8]\n";
  for (int i = 1; i < 9; ++i) {
    const std::string before = "*l" + std::to_string(i - 1);
    laughs += "l" + std::to_string(i) + ": &l" + std::to_string(i) + " [";
    for (int k = 0; k < 8; ++k) laughs += (k ? ", " : "") + before;
    laughs += "]\n";
  }
  const std::pair<std::string, const char*> cases[] = {
      {"a: \"b\nc: 'it''s'\n", "f.yaml:1: the quote \" is never closed"},
      {"a: 'it''s\nb: 1\n", "f.yaml:1: the quote ' is never closed"},
      {"a: x ? \"b\": c\n", "f.yaml:1: a value with ': ' in it needs quotes, or a | and the value below"},
      {"a: [\n", "f.yaml:2: a '[' is never closed"},
      {"a:\n\tb: 1\n", "f.yaml:2: a tab can't indent a line; use spaces"},
      {"a:\n  b: 1\n \tc: 2\n", "f.yaml:3: a tab can't indent a line; use spaces"},
      {std::string("a: 1\nb: c\0d\n", 12), "f.yaml:2: this is no UTF-8; save the file in that encoding"},
      {"a: 1\n---\nb: 2\n", "f.yaml:3: a second document begins here; a file holds one"},
      {"a:\n  <<: {b: 1}\n", "f.yaml:2: '<<' can't merge maps here; write the pairs out"},
      {"'<<': 1\n", "{<<=p'1'@1:7+1}"},
      {"[a, b]: 1\n", "f.yaml:1: a key must be a name; a value that begins with { or [ needs quotes"},
      {"? {a: 1}\n: 1\n", "f.yaml:1: a key must be a name; a value that begins with { or [ needs quotes"},
      {"a: &x\n  b: [*x]\n", "f.yaml:2: an anchor can't be used inside of itself"},
      {std::string(1500, '[') + std::string(1500, ']'), "f.yaml:1: nested too deep"},
      {laughs, "f.yaml:7: its aliases make this source too large"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(errorOf(text), message) << text.substr(0, 80);
}

}  // namespace
