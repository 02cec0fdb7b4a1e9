// Lists in brackets and maps in braces.
#include <algorithm>

#include "kit/yaml/loosereader.h"

// To what comes next, on this line or another. A line no deeper than what the flow lies in ends it, unless that begins
// with a bracket: it was forgotten.
bool LooseReader::skipInFlow(long around) {
  while (!isAtEnd()) {
    skipBlanks();
    if (!isLineOver()) return true;
    const size_t before = line, place = at;
    nextLine();
    if (isAtEnd() || (long(column()) <= around && !isNext('}') && !isNext(']'))) {
      line = before;
      at = std::min(place, lines[before].end);
      return false;
    }
  }
  return false;
}

LooseNode LooseReader::flowNode(long around, bool isInMap) {
  LooseNode node, properties;
  readProperties(properties);
  if ((isNext('{') || isNext('[')) && depth < kMaxDepth) {
    node.begin = at;
    ++depth;
    readFlow(node, around);
    --depth;
    node.end = at;
  } else if (isNext('"') || isNext('\'')) {
    node = quoted(around);
  } else if (!isInMap || (!isNext(',') && !isNext('}') && !isNext(']'))) {
    node = plain(around, true);
  } else {
    node.begin = node.end = at;
  }
  node.tag = std::move(properties.tag);
  return node;
}

void LooseReader::readFlow(LooseNode& node, long around) {
  const char close = isNext('{') ? '}' : ']';
  node.kind = close == '}' ? YamlNode::Kind::map : YamlNode::Kind::list;
  node.isFlow = true;
  ++at;
  while (skipInFlow(around)) {
    if (isNext('}') || isNext(']')) {
      node.isClosed = isNext(close);
      if (node.isClosed) ++at;
      return;
    }
    if (isNext(',')) {
      ++at;
      continue;
    }
    const size_t before = at;
    readFlowEntry(node, around);
    if (at == before && !isAtEnd()) ++at;  // so that there is progress
  }
  node.isClosed = false;
}

void LooseReader::readFlowEntry(LooseNode& node, long around) {
  LooseNode first = flowNode(around, false);
  const bool isOpen = skipInFlow(around);
  const bool hasColon = isOpen && isNext(':') && first.isScalar();
  if (!hasColon && node.isList()) {
    node.list.push_back(std::move(first));
    return;
  }
  LoosePair pair;
  pair.key = first.isScalar() ? std::move(first.text) : std::string(text.substr(first.begin, first.end - first.begin));
  pair.begin = first.begin;
  pair.end = first.end;
  pair.hasColon = hasColon;
  pair.value.begin = pair.value.end = first.end;
  if (hasColon) {
    ++at;
    pair.value.begin = pair.value.end = at;
    if (skipInFlow(around)) pair.value = flowNode(around, true);
  }
  if (node.isMap()) {
    node.map.push_back(std::move(pair));
    return;
  }
  LooseNode alone;  // [key: value] has a map of one pair
  alone.kind = YamlNode::Kind::map;
  alone.isFlow = true;
  alone.begin = pair.begin;
  alone.end = std::max(pair.end, pair.value.end);
  alone.map.push_back(std::move(pair));
  node.list.push_back(std::move(alone));
}
