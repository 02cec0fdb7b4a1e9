// Where compiled code comes from, and where code that runs is.
#include "bob/compile/codenotes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

#include "bob/base/opcodes.h"
#include "bob/compile/statementreader.h"
#include "bob/session.h"

namespace {

struct Noted {
  std::string listing;  // "OPCODE LINE" of each instruction
  BobCodeNotes notes;
};

// Of a source's functions and statements, in the order in which they are compiled.
std::vector<Noted> notesOf(const std::string& source) {
  Session session;
  std::vector<Noted> all;
  bobSetCodeListener(session.interp, [&](BobInterp* interp, BobValue code, const BobCodeNotes& notes) {
    const std::string_view bytes = interp->stringOf(interp->words(code)[BobLayout::kCodeElements]);
    Noted noted{"", notes};
    for (const auto& [offset, place] : notes.instructions)
      noted.listing += std::string(noted.listing.empty() ? "" : " ") +
                       kBobOpcodes[uint8_t(bytes[size_t(offset)])].name + std::to_string(place.line);
    all.push_back(noted);
  });
  bobTry(session.interp, [&] {
    BobStringInput input(source);
    BobStatementReader statements(session.root(), &input);
    while (statements.next()) {
    }
  });
  EXPECT_EQ(session.err.text, "") << source;
  return all;
}

TEST(CodeNotes, AnInstructionComesFromTheLineOfItsToken) {
  const std::pair<const char*, const char*> cases[] = {
      {"x =\n a\n + b;", "AFRAME1 GREF2 PUSH3 GREF3 ADD3 GSET1 RETURN3"},
      {"// c\n/* \n */ a.\nb\n.c(\n1,\nd\n);",
       "AFRAME3 GREF3 PUSH3 LIT4 GETP4 PUSH5 LIT5 PUSH5 OVER5 LIT6 PUSH6 GREF7 PUSH7 SEND5 RETURN8"},
      {"f\n(\na\n)\n;", "AFRAME1 GREF1 PUSH2 PUSHSCOPE2 GREF3 PUSH3 CALL2 RETURN5"},
      {"a\n[\nb\n]\n+=\nc;", "AFRAME1 GREF1 PUSH2 GREF3 DUP25 VREF2 PUSH5 GREF6 ADD5 VSET2 RETURN6"},
      {"while\n(a)\nb;", "AFRAME1 GREF2 BRF2 GREF3 BR1 RETURN3"},
      {"for\n(;\na\n;\nb)\nc;", "AFRAME1 GREF3 BRT4 BR4 GREF5 BR5 GREF6 BR1 RETURN6"},
      {"if (\n!\na) b;\nelse\nc;", "AFRAME1 GREF3 NOT2 BRF3 GREF3 BR4 GREF5 RETURN5"},
      {"a ?\nb :\nc;", "AFRAME1 GREF1 BRF1 GREF2 BR2 GREF3 RETURN3"},
      {"new\nP\n(1);", "AFRAME1 GREF2 NEWOBJECT1 PUSH3 LIT3 PUSH3 OVER3 LIT3 PUSH3 SEND3 RETURN3"},
      {"\\[\na,\nb\n];", "AFRAME1 GREF2 PUSH2 GREF3 PUSH3 LIT1 NEWVECTOR1 RETURN4"},
      {"{ switch (a)\n{ case 1: b;\nbreak; } }", "AFRAME1 GREF1 BR1 GREF2 BR3 BR3 SWITCH1 RETURN3"},
  };
  for (const auto& [source, listing] : cases) {
    const std::vector<Noted> all = notesOf(source);
    ASSERT_EQ(all.size(), 1u) << source;
    EXPECT_EQ(all[0].listing, listing) << source;
  }
  // A line longer than the scanner's buffer has one number, and columns go on.
  const std::vector<Noted> wide = notesOf(std::string(1000, ' ') + "a;\nb;");
  EXPECT_EQ(wide[0].notes.instructions[1].place.line, 1);
  EXPECT_EQ(wide[0].notes.instructions[1].place.column, 1001);
  EXPECT_EQ(wide[1].notes.instructions[1].place.column, 1);
}

TEST(CodeNotes, FunctionsKnowTheNamesOfTheirVariables) {
  const std::vector<Noted> all = notesOf(
      "define f(a, b = 2, c..) {\n"
      "  local d, e = function () { local x; };\n"
      "  if (a) { local g; return g; }\n"
      "  { local h; }\n"
      "}\n");
  ASSERT_EQ(all.size(), 3u);  // the inner function, f, the statement
  const BobCodeNotes& inner = all[0].notes;
  EXPECT_EQ(inner.arguments, (std::vector<std::string>{"this", "_next"}));
  ASSERT_EQ(inner.blocks.size(), 1u);
  EXPECT_EQ(inner.blocks[0].names, std::vector<std::string>{"x"});
  const BobCodeNotes& f = all[1].notes;
  EXPECT_EQ(f.arguments, (std::vector<std::string>{"this", "_next", "a", "b", "c"}));
  ASSERT_EQ(f.blocks.size(), 3u);
  EXPECT_EQ(f.blocks[0].names, (std::vector<std::string>{"d", "e"}));
  EXPECT_EQ(f.blocks[1].names, std::vector<std::string>{"g"});
  EXPECT_EQ(f.blocks[2].names, std::vector<std::string>{"h"});
  // g's block lies in d's, and h's begins after it has ended.
  EXPECT_LT(f.blocks[0].begin, f.blocks[1].begin);
  EXPECT_LE(f.blocks[1].end, f.blocks[2].begin);
  EXPECT_LE(f.blocks[2].end, f.blocks[0].end);
  EXPECT_TRUE(all[2].notes.arguments.empty());
}

std::vector<std::string> programs() {
  std::vector<std::string> all;
  for (const auto& entry : std::filesystem::directory_iterator(BOB_PROGRAMS)) {
    std::stringstream text;
    text << std::ifstream(entry.path()).rdbuf();
    all.push_back(text.str());
  }
  return all;
}

TEST(CodeNotes, ListeningChangesNothing) {
  for (const std::string& source : programs()) {
    std::string bytes[2];
    for (const bool listens : {false, true}) {
      Session session;
      if (listens) bobSetCodeListener(session.interp, [](BobInterp*, BobValue, const BobCodeNotes&) {});
      TextStream records;
      bobTry(session.interp, [&] {
        BobStringInput input(source);
        BobStatementReader statements(session.root(), &input);
        while (const BobValue method = statements.next())
          bobWriteValue(session.interp, bobMethodCode(session.interp, method), &records);
      });
      bytes[listens] = records.text + session.err.text + std::to_string(session.interp->totalMemory);
    }
    EXPECT_EQ(bytes[0], bytes[1]) << source.substr(0, 200);
  }
}

// What the compiler noted of each piece of code, and where the last error was.
struct Places {
  std::map<uint64_t, BobCodeNotes> notes;
  std::string lines;
  size_t checks = 0, wrong = 0;

  void listen(BobInterp* interp) {
    bobSetCodeListener(
        interp, [this](BobInterp* i, BobValue code, const BobCodeNotes& n) { notes.emplace(bobCodeHash(i, code), n); });
  }
};

Places* places;

TEST(RunningCode, AnErrorIsInTheLineOfItsInstruction) {
  // Each runs into an error; the lines are those of a traceback, the innermost first. They meet single instructions and
  // superinstructions of every form: with an operand that is a literal or a variable, tests, stores, steps, sends.
  const std::pair<const char*, const char*> cases[] = {
      {"nosuch;", "1"},
      {"x = 1;\ny =\nnosuch;", "3"},
      {"define f(a) {\n return a\n + nil;\n}\nf(\n1);", "3 5"},
      {"define f(a, b) {\n return 1 +\n a\n *\n b; }\nf(1, nil);", "4 6"},
      {"define f(a) { local k = 0;\n k =\n a\n -\n 1; }\nf(\\a);", "4 6"},
      {"define f(a) { local k = 0;\n a\n ++; }\nf(\\a);", "3 4"},
      {"define f(v) { local i = 0;\n while (i <\n v)\n i++; }\nf(nil);", "2 5"},
      // The test at the end of the loop is the one at its top.
      {"define f(v) { local i = 0;\n while (i\n <\n v) {\n i++;\n v = nil; } }\nf(2);", "3 7"},
      {"define f(v) {\n return v\n .nosuch; }\nf(1);", "3 4"},
      {"define f(v) {\n return v\n .nosuch(\n1\n); }\nf(1);", "3 6"},
      {"define f(v, i) {\n return v\n [i]; }\nf(\\[], 0);", "3 4"},
      {"define f(v) {\n v\n .a =\n 1; }\nf(1);", "3 5"},
      {"define f(v) {\n v.a\n += 1; }\nf(1);", "2 4"},
      {"define f() {\n g(\n 1,\n nosuch); }\ndefine g() {}\nf();", "4 6"},
      {"define f(a) {\n nosuch\n (a); }\nf(1);", "2 4"},
      // Too many arguments are the caller's fault.
      {"define f() {}\ndefine g() {\n f(\n 1); }\ng();", "3 5"},
      {"define deep(n) {\n if (n == 0)\n return nosuch;\n return deep(\n n - 1); }\ndeep(3);", "3 4 4 4 6"},
      // A method of the host's in between is no line of the traceback.
      {"define f() {\n nosuch; }\ndefine g() { local h = function () {\n f(); };\n h(); }\ng();", "2 4 5 6"},
      {"define f() {\n local a = 1;\n {\n local b = nosuch; } }\nf();", "4 5"},
      {"switch (1) {\n case 1:\n nosuch; }", "3"},
      {"Eval(\"\n\nnosuch;\");", "3"},
  };
  for (const auto& [source, lines] : cases) {
    Session session;
    Places found;
    places = &found;
    found.listen(session.interp);
    bobSetErrorHandler(session.interp, [](BobInterp* interp, int, const BobErrorArgument&) {
      for (const auto& [code, offset] : bobRunningCode(interp)) {
        int line = 0;
        for (const auto& instruction : places->notes.at(bobCodeHash(interp, code)).instructions)
          if (uint32_t(instruction.offset) <= offset) line = instruction.place.line;
        places->lines += (places->lines.empty() ? "" : " ") + std::to_string(line);
      }
    });
    EXPECT_FALSE(session.run(source)) << source;
    EXPECT_EQ(found.lines, lines) << source;
  }
}

// At each branch and call of the programs: what runs is at an instruction of the compiler's, and a caller at a call.
TEST(RunningCode, IsAlwaysAtAnInstruction) {
  Places found;
  places = &found;
  for (const std::string& source : programs()) {
    Session session;
    found.notes.clear();
    found.listen(session.interp);
    bobRestOften(session.interp, 7);
    bobSetRest(session.interp, [](BobInterp* interp) {
      const std::vector<BobRunningCode> running = bobRunningCode(interp);
      for (size_t i = 0; i < running.size() && i < 20; ++i) {
        const auto& [code, offset] = running[i];
        const std::vector<BobCodeNotes::Instruction>& all = places->notes.at(bobCodeHash(interp, code)).instructions;
        const bool isThere =
            std::any_of(all.begin(), all.end(), [&, at = offset](const auto& n) { return uint32_t(n.offset) == at; });
        const std::string_view bytes = interp->stringOf(interp->words(code)[BobLayout::kCodeElements]);
        const uint8_t opcode = uint8_t(bytes[offset]);
        ++places->checks;
        if (!isThere || (i > 0 && opcode != kOpCall && opcode != kOpSend)) ++places->wrong;
      }
    });
    session.run(source);
  }
  EXPECT_GT(found.checks, 10'000u);
  EXPECT_EQ(found.wrong, 0u);
}

}  // namespace
