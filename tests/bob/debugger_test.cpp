// Following programs: a debugger, a profiler and coverage, and that being followed changes nothing.
#include "bob/debug/debugger.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "bob/compile/statementreader.h"
#include "bob/debug/coverage.h"
#include "bob/debug/profiler.h"
#include "bob/run/trace.h"
#include "bob/session.h"
#include "bob/tools/codehash.h"

namespace {

// A session that knows the lines of what it compiles.
struct TracedSession : Session {
  TracedSession() {
    bobSetCodeListener(interp, [this](BobInterp* i, BobValue code, const BobCodeNotes& notes) {
      const BobCodeLines lines = bobCodeLinesOf(i, code, notes, "test.bob");
      known.emplace(lines.hash, lines);
    });
  }
  const BobCodeLines* linesOf(BobInterp* i, BobValue code) const {
    const auto found = known.find(bobCodeHash(i, code));
    return found == known.end() ? nullptr : &found->second;
  }
  auto lookUp() {
    return [this](BobInterp* i, BobValue code) { return linesOf(i, code); };
  }
  std::map<uint64_t, BobCodeLines> known;
};

// Resumes at each stop as a list says, and then runs; writes down where it was.
struct DebuggedSession : TracedSession {
  DebuggedSession() : debugger(lookUp()) {
    EXPECT_TRUE(bobTrace(interp, &debugger));
    debugger.stopped = [this](const BobStop& stop) {
      const std::vector<BobFrameView> frames = debugger.frames();
      where += (where.empty() ? "" : " ") + std::string(1, "bspe"[stop.reason]) + std::to_string(frames[0].line);
      if (look) look(stop);
      if (resumes.empty()) return BobResume::run;
      const BobResume resume = resumes.front();
      resumes.erase(resumes.begin());
      return resume;
    };
    debugger.logged = [this](const std::string& line) { log += line + "\n"; };
  }
  ~DebuggedSession() { EXPECT_TRUE(bobTrace(interp, nullptr)); }

  std::string stopsOf(const std::string& source) {
    where.clear();
    run(source);
    return where;
  }
  std::string evaluated(size_t frame, const std::string& text) {
    std::string error;
    const auto value = debugger.evaluate(frame, text, &error);
    return value ? value->text : "error: " + error;
  }
  // "name=text", outer groups after inner ones, globals left out.
  std::string variables(size_t frame) {
    std::string all;
    for (const BobVariableGroup& group : debugger.variables(frame)) {
      if (group.kind == BobVariableGroup::globals) continue;
      all += all.empty() ? "" : " | ";
      for (size_t n = 0; n < group.variables.size(); ++n)
        all += (n ? " " : "") + group.variables[n].name + "=" + group.variables[n].text;
    }
    return Session::plain(all);
  }

  BobDebugger debugger;
  std::vector<BobResume> resumes;
  std::function<void(const BobStop&)> look;
  std::string where, log;
};

std::vector<std::pair<std::string, std::string>> programs() {
  std::vector<std::pair<std::string, std::string>> all;  // name, source
  for (const auto& entry : std::filesystem::directory_iterator(BOB_PROGRAMS)) {
    std::stringstream text;
    text << std::ifstream(entry.path()).rdbuf();
    all.emplace_back(entry.path().stem().string(), text.str());
  }
  return all;
}

// Evaluates in the middle of everything.
class Meddler : public BobTracer {
 public:
  Meddler(BobDebugger& d, size_t e) : debugger(d), every(e) {}
  uint32_t codeIsReady(BobInterp* i, BobValue code) override { return debugger.codeIsReady(i, code); }
  void atInstruction(BobInterp* i, uint32_t code, uint32_t offset) override {
    if (++count % every == 0 && stops++ < kMostStops) debugger.pause();
    debugger.atInstruction(i, code, offset);
  }
  void copyValues(BobInterp* i) override { debugger.copyValues(i); }
  BobDebugger& debugger;
  const size_t every;
  static constexpr size_t kMostStops = 60;  // each looks at everything
  size_t count = 0, stops = 0;
};

// Each line of a program is a breakpoint, the program is stepped through, or everything in it is looked at and
// evaluated now and then: it prints the same, with a collection at each allocation as well.
TEST(Tracing, ChangesNothingThatAProgramDoes) {
  for (const auto& [name, source] : programs()) {
    Session plain;
    plain.run(source);
    const std::string expected = Session::plain(plain.out.text) + Session::plain(plain.err.text);
    for (const bool collects : {false, true}) {
      TracedSession session;
      if (collects) bobCollectAlways(session.interp);
      BobDebugger debugger(session.lookUp());
      Meddler meddler(debugger, collects ? 397 : 97);
      size_t stops = 0;
      debugger.stopped = [&](const BobStop&) {
        ++stops;
        for (size_t frame = 0; frame < std::min<size_t>(debugger.frames().size(), 3); ++frame) {
          for (const BobVariableGroup& group : debugger.variables(frame))
            for (const BobVariableView& variable : group.variables)
              if (variable.number && variable.members < 30) debugger.members(variable.number, 0, 30);
          std::string error;
          debugger.evaluate(frame, "\\[this, 1 + 1, \"a\" + \"b\"]", &error);
        }
        return BobResume::run;
      };
      ASSERT_TRUE(bobTrace(session.interp, &meddler));
      session.run(source);
      EXPECT_EQ(Session::plain(session.out.text) + Session::plain(session.err.text), expected) << name;
      EXPECT_GT(stops, 0u) << name;
      EXPECT_TRUE(bobTrace(session.interp, nullptr));
    }
  }
}

TEST(Tracing, BeginsAndEndsWithCodeThatExists) {
  DebuggedSession session;
  EXPECT_TRUE(bobTrace(session.interp, nullptr));
  session.run("define f(n) {\n local i = 0;\n while (i < n) i++;\n return i; }\nf(3);");
  EXPECT_TRUE(bobTrace(session.interp, &session.debugger));
  EXPECT_FALSE(bobTrace(session.interp, &session.debugger));  // another one is there
  session.debugger.setBreakpoints("test.bob", {{4, "", 0, ""}});
  EXPECT_EQ(session.eval("f(5);"), "--> 5\n");
  EXPECT_EQ(session.where, "b4");
  session.look = [&](const BobStop&) { EXPECT_FALSE(bobTrace(session.interp, nullptr)); };  // while code runs
  EXPECT_EQ(session.eval("f(6);"), "--> 6\n");
  EXPECT_TRUE(bobTrace(session.interp, nullptr));
  session.where.clear();
  EXPECT_EQ(session.eval("f(7);"), "--> 7\n");
  EXPECT_EQ(session.where, "");
  EXPECT_TRUE(bobTrace(session.interp, &session.debugger));
}

constexpr char kProgram[] =
    "define add(a, b) {\n"             // 1
    "  local sum = a;\n"               // 2
    "  sum = sum + b;\n"               // 3
    "  return sum;\n"                  // 4
    "}\n"                              // 5
    "define twice(f, x) {\n"           // 6
    "  x = f(x);\n"                    // 7
    "  return f(x);\n"                 // 8
    "}\n"                              // 9
    "total = 0;\n"                     // 10
    "define main(n) {\n"               // 11
    "  local i, step = 2;\n"           // 12
    "  for (i = 0; i < n; ++i)\n"      // 13
    "    total = add(total, i);\n"     // 14
    "  i = i;\n"                       // 15
    "  return twice(function (x) {\n"  // 16
    "    return x + step;\n"           // 17
    "  }, total);\n"                   // 18
    "}\n"                              // 19
    "main(3);\n";                      // 20

TEST(Debugger, StopsAtBreakpoints) {
  struct Case {
    std::vector<BobBreakpoint> breakpoints;
    const char *stops, *log;
  } const cases[] = {
      {{}, "", ""},
      {{{10, "", 0, ""}}, "b10", ""},
      {{{3, "", 0, ""}}, "b3 b3 b3", ""},
      {{{3, "b == 2", 0, ""}}, "b3", ""},
      {{{3, "", 2, ""}}, "b3", ""},
      {{{3, "b > 0", 1, ""}}, "b3", ""},
      {{{3, "", 0, "{a} and {b}: {nosuch}"}},
       "",
       "0 and 0: (Unbound variable - nosuch)\n0 and 1: (Unbound variable - nosuch)\n1 and 2: (Unbound variable - "
       "nosuch)\n"},
      {{{3, "b ==", 0, ""}}, "b3 b3 b3", nullptr},
      {{{17, "", 0, ""}, {8, "", 0, ""}}, "b17 b8 b17", ""},
      {{{9, "", 0, ""}, {99, "", 0, ""}}, "b9", ""},
  };
  for (const Case& c : cases) {
    DebuggedSession session;
    session.debugger.setBreakpoints("test.bob", c.breakpoints);
    EXPECT_EQ(session.stopsOf(kProgram), c.stops);
    if (c.log)
      EXPECT_EQ(session.log, c.log);
    else
      EXPECT_NE(session.log.find("Syntax error"), std::string::npos) << session.log;
    EXPECT_EQ(session.eval("total;"), "--> 3\n");
  }
}

// A breakpoint in the line of a function that has only one is in the function; what else its line does counts, too.
TEST(Debugger, StopsInAFunctionOfOneLineAndNotAtItsDefinition) {
  const struct {
    const char* source;
    BobBreakpoint breakpoint;
    const char* stops;
  } cases[] = {
      {"define f(n) { return n; }\nf(1); f(2);", {1, "n == 2", 0, ""}, "b1"},
      {"\nf = function (n) { return n; };\nf(2);", {2, "n == 2", 0, ""}, "b2"},
      {"o = new Object();\ndefine o.f(n) { return n; }\no.f(2);", {2, "n == 2", 0, ""}, "b2"},
      {"define g(f) { return f(2); }\nx = g(function (n) { return n; });", {2, "", 0, ""}, "b2 b2"},
      {"\ndefine f(n) {\n  return n; }\nf(2);", {2, "", 0, ""}, "b2"},
  };
  for (const auto& c : cases) {
    DebuggedSession session;
    session.debugger.setBreakpoints("test.bob", {c.breakpoint});
    EXPECT_EQ(session.stopsOf(c.source), c.stops) << c.source;
    EXPECT_EQ(session.log, "") << c.source;
  }
}

TEST(Debugger, Steps) {
  using enum BobResume;
  struct Case {
    int from;
    std::vector<BobResume> resumes;
    const char* stops;
  } const cases[] = {
      {20, {stepInto, stepInto, stepInto, stepInto, stepInto}, "b20 s12 s13 s14 s2 s3"},
      {14, {stepOver, stepOver, stepOver}, "b14 b14 b14 s15"},
      {3, {stepOut, run}, "b3 s14 b3 b3"},
      {16, {stepInto, stepInto, stepInto, stepOut, stepOut}, "b16 s18 s7 s17 s7 s18"},
      {4, {stepOver, stepOver}, "b4 s14 s14 b4 b4"},
      // What ends at the top stops in the next statement that the host runs.
      {20, {stepOver, run}, "b20"},
      {10, {stepOver, run}, "b10 s11"},
  };
  for (const Case& c : cases) {
    DebuggedSession session;
    session.debugger.setBreakpoints("test.bob", {{c.from, "", 0, ""}});
    session.resumes = c.resumes;
    EXPECT_EQ(session.stopsOf(kProgram), c.stops) << c.from;
  }
}

TEST(Debugger, ShowsFramesAndVariables) {
  DebuggedSession session;
  session.debugger.setBreakpoints("test.bob", {{17, "", 0, ""}, {3, "", 0, ""}});
  std::vector<std::string> seen;
  session.look = [&](const BobStop&) {
    std::string frames;
    for (const BobFrameView& frame : session.debugger.frames())
      frames += frame.function + ":" + std::to_string(frame.line) + (frame.calledByHost ? "! " : " ");
    seen.push_back(frames + session.variables(0) + " / " + session.variables(1));
  };
  session.run(kProgram);
  ASSERT_EQ(seen.size(), 5u);
  const std::string outer = "this=<Object-#> a=0 b=0";
  EXPECT_EQ(seen[0], "add:3 main:14 :20! sum=0 | " + outer + " / i=0 step=2 | this=<Object-#> n=3");
  // The closure keeps the variables around it on the heap.
  EXPECT_EQ(seen[3],
            ":17 twice:7 main:16 :20! this=<Object-#> x=3 | i=3 step=2 | this=<Object-#> n=3 / "
            "this=<Object-#> f=<Method-#> x=3");
}

TEST(Debugger, EvaluatesAndChangesVariables) {
  DebuggedSession session;
  session.debugger.setBreakpoints("test.bob", {{3, "b == 2", 0, ""}, {17, "", 1, ""}});
  std::vector<std::string> answers;
  session.look = [&](const BobStop&) {
    const bool inClosure = session.debugger.frames()[0].line == 17;
    if (inClosure) {
      answers.push_back(session.evaluated(0, "step = step * 10"));
      answers.push_back(session.evaluated(0, "x + step"));
      answers.push_back(session.evaluated(1, "x"));
      return;
    }
    for (const char* text : {"a + b + sum", "add(1, 1)", "sum = 100", "sum", "local t = 7; _value = t + b", "nosuch",
                             ")", "this == nil", "\"a\" + \"b\""})
      answers.push_back(session.evaluated(0, text));
    answers.push_back(session.evaluated(1, "i = i"));
    answers.push_back(session.evaluated(9, "1"));
  };
  EXPECT_TRUE(session.run(kProgram)) << session.err.text;
  ASSERT_EQ(answers.size(), 14u);
  const std::vector<std::string> expected = {"4", "2", "100", "100"};
  for (size_t n = 0; n < expected.size(); ++n) EXPECT_EQ(answers[n], expected[n]) << n;
  EXPECT_EQ(answers[5], "error: Unbound variable - nosuch");
  EXPECT_EQ(answers[6].substr(0, 20), "error: Syntax error ");
  EXPECT_EQ(answers[7], "nil");
  EXPECT_EQ(answers[8], "\"ab\"");
  EXPECT_EQ(answers[9], "2");
  EXPECT_EQ(answers[10], "error: there is no such frame");
  EXPECT_EQ(answers[11], "20");
  // 100 + 2, then 2 more by the first call of the closure, then 20.
  EXPECT_EQ(answers[12], "124");
  EXPECT_EQ(answers[13], "104");
  EXPECT_EQ(session.err.text, "");  // what failed aside isn't printed
}

TEST(Debugger, UnfoldsObjectsAndVectors) {
  DebuggedSession session;
  session.debugger.setBreakpoints("test.bob", {{3, "", 0, ""}});
  session.look = [&](const BobStop&) {
    std::string error;
    const auto object = session.debugger.evaluate(0, "o", &error);
    ASSERT_TRUE(object);
    EXPECT_EQ(object->type, "Object");
    EXPECT_EQ(object->members, 3u);
    const std::vector<BobVariableView> members = session.debugger.members(object->number, 0, 10);
    ASSERT_EQ(members.size(), 3u);
    EXPECT_EQ(members[0].name, "list");  // the newest first
    EXPECT_EQ(members[1].name + members[1].text, "name\"x\"");
    EXPECT_EQ(members[2].name, "parent");
    const std::vector<BobVariableView> elements = session.debugger.members(members[0].number, 1, 2);
    ASSERT_EQ(elements.size(), 2u);
    EXPECT_EQ(elements[0].name + elements[0].text + elements[1].name + elements[1].text, "[1]2[2]3");
    EXPECT_TRUE(session.debugger.setMember(members[0].number, "[2]", 0, "o.name + \"!\"", &error));
    EXPECT_TRUE(session.debugger.setMember(object->number, "name", 0, "\"y\"", &error));
    EXPECT_FALSE(session.debugger.setMember(members[0].number, "[-1]", 0, "1", &error));
    EXPECT_EQ(error.substr(0, 5), "Index");
    for (const char* none : {"[x]", "[", "[2000000000]", "[99999999999]"})
      EXPECT_FALSE(session.debugger.setMember(members[0].number, none, 0, "1", &error));
    EXPECT_FALSE(session.debugger.setMember(77, "x", 0, "1", &error));
  };
  EXPECT_TRUE(session.run("o = \\{ name: \"x\", list: \\[1, 2, 3, 4] };\nself = \\[1]; self[0] = self;\nself;"));
  EXPECT_EQ(session.where, "b3");
  EXPECT_EQ(session.eval("o.list[2] + o.name;"), "--> \"x!y\"\n");
}

TEST(Debugger, StopsAtErrorsBeforeTheyUnwind) {
  DebuggedSession session;
  session.debugger.setStopsAtErrors(true);
  std::string text, value;
  session.look = [&](const BobStop& stop) {
    text = stop.text;
    value = session.evaluated(0, "a + 1");
    EXPECT_EQ(session.evaluated(0, "nosuch"), "error: Unbound variable - nosuch");  // no stop in a stop
  };
  EXPECT_EQ(session.stopsOf("define f(a) {\n  local b = 2;\n  return a.nosuch + b;\n}\nf(41);"), "e3");
  EXPECT_EQ(text, "No property - nosuch");
  EXPECT_EQ(value, "42");
  EXPECT_NE(session.err.text.find("Error: No property - nosuch\n"), std::string::npos);
  session.debugger.setStopsAtErrors(false);
  session.err.take();
  EXPECT_EQ(session.stopsOf("f(1);"), "");
}

TEST(Debugger, PausesWhatRunsOnAndOn) {
  DebuggedSession session;
  session.look = [&](const BobStop&) { EXPECT_EQ(session.evaluated(0, "go = nil"), "nil"); };
  session.debugger.pause();
  EXPECT_EQ(session.stopsOf("\n\ngo = true;\n"), "p3");
  session.run("go = true;");
  static BobDebugger* debugger;
  debugger = &session.debugger;
  bobRestOften(session.interp, 100);
  bobSetRest(session.interp, [](BobInterp*) { debugger->pause(); });
  EXPECT_EQ(session.stopsOf("\nwhile (go)\n  go;").substr(0, 1), "p");
}

TEST(Profiler, CountsWhatFunctionsDo) {
  const char kSource[] =
      "define leaf(n) { local v = new Vector(100); return n; }\n"
      "define loop(n) { while (n > 0) { leaf(n); --n; } }\n"
      "define deep(n) { if (n > 0) deep(n - 1); }\n";
  std::string first;
  for (int run = 0; run < 2; ++run) {
    Session session;
    BobProfiler profiler;
    ASSERT_TRUE(bobTrace(session.interp, &profiler));
    session.run(kSource);
    session.eval("loop(1000);");
    session.eval("deep(20);");
    bobTrace(session.interp, nullptr);
    const std::vector<BobProfiler::Total> totals = profiler.totals();
    std::map<std::string, BobProfiler::Total> named;
    std::string all;
    for (size_t n = 0; n < totals.size(); ++n) {
      const BobProfileCounts &own = totals[n].own, &whole = totals[n].whole;
      named[profiler.functions()[n].name] = totals[n];
      all += profiler.functions()[n].name + " " + std::to_string(own.instructions) + " " + std::to_string(own.calls) +
             " " + std::to_string(own.bytes) + " " + std::to_string(own.collections) + " " +
             std::to_string(whole.instructions) + "\n";
    }
    EXPECT_EQ(named["leaf"].own.calls, 1000u);
    EXPECT_EQ(named["loop"].own.calls, 1u);
    EXPECT_EQ(named["deep"].own.calls, 21u);
    // A vector of 100 elements is 103 words.
    EXPECT_GE(named["leaf"].own.bytes, 1000u * 412);
    EXPECT_LT(named["leaf"].own.bytes, 1000u * 430);
    EXPECT_EQ(named["leaf"].own.collections, session.interp->collections);
    EXPECT_LT(named["loop"].own.bytes, 1000u);
    EXPECT_EQ(named["loop"].whole.instructions, named["loop"].own.instructions + named["leaf"].own.instructions);
    EXPECT_EQ(named["deep"].whole.instructions, named["deep"].own.instructions);
    EXPECT_EQ(profiler.functions()[0].name, "");
    uint64_t sum = 0;
    for (const BobProfileNode& node : profiler.nodes()) sum += node.own.instructions;
    EXPECT_EQ(totals[0].whole.instructions, sum);
    if (run == 0)
      first = all;
    else
      EXPECT_EQ(all, first);
  }
}

// Statements take the same place on the stack, one after the other. Where the first here ends, the second has the byte
// of a jump.
TEST(Profiler, CountsEachStatementAsCalled) {
  Session session;
  BobProfiler profiler;
  ASSERT_TRUE(bobTrace(session.interp, &profiler));
  session.run("define add(a, b) { return a + b; }\nx = 0;\nx = add(x, 2);");
  bobTrace(session.interp, nullptr);
  const std::vector<BobProfiler::Total> totals = profiler.totals();
  ASSERT_EQ(totals.size(), 5u);  // the host, three statements and the function
  for (size_t n = 1; n < totals.size(); ++n) EXPECT_EQ(totals[n].own.calls, 1u) << n;
}

TEST(Coverage, CountsLines) {
  TracedSession session;
  BobCoverage coverage(session.lookUp());
  ASSERT_TRUE(bobTrace(session.interp, &coverage));
  session.run("define f(a) {\n  if (a)\n    return 1;\n  return\n    2;\n}\nf(nil);\nx = f(nil);\n");
  bobTrace(session.interp, nullptr);
  const std::map<int, uint64_t> expected = {{1, 1}, {2, 2}, {3, 0}, {5, 2}, {7, 1}, {8, 1}};
  std::map<int, uint64_t> lines = coverage.lines()["test.bob"];
  lines.erase(4);
  lines.erase(6);
  EXPECT_EQ(lines, expected);
}

}  // namespace
