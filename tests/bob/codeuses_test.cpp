// What a program does with names, without running it.
#include "bob/tools/codeuses.h"

#include <gtest/gtest.h>

#include <sstream>

#include "bob/compile/statementreader.h"
#include "bob/session.h"

namespace {

std::vector<BobCodeUses> usesOf(const std::string& source) {
  Session session;
  std::vector<BobCodeUses> all;
  bobTry(session.interp, [&] {
    BobStringInput input(source);
    BobStatementReader statements(session.root(), &input);
    while (const BobValue method = statements.next())
      all.push_back(bobCodeUses(session.interp, bobMethodCode(session.interp, method)));
  });
  EXPECT_EQ(session.err.text, "") << source;
  return all;
}

std::string shown(const BobKnownValue& value) {
  switch (value.kind) {
    case BobKnownValue::unknown: return "?";
    case BobKnownValue::nil: return "nil";
    case BobKnownValue::truth: return "true";
    case BobKnownValue::integer: return std::to_string(value.number);
    case BobKnownValue::text: return "'" + value.name + "'";
    case BobKnownValue::symbol: return "\\" + value.name;
    case BobKnownValue::path: return value.name;
    case BobKnownValue::made: return "new " + value.name;
    case BobKnownValue::function: return "function " + std::to_string(value.number);
  }
  return "";
}

std::string shown(const BobCodeUses& code) {
  std::string text;
  for (const BobCodeUse& use : code.uses) {
    std::string arguments;
    for (const BobKnownValue& argument : use.arguments) arguments += (arguments.empty() ? "" : ", ") + shown(argument);
    const std::string member = shown(use.object) + "." + use.name;
    switch (use.kind) {
      case BobCodeUse::readGlobal: text += use.name; break;
      case BobCodeUse::setGlobal: text += use.name + " = " + shown(use.value); break;
      case BobCodeUse::readMember: text += member; break;
      case BobCodeUse::setMember: text += member + " = " + shown(use.value); break;
      case BobCodeUse::call: text += shown(use.object) + "(" + arguments + ")"; break;
      case BobCodeUse::send: text += member + "(" + arguments + ")"; break;
    }
    text += "; ";
  }
  return text;
}

// Of one statement.
std::string uses(const std::string& source) { return shown(usesOf(source).at(0)); }

TEST(CodeUses, PathsLeadThroughMembers) {
  EXPECT_EQ(uses("widgets.bar.SetFocus();"), "widgets; widgets.bar; widgets.bar.SetFocus(); ");
  EXPECT_EQ(uses("widgets.bar.value = 3;"), "widgets; widgets.bar; widgets.bar.value = 3; ");
  EXPECT_EQ(uses("widgets.bar.value += 3;"), "widgets; widgets.bar; widgets.bar.value; widgets.bar.value = ?; ");
  EXPECT_EQ(uses("list[2].name;"), "list; ?.name; ");
  EXPECT_EQ(uses("f(1, g(\"a\"), \\s);"), "f; g; g('a'); f(1, ?, \\s); ");
  EXPECT_EQ(uses("a = \\[b, c];"), "b; c; a = ?; ");
}

TEST(CodeUses, VariablesAreNoGlobals) {
  EXPECT_EQ(uses("{ local a = b, c; c = a.x; d = c; }"), "b; ?.x; d = ?; ");
  EXPECT_EQ(uses("define f(a) { return a + b; }"), "f = function 0; ");
  EXPECT_EQ(shown(usesOf("define f(a) { return a + b; }").at(0).functions.at(0)), "b; ");
}

TEST(CodeUses, WhatIsMadeAndSetIsKnown) {
  EXPECT_EQ(uses("t = new Timer(function () { x; }, 500, true);"),
            "Timer; new Timer.initialize(function 0, 500, true); t = new Timer; ");
  EXPECT_EQ(uses("t = new Timer;"), "Timer; t = new Timer; ");
  EXPECT_EQ(uses("define o.m() { }"), "o; o.m = function 0; ");
}

TEST(CodeUses, NothingIsKnownWherePathsMeet) {
  EXPECT_EQ(uses("a = b ? 1 : 2;"), "b; a = ?; ");
  EXPECT_EQ(uses("f(b && 1, 2);"), "f; b; f(?, 2); ");
  EXPECT_EQ(uses("switch (a) { case 1: b = 1; default: c = 2; }"), "a; b = 1; c = 2; ");
}

TEST(CodeUses, CodeThatLeavesABlockOpen) {
  const std::string loop = "while (a) { local b; switch (b) { case 1: continue; } ", plain = "while (a) { local b; ";
  EXPECT_TRUE(usesOf(loop + "}")[0].unevenAt);
  EXPECT_FALSE(usesOf(plain + "if (b) continue; }")[0].unevenAt);
  EXPECT_FALSE(usesOf("while (a) { switch (b) { case 1: continue; } }")[0].unevenAt);
  EXPECT_TRUE(usesOf("define f() { " + loop + "} }")[0].functions.at(0).unevenAt);
  EXPECT_EQ(usesOf("throw 1; try { throw 2; } catch (e) { }").size(), 2u);
  EXPECT_EQ(usesOf("{ throw 1; throw 2; }")[0].throws.size(), 2u);
}

// A statement compiles as long as the figure is within the compiler's buffers, and one instruction more is too much.
TEST(CodeUses, StatementsAreMeasuredAsTheCompilerDoes) {
  const auto statement = [](int outer, int inner) {
    std::ostringstream text;
    text << "{ ";
    for (int i = 0; i < outer; ++i) text << "x; ";
    text << "f = function () { ";
    for (int i = 0; i < inner; ++i) text << "x; ";
    text << "}; }";
    return text.str();
  };
  const BobCodeUses some = usesOf(statement(10, 20))[0], more = usesOf(statement(11, 22))[0];
  EXPECT_EQ(more.bytesToCompile - some.bytesToCompile, 3u * 3);
  const int outer = 600, most = 20 + int(4096 - usesOf(statement(outer, 20))[0].bytesToCompile) / 3;
  const BobCodeUses full = usesOf(statement(outer, most))[0];
  EXPECT_GT(full.bytesToCompile + 3, 4096u);
  EXPECT_LE(full.bytesToCompile, 4096u);
  Session session;
  EXPECT_TRUE(session.run("x = 1; " + statement(outer, most)));
  EXPECT_FALSE(session.run(statement(outer, most + 1)));
}

}  // namespace
