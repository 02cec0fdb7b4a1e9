// Properties that hold for any program.
#include <gtest/gtest.h>

#include <map>
#include <random>

#include "bob/compile/statementreader.h"
#include "bob/session.h"

namespace {

// Writes random statements over a few globals. Values may be wrong for an operation: errors are part of the outcome.
class Writer {
 public:
  explicit Writer(uint32_t seed) : random(seed) {}

  std::string program() {
    std::string out = "a = 3; b = -7; c = 1.5; s = \"st\"; v = \\[1, 2, 3]; o = \\{ k: 1, m: \"x\" };\n";
    mayCall = false;  // endless recursion ends where memory does, and that differs
    out += "define f(x, y = 2) { local z = " + expression(2, "x") + "; " + statement(2) + " return z; }\n";
    mayCall = true;
    for (int i = 0; i < 6; ++i) out += statement(3) + "\n";
    return out + "stdout.Print(a, b, c, s, v, o.k);\n";
  }

 private:
  int pick(int n) { return int(random() % uint32_t(n)); }
  std::string name() { return std::string(1, "aaaaaaabbbbbbbccccccsv"[pick(22)]); }
  std::string number() { return std::to_string(random() % 7 ? random() % 20 : random() & 0x7FFFFFFF); }

  std::string expression(int depth, const std::string& variable = "") {
    const auto sub = [&] { return expression(depth - 1, variable); };
    if (depth == 0) return pick(3) == 0 && !variable.empty() ? variable : pick(2) ? name() : number();
    switch (pick(10)) {
      case 0: return "(" + sub() + (pick(2) ? " + " : " - ") + sub() + ")";
      case 1: return "(" + sub() + (pick(2) ? " * " : " / ") + sub() + ")";
      case 2: return "(" + sub() + (pick(2) ? " < " : " == ") + sub() + ")";
      case 3: return "(" + sub() + (pick(2) ? " && " : " || ") + sub() + ")";
      case 4: return "(" + sub() + " ? " + sub() + " : (" + sub() + "))";
      case 5: return "v[" + std::to_string(pick(4)) + "]";
      case 6: return pick(2) ? "o.k" : "(o.k = " + sub() + ")";
      case 7: return "\\[" + sub() + ", " + sub() + "].size";
      case 8: return "(function (p) { return " + expression(depth - 1, "p") + "; })(" + sub() + ")";
      default: return "(- " + sub() + ")";
    }
  }

  std::string statement(int depth) {
    if (depth == 0) return name() + " = " + expression(2) + ";";
    switch (pick(7)) {
      case 0: return "if (" + expression(2) + ") " + statement(depth - 1) + " else " + statement(depth - 1);
      case 1: {
        const std::string i = "i" + std::to_string(depth);
        return "{ local " + i + "; for (" + i + " = 0; " + i + " < 3; " + i + "++) { local t = " + i + "; " +
               statement(depth - 1) + " if (t == 1) " + (pick(2) ? "continue" : "break") + "; } }";
      }
      case 2:
        return "switch (" + expression(1) + ") { case 1: " + statement(depth - 1) +
               " break; case \"st\": default: " + statement(depth - 1) + " }";
      case 3: return "v.Push(" + expression(1) + ");";
      case 4: return mayCall ? "b = f(" + expression(2) + ");" : statement(0);
      case 5: return "o." + std::string(1, "klmnpq"[pick(6)]) + " = " + expression(2) + ";";
      default: return statement(0);
    }
  }

  std::mt19937 random;
  bool mayCall = false;
};

// Statement by statement until an error: what has been printed, errors included.
std::string RunSource(const std::string& source, bool collectAlways) {
  Session session;
  if (collectAlways) bobCollectAlways(session.interp);
  session.run(source);
  return session.answer();
}

std::string RunCompiled(const std::string& source) {
  Session session;
  TextStream records;
  BobStringInput input(source);
  bobTry(session.interp, [&] {
    BobStatementReader statements(session.root(), &input);
    while (const BobValue method = statements.next())
      bobWriteValue(session.interp, bobMethodCode(session.interp, method), &records);
  });
  BobStringInput again(records.text);
  bobLoadObjectStream(session.root(), &again);
  return session.answer();
}

TEST(RandomPrograms, DoTheSameRunCompiledAndWithACollectionAtEveryAllocation) {
  int errors = 0;
  for (uint32_t seed = 0; seed < 400; ++seed) {
    const std::string source = Writer(seed).program();
    const std::string plain = RunSource(source, false);
    errors += plain.starts_with("Error");
    ASSERT_EQ(RunSource(source, true), plain) << source;
    ASSERT_EQ(RunCompiled(source), plain) << source;
  }
  // Both outcomes have to come up for this to say anything.
  EXPECT_GT(errors, 40);
  EXPECT_LT(errors, 360);
}

// Sets and gets on an object and its parents against plain maps, with collections in between.
TEST(RandomProperties, AgreeWithASlowModel) {
  std::mt19937 random(7);
  Session session;
  BobInterp* interp = session.interp;
  session.run(
      "define get(o, k) { return o.Exists(k) ? o[k] : nil; } define set(o, k, v) { o[k] = v; } "
      "define fixed(o) { return o.Exists(\\k3) ? o.k3 : nil; } p0 = \\{}; p1 = new p0; p2 = new p1;");
  std::map<std::string, int> model[3];
  const auto global = [&](const char* name) {
    BobValue value = kBobNil;
    bobFindGlobal(interp, session.root()->object, bobIntern(interp, name), &value);
    return value;
  };
  const char* const names[] = {"p0", "p1", "p2"};
  for (int round = 0; round < 6000; ++round) {
    const int which = int(random() % 3), key = int(random() % 40), value = int(random() % 1000);
    const std::string name = "k" + std::to_string(key);
    const BobLocal symbol(interp, bobIntern(interp, name));
    if (random() % 3 == 0) {
      bobCallByName(session.root(), "set", {global(names[which]), symbol, bobSmall(value)});
      model[which][name] = value;
    }
    const auto expected = [&](const std::string& text) {
      for (int i = which; i >= 0; --i)
        if (const auto found = model[i].find(text); found != model[i].end()) return bobSmall(found->second);
      return kBobNil;
    };
    ASSERT_EQ(bobCallByName(session.root(), "get", {global(names[which]), symbol}), expected(name)) << round;
    ASSERT_EQ(bobCallByName(session.root(), "fixed", {global(names[which])}), expected("k3")) << round;
    if (random() % 50 == 0) bobCollect(interp);
  }
}

}  // namespace
