#include <gtest/gtest.h>

#include <fstream>

#include "bob/session.h"
#include "bob/temporaryname.h"
#include "bob/tools/disassemble.h"

namespace {

std::string Bytes(std::initializer_list<int> list) {
  std::string bytes;
  for (int b : list) bytes += char(b);
  return bytes;
}

std::string Word(uint32_t n) { return Bytes({int(n >> 24), int(n >> 16 & 255), int(n >> 8 & 255), int(n & 255)}); }
std::string Text(int tag, const std::string& text) { return Bytes({tag}) + Word(uint32_t(text.size())) + text; }

// A record of that bytecode after AFRAME 2 0, with the name and further literals as written.
std::string Record(const std::string& code, std::initializer_list<std::string> literals) {
  std::string record =
      Bytes({1}) + Word(uint32_t(literals.size()) + 2) + Text(5, Bytes({0x31, 2, 0}) + code) + Text(5, "rec");
  for (const std::string& literal : literals) record += literal;
  return record;
}

std::string Load(Session& session, const std::string& records) {
  BobStringInput input(records);
  const bool ok = bobLoadObjectStream(session.root(), &input);
  return (ok ? "ok\n" : "failed\n") + session.answer();
}

TEST(ObjectFile, WritesTheWorkedExample) {
  Session session;
  TextStream out;
  bobCompileText(session.root(), "define f(x) { return x + 1; }", &out);
  const std::string inner = Bytes({1}) + Word(3) +
                            Text(5, Bytes({0x31, 3, 0, 0x21, 0, 3, 6, 0x19, 2, 0, 8, 0x1E, 0x1E})) + Text(5, "f") +
                            Bytes({6, 0, 0, 0, 1});
  EXPECT_EQ(out.text, Bytes({1}) + Word(4) + Text(5, Bytes({0x31, 2, 0, 0x19, 2, 0, 0x33, 0x1B, 3, 0, 0x1E})) +
                          Bytes({0}) + inner + Text(4, "f"));
}

TEST(ObjectFile, ValuesSurviveTheRoundTrip) {
  Session session;
  BobInterp* interp = session.interp;
  for (const char* text : {"nil", "-5", "0x40000000", "0x80000000", "1.1", "-1e300", "\"a\\\"b\"", "\\sym",
                           "\\[1, \\[], nil]", "{ local v = \\[1]; v.Push(2); v; }"}) {
    TextStream out;
    const BobLocal value(interp, bobEvaluate(session.root(), std::string(text) + ";"));
    ASSERT_TRUE(bobWriteValue(interp, value, &out)) << text;
    BobStringInput input(out.text);
    BobValue copy;
    ASSERT_TRUE(bobReadValue(session.root(), &input, &copy)) << text;
    TextStream a, b;
    bobPrint(interp, value, &a);
    bobPrint(interp, copy, &b);
    EXPECT_EQ(a.text, b.text);
  }
  // An object loses its parent, a method can't be written.
  TextStream out;
  EXPECT_TRUE(bobWriteValue(interp, bobEvaluate(session.root(), "\\{ a: 1 };"), &out));
  EXPECT_EQ(out.text, Bytes({3, 0}) + Word(1) + Text(4, "a") + Bytes({6, 0, 0, 0, 1}));
  EXPECT_FALSE(bobWriteValue(interp, bobEvaluate(session.root(), "gc;"), &out));
}

TEST(ObjectFile, ReadsParentsBySymbol) {
  Session session;
  session.run("P = \\{ inherited: 8 };");
  const std::string setX = Bytes({0x19, 2, 0, 0x1B, 3, 0, 0x1E});
  const std::string object = Bytes({3}) + Text(4, "P") + Word(1) + Text(4, "own") + Bytes({6, 0, 0, 0, 1});
  EXPECT_EQ(Load(session, Record(setX, {object, Text(4, "x")})), "ok\n");
  EXPECT_EQ(session.eval("\\[x.inherited, x.own];"), "--> [8,1]\n");
}

TEST(ObjectFile, EndsQuietlyWhereItsBytesEnd) {
  Session session;
  const std::string first = Record(Bytes({0x19, 2, 0, 0x1B, 3, 0, 0x1E}), {Bytes({6, 0, 0, 0, 7}), Text(4, "a")});
  for (size_t length = 0; length < first.size(); ++length) {
    session.run("a = 0;");
    EXPECT_EQ(Load(session, first + first.substr(0, length)), "ok\n");
    EXPECT_EQ(session.eval("a;"), "--> 7\n");
  }
  EXPECT_EQ(Load(session, Bytes({0}) + first), "ok\n");
  // Lengths and counts that no file of that size can have, and values inside values without end.
  EXPECT_EQ(Load(session, Bytes({1}) + Word(0xFFFFFFFF)), "failed\nError: Insufficient memory\n");
  EXPECT_EQ(Load(session, Bytes({1}) + Word(2) + Bytes({5}) + Word(0x7FFFFFFF)),
            "failed\nError: Insufficient memory\n");
  std::string nested;
  for (int i = 0; i < 5000; ++i) nested += Bytes({i ? 2 : 1}) + Word(1);
  EXPECT_EQ(Load(session, nested), "failed\nError: Stack overflow\n");
}

TEST(ObjectFile, BadCodeRaisesWhenItIsReachedAndNotBefore) {
  const std::string bad = "failed\nError: Bad opcode\nHappened in rec\n";
  const struct {
    const char* about;
    std::string code, answer;
  } cases[] = {
      {"an unknown opcode", Bytes({0}), bad},
      {"one past the last opcode", Bytes({57}), bad},
      {"an unknown opcode that nothing reaches", Bytes({0x1E, 200}), "ok\n"},
      {"AFRAME in the middle", Bytes({5, 0x31, 2, 0, 0x1E}), bad},
      {"the end of the code", Bytes({5}), bad},
      {"an operand that is cut off", Bytes({0x19, 2}), bad},
      {"a literal that isn't there", Bytes({0x19, 9, 0, 0x1E}), bad},
      {"a branch out of the code, not taken", Bytes({5, 1, 0xFF, 0xFF, 0x1E}), "ok\n"},
      {"the same, taken", Bytes({4, 1, 0xFF, 0xFF, 0x1E}), bad},
      {"a branch into an operand that reads as code", Bytes({3, 7, 0, 0x19, 0x1E, 0}), "ok\n"},
      {"a pop of what isn't there", Bytes({0x2B, 0x1E}), bad},
      {"a pop of the frame, later", Bytes({6, 0x2B, 0x2B, 0x1E}), bad},
      {"a different depth on two ways", Bytes({4, 1, 8, 0, 6, 0x2B, 0x1E}), bad},
      {"a variable that isn't there", Bytes({0x21, 0, 3, 0x1E}), bad},
      {"variable 0", Bytes({0x21, 0, 0, 0x1E}), bad},
      {"an environment that isn't there", Bytes({0x21, 1, 1, 0x1E}), bad},
      {"a store outside", Bytes({0x22, 0, 200, 0x1E}), bad},
      {"a call of more than is there", Bytes({5, 6, 0x1F, 2, 0x1E}), bad},
      {"a send without a selector", Bytes({6, 6, 0x20, 1, 0x1E}), bad},
      {"a closure of no code", Bytes({5, 0x33, 0x1E}), bad},
      {"a vector of more than is there", Bytes({0x19, 2, 0, 0x30, 0x1E}), bad},
      {"a switch table that is cut off", Bytes({0x34, 5, 0, 2, 0}), bad},
      {"a frame over more than is there", Bytes({6, 0x23, 2, 0x1E}), bad},
      {"returns that end the block first", Bytes({0x2F, 1, 0x1E, 0x1E}), "ok\n"},
  };
  for (const auto& c : cases) {
    Session session;
    EXPECT_EQ(Load(session, Record(c.code, {Bytes({6, 0, 0, 0, 5})})), c.answer) << c.about;
    EXPECT_EQ(session.eval("1 + 1;"), "--> 2\n") << c.about;
  }
  Session session;
  EXPECT_EQ(Load(session, Record(Bytes({0x19, 2, 0, 0x30, 0x1E}), {Bytes({6, 0xFF, 0xFF, 0xFF, 0xFF})})),
            "failed\nError: Index out of bounds - -1\nHappened in rec\n");
  // A jump to NEWVECTOR takes two elements there, where the literal right before it says none; nothing is left to pop.
  const std::string jump = Bytes({6, 6, 0x19, 3, 0, 1, 14, 0, 0x19, 2, 0, 0x30, 0x2B, 0x1E});
  EXPECT_EQ(Load(session, Record(jump, {Bytes({6, 0, 0, 0, 0}), Bytes({6, 0, 0, 0, 2})})), bad);
  EXPECT_EQ(Load(session, Bytes({1}) + Word(2) + Bytes({0, 0})), "failed\nError: Bad opcode\n");  // no bytecode at all
}

TEST(Listing, HasALineForEachInstructionAndEachCase) {
  Session session;
  session.run("define sw(a) { switch (a) { case \"s\": return 1; case \\q: a; default: } }");
  EXPECT_EQ(session.eval("sw.Decode();"),
            "sw:0000 31 03 00 AFRAME 03 00\n"
            "sw:0003 21 00 03 EREF 00 03\n"
            "sw:0006 03 13 00 BR 0013\n"
            "sw:0009 19 03 00 LIT 0003 ; 1\n"
            "sw:000c 1e       RETURN\n"
            "sw:000d 21 00 03 EREF 00 03\n"
            "sw:0010 03 20 00 BR 0020\n"
            "sw:0013 34 02 00 SWITCH 0002\n"
            "                 0002 0009 ; \"s\"\n"
            "                 0004 000d ; q\n"
            "                 0010\n"
            "sw:0020 1e       RETURN\n"
            "--> true\n");
  // The name counts even when it is empty, up to 32 characters of it; without one there is a number instead.
  const std::string body = ":0000 31 02 00 AFRAME 02 00\n";
  EXPECT_TRUE(session.eval("(function \"\" () {}).Decode();").starts_with(body));
  const std::string name(32, 'n');
  EXPECT_TRUE(session.eval("(function \"" + name + "nn\" () {}).Decode();").starts_with(name + body));
  const std::string unnamed = session.eval("(function () {}).Decode();");
  EXPECT_EQ(unnamed.find_first_not_of("0123456789abcdef"), 8u) << unnamed;
  EXPECT_TRUE(unnamed.substr(8).starts_with(body));
  EXPECT_EQ(session.eval("gc.Decode(stdout);"), "<CMethod-gc>\n--> true\n");
  // Bytes that are no instruction, or only the beginning of one.
  const std::string record = Record(Bytes({0x1F, 2, 200, 0x19, 1}), {});
  BobStringInput input(record);
  BobValue code;
  ASSERT_TRUE(bobReadValue(session.root(), &input, &code));
  TextStream out;
  bobDisassemble(session.interp, code, &out);
  EXPECT_EQ(out.text,
            "rec:0000 31 02 00 AFRAME 02 00\n"
            "rec:0003 1f 02    CALL 02\n"
            "rec:0005 c8       <UNKNOWN>\n"
            "rec:0006 19       <UNKNOWN>\n"
            "rec:0007 01       <UNKNOWN>\n");
}

TEST(ObjectFile, AWriteThatFailsIsAnErrorAndAFileThatCannotBeOpenedIsNone) {
  Session session;
  TextStream whole;
  bobCompileText(session.root(), "x = \\[1.5, \"text\"];", &whole);
  for (size_t size = 0; size < whole.text.size(); ++size) {
    std::string buffer(size, 0);
    BobStringOutput output(buffer.data(), size);
    EXPECT_FALSE(bobTry(session.interp, [&] { bobCompileText(session.root(), "x = \\[1.5, \"text\"];", &output); }));
    EXPECT_EQ(session.answer(), "Error: Writing file\n");
  }
  TextStream nothing;
  bobCompileText(session.root(), "// no statement", &nothing);
  EXPECT_EQ(nothing.text, "");
  const std::string path = TemporaryName("bob_unwritten");
  EXPECT_EQ(session.eval("CompileFile(\"" + path + ".none\", \"" + path + "\");"), "--> nil\n");
  if (std::ofstream("/dev/full")) {  // what is written first fails when the file is closed
    std::ofstream(path + ".bob") << "a = 1;\n";
    EXPECT_EQ(session.eval("CompileFile(\"" + path + ".bob\", \"/dev/full\");"),
              "Error: Writing file\nHappened in <CompiledCode-#>\n");
  }
  std::ofstream(path + ".bob") << "a = 1;\nb = ;\n";
  EXPECT_EQ(session.eval("CompileFile(\"" + path + ".bob\", \"no/such/folder/x\");"), "--> nil\n");
  EXPECT_EQ(session.eval("CompileFile(\"" + path + ".bob\", \"" + path + "\");"),
            "Error: Syntax error - Expecting a primary expression\n  in line 2\n\nHappened in <CompiledCode-#>\n");
}

TEST(ObjectFile, HeaderAndFileAreChecked) {
  Session session;
  const std::string path = TemporaryName("bob_header.bobo");
  const auto load = [&](const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
    return session.eval("LoadObjectFile(\"" + path + "\");");
  };
  const std::string here = "Happened in <CompiledCode-#>\n";
  EXPECT_EQ(load("BOBO" + Word(4)), "--> true\n");
  EXPECT_EQ(load("BOBO" + Word(0x04000000)), "Error: Wrong object file version number - 67108864\n" + here);
  EXPECT_EQ(load("BOBO" + Word(4).substr(0, 3)), "Error: Wrong object file version number - 0\n" + here);
  EXPECT_EQ(load("BOBX" + Word(4)), "Error: Not an object file - " + path + "\n" + here);
  EXPECT_EQ(load(""), "Error: Not an object file - " + path + "\n" + here);
  EXPECT_EQ(session.eval("LoadObjectFile(\"" + path + ".none\");"),
            "Error: File not found - " + path + ".none\n" + here);
  // Records before an error have taken effect.
  std::ofstream(path + ".bob") << "a = 5; define f(n) { return n * a; } zork; a = 6;";
  EXPECT_EQ(session.eval("CompileFile(\"" + path + ".bob\", \"" + path + "\");"), "--> true\n");
  EXPECT_EQ(session.eval("LoadObjectFile(\"" + path + "\");"),
            "Error: Unbound variable - zork\nHappened in <CompiledCode-#>\n--> nil\n");
  EXPECT_EQ(session.eval("f(a);"), "--> 25\n");
}

}  // namespace
