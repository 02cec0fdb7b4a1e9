// Scalars: plain ones, quoted ones, and those after a bar or a ">".
#include <algorithm>
#include <charconv>
#include <cstdint>

#include "kit/yaml/loosereader.h"

namespace {

void appendUtf8(std::string& out, uint32_t letter) {
  if (letter < 0x80) {
    out += char(letter);
  } else if (letter < 0x800) {
    out += {char(0xC0 | letter >> 6), char(0x80 | (letter & 63))};
  } else if (letter < 0x10000) {
    out += {char(0xE0 | letter >> 12), char(0x80 | (letter >> 6 & 63)), char(0x80 | (letter & 63))};
  } else {
    out += {char(0xF0 | (letter >> 18 & 7)), char(0x80 | (letter >> 12 & 63)), char(0x80 | (letter >> 6 & 63)),
            char(0x80 | (letter & 63))};
  }
}

uint32_t letterOfEscape(char c) {
  switch (c) {
    case '0': return 0;
    case 'a': return 7;
    case 'b': return 8;
    case 't': return 9;
    case 'n': return 10;
    case 'v': return 11;
    case 'f': return 12;
    case 'r': return 13;
    case 'e': return 27;
    case 'N': return 0x85;
    case '_': return 0xA0;
    case 'L': return 0x2028;
    case 'P': return 0x2029;
    default: return uint8_t(c);
  }
}

}  // namespace

void LooseReader::append(LooseNode& node, std::string_view part, size_t source) {
  if (part.empty()) return;
  const bool follows =
      !node.segments.empty() && node.segments.back().source + (node.text.size() - node.segments.back().at) == source;
  if (!follows) node.segments.push_back({node.text.size(), source});
  node.text += part;
}

size_t LooseReader::plainEnd(bool isInFlow) const {
  size_t end = at;
  for (; end < lineEnd(); ++end) {
    const char c = text[end], after = end + 1 < lineEnd() ? text[end + 1] : ' ';
    if (c == '#' && end > at && (text[end - 1] == ' ' || text[end - 1] == '\t')) break;
    if (!isInFlow) continue;
    if (std::string_view(",[]{}").find(c) != std::string_view::npos) break;
    if (c == ':' && std::string_view(" \t,[]{}").find(after) != std::string_view::npos) break;
  }
  while (end > at && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
  return end;
}

LooseNode LooseReader::plain(long around, bool isInFlow) {
  LooseNode node;
  node.begin = at;
  while (true) {
    const size_t end = plainEnd(isInFlow);
    append(node, rest(end), at);
    at = node.end = end;
    size_t next = line + 1;
    skipBlanks();
    if (at < lineEnd()) {  // a comment, or what belongs to the flow
      if (!isInFlow) nextLine();
      break;
    }
    while (next < lines.size() && lines[next].begin + lines[next].indent >= lines[next].end) ++next;
    const size_t before = line, place = at;
    if (next < lines.size() && !lines[next].isBlank && long(lines[next].indent) > around) goTo(next);
    const bool goesOn =
        line != before && (isInFlow ? plainEnd(true) > at : keyEnd() == std::string_view::npos && !isDash());
    if (!goesOn) {
      line = before;
      at = place;
      if (!isInFlow) nextLine();
      break;
    }
    const size_t blank = line - before - 1;
    append(node, blank == 0 ? " " : std::string(blank, '\n'), place);
  }
  node.kind =
      node.text.empty() || node.text == "~" || node.text == "null" ? YamlNode::Kind::null : YamlNode::Kind::scalar;
  return node;
}

// One escape that begins at a backslash; returns its end.
size_t LooseReader::escape(LooseNode& node) {
  const size_t begin = at;
  const char kind = at + 1 < lineEnd() ? text[at + 1] : '\0';
  const size_t digits = kind == 'x' ? 2 : kind == 'u' ? 4 : kind == 'U' ? 8 : 0;
  size_t end = std::min(begin + 2 + digits, lineEnd());
  uint32_t letter = 0;
  if (digits > 0)
    std::from_chars(text.data() + std::min(begin + 2, end), text.data() + end, letter, 16);
  else
    letter = letterOfEscape(kind);
  std::string bytes;
  appendUtf8(bytes, letter);
  node.segments.push_back({node.text.size(), begin});
  node.text += bytes;
  return end;
}

// A line end inside of a quoted text: blanks around it and itself become one space, and blank lines line ends. False if
// the text breaks off.
bool LooseReader::foldInto(LooseNode& node, long around) {
  const bool isEscaped = !node.text.empty() && at > 0 && text[at - 1] == '\\' && text[node.begin] == '"';
  size_t next = line + 1, blank = 0;
  while (next < lines.size() && lines[next].begin + lines[next].indent >= lines[next].end) ++next, ++blank;
  if (next >= lines.size() || long(lines[next].indent) <= around) return false;
  const size_t place = at;
  line = next;
  at = lines[line].begin + lines[line].indent;
  skipBlanks();
  if (!isEscaped) append(node, blank == 0 ? " " : std::string(blank, '\n'), place);
  return true;
}

LooseNode LooseReader::quoted(long around) {
  LooseNode node;
  node.kind = YamlNode::Kind::scalar;
  node.style = YamlNode::Style::quoted;
  node.begin = at;
  const size_t firstLine = line;
  const char quote = text[at++];
  while (true) {
    if (at >= lineEnd()) {
      size_t kept = node.text.size();
      while (kept > 0 && (node.text[kept - 1] == ' ' || node.text[kept - 1] == '\t') && line == firstLine) --kept;
      node.text.resize(kept);
      if (foldInto(node, around)) continue;
      node.isClosed = false;
      break;
    }
    if (isNext(quote)) {
      if (quote == '"' || at + 1 >= lineEnd() || text[at + 1] != '\'') {
        ++at;
        break;
      }
      node.segments.push_back({node.text.size(), at});
      node.text += '\'';
      at += 2;
    } else if (quote == '"' && isNext('\\')) {
      if (at + 1 >= lineEnd()) {
        ++at;
        continue;
      }
      at = escape(node);
    } else {
      append(node, text.substr(at, 1), at);
      ++at;
    }
  }
  node.end = std::min(at, lineEnd());
  return node;
}

LooseNode LooseReader::blockScalar(long around) {
  LooseNode node;
  node.kind = YamlNode::Kind::scalar;
  node.style = isNext('|') ? YamlNode::Style::block : YamlNode::Style::folded;
  node.begin = at;
  char chomp = ' ';
  size_t indent = 0;
  for (++at; at < lineEnd() && text[at] != ' ' && text[at] != '#'; ++at) {
    if (text[at] == '-' || text[at] == '+') chomp = text[at];
    if (text[at] >= '1' && text[at] <= '9') indent = size_t(std::max(around, 0L)) + size_t(text[at] - '0');
  }
  node.end = at;
  const auto isEmpty = [this](size_t n) { return lines[n].begin + lines[n].indent >= lines[n].end; };
  size_t n = line + 1;
  if (indent == 0) {
    while (n < lines.size() && isEmpty(n)) ++n;
    if (n < lines.size() && long(lines[n].indent) > around) indent = lines[n].indent;
    n = line + 1;
  }
  size_t breaks = 0;  // line ends that have not been written yet
  bool isFirst = true, wasDeep = false;
  for (; indent > 0 && n < lines.size(); ++n) {
    if (isEmpty(n) && lines[n].indent <= indent) {
      if (n + 1 < lines.size()) ++breaks;
      continue;
    }
    if (lines[n].indent < indent) break;
    const size_t begin = lines[n].begin + indent;
    const std::string_view content = text.substr(begin, lines[n].end - begin);
    const bool isDeep = content.starts_with(' ') || content.starts_with('\t');
    const bool folds = node.style == YamlNode::Style::folded && !isFirst && !isDeep && !wasDeep;
    if (folds && breaks == 1)
      append(node, " ", node.end);
    else
      append(node, std::string(folds ? breaks - 1 : breaks, '\n'), node.end);
    append(node, content, begin);
    node.end = lines[n].end;
    breaks = n + 1 < lines.size() ? 1 : 0;
    isFirst = false;
    wasDeep = isDeep;
  }
  const size_t kept = chomp == '+' ? breaks : chomp == '-' || isFirst ? 0 : std::min<size_t>(breaks, 1);
  append(node, std::string(kept, '\n'), node.end);
  goTo(n);
  return node;
}
