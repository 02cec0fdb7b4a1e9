// The lexical analyser: source bytes to tokens, one token and one character of push-back.
#pragma once

#include <initializer_list>
#include <string>
#include <utility>

#include "bob/base/stream.h"
#include "bob/base/value.h"
#include "bob/compile/codenotes.h"

// Single characters are their own tokens; 0 is the end of the input.
enum BobToken : int {
  kTokenEof = 0,
  kTokenString = 256,
  kTokenIdentifier,
  kTokenInteger,
  kTokenFloat,
  kTokenFunction,
  kTokenLocal,
  kTokenIf,
  kTokenElse,
  kTokenWhile,
  kTokenReturn,
  kTokenFor,
  kTokenBreak,
  kTokenContinue,
  kTokenDo,
  kTokenSwitch,
  kTokenCase,
  kTokenDefault,
  kTokenNil,
  kTokenLe,
  kTokenEq,
  kTokenNe,
  kTokenGe,
  kTokenShl,
  kTokenShr,
  kTokenAnd,
  kTokenOr,
  kTokenInc,
  kTokenDec,
  kTokenAddEq,
  kTokenSubEq,
  kTokenMulEq,
  kTokenDivEq,
  kTokenRemEq,
  kTokenAndEq,
  kTokenOrEq,
  kTokenXorEq,
  kTokenShlEq,
  kTokenShrEq,
  kTokenDefine,
  kTokenSuper,
  kTokenNew,
  kTokenDotDot,
  kTokenTry,
  kTokenCatch,
  kTokenFinally,
  kTokenThrow,
  kTokensEnd
};

// The token's name in messages.
std::string bobTokenName(int token);

// Raises a syntax error of that text.
[[noreturn]] void bobSyntaxError(BobInterp* interp, std::string text);

class BobScanner {
 public:
  BobScanner() = default;
  // Starts on the stream's first line. The stream must outlive its last token.
  void attach(BobInterp* interp, BobStream* input);

  int next() {
    placeBefore = place;
    if (savedToken == -1) return scan();
    place = savedPlace;
    return std::exchange(savedToken, -1);
  }
  void unread(int token) {
    savedToken = token;
    savedPlace = place;
    place = placeBefore;
  }

  std::string tokenText;   // of identifiers and strings, at most 255 bytes
  int32_t tokenValue = 0;  // of integers
  double tokenFloat = 0;   // of floats
  int lineNumber = 0;      // of the line that is being read; the interpreter's sourceLine follows it
  BobSourcePlace place;    // of the token that was taken last, and not pushed back
  // That token's place if it begins in the line that is being read, else the line's begin.
  BobSourcePlace placeInLine() const { return {lineNumber, place.line == lineNumber ? place.column : 1}; }

 private:
  static constexpr size_t kTextLimit = 255;
  static constexpr size_t kLineLimit = 256;

  int get();
  void readLine();
  void setLine(int number);
  void unget(int c);
  int skipSpaces();
  int scan();
  int oneOf(int ifNone, std::initializer_list<std::pair<char, int>> next);
  int shift(char c, int ifEqual, int ifDouble, int ifDoubleEqual);
  int slash();
  void skipComment();
  int dot();
  int radixNumber(int radix);
  int number(int c);
  int identifier(int c);
  int string();
  int character();
  int escape();
  int digits(int c, int radix, int most);
  void store(int c);
  void append(int c);

  BobInterp* interp = nullptr;
  BobStream* input = nullptr;
  std::string lineBuffer;
  size_t linePointer = 0;
  size_t pieceStart = 0;  // of the line buffer in its line
  bool atEof = false;
  int savedToken = -1;
  BobSourcePlace savedPlace, placeBefore;
};
