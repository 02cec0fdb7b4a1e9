#include "kit/yaml/readyaml.h"

#include <yaml-cpp/depthguard.h>
#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <map>
#include <sstream>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/utf8.h"
#include "kit/yaml/foldedlines.h"

namespace {

// How many nodes aliases may copy: far beyond what a page can hold.
constexpr size_t kMaxCopies = 1'000'000;

size_t nodesIn(const YamlNode& node) {
  size_t count = 1;
  for (const YamlNode& item : node.list) count += nodesIn(item);
  for (const YamlPair& pair : node.map) count += nodesIn(pair.value);
  return count;
}

// Builds the tree from what the parser meets, one after the other.
class TreeBuilder : public YAML::EventHandler {
 public:
  TreeBuilder(const std::string& f, const std::string& t) : file(std::make_shared<std::string>(f)), text(t) {}

  YamlNode root;

  void OnDocumentStart(const YAML::Mark&) override {}
  void OnDocumentEnd() override {}

  void OnNull(const YAML::Mark& mark, YAML::anchor_t anchor) override { leaf(nodeAt(mark), anchor); }

  void OnScalar(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                const std::string& value) override {
    YamlNode node = nodeAt(mark);
    node.kind = YamlNode::Kind::scalar;
    node.text = value;
    const size_t begin = beginOf(mark);
    const char indicator = indicatorAt(begin, value.empty() && begin != size_t(mark.pos));
    node.style = indicator == '|'                        ? YamlNode::Style::block
                 : indicator == '>'                      ? YamlNode::Style::folded
                 : indicator == '"' || indicator == '\'' ? YamlNode::Style::quoted
                                                         : YamlNode::Style::plain;
    node.tag = shortTag(tag);
    if (!value.empty())
      node.textLine +=
          int(std::count(text.begin() + mark.pos, text.begin() + long(std::min(begin, text.size())), '\n'));
    const int line = node.textLine;
    if (indicator == '|' || indicator == '>') ++node.textLine;
    if ((indicator == '"' || indicator == '\'') && !isClosed(begin, indicator))
      fail(mark, std::string("the quote ") + indicator + " is never closed");
    if (indicator != '|') node.textLines = foldedLines(node, text, begin, line);
    leaf(std::move(node), anchor);
  }

  void OnAlias(const YAML::Mark& mark, YAML::anchor_t anchor) override {
    const auto found = anchors.find(anchor);
    if (found == anchors.end()) fail(mark, "an anchor can't be used inside of itself");
    copies += nodesIn(found->second);
    if (copies > kMaxCopies) fail(mark, "its aliases make this source too large");
    YamlNode copy = found->second;
    leaf(std::move(copy), YAML::NullAnchor);
  }

  void OnSequenceStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                       YAML::EmitterStyle::value) override {
    open(mark, tag, anchor, YamlNode::Kind::list);
  }
  void OnSequenceEnd() override { close(); }

  void OnMapStart(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor,
                  YAML::EmitterStyle::value) override {
    open(mark, tag, anchor, YamlNode::Kind::map);
  }
  void OnMapEnd() override { close(); }

 private:
  // A list or map whose end hasn't come; a map that waits for a value has its key here.
  struct Open {
    YamlNode node;
    YAML::anchor_t anchor;
    bool hasKey = false;
    std::string key;
    YamlPlace keyPlace;
  };

  [[noreturn]] void fail(const YAML::Mark& mark, const std::string& message) const {
    throw KitError(*file, mark.line + 1, message);
  }

  YamlNode nodeAt(const YAML::Mark& mark) const {
    YamlNode node;
    node.place = {file, mark.line + 1, mark.column + 1, nullptr};
    node.textLine = node.place.line;
    return node;
  }

  static std::string shortTag(const std::string& tag) {
    constexpr std::string_view kYaml = "tag:yaml.org,2002:";
    if (tag == "?" || tag == "!") return {};  // the parser's words for plain and quoted
    return tag.starts_with(kYaml) ? "!!" + tag.substr(kYaml.size()) : tag;
  }

  // Where the scalar itself begins, after its tag and anchor: at the character by which its style is known.
  size_t beginOf(const YAML::Mark& mark) const {
    size_t at = size_t(mark.pos);
    while (at < text.size() && (text[at] == '!' || text[at] == '&'))
      at = nextOf(text[at] == '&' ? text.find_first_of(" \t\n", at) : endOfTag(at));
    return at;
  }

  // The character by which the style of the scalar that begins there is known, if it has one. A tag can stand alone,
  // and then what comes next is another node.
  char indicatorAt(size_t begin, bool canBeNone) const {
    if (begin >= text.size()) return '\0';
    const char c = text[begin];
    const bool isQuote = c == '"' || c == '\'';
    return canBeNone && isQuote && (begin + 1 == text.size() || text[begin + 1] != c) && isClosed(begin, c) ? '\0' : c;
  }

  // A tag ends before what can't be in one, white space or not.
  size_t endOfTag(size_t at) const {
    if (text.compare(at, 2, "!<") == 0) return std::min(text.find('>', at), text.size() - 1) + 1;
    return text.find_first_not_of(kYamlTagCharacters, at);
  }

  // The first place from `at` on, which may be npos, that is neither white space nor a comment's.
  size_t nextOf(size_t at) const {
    for (;;) {
      at = text.find_first_not_of(" \t\n", at);
      if (at == std::string::npos || text[at] != '#') return at;
      at = text.find('\n', at);
    }
  }

  // The parser takes the end of the file for the end of a quoted text, which begins there.
  bool isClosed(size_t begin, char quote) const {
    for (size_t at = begin + 1; at < text.size(); ++at) {
      if (quote == '"' && text[at] == '\\') {
        ++at;
      } else if (text[at] == quote) {
        if (quote == '"' || at + 1 == text.size() || text[at + 1] != quote) return true;
        ++at;
      }
    }
    return false;
  }

  void leaf(YamlNode node, YAML::anchor_t anchor) {
    if (anchor != YAML::NullAnchor) anchors[anchor] = node;
    put(std::move(node));
  }

  void open(const YAML::Mark& mark, const std::string& tag, YAML::anchor_t anchor, YamlNode::Kind kind) {
    // A flow list can be a key to the parser; only texts are to us.
    if (!opened.empty() && opened.back().node.isMap() && !opened.back().hasKey)
      fail(mark, "a key must be a name; a value that begins with { or [ needs quotes");
    YamlNode node = nodeAt(mark);
    node.kind = kind;
    node.tag = shortTag(tag);
    opened.push_back({std::move(node), anchor, false, {}, {}});
  }

  void close() {
    Open done = std::move(opened.back());
    opened.pop_back();
    leaf(std::move(done.node), done.anchor);
  }

  // Puts a finished node into what is open around it.
  void put(YamlNode node) {
    if (opened.empty()) {
      root = std::move(node);
      return;
    }
    Open& around = opened.back();
    if (around.node.isList()) {
      around.node.list.push_back(std::move(node));
    } else if (around.hasKey) {
      if (node.isNull()) node.place = around.keyPlace;  // what isn't there has been missed further down
      around.node.map.push_back({std::move(around.key), std::move(around.keyPlace), std::move(node)});
      around.hasKey = false;
    } else {
      if (!node.isScalar())
        throw KitError(*file, node.place.line, "a key must be a name; a value that begins with { or [ needs quotes");
      if (node.text == "<<" && node.style == YamlNode::Style::plain)
        throw KitError(*file, node.place.line, "'<<' can't merge maps here; write the pairs out");
      around.key = std::move(node.text);
      around.keyPlace = std::move(node.place);
      around.hasKey = true;
    }
  }

  const std::shared_ptr<const std::string> file;
  const std::string& text;
  std::vector<Open> opened;
  std::map<YAML::anchor_t, YamlNode> anchors;
  size_t copies = 0;
};

// Without a mark of byte order and with plain line ends, so that the parser's positions are positions in it.
std::string plainText(const std::string& text) {
  std::string plain;
  plain.reserve(text.size());
  for (size_t i = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; i < text.size(); ++i)
    if (text[i] != '\r' || i + 1 == text.size() || text[i + 1] != '\n') plain += text[i];
  return plain;
}

// What authors do by mistake, for the parser's words.
std::string inOurWords(const std::string& message) {
  const std::pair<const char*, const char*> kWords[] = {
      {"illegal map value", "a value with ': ' in it needs quotes, or a | and the value below"},
      {"end of map not found", "expecting a pair KEY: VALUE here, as far in as those above, or a '}' is missing"},
      {"end of map flow not found", "a '{' is never closed"},
      {"end of sequence not found", "expecting an entry that begins with '- ' here, as far in as those above"},
      {"end of sequence flow not found", "a '[' is never closed"},
      {"unknown token", "a value can't begin like this; put it in quotes"},
  };
  for (const auto& [parsers, ours] : kWords)
    if (message == parsers) return ours;
  return message;
}

// What the parser says of a tab is far from the tab.
bool isIndentedByTab(const std::string& text, int line) {
  std::istringstream lines(text);
  std::string one;
  for (int i = 0; i <= line; ++i)
    if (!std::getline(lines, one)) return false;
  return one.substr(0, one.find_first_not_of(" \t")).find('\t') != std::string::npos;
}

}  // namespace

YamlNode parseYaml(const std::string& file, const std::string& source) {
  // The parser takes a zero byte for a mark that the letter after it is an escape.
  if (const size_t zero = source.find('\0'); zero != std::string::npos)
    throw KitError(file, int(std::count(source.begin(), source.begin() + long(zero), '\n')) + 1, kIsNoUtf8);
  const std::string text = plainText(source);
  std::istringstream in(text);
  TreeBuilder tree(file, text);
  try {
    YAML::Parser parser(in);
    if (!parser.HandleNextDocument(tree)) {
      tree.root.place = {std::make_shared<std::string>(file), 1, 1, nullptr};
      return std::move(tree.root);
    }
    YamlNode first = std::move(tree.root);
    if (parser.HandleNextDocument(tree))
      throw KitError(file, tree.root.place.line, "a second document begins here; a file holds one");
    return first;
  } catch (const YAML::DeepRecursion& e) {
    throw KitError(file, e.mark.line + 1, "nested too deep");
  } catch (const YAML::Exception& e) {
    for (const int line : {e.mark.line, e.mark.line - 1})
      if (line >= 0 && isIndentedByTab(text, line))
        throw KitError(file, line + 1, "a tab can't indent a line; use spaces");
    throw KitError(file, e.mark.line + 1, inOurWords(e.msg));
  }
}

YamlNode readYaml(const std::string& file) {
  const std::vector<uint8_t> bytes = readFile(file);
  const std::string text(bytes.begin(), bytes.end());
  requireUtf8(file, text);
  return parseYaml(file, text);
}
