#include <gtest/gtest.h>

#include <regex>

#include "bob/compile/statementreader.h"
#include "bob/session.h"
#include "bob/tools/disassemble.h"

namespace {

// The instructions of a statement and of the functions in it, without addresses and hexadecimal operands.
std::string Listing(std::string_view source) {
  Session session;
  BobInterp* interp = session.interp;
  TextStream text;
  bobTry(interp, [&] {
    BobStringInput input(source);
    BobStatementReader statements(session.root(), &input);
    bobDisassemble(interp, bobMethodCode(interp, statements.next()), &text);
  });
  static const std::regex prefix("[^\n]*:[0-9a-f]{4} [0-9a-f]{2} ([0-9a-f]{2} [0-9a-f]{2} |[0-9a-f]{2}    |      )");
  std::string out = std::regex_replace(session.err.text + text.text, prefix, "");
  std::replace(out.begin(), out.end(), '\n', '|');
  return out;
}

std::string Statement(const std::string& body) { return "AFRAME 02 00|" + body + "RETURN|"; }

TEST(Compiler, EmitsTheExpectedInstructions) {
  const std::pair<const char*, const char*> cases[] = {
      {"x = y.z(1)[2];",
       "GREF 0003 ; y|PUSH|LIT 0004 ; z|PUSH|OVER|LIT 0005 ; 1|PUSH|SEND 03|PUSH|LIT 0006 ; 2|VREF|"
       "GSET 0002 ; x|"},
      {"o.a += 1;", "GREF 0002 ; o|PUSH|LIT 0003 ; a|DUP2|GETP|PUSH|LIT 0004 ; 1|ADD|SETP|"},
      {"v[i]++;", "GREF 0002 ; v|PUSH|GREF 0003 ; i|DUP2|VREF|INC|VSET|DEC|"},
      {"while (a) b;", "GREF 0002 ; a|BRF 000f|GREF 0003 ; b|BR 0003|"},
      {"a || b && c;", "GREF 0002 ; a|BRT 0012|GREF 0003 ; b|BRF 0012|GREF 0004 ; c|"},
      {"\\{ P k: 1 };", "GREF 0002 ; P|NEWOBJECT|PUSH|PUSH|LIT 0003 ; k|PUSH|LIT 0004 ; 1|SETP|DROP|"},
      {"{ local a = 1; return a; }", "CFRAME 01|LIT 0002 ; 1|ESET 00 01|EREF 00 01|UNFRAME|RETURN|UNFRAME|"},
      {"new P(2);", "GREF 0002 ; P|NEWOBJECT|PUSH|LIT 0003 ; initialize|PUSH|OVER|LIT 0004 ; 2|PUSH|SEND 03|"},
      {"define a.b.c() {}",
       "GREF 0002 ; a|PUSH|LIT 0003 ; b|GETP|PUSH|LIT 0004 ; c|PUSH|"
       "LIT 0005 ; <CompiledCode-c>|CLOSE|SETP|"},
  };
  for (const auto& [source, body] : cases) EXPECT_EQ(Listing(source), Statement(body)) << source;
}

TEST(Compiler, LimitsAreExact) {
  const std::string tooMuch = "Error: Too much code\n",
                    tooMany = "Error: Syntax error - too many literals\n  in line 1\n\n";
  const auto repeat = [](const std::string& text, int count) {
    std::string out;
    for (int i = 0; i < count; ++i) out += text;
    return out;
  };
  Session session;
  // AFRAME takes 3 bytes, each `nil,` 1, RETURN 1: 4,092 of them and one more fit.
  EXPECT_EQ(session.eval(repeat("nil,", 4091) + "nil;"), "--> nil\n");
  EXPECT_EQ(session.eval(repeat("nil,", 4092) + "nil;"), tooMuch);
  // One literal is the name, nil; strings never share.
  EXPECT_EQ(session.eval(repeat("\"\",", 254) + "\"x\";"), "--> \"x\"\n");
  EXPECT_EQ(session.eval(repeat("\"\",", 255) + "\"x\";"), tooMany);
  // This and _next count among the 255 slots of a call.
  EXPECT_EQ(session.eval("Type(" + repeat("1,", 252) + "1);").substr(0, 25), "Error: Too many arguments");
  EXPECT_EQ(session.eval("Type(" + repeat("1,", 253) + "1);"), tooMuch);
  // A count of control structures that is one too many.
  EXPECT_EQ(session.eval(repeat("while (nil) ", 20) + "1;"), "--> nil\n");
  EXPECT_EQ(session.eval(repeat("while (nil) ", 21) + "1;"),
            "Error: Syntax error - Too many nested loops\n  in line 1\n\n");
  EXPECT_EQ(session.eval(repeat("switch (1) { case 1: ", 21) + "1;" + repeat("}", 21)),
            "Error: Syntax error - Too many nested switch statements\n  in line 1\n\n");
  // Nesting of anything ends in a stack overflow and not in that of the machine.
  for (const char* open : {"(", "!", "{", "\\[", "function () {", "if (1) ", "f(", "new (", "\\{ a: "})
    EXPECT_EQ(session.eval(repeat(open, 20000)), "Error: Stack overflow\n") << open;
  EXPECT_EQ(session.eval(repeat("(", 50) + "7" + repeat(")", 50) + ";"), "--> 7\n");
}

TEST(Compiler, SaysWhatItMissesInItsOwnWords) {
  const std::pair<const char*, const char*> cases[] = {
      {"define 5;", "Expecting a function or a method definition"},
      {"break;", "Break outside of loop or switch"},
      {"while (1) { function () { break; }; }", "Break outside of loop or switch"},
      {"continue;", "Continue outside of loop"},
      {"switch (1) { continue; }", "Continue outside of loop"},
      {"while (1) { function () { continue; }; }", "Continue outside of loop"},
      {"case 1: 2;", "Case outside of switch"},
      {"switch (1) { function () { case 1: }; }", "Case outside of switch"},
      {"default: 2;", "Default outside of switch"},
      {"switch (1) { case 1: case \\a: case nil: case \\a: }", "Duplicate case"},
      {"switch (1) { case nil: case nil: }", "Duplicate case"},
      {"switch (1) { case -1: }", "Expecting a literal value"},
      {"switch (1) { case true: }", "Expecting a literal value"},
      {"switch (1) { case \\5: }", "Expecting a literal symbol"},
      {"5 = 1;", "Expecting an lvalue"},
      {"f() += 1;", "Expecting an lvalue"},
      {"++5;", "Expecting an lvalue"},
      {"nil = 1;", "Expecting an lvalue"},
      {"x++ ++;", "Expecting an lvalue"},
      {"x.if;", "Expecting a property selector"},
      {"+x;", "Expecting a primary expression"},
      {"{ 1; local a; }", "Expecting a primary expression"},
      {"{ 1;", "Expecting a primary expression"},
      {"\\if;", "Expecting a symbol, vector or object literal"},
      {"super.f();", "Use of super outside of a method"},
      {"{ local this; super.f(); }", "Use of super outside of a method"},
      {"new 5;", "Expecting an object expression"},
      {"define f(..) {}", "Expecting ')', found '..'"},
      {"define f(a.., b) {}", "Expecting ')', found ','"},
      {"define f(a b) {}", "Expecting ')', found '<identifier>'"},
      {"define a.5() {}", "Expecting '(', found '<float>'"},
      {"\\{ a: 1, };", "Expecting '<identifier>', found '}'"},
      {"\\{ P, a: 1 };", "Expecting '<identifier>', found ','"},
      {"\\{ P a 1 };", "Expecting ':', found '<integer>'"},
      {"\\[1 2];", "Expecting ']', found '<integer>'"},
      {"do x; if (1);", "Expecting 'while', found 'if'"},
      {"try x;", "Expecting '{', found '<identifier>'"},
      {"throw 1 2;", "Expecting ';', found '<integer>'"},
      {"function () { super.x; };", "Expecting '(', found ';'"},
  };
  Session session;
  for (const auto& [source, message] : cases)
    EXPECT_EQ(session.eval(source), std::string("Error: Syntax error - ") + message + "\n  in line 1\n\n") << source;
  for (const char* source : {"true++;", "--false;", "false *= 2;"})
    EXPECT_EQ(session.eval(source), "Error: Attempt to store into a constant\n") << source;
  // Equal strings are labels of their own: nothing is said, and the first one is taken.
  EXPECT_EQ(session.eval("switch (\"a\") { case \"a\": 1; break; case \"a\": 2; }"), "--> 1\n");
}

TEST(Compiler, ContinueInASwitchLeavesItsBlocksOpenButHarmsNothing) {
  Session session;
  session.run(
      "define f() { local i = 0; while (i < 3) { local k = i; i++; switch (k) { case 1: continue; } } return i; }");
  // The block around the switch stays on the stack: where `i` should be is the block's variable then.
  const std::string answer = session.eval("f();");
  EXPECT_TRUE(answer.starts_with("Error: ") || answer.starts_with("--> ")) << answer;
  EXPECT_EQ(session.eval("for (j = 0; j < 3; j++) { local k = j; switch (k) { case 1: continue; } }"),
            "Error: Bad opcode\nHappened in <CompiledCode-#>\n");
  EXPECT_EQ(session.eval("j;"), "--> 3\n");
  EXPECT_EQ(session.eval("1 + { for (j = 0; j < 2; j++) { local k = j; switch (k) { case 0: continue; } } 5; };"),
            "Error: Bad opcode\nHappened in <CompiledCode-#>\n");
}

}  // namespace
