// The tree against the compiler: what one accepts, the other accepts, and where the compiler refuses, the tree's first
// error has its words.
#include "kit/language/bobtree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "kit/files.h"
#include "kit/language/randombob.h"
#include "kit/source/scripts.h"

namespace {

// Of the compiler.
struct Verdict {
  bool ok = true;
  std::string text;
  int line = 0;
  bool aboutSpace = false;  // what the tree doesn't know
};

// A compiler keeps the names that it has met, so each is used for a while only.
class Compiler {
 public:
  Verdict judge(const std::string& source) {
    if (uses++ % 20 == 0) compiler = std::make_unique<ScriptCompiler>();
    try {
      compiler->compile(source);
      return {};
    } catch (const ScriptError& e) {
      std::string text = e.what();
      constexpr std::string_view kPrefix = "Syntax error - ";
      if (text.starts_with(kPrefix)) text.erase(0, kPrefix.size());
      const bool space = text == "Too much code" || text == "too many literals" || text == "Insufficient memory";
      return {false, text, e.place.line, space};
    }
  }

 private:
  int uses = 0;
  std::unique_ptr<ScriptCompiler> compiler;
};

int lineOf(std::string_view source, size_t offset) {
  return 1 + int(std::count(source.begin(), source.begin() + std::ptrdiff_t(offset), '\n'));
}

// Every node lies in its parent and behind its elder brother, and every token but the end's lies in the root.
void expectSound(const BobTree& tree) {
  ASSERT_FALSE(tree.nodes.empty());
  for (uint32_t i = 0; i < tree.nodes.size(); ++i) {
    uint32_t end = tree.nodes[i].begin;
    for (const uint32_t child : tree.children(i)) {
      ASSERT_LT(child, i);
      ASSERT_EQ(tree.nodes[child].parent, i);
      ASSERT_GE(tree.nodes[child].begin, end);
      ASSERT_GE(tree.nodes[child].end, tree.nodes[child].begin);
      end = tree.nodes[child].end;
    }
    if (i != tree.root()) {
      ASSERT_LT(tree.nodes[i].parent, tree.nodes.size());
    }
    ASSERT_LE(end, std::max(tree.nodes[i].end, end));
  }
  for (const BobSyntaxError& error : tree.errors) ASSERT_LE(error.offset + error.length, tree.source.size());
}

// The two guesses that put a complaint where it helps, before the place where the compiler can't go on.
bool isGuess(const std::string& text) {
  return text == "the string is not closed on its line" || text == "Expecting '}', found 'define'" ||
         text == "Expecting '}', found 'function'";
}

// The compiler finds these later than they begin.
bool isFoundLater(const std::string& text) {
  return text == "Expecting an lvalue" || text == "Attempt to store into a constant" || text == "Duplicate case" ||
         text == kBobNestedTooDeep || text == "Expecting a closing single quote" || text == "string too long" ||
         text == "end of file in literal string";
}

struct Comparison {
  int accepted = 0, refused = 0, guessed = 0;
};

void compare(Compiler* compiler, const std::string& source, Comparison* sums) {
  const BobTree tree = parseBob(source);
  expectSound(tree);
  const Verdict verdict = compiler->judge(source);
  if (verdict.aboutSpace) return;
  ASSERT_EQ(tree.errors.empty(), verdict.ok) << source << "\n" << (verdict.ok ? tree.errors[0].text : verdict.text);
  if (verdict.ok) return void(++sums->accepted);
  ++sums->refused;
  const BobSyntaxError& first = tree.errors.front();
  const int line = lineOf(source, first.offset);
  if (isGuess(first.text) && first.text != verdict.text) {
    ++sums->guessed;
    ASSERT_LE(line, verdict.line) << source;
    return;
  }
  ASSERT_EQ(first.text, verdict.text) << source;
  ASSERT_LE(line, verdict.line) << source;
  if (isFoundLater(first.text)) return;
  // A string goes over lines, and the compiler has read it to its end.
  ASSERT_EQ(lineOf(source, first.offset + first.length), verdict.line) << source << "\n" << first.text;
}

TEST(BobTree, AcceptsWhatTheCompilerAccepts) {
  Compiler compiler;
  Comparison sums;
  RandomBob random(1);
  for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) {
    const std::string source = random.program();
    compare(&compiler, source, &sums);
    ASSERT_EQ(sums.refused, 0) << source;
  }
  EXPECT_GT(sums.accepted, 2900);
}

TEST(BobTree, RefusesWhatTheCompilerRefuses) {
  Compiler compiler;
  Comparison sums;
  RandomBob random(2);
  for (int i = 0; i < 6000 && !HasFatalFailure(); ++i) compare(&compiler, random.mutated(random.program()), &sums);
  EXPECT_GT(sums.accepted, 300);
  EXPECT_GT(sums.refused, 5000);
  EXPECT_LT(sums.guessed, 100);
}

TEST(BobTree, TakesAnyBytes) {
  Compiler compiler;
  Comparison sums;
  RandomBob random(3);
  for (int i = 0; i < 6000 && !HasFatalFailure(); ++i) compare(&compiler, random.bytes(), &sums);
  EXPECT_GT(sums.refused, 5000);
}

TEST(BobTree, AgreesOnEverySource) {
  Compiler compiler;
  Comparison sums;
  for (const char* folder : {"demo", "docs", "bench", "tests", "fuzz"})
    for (const auto& entry : std::filesystem::recursive_directory_iterator(std::string(VISTREL_ROOT) + "/" + folder)) {
      if (entry.path().extension() != ".bob") continue;
      SCOPED_TRACE(entry.path());
      const std::vector<uint8_t> bytes = readFile(entry.path().string());
      compare(&compiler, std::string(bytes.begin(), bytes.end()), &sums);
    }
  EXPECT_GT(sums.accepted, 25);
}

// Nested to the compiler's limits and a little beyond, in every way there is.
TEST(BobTree, NestsAsDeepAsTheCompiler) {
  struct Shape {
    const char *open, *inside, *close;
  };
  const Shape shapes[] = {{"(", "1", ")"},
                          {"{", "", "}"},
                          {"!", "1", ""},
                          {"a = ", "1", ""},
                          {"f(", "", ")"},
                          {"function () {", "", ";}"},
                          {"if (1) ", ";", ""},
                          {"\\[", "", "]"},
                          {"1 ? ", "1", " : 2"},
                          {"\\{ k: ", "1", "}"},
                          {"while (1) ", ";", ""},
                          {"switch (1) { case 1: ", "", "}"},
                          {"do ", ";", " while (1);"},
                          {"new (", "a", ")"}};
  Compiler compiler;
  Comparison sums;
  for (const Shape& shape : shapes)
    for (const int depth : {1,   19,  20,  21,  22,  50,  98,  99,  100, 101, 118, 119, 120, 121, 149, 150, 151, 198,
                            199, 200, 201, 202, 298, 299, 300, 301, 302, 594, 596, 597, 598, 599, 600, 601, 602, 700}) {
      std::string source;
      for (int i = 0; i < depth; ++i) source += shape.open;
      source += shape.inside;
      for (int i = 0; i < depth; ++i) source += shape.close;
      SCOPED_TRACE(std::string(shape.open) + " " + std::to_string(depth));
      compare(&compiler, source + ";\n", &sums);
      compare(&compiler, "x = " + source + ";\n", &sums);
    }
  EXPECT_GT(sums.accepted, 100);
  EXPECT_GT(sums.refused, 100);
}

// Much of everything: a parser that looks twice at what it has passed over would not get to the end.
TEST(BobTree, TakesLongSources) {
  for (const char* part : {"(",
                           "{",
                           "\\{ a: ",
                           "f(",
                           "a.",
                           "a + ",
                           "-",
                           "if (x) ",
                           "define f(",
                           "x = ) ",
                           "\"",
                           "/* ",
                           "; }",
                           "local a ",
                           "switch (x) { case 1: ",
                           "function () {\n",
                           "define f() {\n",
                           "{ ( ",
                           "] ) ",
                           "x y\n"}) {
    std::string source;
    while (source.size() < 400000) source += part;
    expectSound(parseBob(source));
  }
}

std::string dump(const BobTree& tree, uint32_t node) {
  static constexpr const char* kNames[] = {
      "source",      "missing",     "empty",    "block",  "locals",     "variable",   "define",    "if",     "while",
      "do",          "for",         "part",     "return", "break",      "continue",   "switch",    "case",   "default",
      "try",         "catch",       "finally",  "throw",  "expression", "parameters", "parameter", "comma",  "assign",
      "conditional", "or",          "and",      "binary", "prefix",     "chain",      "member",    "index",  "call",
      "step",        "name",        "selector", "number", "string",     "nil",        "symbol",    "vector", "object",
      "pair",        "parenthesis", "function", "super",  "new"};
  const BobNode& n = tree.nodes[node];
  std::string out = kNames[size_t(n.kind)];
  if (n.childCount == 0 && n.end > n.begin && n.kind >= BobNodeKind::kName) return std::string(tree.text(node));
  for (const uint32_t child : tree.children(node)) out += " " + dump(tree, child);
  return "(" + out + ")";
}

std::string dump(std::string_view source) {
  const BobTree tree = parseBob(source);
  return dump(tree, tree.root());
}

TEST(BobTree, HasTheShapeOfTheSource) {
  EXPECT_EQ(dump("a - b + c * -d;"), "(source (expression (binary a b (binary c (prefix d)))))");
  EXPECT_EQ(dump("x = y.z[1](2).w++, v;"),
            "(source (expression (comma (assign x (chain y (member z) (index 1) (call 2) (member w) (step))) v)))");
  EXPECT_EQ(dump("a ? b : c, d;"), "(source (expression (conditional a b (comma c d))))");
  EXPECT_EQ(
      dump("define o.p.m(a, b = 1, c..) { local d = 2, e; return \\{ P k: nil }; }"),
      "(source (define o p m (parameters (parameter a) (parameter b 1) (parameter c)) (block (locals (variable d 2) "
      "(variable e)) (return (object P (pair k nil))))))");
  EXPECT_EQ(dump("for (;; i++) if (a) b; else { }"),
            "(source (for (part) (part) (part (chain i (step))) (if a (expression b) (block))))");
  EXPECT_EQ(dump("switch (x) { case \\a: f(); default: break; }"),
            "(source (switch x (block (case \\a) (expression (chain f (call))) (default) (break))))");
  EXPECT_EQ(dump("f = function g() { super.m(1); new X(2).n; };"),
            "(source (expression (assign f (function g (parameters) (block (expression (super (member m) (call 1))) "
            "(expression (chain (new X (call 2)) (member n))))))))");
}

struct Recovery {
  const char* source;
  std::vector<std::string> errors;  // "LINE text"
  const char* tree;
};

// Each error once, and what stands around it understood.
TEST(BobTree, GoesOnBehindAnError) {
  const Recovery cases[] = {
      {"x = ;\ny = 2;\nz = * 3;\nw = (4;\nv = 5;",
       {"1 Expecting a primary expression", "3 Expecting a primary expression", "4 Expecting ')', found ';'"},
       "(source (expression (assign x (missing))) (expression (assign y 2)) (expression (assign z (binary (missing) "
       "3))) "
       "(expression (assign w (parenthesis 4))) (expression (assign v 5)))"},
      {"a = 1\nb = 2;",
       {"2 Expecting ';', found '<identifier>'"},
       "(source (expression (assign a 1)) (expression (assign b 2)))"},
      {"if (x { y; }\nif z) w;\nfoo();",
       {"1 Expecting ')', found '{'", "2 Expecting '(', found '<identifier>'"},
       "(source (if x (block (expression y))) (if z (expression w)) (expression (chain foo (call))))"},
      {"define f(a { a b c; return a; }\ng();",
       {"1 Expecting ')', found '{'", "1 Expecting ';', found '<identifier>'"},
       "(source (define f (parameters (parameter a)) (block (expression a) (return a))) (expression (chain g "
       "(call))))"},
      {"v = \\{ a: 1 b: 2, c: 3 };\nw = \\[1 2, 3];\nf(1 2)(3);",
       {"1 Expecting '}', found '<identifier>'", "2 Expecting ']', found '<integer>'",
        "3 Expecting ')', found '<integer>'"},
       "(source (expression (assign v (object (pair a 1)))) (expression (assign w (vector 1))) "
       "(expression (chain f (call 1) (call 3))))"},
      {"define f() {\n  if (a) {\n    b;\n}\n\ndefine g() { c; }\n",
       {"6 Expecting '}', found 'define'"},
       "(source (define f (parameters) (block (if a (block (expression b))))) (define g (parameters) (block "
       "(expression c))))"},
      {"a = \"text;\nb = \"more\";\nc = 1;",
       {"1 the string is not closed on its line", "2 Expecting ';', found '<identifier>'"},
       "(source (expression (assign a \"text;)) (expression (assign b \"more\")) (expression (assign c 1)))"},
      {"}\nwidgets.;\nbreak;\ntrue = 1;\n(a) = 2;\nlocal a;\nx = 1;",
       {"1 Expecting a primary expression", "2 Expecting a property selector", "3 Break outside of loop or switch",
        "4 Attempt to store into a constant", "5 Expecting an lvalue", "6 Expecting a primary expression"},
       nullptr},
  };
  for (const Recovery& each : cases) {
    SCOPED_TRACE(each.source);
    const BobTree tree = parseBob(each.source);
    std::vector<std::string> errors;
    for (const BobSyntaxError& error : tree.errors)
      errors.push_back(std::to_string(lineOf(each.source, error.offset)) + " " + error.text);
    EXPECT_EQ(errors, each.errors);
    if (!each.tree) continue;
    EXPECT_EQ(dump(tree, tree.root()), each.tree);
  }
}

TEST(BobTokens, HaveTheValuesOfTheScanner) {
  const std::pair<const char*, int32_t> numbers[] = {{"42", 42},
                                                     {"0x1f", 31},
                                                     {"0X", 0},
                                                     {"017", 15},
                                                     {"08", 8},
                                                     {"'a'", 97},
                                                     {"'\\n'", 10},
                                                     {"'\\x41'", 65},
                                                     {"'\\u20ac'", 0x20ac},
                                                     {"'\\101'", 65},
                                                     {"0", 0},
                                                     {"4294967295", -1},
                                                     {"99999999999999999999", -1},
                                                     {"0xFFFFFFFFF", -1}};
  for (const auto& [text, value] : numbers) {
    const BobTokens tokens = bobTokensOf(text);
    ASSERT_EQ(tokens.all.size(), 2u) << text;
    EXPECT_EQ(tokens.all[0].kind, BobTokenKind::kInteger) << text;
    EXPECT_EQ(tokens.all[0].value, value) << text;
  }
  const std::string_view source = "a /* b */ 1..2 // c\n";
  const BobTokens tokens = bobTokensOf(source);
  std::vector<std::string_view> texts;
  for (const BobSourceToken& token : tokens.all) texts.push_back(source.substr(token.begin, token.end - token.begin));
  EXPECT_EQ(texts, (std::vector<std::string_view>{"a", "/* b */", "1.", ".2", "// c", ""}));
  EXPECT_EQ(tokens.at(0), 0u);
  EXPECT_EQ(tokens.at(1), 1u);
  EXPECT_EQ(tokens.at(11), 2u);
  EXPECT_EQ(tokens.at(100), 5u);
}

}  // namespace
