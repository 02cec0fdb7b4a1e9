#include "kit/yaml/foldedlines.h"

#include <algorithm>

namespace {

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Walks along the document and the text at once. Folding changes spaces and ends of lines alone, so the other
// characters are the same in both, but for what quotes escape.
class Walk {
 public:
  Walk(const YamlNode& s, std::string_view d, size_t a, int l) : text(s.text), document(d), at(a), line(l) {
    if (s.style == YamlNode::Style::folded) {
      at = std::min(document.find('\n', at), document.size());
    } else if (s.style == YamlNode::Style::quoted) {
      quote = document[at++];
    }
  }

  std::vector<YamlTextLine> lines() {
    std::vector<YamlTextLine> all;
    for (size_t i = 0; i < text.size();) {
      if (isSpace(text[i])) {
        ++i;
        continue;
      }
      skipSpaces();
      const size_t length = same(i);
      if (length == 0) break;
      if (all.empty() || all.back().line != line) all.push_back({i, line});
      i += length;
    }
    return all;
  }

 private:
  char here(size_t ahead = 0) const { return at + ahead < document.size() ? document[at + ahead] : '\0'; }
  bool isEscape() const { return quote == '"' && here() == '\\'; }

  // Also those that are escaped, the end of a line among them.
  void skipSpaces() {
    for (;; ++at) {
      if (isEscape() && (isSpace(here(1)) || here(1) == 'n' || here(1) == 't' || here(1) == 'r'))
        ++at;
      else if (!isSpace(here()))
        return;
      if (here() == '\n') ++line;
    }
  }

  // Passes over what stands for the character at `i`, and returns its length in the text; 0 if it is another.
  size_t same(size_t i) {
    if (isEscape()) {
      const char kind = here(1);
      at += kind == 'x' ? 4 : kind == 'u' ? 6 : kind == 'U' ? 10 : 2;
      size_t length = 1;
      while (i + length < text.size() && (uint8_t(text[i + length]) & 0xC0) == 0x80) ++length;
      return length;
    }
    if (here() != text[i]) return 0;
    at += quote == '\'' && here() == '\'' ? 2 : 1;
    return 1;
  }

  const std::string& text;
  std::string_view document;
  size_t at;
  int line;
  char quote = '\0';
};

}  // namespace

std::vector<YamlTextLine> foldedLines(const YamlNode& scalar, std::string_view document, size_t at, int line) {
  const bool isQuoted = scalar.style == YamlNode::Style::quoted;
  if (at >= document.size() || document.substr(at + isQuoted, scalar.text.size()) == scalar.text) return {};
  std::vector<YamlTextLine> lines = Walk(scalar, document, at, line).lines();
  if (lines.size() == 1 && lines.front().line == scalar.textLine) lines.clear();
  return lines;
}
