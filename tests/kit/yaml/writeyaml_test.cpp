#include "kit/yaml/writeyaml.h"

#include <gtest/gtest.h>

#include <random>

#include "support/sameyaml.h"

namespace {

TEST(WriteYaml, ReadsLikeWhatAnAuthorWrites) {
  const char* const source =
      "flags: 16bit\n"
      "page:\n"
      "  bgColor: \"#204060\"\n"
      "  onLoad: |\n"
      "    if (a) {\n"
      "      b = \"c\";\n"
      "    }\n"
      "  children:\n"
      "    - type: text\n"
      "      value: !string \"42\"\n"
      "    - {}\n"
      "    - plain words\n"
      "  scripts: []\n";
  EXPECT_EQ(writeYaml(parseYaml("f", source)), source);
}

class RandomTrees {
 public:
  YamlNode node(int depth) {
    YamlNode node;
    node.kind = YamlNode::Kind(pick(depth > 0 ? 4 : 2));
    static const char* const tags[] = {"!int", "!table", "!!str", "::", "tag:a.net,2026:b", "!a,b"};
    if (pick(5) == 0) node.tag = tags[pick(std::size(tags))];
    if (node.isScalar()) {
      node.text = text();
      node.style = pick(2) ? YamlNode::Style::plain : YamlNode::Style::quoted;
    }
    if (node.isList())
      for (uint32_t i = pick(4); i > 0; --i) node.list.push_back(this->node(depth - 1));
    if (node.isMap())
      for (uint32_t i = pick(4); i > 0; --i)
        node.map.push_back({text() + std::to_string(i), {}, this->node(depth - 1)});
    // A tag makes an empty text of nothing.
    if (node.isNull()) node.tag.clear();
    return node;
  }

 private:
  uint32_t pick(uint32_t n) { return uint32_t(random() % n); }

  std::string text() {
    static const char* const pieces[] = {"a", "word", " ", "\n", "  ", ":", "-", "#", "'", "\"", "\\", "~", "null",
                                         "0", "[",    "{", "\t", "|",  "%", "?", "&", "*", "!",  "$(", ",", "\xC3\xA9"};
    std::string out;
    for (uint32_t i = pick(6); i > 0; --i) out += pieces[pick(std::size(pieces))];
    return out;
  }

  std::mt19937 random{17};
};

TEST(WriteYaml, RandomTreesReadBack) {
  RandomTrees trees;
  for (int i = 0; i < 2000; ++i) {
    YamlNode tree;
    tree.kind = YamlNode::Kind::map;
    tree.map.push_back({"top", {}, trees.node(4)});
    const std::string text = writeYaml(tree);
    try {
      ASSERT_TRUE(isSameYaml(parseYaml("f", text), tree)) << text;
    } catch (const KitError& e) {
      FAIL() << e.what() << "\n" << text;
    }
  }
}

}  // namespace
