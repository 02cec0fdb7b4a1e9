#include "kit/yaml/edityaml.h"

#include <algorithm>
#include <string_view>

#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace {

bool isAt(const YamlNode& node, const YamlPlace& place) {
  return node.isMap() && node.place.line == place.line && node.place.column == place.column;
}

const YamlNode* findMap(const YamlNode& node, const YamlPlace& place) {
  if (isAt(node, place)) return &node;
  for (const YamlNode& item : node.list)
    if (const YamlNode* found = findMap(item, place)) return found;
  for (const YamlPair& pair : node.map)
    if (const YamlNode* found = findMap(pair.value, place)) return found;
  return nullptr;
}

// Names of anchors are copies, and all copies of a map change.
template <class Change>
void forEachCopy(YamlNode& node, const YamlPlace& place, const Change& change) {
  for (YamlNode& item : node.list) forEachCopy(item, place, change);
  for (YamlPair& pair : node.map) forEachCopy(pair.value, place, change);
  if (isAt(node, place)) change(node);
}

void set(YamlNode& node, const std::string& key, const std::string& value) {
  const auto pair = std::find_if(node.map.begin(), node.map.end(), [&](const YamlPair& p) { return p.key == key; });
  YamlNode& target = pair != node.map.end() ? pair->value : node.map.emplace_back(YamlPair{key, {}, {}}).value;
  target.kind = YamlNode::Kind::scalar;
  target.text = value;
}

// Whether they say the same, however they are written and in whatever order their keys come.
bool saysTheSame(const YamlNode& a, const YamlNode& b) {
  if (a.kind != b.kind || a.tag != b.tag || a.text != b.text) return false;
  if (a.map.size() != b.map.size()) return false;
  for (const YamlPair& pair : a.map) {
    const YamlNode* other = b.find(pair.key);
    if (!other || !saysTheSame(pair.value, *other)) return false;
  }
  return std::equal(a.list.begin(), a.list.end(), b.list.begin(), b.list.end(), saysTheSame);
}

class Editor {
 public:
  Editor(const std::string& source, const YamlNode& map) : text(source), map(map), inFlow(startsFlow()) {}

  std::string with(const std::string& key, const std::string& value) const {
    const auto pair = std::find_if(map.map.begin(), map.map.end(), [&](const YamlPair& p) { return p.key == key; });
    if (pair == map.map.end()) return inFlow ? addedInFlow(key, value) : addedAsLine(key, value);
    const size_t begin = valueBegin(*pair), end = valueEnd(*pair, begin);
    const bool isQuoted = pair->value.style == YamlNode::Style::quoted;
    const bool endsLine = lineEnd(end) == end;  // no comment comes after it
    std::string scalar = isQuoted   ? quotedYaml(value)
                         : endsLine ? scalarFor(value, pair->place.column - 1)
                                    : yamlOnOneLine(value);
    if (begin > 0 && text[begin - 1] == ':') scalar.insert(0, 1, ' ');
    return replaced(begin, end, scalar);
  }

  // Without the pair, which holds a scalar and isn't the only one.
  std::string without(const YamlPair& pair) const {
    const size_t begin = offset(pair.place), end = valueEnd(pair, valueBegin(pair));
    return inFlow ? withoutInFlow(pair, begin, end) : withoutLines(pair, begin, end);
  }

 private:
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

  size_t offset(const YamlPlace& place) const {
    size_t at = text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    for (int line = 1; line < place.line && at < text.size(); ++line)
      at = std::min(text.find('\n', at), text.size() - 1) + 1;
    return std::min(at + size_t(place.column - 1), text.size());
  }

  std::string replaced(size_t begin, size_t end, const std::string& by) const {
    return text.substr(0, begin) + by + text.substr(end);
  }

  std::string scalarFor(const std::string& value, int indent) const {
    return inFlow ? yamlOnOneLine(value) : yamlScalar(value, indent + 2);
  }

  // After tags and anchors.
  size_t skipProperties(size_t at) const {
    while (at < text.size() && (text[at] == '!' || text[at] == '&')) {
      at = std::min(text.find_first_of(" \t\r\n", at), text.size());
      at = std::min(text.find_first_not_of(" \t", at), text.size());
    }
    return at;
  }

  bool startsFlow() const {
    const size_t at = skipProperties(offset(map.place));
    return at < text.size() && text[at] == '{';
  }

  // A tag stays. Where there is no value, it goes straight after the colon.
  size_t valueBegin(const YamlPair& pair) const {
    if (!pair.value.isNull()) return skipProperties(offset(pair.value.place));
    const size_t colon = text.find(':', keyEnd(pair));
    return colon == std::string::npos ? text.size() : colon + 1;
  }

  size_t keyEnd(const YamlPair& pair) const {
    const size_t at = offset(pair.place);
    return at < text.size() && (text[at] == '"' || text[at] == '\'') ? quotedEnd(at) : at;
  }

  size_t valueEnd(const YamlPair& pair, size_t begin) const {
    if (pair.value.isNull() || begin >= text.size()) return begin;
    switch (pair.value.style) {
      case YamlNode::Style::quoted: return quotedEnd(begin);
      case YamlNode::Style::block:
      case YamlNode::Style::folded: return blockEnd(begin, size_t(pair.place.column - 1));
      case YamlNode::Style::plain: break;
    }
    return plainEnd(begin);
  }

  size_t quotedEnd(size_t at) const {
    const char quote = text[at++];
    for (; at < text.size(); ++at) {
      if (text[at] == '\\' && quote == '"') {
        ++at;
      } else if (text[at] == quote) {
        if (quote == '"' || at + 1 == text.size() || text[at + 1] != quote) return at + 1;
        ++at;
      }
    }
    return text.size();
  }

  size_t lineEnd(size_t at) const {
    const size_t end = std::min(text.find('\n', at), text.size());
    return end > at && text[end - 1] == '\r' ? end - 1 : end;
  }

  // Up to the end of the last line that is indented further than the key; where the head says to keep them, with the
  // empty lines after it.
  size_t blockEnd(size_t begin, size_t keyIndent) const {
    size_t end = lineEnd(begin);
    const bool keepsEmptyLines = text.find('+', begin) < std::min(end, text.find_first_of(" #", begin));
    for (size_t at = text.find('\n', begin); at != std::string::npos; at = text.find('\n', at)) {
      const size_t first = text.find_first_not_of(" \r", ++at);
      if (first == std::string::npos) break;
      if (text[first] == '\n') {
        if (keepsEmptyLines) end = lineEnd(at);
        continue;
      }
      if (first - at <= keyIndent) break;
      end = lineEnd(at);
    }
    return end;
  }

  size_t plainEnd(size_t begin) const {
    size_t end = lineEnd(begin);
    if (inFlow) end = std::min(end, text.find_first_of(",]}", begin));
    end = std::min(end, text.find(" #", begin));
    while (end > begin && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
    return end;
  }

  std::string addedInFlow(const std::string& key, const std::string& value) const {
    const std::string pair = yamlOnOneLine(key) + ": " + yamlOnOneLine(value);
    const size_t open = skipProperties(offset(map.place)) + 1;
    if (map.map.empty()) return replaced(open, open, pair);
    const size_t at = offset(map.map.front().place);
    const YamlPair& first = map.map.front();
    if (!first.value.isScalar()) return replaced(at, at, pair + ", ");
    const size_t end = valueEnd(first, valueBegin(first));
    return replaced(end, end, ", " + pair);
  }

  // After the first lines that hold a pair each, or before what comes first.
  std::string addedAsLine(const std::string& key, const std::string& value) const {
    const int indent = map.map.front().place.column - 1;
    const std::string margin(size_t(indent), ' '), newLine = text.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    const std::string pair = yamlOnOneLine(key) + ": " + scalarFor(value, indent);
    const YamlPair* last = nullptr;
    for (const YamlPair& p : map.map) {
      const bool isOneLine = p.value.isScalar() && p.value.style != YamlNode::Style::block &&
                             p.value.style != YamlNode::Style::folded && p.value.place.line == p.place.line;
      if (!isOneLine) break;
      last = &p;
    }
    if (!last) {
      const size_t at = offset(map.map.front().place);
      return replaced(at, at, pair + newLine + margin);
    }
    const size_t end = lineEnd(valueEnd(*last, valueBegin(*last)));
    return replaced(end, end, newLine + margin + pair);
  }

  // With the comma before it, or that after it for the first.
  std::string withoutInFlow(const YamlPair& pair, size_t begin, size_t end) const {
    if (&pair == &map.map.front()) {
      const size_t comma = std::min(text.find(',', end), text.size() - 1);
      return replaced(begin, std::min(text.find_first_not_of(' ', comma + 1), text.size()), "");
    }
    const size_t comma = text.rfind(',', begin);
    return replaced(comma == std::string::npos ? begin : comma, end, "");
  }

  // The first of a map in a list stands after the dash, where the next one comes, unless comments lie between. The
  // last, where it doesn't begin its line, as after a question mark, stays: it can't go by itself.
  std::string withoutLines(const YamlPair& pair, size_t begin, size_t end) const {
    const size_t lineBegin = begin == 0 ? 0 : text.rfind('\n', begin - 1) + 1;
    const size_t afterLine = std::min(text.find('\n', end), text.size() - 1) + 1;
    if (text.find_first_not_of(' ', lineBegin) == begin) return replaced(lineBegin, afterLine, "");
    if (&pair == &map.map.back()) return text;
    const size_t next = offset((&pair + 1)->place);
    const bool hasComments = text.find('#', afterLine) < next;
    return replaced(begin, hasComments ? lineEnd(end) : next, "");
  }

  const std::string& text;
  const YamlNode& map;
  const bool inFlow;
};

// What an edit has made, or a KitError if it says anything but what it should.
std::string checked(const std::string& file, const std::string& edited, const YamlNode& expected,
                    const YamlPlace& place, const std::string& key) {
  try {
    if (saysTheSame(parseYaml(file, edited), expected)) return edited;
  } catch (const KitError&) {
  }
  throw KitError(file, place.line, "'" + key + "' can't be changed by itself here; edit the file");
}

const YamlNode& mapAt(const std::string& file, const YamlNode& top, const YamlPlace& place) {
  if (const YamlNode* map = findMap(top, place)) return *map;
  throw KitError(file, place.line, "the source has changed: there is no map here");
}

}  // namespace

std::string withYamlValue(const std::string& file, const std::string& source, const YamlPlace& place,
                          const std::string& key, const std::string& value) {
  YamlNode expected = parseYaml(file, source);
  const std::string edited = Editor(source, mapAt(file, expected, place)).with(key, value);
  forEachCopy(expected, place, [&](YamlNode& map) { set(map, key, value); });
  return checked(file, edited, expected, place, key);
}

std::string withoutYamlKey(const std::string& file, const std::string& source, const YamlPlace& place,
                           const std::string& key) {
  YamlNode expected = parseYaml(file, source);
  const YamlNode& map = mapAt(file, expected, place);
  const auto isIt = [&](const YamlPair& pair) { return pair.key == key; };
  const auto pair = std::find_if(map.map.begin(), map.map.end(), isIt);
  if (pair == map.map.end()) throw KitError(file, place.line, "there is no '" + key + "' here");
  const bool isScalar = pair->value.isScalar() || pair->value.isNull();
  const std::string edited = isScalar && map.map.size() > 1 ? Editor(source, map).without(*pair) : source;
  forEachCopy(expected, place, [&](YamlNode& copy) { std::erase_if(copy.map, isIt); });
  return checked(file, edited, expected, place, key);
}
