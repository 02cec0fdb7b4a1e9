#include "bob/compile/scanner.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "bob/base/ascii.h"
#include "bob/base/numbers.h"
#include "bob/heap/interp.h"
#include "bob/heap/raise.h"

namespace {

struct Keyword {
  std::string_view text;
  int token;
};

// By first letter.
constexpr Keyword kKeywords[] = {
    {"break", kTokenBreak},
    {"case", kTokenCase},
    {"catch", kTokenCatch},
    {"continue", kTokenContinue},
    {"default", kTokenDefault},
    {"define", kTokenDefine},
    {"do", kTokenDo},
    {"else", kTokenElse},
    {"finally", kTokenFinally},
    {"for", kTokenFor},
    {"function", kTokenFunction},
    {"if", kTokenIf},
    {"local", kTokenLocal},
    {"new", kTokenNew},
    {"nil", kTokenNil},
    {"return", kTokenReturn},
    {"super", kTokenSuper},
    {"switch", kTokenSwitch},
    {"throw", kTokenThrow},
    {"try", kTokenTry},
    {"while", kTokenWhile},
};

// By character: where its keywords begin, and at the next character, where they end.
consteval std::array<uint8_t, 257> makeKeywordIndex() {
  std::array<uint8_t, 257> index{};
  for (size_t c = 0; c < index.size(); ++c)
    while (index[c] < std::size(kKeywords) && uint8_t(kKeywords[index[c]].text[0]) < c) ++index[c];
  return index;
}
constexpr std::array<uint8_t, 257> kKeywordIndex = makeKeywordIndex();

int keywordOrIdentifier(std::string_view text) {
  const uint8_t first = uint8_t(text[0]);
  for (size_t i = kKeywordIndex[first]; i < kKeywordIndex[first + 1u]; ++i)
    if (text == kKeywords[i].text) return kKeywords[i].token;
  return kTokenIdentifier;
}

consteval std::array<bool, 256> makeWordCharacters() {
  std::array<bool, 256> is{};
  for (int c = 0; c < 256; ++c) is[size_t(c)] = bobIsLetter(c) || bobIsDigit(c) || c == '_';
  return is;
}
constexpr std::array<bool, 256> kIsWordCharacter = makeWordCharacters();

// By token, from kTokenString. There is one ".." too many, so each of the last tokens has the name of the one before
// it: a message that speaks of catch says "try".
constexpr const char* kTokenNames[] = {
    "<string>", "<identifier>", "<integer>", "<float>", "function", "local",   "if",      "else", "while",  "return",
    "for",      "break",        "continue",  "do",      "switch",   "case",    "default", "nil",  "<=",     "==",
    "!=",       ">=",           "<<",        ">>",      "&&",       "||",      "++",      "--",   "+=",     "-=",
    "*=",       "/=",           "%=",        "&=",      "|=",       "^=",      "<<=",     ">>=",  "define", "super",
    "new",      "..",           "..",        "try",     "catch",    "finally",
};
static_assert(std::size(kTokenNames) == kTokensEnd - kTokenString);

}  // namespace

std::string bobTokenName(int token) {
  if (token == kTokenEof) return "<eof>";
  if (token >= kTokenString && token < kTokensEnd) return kTokenNames[token - kTokenString];
  return std::string(1, char(token));
}

void bobSyntaxError(BobInterp* interp, std::string text) {
  interp->errorText = std::move(text);
  bobRaise(interp, kBobSyntaxError);
}

void BobScanner::attach(BobInterp* owner, BobStream* stream) {
  interp = owner;
  input = stream;
  lineBuffer.clear();
  linePointer = pieceStart = 0;
  setLine(0);
  place = {};
  savedToken = -1;
  atEof = false;
}

void BobScanner::setLine(int number) { interp->sourceLine = lineNumber = number; }

// A line that is longer than the buffer comes in pieces.
void BobScanner::readLine() {
  pieceStart += lineBuffer.size();
  if (lineBuffer.empty() || lineBuffer.back() == '\n') {
    setLine(lineNumber + 1);
    pieceStart = 0;
  }
  lineBuffer.clear();
  linePointer = 0;
  atEof = !input->GetLine(lineBuffer, kLineLimit);
  if (atEof) lineBuffer += '\n';
}

// Bytes from 0x80 up come out negative; 0xFF is the same as the end of the input.
int BobScanner::get() {
  if (linePointer == lineBuffer.size()) {
    if (atEof) return -1;
    readLine();
  }
  return static_cast<signed char>(lineBuffer[linePointer++]);
}

// Pushes back what get returned last. A zero byte is lost; the end of the input stays where it is.
void BobScanner::unget(int c) {
  const bool isEnd = c == -1 && atEof && linePointer == lineBuffer.size();
  if (c != 0 && !isEnd) --linePointer;
}

int BobScanner::skipSpaces() {
  int c;
  while (bobIsSpace(c = get())) {
  }
  return c;
}

int BobScanner::oneOf(int ifNone, std::initializer_list<std::pair<char, int>> list) {
  const int c = get();
  for (const auto& [character, token] : list)
    if (c == character) return token;
  unget(c);
  return ifNone;
}

int BobScanner::shift(char c, int ifEqual, int ifDouble, int ifDoubleEqual) {
  const int token = oneOf(c, {{'=', ifEqual}, {c, ifDouble}});
  return token == ifDouble ? oneOf(ifDouble, {{'=', ifDoubleEqual}}) : token;
}

// "%=" has no branch: the scanner never joins the two.
int BobScanner::scan() {
  for (;;) {
    const int c = skipSpaces();
    place = {lineNumber, int(pieceStart + linePointer)};
    switch (c) {
      case -1: return kTokenEof;
      case '"': return string();
      case '\'': return character();
      case '<': return shift('<', kTokenLe, kTokenShl, kTokenShlEq);
      case '>': return shift('>', kTokenGe, kTokenShr, kTokenShrEq);
      case '=': return oneOf('=', {{'=', kTokenEq}});
      case '!': return oneOf('!', {{'=', kTokenNe}});
      case '&': return oneOf('&', {{'&', kTokenAnd}, {'=', kTokenAndEq}});
      case '|': return oneOf('|', {{'|', kTokenOr}, {'=', kTokenOrEq}});
      case '^': return oneOf('^', {{'=', kTokenXorEq}});
      case '+': return oneOf('+', {{'+', kTokenInc}, {'=', kTokenAddEq}});
      case '-': return oneOf('-', {{'-', kTokenDec}, {'=', kTokenSubEq}});
      case '*': return oneOf('*', {{'=', kTokenMulEq}});
      case '/': {
        const int token = slash();
        if (token == -1) continue;
        return token;
      }
      case '.': return dot();
      default:
        if (bobIsDigit(c)) return number(c);
        if (bobIsLetter(c) || c == '_') return identifier(c);
        tokenText.assign(1, char(c));
        return c & 0xFF;
    }
  }
}

// -1 once a comment has been passed over. One that isn't closed ends with the input, without an error.
int BobScanner::slash() {
  int c = get();
  if (c == '=') return kTokenDivEq;
  if (c == '/') {
    while (c != -1 && c != '\n') c = get();
    return -1;
  }
  if (c == '*') {
    skipComment();
    return -1;
  }
  unget(c);
  return '/';
}

void BobScanner::skipComment() {
  int before = 0;
  for (int c = get(); c != -1; c = get()) {
    if (before == '*' && c == '/') return;
    before = c;
  }
}

int BobScanner::dot() {
  const int c = get();
  if (c == '.') {
    tokenText = "..";
    return kTokenDotDot;
  }
  unget(c);
  return bobIsDigit(c) ? number('.') : '.';
}

void BobScanner::store(int c) {
  if (tokenText.size() < kTextLimit) tokenText += char(c);
}

int BobScanner::radixNumber(int radix) {
  uint32_t value = 0;
  int c;
  for (c = get(); bobDigitOf(c, radix) >= 0; c = get()) {
    store(c);
    value = value * uint32_t(radix) + uint32_t(bobDigitOf(c, radix));
  }
  unget(c);
  tokenValue = int32_t(value);
  return kTokenInteger;
}

int BobScanner::number(int c) {
  tokenText.clear();
  if (c == '0') {
    c = get();
    if (c == 'x' || c == 'X') return radixNumber(16);
    unget(c);
    if (bobDigitOf(c, 8) >= 0) return radixNumber(8);
    c = '0';
  }
  bool isFloat = false;
  for (; bobIsDigit(c); c = get()) store(c);
  if (c == '.') {
    isFloat = true;
    store(c);
    for (c = get(); bobIsDigit(c); c = get()) store(c);
  }
  if (c == 'e' || c == 'E') {
    isFloat = true;
    store(c);
    c = get();
    if (c == '+' || c == '-') {
      store(c);
      c = get();
    }
    for (; bobIsDigit(c); c = get()) store(c);
  }
  unget(c);
  if (isFloat) {
    tokenFloat = bobParseFloat(tokenText);
    return kTokenFloat;
  }
  tokenValue = bobParseInteger(tokenText);
  return kTokenInteger;
}

int BobScanner::identifier(int c) {
  tokenText.clear();
  for (; kIsWordCharacter[uint8_t(c)]; c = get()) {  // c, and what follows it in the buffer
    const size_t begin = linePointer - 1, room = kTextLimit - tokenText.size();
    while (linePointer < lineBuffer.size() && kIsWordCharacter[uint8_t(lineBuffer[linePointer])]) ++linePointer;
    const size_t count = linePointer - begin;
    tokenText.append(lineBuffer, begin, std::min(count, room));
    if (count <= room) continue;
    linePointer = begin + room + 1;
    bobSyntaxError(interp, "identifier too long");
  }
  unget(c);
  return keywordOrIdentifier(tokenText);
}

void BobScanner::append(int c) {
  if (tokenText.size() == kTextLimit) bobSyntaxError(interp, "string too long");
  tokenText += char(c);
}

int BobScanner::string() {
  tokenText.clear();
  for (;;) {
    int c = get();
    if (c == '"') break;
    if (c == -1) {
      unget(c);
      break;
    }
    if (c == '\\') c = escape();
    if (c == -2) bobSyntaxError(interp, "end of file in literal string");  // the byte 0xFE
    if (c < 0x80) {
      append(c);
    } else if (c < 0x800) {
      append(c >> 6 | 0xC0);
      append((c & 0x3F) | 0x80);
    } else if (c < 0x10000) {
      append(c >> 12 | 0xE0);
      append((c >> 6 & 0x3F) | 0x80);
      append((c & 0x3F) | 0x80);
    } else {
      bobSyntaxError(interp, "invalid UTF-8 character");
    }
  }
  return kTokenString;
}

int BobScanner::character() {
  int c = get();
  if (c == '\\') c = escape();
  tokenText.assign(1, char(c));
  tokenValue = c;
  if (get() != '\'') bobSyntaxError(interp, "Expecting a closing single quote");
  return kTokenInteger;
}

// Up to `most` digits from c on; the first character that is none is pushed back.
int BobScanner::digits(int c, int radix, int most) {
  int value = 0;
  for (int i = 0;; ++i) {
    if (i == most || bobDigitOf(c, radix) < 0) {
      unget(c);
      return value;
    }
    value = value * radix + bobDigitOf(c, radix);
    c = get();
  }
}

int BobScanner::escape() {
  const int c = get();
  switch (c) {
    case 'b': return 8;
    case 'f': return 12;
    case 'n': return 10;
    case 'r': return 13;
    case 't': return 9;
    case 'x': return digits(get(), 16, 2);
    case 'u': return digits(get(), 16, 4);
    case -1: unget(c); return '\\';
    default: return bobDigitOf(c, 8) >= 0 ? digits(c, 8, 3) : c;
  }
}
