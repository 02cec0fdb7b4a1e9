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
      return {false, text, e.line, space};
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
         text == "Stack overflow" || text == "Expecting a closing single quote" || text == "string too long" ||
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

}  // namespace
