#include "kit/yaml/looseyaml.h"

#include <algorithm>

#include "kit/yaml/loosereader.h"

const LoosePair* LooseNode::find(std::string_view key) const {
  for (const LoosePair& pair : map)
    if (pair.key == key) return &pair;
  return nullptr;
}

std::string LooseNode::textOf(std::string_view key) const {
  const LoosePair* pair = find(key);
  return pair && pair->value.isScalar() ? pair->value.text : "";
}

size_t LooseNode::sourceOf(size_t textOffset) const {
  const auto after = std::upper_bound(segments.begin(), segments.end(), textOffset,
                                      [](size_t offset, const LooseSegment& segment) { return offset < segment.at; });
  if (after == segments.begin()) return begin;
  const LooseSegment& segment = *std::prev(after);
  return std::min(segment.source + (textOffset - segment.at), end);
}

size_t LooseNode::textOffsetOf(size_t source) const {
  const auto after =
      std::upper_bound(segments.begin(), segments.end(), source,
                       [](size_t offset, const LooseSegment& segment) { return offset < segment.source; });
  if (after == segments.begin()) return 0;
  const size_t most = after == segments.end() ? text.size() : after->at;
  return std::min(std::prev(after)->at + (source - std::prev(after)->source), most);
}

LooseNode parseLooseYaml(std::string_view text) { return LooseReader(text).read(); }

// ---- lines

LooseReader::LooseReader(std::string_view t) : text(t) {
  for (size_t begin = text.starts_with("\xEF\xBB\xBF") ? 3 : 0; begin <= text.size();) {
    const size_t newLine = std::min(text.find('\n', begin), text.size());
    const size_t end = newLine > begin && text[newLine - 1] == '\r' ? newLine - 1 : newLine;
    size_t first = begin;
    while (first < end && text[first] == ' ') ++first;
    const size_t content = afterBlanks(first, end);
    lines.push_back({begin, end, first - begin, content == end || text[content] == '#'});
    begin = newLine + 1;
  }
}

void LooseReader::goTo(size_t n) {
  line = n;
  while (line < lines.size() && lines[line].isBlank) ++line;
  at = isAtEnd() ? text.size() : lines[line].begin + lines[line].indent;
}

size_t LooseReader::afterBlanks(size_t from, size_t end) const {
  while (from < end && (text[from] == ' ' || text[from] == '\t')) ++from;
  return from;
}

void LooseReader::skipBlanks() { at = afterBlanks(at, lineEnd()); }

bool LooseReader::isLineOver() const {
  const size_t content = afterBlanks(at, lineEnd());
  if (content == lineEnd()) return true;
  return text[content] == '#' &&
         (content == lines[line].begin || text[content - 1] == ' ' || text[content - 1] == '\t');
}

LooseNode LooseReader::read() {
  goTo(0);
  while (!isAtEnd() && (isNext('%') || rest(lineEnd()).starts_with("---"))) nextLine();
  LooseNode root;
  if (isAtEnd()) return root;
  root = blockNode(-1);
  // A document that ends too early for its lines, as after a list, has keys for what is left.
  while (!isAtEnd()) {
    LoosePair stray = strayLine();
    if (root.isMap()) root.map.push_back(std::move(stray));
  }
  return root;
}

// ---- blocks

bool LooseReader::isDash() const { return isNext('-') && (at + 1 >= lineEnd() || text[at + 1] == ' '); }

size_t LooseReader::keyEnd() const {
  const auto isColon = [this](size_t i) {
    return text[i] == ':' && (i + 1 >= lineEnd() || text[i + 1] == ' ' || text[i + 1] == '\t');
  };
  const char first = next();
  if (first == '"' || first == '\'') {
    size_t i = at + 1;
    while (i < lineEnd() && text[i] != first) i += first == '"' && text[i] == '\\' ? 2 : 1;
    size_t colon = ++i;
    while (colon < lineEnd() && text[colon] == ' ') ++colon;
    return colon < lineEnd() && isColon(colon) ? i : std::string_view::npos;
  }
  if (first == '\0' || std::string_view("{[|>#&*!%@`").find(first) != std::string_view::npos)
    return std::string_view::npos;
  for (size_t i = at; i < lineEnd(); ++i) {
    if (isColon(i)) return i == at ? at : text.find_last_not_of(' ', i - 1) + 1;
    if (text[i] == '#' && i > at && text[i - 1] == ' ') break;
  }
  return std::string_view::npos;
}

// What begins here: a map or a list in lines of their own, or any value in the line.
LooseNode LooseReader::blockNode(long around) {
  LooseNode node;
  node.begin = at;
  if (depth < kMaxDepth && (isDash() || keyEnd() != std::string_view::npos)) {
    const size_t indent = column();
    ++depth;
    isDash() ? readList(node, indent) : readMap(node, indent);
    --depth;
    return node;
  }
  node = valueInLine(around);
  if (!isAtEnd() && node.kind == YamlNode::Kind::null && node.begin == at) nextLine();  // so that there is progress
  return node;
}

void LooseReader::readMap(LooseNode& node, size_t indent) {
  node.kind = YamlNode::Kind::map;
  while (!isAtEnd()) {
    if (column() < indent) break;
    if (column() == indent && isDash()) break;  // of the list around
    node.map.push_back(keyEnd() == std::string_view::npos ? strayLine() : pair(indent));
    node.end = std::max(node.map.back().end, node.map.back().value.end);
  }
}

LoosePair LooseReader::strayLine() {
  LoosePair result;
  result.hasColon = false;
  result.begin = at;
  result.end = std::max(at, plainEnd(false));
  result.key = rest(result.end);
  result.value.begin = result.value.end = result.end;
  nextLine();
  return result;
}

LoosePair LooseReader::pair(size_t indent) {
  LoosePair result;
  result.begin = at;
  result.end = keyEnd();
  if (isNext('"') || isNext('\'')) {
    result.key = quoted(long(indent)).text;
  } else {
    result.key = rest(result.end);
  }
  at = text.find(':', result.end) + 1;
  LooseNode properties;
  skipBlanks();
  readProperties(properties);
  result.value = isLineOver() ? below(long(indent), true) : valueInLine(long(indent));
  result.value.tag = std::move(properties.tag);
  return result;
}

// The value on the lines after this one; a null if they are no deeper.
LooseNode LooseReader::below(long around, bool takesList) {
  LooseNode null;
  null.begin = null.end = at;
  nextLine();
  if (isAtEnd()) return null;
  const long indent = long(column());
  if (indent > around || (takesList && indent == around && isDash())) return blockNode(around);
  return null;
}

void LooseReader::readProperties(LooseNode& node) {
  while (isNext('!') || isNext('&')) {
    const size_t end = std::min({text.find(' ', at), text.find('\t', at), lineEnd()});
    if (isNext('!')) node.tag = rest(end);
    if (node.tag == "!") node.tag.clear();
    at = end;
    skipBlanks();
  }
}

void LooseReader::readList(LooseNode& node, size_t indent) {
  node.kind = YamlNode::Kind::list;
  while (!isAtEnd() && column() >= indent) {
    if (column() > indent || !isDash()) {
      if (column() == indent) break;  // of the map around, which may be as far in
      nextLine();
      continue;
    }
    ++at;
    node.end = at;
    skipBlanks();
    LooseNode properties;
    readProperties(properties);
    LooseNode item = isLineOver() ? below(long(indent), false) : blockNode(long(indent));
    item.tag = std::move(properties.tag);
    node.end = std::max(node.end, item.end);
    node.list.push_back(std::move(item));
  }
}

// A scalar or a flow that begins here. Stands on the next line then.
LooseNode LooseReader::valueInLine(long around) {
  LooseNode properties;
  readProperties(properties);
  LooseNode node;
  if (isNext('|') || isNext('>')) {
    node = blockScalar(around);
  } else if (isNext('"') || isNext('\'')) {
    node = quoted(around);
    nextLine();
  } else if ((isNext('{') || isNext('[')) && depth < kMaxDepth) {
    node = flowNode(around, false);
    if (!isAtEnd()) nextLine();
  } else {
    node = plain(around, false);
  }
  if (!properties.tag.empty()) node.tag = std::move(properties.tag);
  return node;
}
