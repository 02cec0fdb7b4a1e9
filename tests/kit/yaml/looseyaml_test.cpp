// The tolerant tree of YAML: the same as the strict one where that exists, and most of it where it doesn't.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>

#include "kit/yaml/looseyaml.h"
#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace fs = std::filesystem;

namespace {

// Where the trees differ; empty if they don't.
std::string difference(const YamlNode& strict, const LooseNode& loose, const std::string& path = "") {
  if (strict.kind != loose.kind) return path + ": of another kind";
  if (strict.tag != loose.tag) return path + ": tag " + loose.tag;
  if (strict.isScalar() && strict.style != loose.style) return path + ": of another style";
  if (strict.text != loose.text && strict.isScalar())
    return path + ": text '" + loose.text + "', not '" + strict.text + "'";
  if (strict.list.size() != loose.list.size()) return path + ": " + std::to_string(loose.list.size()) + " entries";
  if (strict.map.size() != loose.map.size()) return path + ": " + std::to_string(loose.map.size()) + " pairs";
  for (size_t i = 0; i < strict.list.size(); ++i)
    if (std::string d = difference(strict.list[i], loose.list[i], path + "/" + std::to_string(i)); !d.empty()) return d;
  for (size_t i = 0; i < strict.map.size(); ++i) {
    if (strict.map[i].key != loose.map[i].key) return path + ": key " + loose.map[i].key;
    if (std::string d = difference(strict.map[i].value, loose.map[i].value, path + "/" + strict.map[i].key); !d.empty())
      return d;
  }
  return "";
}

// Whether each part lies inside of what holds it, and a scalar's letters are where it says.
void checkPlaces(const LooseNode& node, const std::string& text) {
  ASSERT_LE(node.begin, node.end);
  ASSERT_LE(node.end, text.size());
  for (size_t i = 0; i < node.text.size(); ++i) {
    if (node.text[i] == '\n' || node.text[i] == ' ') continue;
    if (node.style != YamlNode::Style::quoted) {
      ASSERT_EQ(text[node.sourceOf(i)], node.text[i]) << node.text;
    }
    if ((node.text[i] & 0xC0) != 0x80) {
      ASSERT_EQ(node.textOffsetOf(node.sourceOf(i)), i) << node.text;
    }
  }
  for (const LooseNode& item : node.list) checkPlaces(item, text);
  for (const LoosePair& pair : node.map) {
    ASSERT_LE(pair.begin, pair.end);
    ASSERT_LE(pair.end, text.size());
    const std::string written = text.substr(pair.begin, pair.end - pair.begin);
    if (written.find_first_of("\"'\n") == std::string::npos) {
      ASSERT_EQ(written, pair.key);
    }
    checkPlaces(pair.value, text);
  }
}

std::string allText(const fs::path& file) {
  std::ifstream in(file);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<fs::path> sources() {
  std::vector<fs::path> all;
  for (const char* folder : {"demo", "docs", "tests"})
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(VISTREL_DEMO).parent_path() / folder))
      if (entry.path().extension() == ".yaml") all.push_back(entry.path());
  return all;
}

TEST(LooseYaml, IsTheStrictTreeOfEverySource) {
  size_t count = 0;
  for (const fs::path& file : sources()) {
    const std::string text = allText(file);
    if (text.find('*') != std::string::npos && text.find('&') != std::string::npos) continue;  // aliases
    try {
      const YamlNode strict = parseYaml("x", text);
      const LooseNode loose = parseLooseYaml(text);
      EXPECT_EQ(difference(strict, loose), "") << file;
      checkPlaces(loose, text);
      ++count;
    } catch (const KitError&) {  // a source with an error, for another test
    }
  }
  EXPECT_GE(count, 30u);
}

TEST(LooseYaml, ReadsScalarsOfAllStyles) {
  const std::string texts[] = {
      "a: |\n  one\n\n    two\n  three\n\nb: >\n  one\n  two\n\n  three\n    four\n  five\n",
      "a: |-\n  x\nb: |+\n  x\n\n\nc: |2\n    x\nd: |\n\n  # no comment\n  y\n# a comment\ne: 1\n",
      "a: one\n  two\n\n  three  # comment\nb: 'it''s'\nc: \"\\u00e9\\x41\\n\\\"\"\nd: \"one\n  two\n\n  three\"\n",
      "a: {b: [1, two words, {c: d}], 'e': \"f\",\n  g: h:i}\nlist:\n- a: 1\n  b: 2\n- - x\n  - y\n-\n  c: 3\n- ~\n",
      "a: \nb: ''\nc: !int 3\nd: !string\n  text\ne: [!color 1, a: b]\n\"f g\": http://x#y\nh: a #b\ni: a#b\n",
      "- one\n- {a: , b: }\n- []\n",
      "just text\n",
      "",
      "# nothing\n",
      "---\na: 1\n",
      "a: 1\r\nb: |\r\n  x\r\n  y\r\nc: 2\r\n",
      "a: [1,\n  2,\n  3\n  ]\nb: {x: 1,\n    y: 2\n}\n"};
  for (const std::string& text : texts) {
    EXPECT_EQ(difference(parseYaml("x", text), parseLooseYaml(text)), "") << text;
    checkPlaces(parseLooseYaml(text), text);
  }
}

std::string keys(const LooseNode& node) {
  std::string all;
  for (const LoosePair& pair : node.map) all += (all.empty() ? "" : " ") + pair.key + (pair.hasColon ? "" : "?");
  return all;
}

TEST(LooseYaml, KeepsWhatIsAroundAFault) {
  LooseNode node = parseLooseYaml(
      "page:\n  type: group\n  ali\n  children:\n  - type: text\n    na\n    up: x\n  - {a: 1, b\n  end: 1\n");
  ASSERT_EQ(keys(node), "page");
  const LooseNode& page = node.map[0].value;
  EXPECT_EQ(keys(page), "type ali? children end");
  const LooseNode& children = page.find("children")->value;
  ASSERT_EQ(children.list.size(), 2u);
  EXPECT_EQ(keys(children.list[0]), "type na? up");
  EXPECT_EQ(keys(children.list[1]), "a b?");
  EXPECT_FALSE(children.list[1].isClosed);

  EXPECT_EQ(keys(parseLooseYaml("a: \"open\nb: 1\n")), "a b");
  EXPECT_EQ(keys(parseLooseYaml("a: [1, 2\nb: 1\n")), "a b");
  EXPECT_EQ(keys(parseLooseYaml("a: 1\n   b: 2\nc: 3\n")), "a b c");
  EXPECT_EQ(keys(parseLooseYaml("a: x: y\nb: 2\n")), "a b");
}

TEST(LooseYaml, ReadsWhatIsWrittenOfRandomTrees) {
  std::mt19937 random(7);
  const std::string words[] = {"a",           "two words", "",  "it's", "x: y", "# no", "- dash", "line\nline\n",
                               " deep\nless", "{",         "ü", "~",    "12"};
  const auto pick = [&](size_t n) { return random() % n; };
  const std::function<YamlNode(int)> tree = [&](int depth) {
    YamlNode node;
    const size_t kind = depth > 4 ? 0 : depth == 0 ? 2 : pick(3);
    node.kind = kind == 0 ? YamlNode::Kind::scalar : kind == 1 ? YamlNode::Kind::list : YamlNode::Kind::map;
    if (kind == 0) node.text = words[pick(std::size(words))];
    if (kind == 0 && pick(2)) node.style = YamlNode::Style::quoted;
    for (size_t n = kind == 0 ? 0 : pick(4); n > 0; --n) {
      if (kind == 1) node.list.push_back(tree(depth + 1));
      if (kind == 2) node.map.push_back({"k" + std::to_string(n) + (pick(9) ? "" : ": x"), {}, tree(depth + 1)});
    }
    return node;
  };
  for (int i = 0; i < 3000; ++i) {
    const std::string text = writeYaml(tree(0));
    ASSERT_EQ(difference(parseYaml("x", text), parseLooseYaml(text)), "") << text;
  }
}

// Sources with a part cut out, doubled or exchanged are read to their end, every part inside of the text.
TEST(LooseYaml, TakesAnyText) {
  std::mt19937 random(11);
  const std::vector<fs::path> all = sources();
  for (int i = 0; i < 2000; ++i) {
    std::string text = allText(all[random() % all.size()]).substr(0, 3000);
    for (int edit = 0; edit < 3 && !text.empty(); ++edit) {
      const size_t at = random() % text.size(), size = random() % 12;
      const char* const parts[] = {"", "{", "]", "\"", "'", "\n", ": ", "- ", "|\n", "\t", "  ", "#", "\\", "!x ", "&"};
      text.replace(at, std::min(size, text.size() - at), parts[random() % std::size(parts)]);
    }
    checkPlaces(parseLooseYaml(text), text);
  }
  for (const std::string part : {"[", "{a: ", "- ", "'", "a:\n "}) {
    std::string deep;
    for (int n = 0; n < 20000; ++n) deep += part;
    checkPlaces(parseLooseYaml(deep), deep);
  }
}

}  // namespace
