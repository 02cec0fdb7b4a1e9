#include "kit/language/boblexer.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t kTextLimit = 255;  // bytes of a name or a string

struct Keyword {
  std::string_view text;
  BobTokenKind kind;
};

constexpr Keyword kKeywords[] = {
    {"define", BobTokenKind::kDefine}, {"function", BobTokenKind::kFunction}, {"local", BobTokenKind::kLocal},
    {"if", BobTokenKind::kIf},         {"else", BobTokenKind::kElse},         {"while", BobTokenKind::kWhile},
    {"return", BobTokenKind::kReturn}, {"for", BobTokenKind::kFor},           {"break", BobTokenKind::kBreak},
    {"do", BobTokenKind::kDo},         {"continue", BobTokenKind::kContinue}, {"switch", BobTokenKind::kSwitch},
    {"case", BobTokenKind::kCase},     {"default", BobTokenKind::kDefault},   {"nil", BobTokenKind::kNil},
    {"super", BobTokenKind::kSuper},   {"new", BobTokenKind::kNew},           {"try", BobTokenKind::kTry},
    {"catch", BobTokenKind::kCatch},   {"finally", BobTokenKind::kFinally},   {"throw", BobTokenKind::kThrow},
};

// By kind, from kString. One ".." too many, as in the compiler's list: its messages call `catch` "try".
constexpr std::string_view kTokenNames[] = {
    "<string>", "<identifier>", "<integer>", "<float>", "function", "local",   "if",      "else", "while",  "return",
    "for",      "break",        "continue",  "do",      "switch",   "case",    "default", "nil",  "<=",     "==",
    "!=",       ">=",           "<<",        ">>",      "&&",       "||",      "++",      "--",   "+=",     "-=",
    "*=",       "/=",           "%=",        "&=",      "|=",       "^=",      "<<=",     ">>=",  "define", "super",
    "new",      "..",           "..",        "try",     "catch",    "finally",
};
static_assert(std::size(kTokenNames) == size_t(BobTokenKind::kThrow) - size_t(BobTokenKind::kString) + 1);

// Operators of several characters, each before those that it begins with.
constexpr Keyword kOperators[] = {
    {"<<=", BobTokenKind::kShiftLeftAssign},
    {">>=", BobTokenKind::kShiftRightAssign},
    {"<=", BobTokenKind::kLessEqual},
    {"<<", BobTokenKind::kShiftLeft},
    {">=", BobTokenKind::kGreaterEqual},
    {">>", BobTokenKind::kShiftRight},
    {"==", BobTokenKind::kEqual},
    {"!=", BobTokenKind::kNotEqual},
    {"&&", BobTokenKind::kAnd},
    {"&=", BobTokenKind::kAndAssign},
    {"||", BobTokenKind::kOr},
    {"|=", BobTokenKind::kOrAssign},
    {"^=", BobTokenKind::kXorAssign},
    {"++", BobTokenKind::kIncrement},
    {"+=", BobTokenKind::kAddAssign},
    {"--", BobTokenKind::kDecrement},
    {"-=", BobTokenKind::kSubtractAssign},
    {"*=", BobTokenKind::kMultiplyAssign},
    {"/=", BobTokenKind::kDivideAssign},
    {"..", BobTokenKind::kDotDot},
};

bool isSpace(int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(int c) { return c >= '0' && c <= '9'; }
bool isLetter(int c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isNameCharacter(int c) { return isLetter(c) || isDigit(c) || c == '_'; }

// The digit's value, or -1 if it is none in the radix.
int digitOf(int c, int radix) {
  const int value = isDigit(c)             ? c - '0'
                    : c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                           : 99;
  return value < radix ? value : -1;
}

class Lexer {
 public:
  Lexer(std::string_view s, bool lines) : source(s), closeStringsAtLines(lines) {}

  BobTokens run() {
    do {
      while (isSpace(get())) {
      }
      unget();
      begin = std::min(position, source.size());
      const BobTokenKind kind = scan();
      const size_t end = kind == BobTokenKind::kEnd ? begin : position - (lost == position ? 1 : 0);
      tokens.all.push_back({kind, uint32_t(begin), uint32_t(std::min(end, source.size())), value});
      lost = 0;
    } while (tokens.all.back().kind != BobTokenKind::kEnd);
    return std::move(tokens);
  }

 private:
  // Signed, so that the byte 0xFF is the same as the end of the input. The input has one line end more than the source.
  int get() {
    last = position < source.size()    ? static_cast<signed char>(source[position])
           : position == source.size() ? '\n'
                                       : -1;
    if (position <= source.size())
      ++position;
    else
      exhausted = true;
    return last;
  }

  // The character got last. A byte 0 can't be put back inside a token: it is lost.
  void unget() {
    if (exhausted)
      exhausted = false;
    else
      --position;
  }
  void putBack() {
    if (last == 0)
      lost = position;
    else
      unget();
  }

  void fail(const char* text) {
    const auto token = uint32_t(tokens.all.size());
    if (tokens.errors.empty() || tokens.errors.back().token != token) tokens.errors.push_back({token, text});
  }

  BobTokenKind scan() {
    value = 0;
    const int c = get();
    switch (c) {
      case 0:
      case -1: return BobTokenKind::kEnd;
      case '"': return string();
      case '\'': return character();
      case '/':
        if (source.substr(position, 1) == "/") return lineComment();
        if (source.substr(position, 1) == "*") return blockComment();
        break;
      case '.':
        if (get(), isDigit(last)) return fraction();
        putBack();
        break;
      default: break;
    }
    if (isDigit(c)) return number(c);
    if (isLetter(c) || c == '_') return identifier();
    return symbol(c);
  }

  BobTokenKind symbol(int c) {
    const std::string_view rest = source.substr(begin, 3);
    for (const Keyword& each : kOperators)
      if (rest.starts_with(each.text)) {
        position = begin + each.text.size();
        lost = 0;
        loseZeroAfter(each.kind);
        return each.kind;
      }
    position = begin + 1;
    lost = 0;
    loseZeroAfter(BobTokenKind(c & 0xFF));
    return BobTokenKind(c & 0xFF);
  }

  // The scanner looks at one character more where an operator could go on.
  void loseZeroAfter(BobTokenKind kind) {
    const bool couldGoOn =
        kind == BobTokenKind::kShiftLeft || kind == BobTokenKind::kShiftRight ||
        (uint16_t(kind) < 256 && std::string_view("<>=!&|^+-*/.").find(char(kind)) != std::string_view::npos);
    if (!couldGoOn) return;
    get();
    putBack();
  }

  BobTokenKind lineComment() {
    int c = get();
    while (c != -1 && c != '\n') c = get();
    if (c == '\n') unget();
    return BobTokenKind::kLineComment;
  }

  BobTokenKind blockComment() {
    get();
    int before = 0;
    for (int c = get(); c != -1; c = get()) {
      if (before == '*' && c == '/') break;
      before = c;
    }
    return BobTokenKind::kBlockComment;
  }

  BobTokenKind radixNumber(int radix) {
    uint32_t number = 0;
    while (digitOf(get(), radix) >= 0) number = number * uint32_t(radix) + uint32_t(digitOf(last, radix));
    putBack();
    value = int32_t(number);
    return BobTokenKind::kInteger;
  }

  BobTokenKind number(int first) {
    if (first == '0') {
      get();
      if (last == 'x' || last == 'X') return radixNumber(16);
      const bool octal = digitOf(last, 8) >= 0;
      putBack();
      if (octal) return radixNumber(8);
    }
    // Saturates at 64 bits, of which the lower half counts.
    uint64_t number = 0;
    for (int c = first; isDigit(c); c = get()) {
      constexpr uint64_t kMost = INT64_MAX;
      number = number > (kMost - uint64_t(c - '0')) / 10 ? kMost : number * 10 + uint64_t(c - '0');
    }
    if (last == '.') return fraction();
    if (last == 'e' || last == 'E') return exponent();
    putBack();
    value = int32_t(uint32_t(number));
    return BobTokenKind::kInteger;
  }

  BobTokenKind fraction() {
    while (isDigit(get())) {
    }
    if (last == 'e' || last == 'E') return exponent();
    putBack();
    return BobTokenKind::kFloat;
  }

  BobTokenKind exponent() {
    get();
    if (last == '+' || last == '-') get();
    while (isDigit(last)) get();
    putBack();
    return BobTokenKind::kFloat;
  }

  BobTokenKind identifier() {
    while (isNameCharacter(get())) {
    }
    putBack();
    const std::string_view text = source.substr(begin, position - (lost == position ? 1 : 0) - begin);
    if (text.size() > kTextLimit) fail("identifier too long");
    for (const Keyword& keyword : kKeywords)
      if (text == keyword.text) return keyword.kind;
    return BobTokenKind::kIdentifier;
  }

  BobTokenKind string() {
    size_t size = 0;
    for (;;) {
      int c = get();
      if (c == '"') break;
      if (c == -1) {
        unget();
        tokens.unclosedString |= position > source.size();
        break;
      }
      if (c == '\n' && closeStringsAtLines) {
        fail("the string is not closed on its line");
        unget();
        break;
      }
      if (c == '\\') c = escape();
      if (c == -2) fail("end of file in literal string");  // the byte 0xFE
      size += c < 0x80 ? 1 : c < 0x800 ? 2 : 3;
      if (size > kTextLimit) fail("string too long");
    }
    return BobTokenKind::kString;
  }

  BobTokenKind character() {
    value = get();
    if (value == '\\') value = escape();
    if (get() == '\'') return BobTokenKind::kInteger;
    fail("Expecting a closing single quote");
    // Goes on after a quote that comes later in the line.
    unget();
    const size_t quote = source.find_first_of("'\n", position);
    if (quote != std::string_view::npos && source[quote] == '\'') position = quote + 1;
    return BobTokenKind::kInteger;
  }

  // Up to `most` digits from the character got last on.
  int digits(int radix, int most) {
    int number = 0;
    for (int i = 0; i < most && digitOf(last, radix) >= 0; ++i, get()) number = number * radix + digitOf(last, radix);
    putBack();
    return number;
  }

  int escape() {
    switch (const int c = get()) {
      case 'b': return '\b';
      case 'f': return '\f';
      case 'n': return '\n';
      case 'r': return '\r';
      case 't': return '\t';
      case 'x': return get(), digits(16, 2);
      case 'u': return get(), digits(16, 4);
      case -1: unget(); return '\\';
      default: return digitOf(c, 8) >= 0 ? digits(8, 3) : c;
    }
  }

  std::string_view source;
  bool closeStringsAtLines;
  BobTokens tokens;
  size_t begin = 0, position = 0;  // of the token; of what is got next, at most one behind the source's end
  size_t lost = 0;                 // where the last byte 0 that was lost ends
  bool exhausted = false;          // nothing was there to get
  int last = 0;                    // the character got last
  int32_t value = 0;
};

}  // namespace

size_t BobTokens::at(size_t offset) const {
  const auto found = std::upper_bound(all.begin(), all.end(), offset,
                                      [](size_t place, const BobSourceToken& token) { return place < token.end; });
  return std::min(size_t(found - all.begin()), all.size() - 1);
}

BobTokens bobTokensOf(std::string_view source, bool closeStringsAtLines) {
  return Lexer(source.substr(0, UINT32_MAX - 1), closeStringsAtLines).run();
}

bool bobIsKeyword(BobTokenKind kind) {
  return std::any_of(std::begin(kKeywords), std::end(kKeywords), [&](const Keyword& k) { return k.kind == kind; });
}

std::vector<std::string_view> bobKeywords() {
  std::vector<std::string_view> words;
  for (const Keyword& keyword : kKeywords) words.push_back(keyword.text);
  return words;
}

std::string bobNameOfToken(std::string_view source, const BobSourceToken& token) {
  if (token.kind == BobTokenKind::kEnd) return "<eof>";
  if (token.kind >= BobTokenKind::kString)
    return std::string(kTokenNames[size_t(token.kind) - size_t(BobTokenKind::kString)]);
  return std::string(source.substr(token.begin, 1));
}
