// Every binary operator in every shape of code that the translation treats differently, against a model in 64 bits.
#include <gtest/gtest.h>

#include "bob/session.h"

namespace {

const std::vector<int32_t> kValues = {0,          1,           -1,         7,           -8,         31,        33,
                                      0x3FFFFFFF, -0x40000000, 0x40000000, -0x40000001, 0x7FFFFFFF, INT32_MIN, 0x12345};

std::string Text(int32_t n) {
  return n < 0 ? "0x" + ([n] {
                   char t[16];
                   std::snprintf(t, 16, "%x", uint32_t(n));
                   return std::string(t);
                 })()
               : std::to_string(n);
}

// The code's shapes: OP is the operator, LIT a literal in place of b. ga and gb are globals of the same values.
const std::vector<std::string> kShapes = {
    "return a OP b;",
    "local r; r = a OP b; return r;",
    "return (a + 0) OP b;",
    "local r; r = (a + 0) OP b; return r;",
    "return ga OP gb;",
    "local r; r = ga OP gb; return r;",
    "return ga OP b;",
    "return a OP gb;",
    "local r; { local t = b; { local u = a; r = u OP t; } } return r;",
    "local r = 1, s; { local t = b; r; { local u; u = a OP t; s = u; } } return s;",
    "local f = function () { return a OP b; }; return f();",
    "local f = function () { return a; }; { local t = b, r; r = a OP t; return r; }",
    "local v = \\[a, b]; return v[0] OP v[1];",
    "local o = \\{ x: a, y: b }; return o.x OP o.y;",
    "return \\[5, a OP b][1];",
    "return { local t = a; t OP b; };",
    // The left operand waits for the right one, unless that changes it.
    "return a OP (b + 0);",
    "local r = a; r = r OP (b ^ 0); return r;",
    "local x = a; return x OP (x = b);",
    "local x = a, f = function () { x = 7; return b; }; return x OP f();",
    "local x = a, v = \\[b], i = 0; return x OP v[i + 0];",
    // So does what is stored into.
    "local o = \\{ x: 0 }; o.x = a OP b; return o.x;",
    "local o = \\{ x: 0 }, p = o; o.x = (o = a) OP b; return p.x;",
    "local v = \\[0, 0], i = 1; v[i] = a OP b; return v[1];",
    "local v = \\[0, 0], i = 1; v[i] = (i = a) OP b; return v[1];",
    "local v = \\[0, 0], i = 0; v[i + 1] = a OP b; return v[1];",
};
const std::vector<std::string> kLiteralShapes = {
    "return a OP LIT;",
    "local r; r = a OP LIT; return r;",
    "return (a + 0) OP LIT;",
    "local r; r = (a + 0) OP LIT; return r;",
    "local r; r = ga OP LIT; return r;",
    "{ local t = a, r; { local u; r = t OP LIT; } return r; }",
};

std::string Replace(std::string text, const std::string& what, const std::string& with) {
  for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
  return text;
}

template <typename Model>
void Check(Session& session, const std::string& body, const std::vector<int32_t>& rights, Model model) {
  BobInterp* interp = session.interp;
  ASSERT_TRUE(session.run("define t(a, b) { ga = a; gb = b; { " + body + " } }")) << body << session.answer();
  for (int32_t a : kValues) {
    for (int32_t b : rights) {
      BobValue result = 0;
      ASSERT_TRUE(bobTry(interp, [&] {
        const BobLocal left(interp, bobMakeInteger(interp, a));
        const BobValue right = bobMakeInteger(interp, b);
        result = bobCallByName(session.root(), "t", {left, right});
      })) << body;
      ASSERT_TRUE(bobIsInteger(interp, result)) << body;
      ASSERT_EQ(bobIntegerValue(interp, result), model(a, b)) << body << " with " << a << " and " << b;
    }
  }
}

int32_t Wrap(int64_t n) { return int32_t(uint32_t(uint64_t(n))); }

const std::pair<const char*, int32_t (*)(int64_t, int64_t)> kArithmetic[] = {
    {"+", [](int64_t a, int64_t b) { return Wrap(a + b); }},
    {"-", [](int64_t a, int64_t b) { return Wrap(a - b); }},
    {"*", [](int64_t a, int64_t b) { return Wrap(a * b); }},
    {"/", [](int64_t a, int64_t b) { return b == 0 ? 0 : Wrap(a / b); }},
    {"%", [](int64_t a, int64_t b) { return b == 0 ? 0 : Wrap(a % b); }},
    {"&", [](int64_t a, int64_t b) { return Wrap(a & b); }},
    {"|", [](int64_t a, int64_t b) { return Wrap(a | b); }},
    {"^", [](int64_t a, int64_t b) { return Wrap(a ^ b); }},
    {"<<", [](int64_t a, int64_t b) { return Wrap(int64_t(uint64_t(a) << (b & 31))); }},
    {">>", [](int64_t a, int64_t b) { return Wrap(a >> (b & 31)); }},
};

TEST(Superinstructions, ComputesWhatItsPartsWould) {
  for (const auto& [op, model] : kArithmetic) {
    Session session;
    for (const std::string& shape : kShapes) Check(session, Replace(shape, "OP", op), kValues, model);
    for (int32_t literal : kValues)
      for (const std::string& shape : kLiteralShapes)
        Check(session, Replace(Replace(shape, "OP", op), "LIT", Text(literal)), {literal}, model);
    if (std::string(op) != "%") Check(session, "local r = a; r " + std::string(op) + "= b; return r;", kValues, model);
  }
}

// Order goes by the sign of the 32-bit difference.
const std::pair<const char*, bool (*)(int64_t, int64_t)> kRelations[] = {
    {"<", [](int64_t a, int64_t b) { return Wrap(a - b) < 0; }},
    {"<=", [](int64_t a, int64_t b) { return Wrap(a - b) <= 0; }},
    {">", [](int64_t a, int64_t b) { return Wrap(a - b) > 0; }},
    {">=", [](int64_t a, int64_t b) { return Wrap(a - b) >= 0; }},
    {"==", [](int64_t a, int64_t b) { return a == b; }},
    {"!=", [](int64_t a, int64_t b) { return a != b; }},
};

TEST(Superinstructions, BranchesAsItsPartsWould) {
  const std::vector<std::string> uses = {
      "if (TEST) return 1; return 0;",
      "return (TEST || nil) ? 1 : 0;",
      "return (TEST && true) ? 1 : 0;",
      "local n = 0; while (TEST) { n = 1; break; } return n;",
      "local n = 0; for (; TEST;) { n = n + 1; if (n == 1) break; } return n;",
      "local n = 0, c; do { n = n + 1; c = n == 1; } while (c && TEST); return n - 1;",
      "local v = TEST; return v == true ? 1 : 0;",
      "{ local x = 1; { local y; if (TEST) return x; } } return 0;",
  };
  for (const auto& [relation, holds] : kRelations) {
    const auto model = [holds = holds](int32_t a, int32_t b) { return int32_t(holds(a, b)); };
    Session session;
    for (const std::string& use : uses) {
      for (const char* test : {"a OP b", "(a + 0) OP b", "ga OP gb", "a OP gb", "a OP (b + 0)"})
        Check(session, Replace(Replace(use, "TEST", test), "OP", relation), kValues, model);
      for (int32_t literal : kValues)
        for (const char* test : {"a OP LIT", "ga OP LIT"})
          Check(session, Replace(Replace(Replace(use, "TEST", test), "OP", relation), "LIT", Text(literal)), {literal},
                model);
    }
  }
}

// A loop's step, test and branch in one: how often it turns, from a on.
TEST(Superinstructions, CountsLoopsAsItsPartsWould) {
  Session session;
  for (const auto& [relation, holds] : kRelations) {
    for (const int step : {1, -1}) {
      const auto model = [&, holds = holds](int32_t a, int32_t b) {
        int32_t turns = 0;
        for (int64_t i = a; holds(i, b) && turns < 5; i = Wrap(i + step)) ++turns;
        return turns;
      };
      for (const char* limit : {"b", "LIT"}) {
        std::string loop =
            "local i, n = 0; for (i = a; i OP LIMIT; iSTEP) { if (n == 5) break; n++; if (n == 3) continue; n; }"
            " return n;";
        loop = Replace(Replace(Replace(loop, "LIMIT", limit), "OP", relation), "STEP", step > 0 ? "++" : "--");
        for (const int32_t b : kValues) Check(session, Replace(loop, "LIT", Text(b)), {b}, model);
      }
    }
  }
  session.run("define f(n) { local i, t = \"\"; for (i = 0.5; i < n; i++) t = t + toString(i) + \" \"; return t; }");
  EXPECT_EQ(session.eval("f(3);"), "--> \"0.5 1.5 2.5 \"\n");
}

// The steps of a program, which limits count, don't depend on what could be combined.
TEST(Superinstructions, TakesAsManyStepsAsEver) {
  static int steps;
  const auto count = [](const std::string& body) {
    Session session;
    session.run("define f(n) { " + body + " }");
    steps = 0;
    bobSetRest(session.interp, [](BobInterp*) { ++steps; });
    bobRestOften(session.interp, 1);
    EXPECT_TRUE(session.run("f(10);")) << session.answer();
    return steps;
  };
  const std::string loop = "for (i = 0; i < n; i++) i;";
  EXPECT_EQ(count("local i; " + loop), 23);
  EXPECT_EQ(count("local i; { local b, c, d; " + loop + " }"), 23);
  // From far away, and where a closure might have moved the variables, the jump to the test is a step as well.
  std::string deep = loop;
  for (int k = 0; k < 15; ++k) deep = "{ local a, b, c, d; " + deep + " }";
  EXPECT_EQ(count("local i; " + deep), 32);
  EXPECT_EQ(count("local i; { local g = function () { return i; }; " + loop + " }"), 32);
}

TEST(Superinstructions, StepsVariablesAcrossTheEdgeOfSmallIntegers) {
  Session session;
  const auto expect = [&](const char* body, auto model) {
    for (const char* wrap :
         {"BODY", "{ local t = 1; BODY }", "{ local f = function () { return a; }; { local t; BODY } }"})
      Check(session, Replace(wrap, "BODY", body), {0}, model);
  };
  expect("return a++ ^ a;", [](int32_t a, int32_t) { return a ^ Wrap(int64_t(a) + 1); });
  expect("return a-- ^ a;", [](int32_t a, int32_t) { return a ^ Wrap(int64_t(a) - 1); });
  expect("return ++a;", [](int32_t a, int32_t) { return Wrap(int64_t(a) + 1); });
  expect("return --a;", [](int32_t a, int32_t) { return Wrap(int64_t(a) - 1); });
  expect("a++; a++; return a;", [](int32_t a, int32_t) { return Wrap(int64_t(a) + 2); });
}

}  // namespace
