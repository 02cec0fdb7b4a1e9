#include "bob/compile/scanner.h"

#include <gtest/gtest.h>

#include "bob/session.h"
#include "bob/tools/textcalls.h"

namespace {

std::vector<int> TokensOf(std::string_view text) {
  Session session;
  BobStringInput input(text);
  BobScanner scanner;
  scanner.attach(session.interp, &input);
  std::vector<int> tokens;
  for (int token = -1; token != kTokenEof;) tokens.push_back(token = scanner.next());
  tokens.pop_back();
  return tokens;
}

TEST(Scanner, JoinsOperatorsGreedilyButNeverRemainderAssignment) {
  EXPECT_EQ(TokensOf("<<= << <= < >>= >> >= >"),
            (std::vector<int>{kTokenShlEq, kTokenShl, kTokenLe, '<', kTokenShrEq, kTokenShr, kTokenGe, '>'}));
  EXPECT_EQ(TokensOf("+++a---b"),
            (std::vector<int>{kTokenInc, '+', kTokenIdentifier, kTokenDec, '-', kTokenIdentifier}));
  EXPECT_EQ(TokensOf("a%=b"), (std::vector<int>{kTokenIdentifier, '%', '=', kTokenIdentifier}));
  EXPECT_EQ(TokensOf("a..b...c"),
            (std::vector<int>{kTokenIdentifier, kTokenDotDot, kTokenIdentifier, kTokenDotDot, '.', kTokenIdentifier}));
  EXPECT_EQ(TokensOf("a/*x*/b//c\n/d/* never closed"),
            (std::vector<int>{kTokenIdentifier, kTokenIdentifier, '/', kTokenIdentifier}));
}

TEST(Scanner, ReadsNumbersInEveryForm) {
  Session session;
  const std::pair<const char*, const char*> cases[] = {
      {"017", "15"},        {"08", "8"},           {"0x", "0"},
      {"0xFFFFFFFF", "-1"}, {"4294967301", "5"},   {"99999999999999999999", "-1"},
      {"'\\n'", "10"},      {"'\\u20ac'", "8364"}, {"1.", "1.0"},
      {".5", "0.5"},        {"1e", "1.0"},         {"2e+3", "2000.0"},
      {"1.5e400", "inf.0"}, {"1e-400", "0.0"},
  };
  for (const auto& [text, value] : cases)
    EXPECT_EQ(session.eval(std::string(text) + ";"), "--> " + std::string(value) + "\n") << text;
  EXPECT_EQ(TokensOf("1..2"), (std::vector<int>{kTokenFloat, kTokenFloat}));
  EXPECT_EQ(TokensOf("1.e.x"), (std::vector<int>{kTokenFloat, '.', kTokenIdentifier}));
}

std::string Literal(const std::string& text) { return Session().eval("\"" + text + "\".size;"); }

TEST(Scanner, StringsHold255BytesAndCutAtTheirLimitOnly) {
  const std::string tooLong = "Error: Syntax error - string too long\n  in line 1\n\n";
  EXPECT_EQ(Literal(std::string(255, 'a')), "--> 255\n");
  EXPECT_EQ(Literal(std::string(256, 'a')), tooLong);
  EXPECT_EQ(Literal(std::string(253, 'a') + "\\u00e9"), "--> 255\n");
  EXPECT_EQ(Literal(std::string(254, 'a') + "\\u00e9"), tooLong);
  EXPECT_EQ(Literal("a\nb"), "--> 3\n");
  EXPECT_EQ(Literal("ab\\0cd"), "--> 2\n");
  EXPECT_EQ(Literal("\xC3\xA9"), "--> 2\n");  // bytes of the source pass as they are
}

TEST(Scanner, SaysWhatIsWrongAndInWhichLine) {
  const std::pair<std::string, std::string> cases[] = {
      {"'ab';", "Expecting a closing single quote\n  in line 1"},
      {"\n\"a\xFE\";", "end of file in literal string\n  in line 2"},
      {std::string(256, 'x') + ";", "identifier too long\n  in line 1"},
      {"f(1", "Expecting ')', found '<eof>'\n  in line 1"},
      {"f(1\n\n", "Expecting ')', found '<eof>'\n  in line 3"},  // after the last newline a line begins
      // One name too many in the table: each of the last tokens has the name of the one before it.
      {"x try;", "Expecting ';', found '..'\n  in line 1"},
      {"x catch;", "Expecting ';', found 'try'\n  in line 1"},
      {"x throw;", "Expecting ';', found 'finally'\n  in line 1"},
      {"x \x01", "Expecting ';', found '\x01'\n  in line 1"},
      // A string may end with the input, and 0xFF is the same as that; an escape changes nothing about such bytes.
      {"x = \"ab", "Expecting ';', found '<eof>'\n  in line 1"},
      {"x = \"ab\xFF\";", "Expecting ';', found '<eof>'\n  in line 1"},
      {"x = \"ab\\\xFF\";", "Expecting ';', found '<eof>'\n  in line 1"},
      {"x = \"a\\\xFE\";", "end of file in literal string\n  in line 1"},
      {"'", "Expecting a closing single quote\n  in line 1"},
      {"08x;", "Expecting ';', found '<identifier>'\n  in line 1"},
  };
  for (const auto& [text, message] : cases) {
    Session session;
    EXPECT_FALSE(session.run(text));
    EXPECT_EQ(Session::plain(session.err.text), "Error: Syntax error - " + message + "\n\n") << text;
  }
}

TEST(Scanner, AZeroByteEndsTheSource) {
  Session session;
  EXPECT_TRUE(session.run(std::string_view("x = 1; \0 zork;", 14)));
  EXPECT_EQ(session.eval("x;"), "--> 1\n");
}

TEST(Scanner, LinesOfAnyLengthCountOnce) {
  Session session;
  const std::string spaces(5000, ' ');
  EXPECT_FALSE(session.run("x = 1;" + spaces + "\n" + spaces + "y = 2;\n" + spaces + "x y;"));
  EXPECT_NE(session.err.text.find("in line 3\n"), std::string::npos);
  session.answer();
  EXPECT_EQ(session.eval("x + y;"), "--> 3\n");
}

TEST(TextCalls, AreFoundAsTheSourceSpellsThem) {
  Session session;
  constexpr char kSource[] = R"--(// Open("no")
f = frame.Open; Open ( "a\x62" ); /* Open("no") */ s = "Open(\"no\")";
if (!frame
    .Open(
      "two.kpg")) Open(x); Open("no" + x); Open("no", 1); Open(Open("in"));
Opened("no"); Open("last"); x =; Open("after what doesn't parse"); "no end
Open("after what can't be read");)--";
  std::string found;
  for (const BobTextCall& call : bobTextCalls(session.interp, kSource, "Open"))
    found += std::to_string(call.line) + " " + call.text + "; ";
  EXPECT_EQ(found, "2 ab; 5 two.kpg; 5 in; 6 last; 6 after what doesn't parse; ");
  EXPECT_NE(session.answer().find("Syntax error"), std::string::npos);
  EXPECT_EQ(session.eval("1 + 1;"), "--> 2\n");  // the interpreter is as it was
}

}  // namespace
