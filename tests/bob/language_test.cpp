// Errors and oddities line by line, as the console shows them, and the manual's examples.
#include <gtest/gtest.h>

#include <fstream>

#include "bob/session.h"
#include "bob/temporaryname.h"

namespace {

struct Line {
  const char* text;
  const char* answer;
};

void Expect(std::initializer_list<Line> lines) {
  Session session;
  for (const Line& line : lines) EXPECT_EQ(session.eval(line.text), line.answer) << line.text;
}

constexpr char kHere[] = "Happened in <CompiledCode-#>\n";
std::string Error(const std::string& message) { return "Error: " + message + "\n" + kHere; }

TEST(Language, WrongOperandsAreNamedByTheSideThatTheOperationLooksAt) {
  Session session;
  const std::pair<const char*, const char*> cases[] = {
      {"\"a\" + 1;", "Wrong type - \"a\""},
      {"1 + \"a\";", "Wrong type - 1"},
      {"nil + true;", "Wrong type - nil"},
      {"1.5 % 1;", "Wrong type - 1.5"},
      {"1 & 2.5;", "Wrong type - 1"},
      {"~1.5;", "Wrong type - 1.5"},
      {"-\"a\";", "Wrong type - \"a\""},
      {"nil < 1;", "Wrong type - nil"},
      {"1 < \"a\";", "Wrong type - 1"},
      {"1.5 < \"a\";", "Wrong type - \"a\""},
      {"\"a\" < 1;", "Wrong type - \"a\""},
      {"5();", "Wrong type - 5"},
      {"nil.f();", "No method for selector - f"},
      {"\"abc\"[3];", "Index out of bounds - 3"},
      {"\\[].Pop();", "Stack empty - []"},
      {"\"a\".size = 1;", "Attempt to set a read-only property"},
      {"(5).x = 1;", "No property - x"},
      {"(5)[\\x] = 1;", "No property - 1"},
      {"new Vector(-1);", "Index out of bounds - -1"},
      {"String.size;", "Wrong type - <Type-String>"},
      {"Eval(5);", "Wrong type - 5"},
      {"Load(\"no such file\");", "File not found - no such file"},
      {"gc(1);", "Too many arguments - <CMethod-gc>"},
      {"rand();", "Too few arguments - <CMethod-rand>"},
      {"new (nil);", "Can't create an instance"},
      {"Quit();", "Exit"},
      {"gc.Apply();", "Too few arguments - <CMethod-Apply>"},
      {"gc.Apply(5);", "Wrong type - 5"},
      {"gc.Apply(\\[]);", "Too few arguments - <CMethod-gc>"},
      {"Object.Send();", "Too few arguments - <CMethod-Send>"},
      {"Object.Send(\\Class);", "Wrong type - Class"},
      {"Object.Send(\\[1]);", "No method for selector - [1]"},
      {"Object.Send(\\zork, \\[]);", "No method for selector - zork"},
      {"(\\[1]).size = \"a\";", "Wrong type - \"a\""},
      {"(\\[1])[-1] = 2;", "Index out of bounds - -1"},
      {"\"abc\"[0] = 1.5;", "Wrong type - 1.5"},
      {"new Symbol;", "Can't create an instance"},
      {"(5).toString(5);", "Wrong type - 5"},
  };
  for (const auto& [text, message] : cases) EXPECT_EQ(session.eval(text), Error(message)) << text;
}

TEST(Language, ErrorsLeaveTheInterpreterAsItWas) {
  Expect({
      {"define down(n) { local k = n; { local m = k; if (n == 0) zork; return down(n - 1) + m; } }",
       "--> <Method-down>\n"},
      {"down(2);",
       "Error: Unbound variable - zork\nHappened in down\nCalled from:\n  down\n  down\n  <CompiledCode-#>\n"},
      {"define forever(n) { return forever(n + 1) + 1; }", "--> <Method-forever>\n"},
      {"define viaApply(n) { return viaApply.Apply(nil, nil, \\[n]); }", "--> <Method-viaApply>\n"},
  });
  Session session;
  session.run(
      "define forever(n) { deepest = n; return forever(n + 1) + 1; } define viaApply(n) { return "
      "viaApply.Apply(nil, nil, \\[n]); } v = \\[]; v.Push(v);");
  EXPECT_TRUE(session.eval("forever(0);").starts_with("Error: Stack overflow\nHappened in forever\n"));
  // 65,536 words; a call with one argument takes 15: 11 of the frame, the function, this, _next and the argument.
  EXPECT_EQ(session.eval("deepest;"), "--> 4367\n");
  EXPECT_TRUE(session.eval("viaApply(0);").starts_with("Error: Stack overflow\n"));
  EXPECT_TRUE(session.eval("v;").starts_with("Error: Stack overflow\n"));
  session.answer();
  EXPECT_EQ(session.eval("1 + 1;"), "--> 2\n");
  EXPECT_EQ(session.interp->sp, session.interp->stackTop);
  EXPECT_EQ(session.interp->fp, session.interp->stackTop);
  EXPECT_EQ(session.interp->code, 0u);
}

// A run that a native method begins hides its caller: the traceback names who was called by code.
TEST(Language, TracebacksStepOverTheCallersOfNativeMethods) {
  Expect({
      {"define inner() { { local a; zork; } }", "--> <Method-inner>\n"},
      {"define apply() { return inner.Apply(nil, nil, \\[]); }", "--> <Method-apply>\n"},
      {"define outer() { return apply(); }", "--> <Method-outer>\n"},
      {"outer();", "Error: Unbound variable - zork\nHappened in inner\nCalled from:\n  outer\n  <CompiledCode-#>\n"},
      {"outer.Apply(nil, nil, \\[1]);", "Error: Too many arguments - <Method-outer>\nHappened in <CompiledCode-#>\n"},
      {"Eval(\"1 +;\");",
       "Error: Syntax error - Expecting a primary expression\n  in line 1\n\nHappened in <CompiledCode-#>\n"},
  });
}

TEST(Language, OneConsoleLineIsOneStatement) {
  Expect({
      {"1; 2;", "--> 1\n"},
      {"", "--> nil\n"},
      {"// nothing", "--> nil\n"},
      {"x = 5", "Error: Syntax error - Expecting ';', found '<eof>'\n  in line 1\n\n"},
      {"x;", "Error: Unbound variable - x\nHappened in <CompiledCode-#>\n"},
      {"Eval(\"x = 9; x = 10;\") + x;", "--> 18\n"},
      {"true = 1;", "Error: Attempt to store into a constant\n"},
      {"(x) = 1;", "Error: Syntax error - Expecting an lvalue\n  in line 1\n\n"},
      {"!!x;", "--> true\n"},
      {"false == nil;", "--> true\n"},
      {"x %= 2;", "Error: Syntax error - Expecting a primary expression\n  in line 1\n\n"},
  });
}

TEST(Language, NotANumberEqualsEveryNumber) {
  Expect({{"n = 1e308 * 10 - 1e308 * 10;", "--> nan.0\n"},
          {"n == 5;", "--> true\n"},
          {"n != n;", "--> nil\n"},
          {"n == \"a\";", "--> nil\n"},
          {"n.toInteger();", "--> -2147483648\n"}});
}

TEST(Language, RandomNumbersAreTheMinimalStandardOnes) {
  // The ten-thousandth number from seed 1 is the generator's published check value.
  Expect({{"{ local i; for (i = 0; i < 9999; i++) rand(7); rand(0x7FFFFFFF); }", "--> 1043618065\n"},
          {"rand(0);", "--> 0\n"}});
}

TEST(Language, LoadingGoesOnAfterTheStatementThatLoads) {
  const std::string inner = TemporaryName("bob_inner.bob");
  std::ofstream(inner) << "a = 1;\na + 1;\n\"text\";";
  Session session;
  EXPECT_TRUE(session.run("Load(\"" + inner + "\"); b = a + 10;"));
  EXPECT_EQ(session.answer(), "1\n2\n\"text\"\n");
  EXPECT_EQ(session.eval("b;"), "--> 11\n");
  // The line that an error names is the outer file's again.
  EXPECT_FALSE(session.run("\n\nLoad(\"" + inner + "\");\nc = ;"));
  EXPECT_EQ(session.answer(), "Error: Syntax error - Expecting a primary expression\n  in line 4\n\n1\n2\n\"text\"\n");
  // A File to echo on may be closed by what is loaded.
  const std::string echo = TemporaryName("bob_echo.txt");
  std::ofstream(inner) << "1;\nf.Close();\n3;\n";
  session.run("f = new File(\"" + echo + "\", \"w\"); Load(\"" + inner + "\", f);");
  EXPECT_EQ(session.answer(), "");
  std::string text;
  std::getline(std::ifstream(echo), text, '\0');
  EXPECT_EQ(text, "1\n");
}

// In the manual a line that begins with "> " is typed at the console, "..." goes on with it, and the lines up to the
// next one are the answer.
TEST(Language, TheManualTellsTheTruth) {
  std::ifstream manual(BOB_MANUAL);
  ASSERT_TRUE(manual.is_open());
  Session session;
  std::string typed, answer;
  int examples = 0;
  const auto check = [&] {
    if (!typed.empty()) {
      EXPECT_EQ(session.eval(typed), answer) << typed;
      ++examples;
    }
    typed.clear(), answer.clear();
  };
  bool inside = false;
  for (std::string line; std::getline(manual, line);) {
    if (line.starts_with("```")) {
      if (inside) check();
      inside = line == "```bob";
    } else if (inside && line.starts_with("> ")) {
      check();
      typed = line.substr(2) + "\n";
    } else if (inside && line.starts_with("... ")) {
      typed += line.substr(4) + "\n";
    } else if (inside) {
      answer += line + "\n";
    }
  }
  EXPECT_GT(examples, 50);
}

}  // namespace
