#include "kit/expand/expression.h"

#include <optional>
#include <utility>

#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

constexpr int kMaxBrackets = 100;       // of an expression, in one another
constexpr size_t kMaxText = 1'000'000;  // bytes

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

YamlNode scalarAt(const YamlNode& place, std::string text, YamlNode::Style style) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.style = style;
  node.text = std::move(text);
  node.place = place.place;
  node.textLine = place.textLine;
  return node;
}

// A whole number, if it is written as one; a quoted one is a text.
std::optional<int64_t> numberIn(const YamlNode& node) {
  if (!node.isScalar() || node.style != YamlNode::Style::plain || node.tag == "!!str") return std::nullopt;
  return parseInteger(node.text);
}

// Reads one expression from after its "$(" to its bracket.
class ExpressionReader {
 public:
  ExpressionReader(const YamlNode& s, size_t begin, const Scope& n) : scalar(s), names(n), at(begin) {}

  YamlNode read() {
    YamlNode result = sum();
    expect(')', "expecting ')' or an operator");
    return result;
  }

  size_t end() const { return at; }  // after the bracket
  // Whether a value comes from elsewhere as it is.
  bool isOneName() const { return hasName && !isComputed; }

 private:
  [[noreturn]] void fail(const std::string& text) const { throw SourceFault{scalar.place, text}; }

  char next() {
    while (at < scalar.text.size() && (scalar.text[at] == ' ' || scalar.text[at] == '\n')) ++at;
    return at < scalar.text.size() ? scalar.text[at] : '\0';
  }

  void expect(char c, const char* problem) {
    if (next() != c)
      fail(std::string(problem) + (at < scalar.text.size() ? ", found '" + rest() + "'" : ", found the end"));
    ++at;
  }

  std::string rest() const { return scalar.text.substr(at, 20); }

  YamlNode sum() {
    YamlNode left = product();
    for (char c = next(); c == '+' || c == '-'; c = next()) {
      ++at;
      const YamlNode right = product();
      left = c == '+' && !(numberIn(left) && numberIn(right)) ? joined(left, right) : computed(left, c, right);
    }
    return left;
  }

  YamlNode product() {
    YamlNode left = factor();
    for (char c = next(); c == '*' || c == '/' || c == '%'; c = next()) {
      ++at;
      left = computed(left, c, factor());
    }
    return left;
  }

  YamlNode factor() {
    if (++brackets > kMaxBrackets) fail("an expression is nested too deep");
    YamlNode result;
    const char c = next();
    if (c == '-') {
      ++at;
      result = computed(scalarAt(scalar, "0", YamlNode::Style::plain), '-', factor());
    } else if (c == '(') {
      ++at;
      result = sum();
      expect(')', "expecting ')' or an operator");
    } else if (c == '"' || c == '\'') {
      result = scalarAt(scalar, quotedText(), YamlNode::Style::quoted);
    } else if (isDigit(c)) {
      result = number();
    } else if (isLetter(c)) {
      result = named();
    } else {
      fail("expecting a number, a name, a text in quotes or a bracket" + (c ? ", found '" + rest() + "'" : ""));
    }
    --brackets;
    return result;
  }

  YamlNode number() {
    const std::string text = word();
    if (!parseInteger(text)) fail("'" + text + "' is no whole number of 32 bits");
    return scalarAt(scalar, text, YamlNode::Style::plain);
  }

  // Letters, digits and _.
  std::string word() {
    const size_t begin = at;
    while (at < scalar.text.size() && (isLetter(scalar.text[at]) || isDigit(scalar.text[at]))) ++at;
    return scalar.text.substr(begin, at - begin);
  }

  std::string quotedText() {
    const size_t end = scalar.text.find(scalar.text[at], at + 1);
    if (end == std::string::npos) fail("a text in an expression has no end: " + rest());
    const std::string text = scalar.text.substr(at + 1, end - at - 1);
    at = end + 1;
    return text;
  }

  // A name, and what follows it after dots: keys of a map, or numbers of a list's entries, from 0.
  YamlNode named() {
    hasName = true;
    std::string path = word();
    const YamlNode* value = names.find(path);
    if (!value) fail("there is no '" + path + "'" + suggestion(path, names.names()));
    while (at < scalar.text.size() && scalar.text[at] == '.') {
      ++at;
      const bool isQuoted = at < scalar.text.size() && (scalar.text[at] == '\'' || scalar.text[at] == '"');
      const std::string key = isQuoted ? quotedText() : word();
      value = &part(*value, path, key);
      path += "." + key;
    }
    return *value;
  }

  const YamlNode& part(const YamlNode& whole, const std::string& path, const std::string& key) const {
    if (whole.isMap()) {
      if (const YamlNode* value = whole.find(key)) return *value;
      std::vector<std::string> keys;
      for (const YamlPair& pair : whole.map) keys.push_back(pair.key);
      fail("there is no '" + key + "' in " + path + (keys.empty() ? "" : ", which has " + listOfWords(keys)) +
           suggestion(key, keys));
    }
    if (!whole.isList()) fail(path + " is " + shownNode(whole) + " and has no parts");
    const auto index = parseInteger(key);
    if (!index || *index < 0 || size_t(*index) >= whole.list.size())
      fail("there is no entry '" + key + "' in " + path + ", which has " +
           (whole.list.empty() ? "none" : "0 to " + std::to_string(whole.list.size() - 1)));
    return whole.list[size_t(*index)];
  }

  int64_t numberOf(const YamlNode& node) const {
    const auto n = numberIn(node);
    if (!n) fail(shownNode(node) + " is no whole number to compute with");
    return *n;
  }

  YamlNode computed(const YamlNode& left, char sign, const YamlNode& right) {
    isComputed = true;
    const int64_t a = numberOf(left), b = numberOf(right);
    if ((sign == '/' || sign == '%') && b == 0) fail("a division by 0");
    int64_t result = 0;
    switch (sign) {
      case '+': result = a + b; break;
      case '-': result = a - b; break;
      case '*':
        if (__builtin_mul_overflow(a, b, &result)) result = INT64_MAX;
        break;
      case '/': result = a / b; break;
      case '%': result = a % b; break;
    }
    if (result > UINT32_MAX || result < -int64_t(UINT32_MAX)) fail("the result doesn't fit 32 bits");
    return scalarAt(scalar, std::to_string(result), YamlNode::Style::plain);
  }

  YamlNode joined(const YamlNode& left, const YamlNode& right) {
    isComputed = true;
    for (const YamlNode* node : {&left, &right})
      if (!node->isScalar()) fail("can't join " + shownNode(*node) + " to a text");
    if (left.text.size() + right.text.size() > kMaxText) fail("the text is too long");
    return scalarAt(scalar, left.text + right.text, YamlNode::Style::quoted);
  }

  const YamlNode& scalar;
  const Scope& names;
  size_t at;
  int brackets = 0;
  bool hasName = false, isComputed = false;
};

// A chain of uses with one more at its end.
std::shared_ptr<const YamlUse> withUse(const std::shared_ptr<const YamlUse>& uses, const YamlUse& last) {
  if (!uses) return std::make_shared<YamlUse>(last);
  YamlUse first = *uses;
  first.at.use = withUse(first.at.use, last);
  return std::make_shared<YamlUse>(std::move(first));
}

// A value keeps the place where it was written, and says where it was used.
YamlNode usedAt(YamlNode value, const YamlNode& scalar) {
  value.place.use = withUse(value.place.use, {scalar.text, scalar.place});
  return value;
}

}  // namespace

bool hasExpression(std::string_view text) { return text.find("$(") != std::string_view::npos; }

bool isExpressionName(std::string_view text) {
  if (text.empty() || !isLetter(text[0])) return false;
  for (const char c : text)
    if (!isLetter(c) && !isDigit(c)) return false;
  return true;
}

YamlNode evaluateScalar(const YamlNode& scalar, const Scope& scope) {
  YamlNode result = scalar;
  result.text.clear();
  result.textLines.clear();
  const std::string_view text = scalar.text;
  const std::vector<YamlTextLine> lines = scalar.linesOfText();
  const bool hasLines = lines.size() > 1 || scalar.style == YamlNode::Style::block;
  size_t line = 0;
  for (size_t at = 0; at < text.size();) {
    for (; hasLines && line < lines.size() && lines[line].at <= at; ++line)
      result.textLines.push_back({result.text.size(), lines[line].line});
    if (text.substr(at).starts_with("$$(")) {
      result.text += "$(";
      at += 3;
      continue;
    }
    if (!text.substr(at).starts_with("$(")) {
      result.text += text[at++];
      continue;
    }
    ExpressionReader reader(scalar, at + 2, scope);
    YamlNode value = reader.read();
    if (at == 0 && reader.end() == text.size()) {
      if (reader.isOneName()) value = usedAt(std::move(value), scalar);
      if (!scalar.tag.empty()) value.tag = scalar.tag;
      return value;
    }
    if (!value.isScalar())
      throw SourceFault{scalar.place, "a text can have a text or a number in it, but not " + shownNode(value)};
    result.text += value.text;
    if (result.text.size() > kMaxText) throw SourceFault{scalar.place, "the text is too long"};
    at = reader.end();
  }
  return result;
}

std::string escapeExpressions(std::string_view text) {
  std::string out;
  for (size_t at = 0; at < text.size(); ++at) {
    if (text.substr(at).starts_with("$(")) out += '$';
    out += text[at];
  }
  return out;
}
