// The tokens of Bob source, for tools that look at a source while it is being written.
//
// Reads bytes as the compiler's scanner does, down to its oddities, but never fails: what the scanner refuses becomes a
// token with an error. Comments are tokens too; what lies between two tokens is white space (and a byte 0 right after a
// number, a name or a part of an operator, which the scanner loses).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Single characters are their own kinds. A byte that no token begins with is a token of itself, 0x80 to 0xFE.
enum class BobTokenKind : uint16_t {
  kEnd = 0,
  kSemicolon = ';',
  kOpenParenthesis = '(',
  kCloseParenthesis = ')',
  kOpenBracket = '[',
  kCloseBracket = ']',
  kOpenBrace = '{',
  kCloseBrace = '}',
  kComma = ',',
  kColon = ':',
  kDot = '.',
  kBackslash = '\\',
  kAssign = '=',
  kQuestion = '?',
  kString = 256,
  kIdentifier,
  kInteger,  // a character in single quotes, too
  kFloat,
  kFunction,
  kLocal,
  kIf,
  kElse,
  kWhile,
  kReturn,
  kFor,
  kBreak,
  kContinue,
  kDo,
  kSwitch,
  kCase,
  kDefault,
  kNil,
  kLessEqual,
  kEqual,
  kNotEqual,
  kGreaterEqual,
  kShiftLeft,
  kShiftRight,
  kAnd,
  kOr,
  kIncrement,
  kDecrement,
  kAddAssign,
  kSubtractAssign,
  kMultiplyAssign,
  kDivideAssign,
  kRemainderAssign,  // never read: "%=" is two tokens
  kAndAssign,
  kOrAssign,
  kXorAssign,
  kShiftLeftAssign,
  kShiftRightAssign,
  kDefine,
  kSuper,
  kNew,
  kDotDot,
  kTry,
  kCatch,
  kFinally,
  kThrow,
  kLineComment = 400,  // without its line end
  kBlockComment,       // one that isn't closed goes to the end, and is no error
};
constexpr BobTokenKind bobTokenOf(char c) { return BobTokenKind(static_cast<unsigned char>(c)); }

struct BobSourceToken {
  BobTokenKind kind;
  uint32_t begin, end;  // bytes of the source
  int32_t value = 0;    // of kInteger
  bool isComment() const { return kind == BobTokenKind::kLineComment || kind == BobTokenKind::kBlockComment; }
};

// What the scanner refuses, in the compiler's words.
struct BobLexicalError {
  uint32_t token;  // its index
  std::string text;
};

struct BobTokens {
  // In the order of the source. The last one is kEnd; it lies before the end of the source if a byte 0 or 0xFF ends the
  // input earlier, and what follows it is then never read.
  std::vector<BobSourceToken> all;
  std::vector<BobLexicalError> errors;  // by ascending token
  bool unclosedString = false;          // the last string goes to the end of the source

  // The first token that ends after `offset`: the one that it lies in or before.
  size_t at(size_t offset) const;
};

// Sources of 4 GB and more are cut. With `closeStringsAtLines` a string that isn't closed on its line ends there with
// an error: a guess, for a source that has lost a quotation mark.
BobTokens bobTokensOf(std::string_view source, bool closeStringsAtLines = false);

bool bobIsKeyword(BobTokenKind kind);
// The words of the language, for completion; this, _next, true and false are names and are not among them.
std::vector<std::string_view> bobKeywords();
// The token's name in the compiler's messages. As there, each of the last words has the name of the one before it.
std::string bobNameOfToken(std::string_view source, const BobSourceToken& token);
