#include "kit/language/bobsymbols.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "bob/base/opcodes.h"
#include "bob/compile/statementreader.h"
#include "bob/heap/interp.h"
#include "kit/language/boboutline.h"
#include "kit/language/randombob.h"
#include "kit/run/bobruntime.h"

namespace {

struct Known {
  explicit Known(std::string_view text) : source(text), tree(parseBob(source)), symbols(symbolsOf(tree)) {}
  std::string source;
  BobTree tree;
  BobSymbols symbols;

  size_t at(std::string_view text) const {
    const size_t place = source.find(text);
    EXPECT_NE(place, std::string::npos) << text;
    return place;
  }
};

// The place that the vertical bar marks, which is taken out.
struct Marked {
  explicit Marked(std::string text) : offset(text.find('|')), known(text.erase(offset, 1)) {}
  size_t offset;
  Known known;
};

// -- against the compiler

// By the offset of the name: whether the code that loads it takes it from the globals.
std::map<size_t, bool> globalsOfCode(const std::string& source) {
  std::vector<size_t> lines{0};
  for (size_t end = source.find('\n'); end != std::string::npos; end = source.find('\n', end + 1))
    lines.push_back(end + 1);
  std::map<size_t, bool> found;
  BobRuntime runtime;
  bobSetCodeListener(runtime.interp, [&](BobInterp* interp, BobValue code, const BobCodeNotes& notes) {
    const std::string_view bytes = interp->stringOf(interp->words(code)[BobLayout::kCodeElements]);
    for (const auto& [offset, place] : notes.instructions) {
      const auto opcode = uint8_t(bytes[size_t(offset)]);
      if (opcode != kOpEref && opcode != kOpGref) continue;
      found[lines[size_t(place.line) - 1] + size_t(place.column) - 1] = opcode == kOpGref;
    }
  });
  bobTry(runtime.interp, [&] {
    BobStringInput input(source);
    BobStatementReader statements(bobRootScope(runtime.interp), &input);
    while (statements.next()) {
    }
  });
  return found;
}

TEST(BobSymbols, KnowVariablesFromGlobalsAsTheCompilerDoes) {
  RandomBob random(4);
  size_t globals = 0, variables = 0;
  for (int i = 0; i < 2000; ++i) {
    const std::string program = random.program();
    const Known known(i % 2 ? program : "define all(va, pb) { local vb = va; { local a; " + program + "\n} }");
    if (!known.tree.errors.empty()) continue;  // a comment at the end took the braces
    for (const auto& [offset, isGlobal] : globalsOfCode(known.source)) {
      const BobUse* use = known.symbols.useAt(offset);
      if (!use || use->offset != offset) continue;  // super takes `this` without a name
      const BobSymbolKind kind = known.symbols.symbols[use->symbol].kind;
      ASSERT_EQ(kind == BobSymbolKind::kGlobal, isGlobal) << known.source << "\n" << known.source.substr(offset, 20);
      ++(isGlobal ? globals : variables);
    }
  }
  EXPECT_GT(globals, 5000u);
  EXPECT_GT(variables, 1000u);
}

// -- definitions and scopes

std::string definitionAt(const Known& known, size_t offset) {
  const BobUse* use = known.symbols.useAt(offset);
  if (!use) return "none";
  const BobUse* definition = known.symbols.definitionOf(use->symbol);
  if (!definition) return "nowhere";
  const auto line = 1 + std::count(known.source.begin(), known.source.begin() + definition->offset, '\n');
  return std::to_string(line);
}

TEST(BobSymbols, FindDefinitions) {
  const Known known(
      "count = 0;\n"
      "define Box.put(value,\n"
      "  times = value) {\n"
      "  local value2 = count, count =\n"
      "    count + 1;\n"
      "  this.kept = value; return count + times; }\n"
      "box = \\{ Box\n"
      "  kept: 3 };\n"
      "box.put(count), box.kept++, unknown(\\put);\n");
  EXPECT_EQ(definitionAt(known, known.at("count,")), "1");     // before the variable of that name
  EXPECT_EQ(definitionAt(known, known.at("count + 1")), "1");  // not visible in its own value
  EXPECT_EQ(definitionAt(known, known.at("count + times")), "4");
  EXPECT_EQ(definitionAt(known, known.at("value) {")), "2");
  EXPECT_EQ(definitionAt(known, known.at("times; }")), "3");
  EXPECT_EQ(definitionAt(known, known.at("put(count)")), "2");
  EXPECT_EQ(definitionAt(known, known.at("put);")), "2");
  EXPECT_EQ(definitionAt(known, known.at("kept++")), "8");
  EXPECT_EQ(definitionAt(known, known.at("unknown")), "nowhere");
  EXPECT_EQ(definitionAt(known, known.at("= 0")), "none");

  const BobSymbol* count = known.symbols.find(BobSymbolKind::kGlobal, "count");
  ASSERT_TRUE(count);
  EXPECT_EQ(count->uses.size(), 4u);
  const BobSymbol* kept = known.symbols.find(BobSymbolKind::kSelector, "kept");
  ASSERT_TRUE(kept);
  std::vector<BobUseKind> kinds;
  for (const uint32_t use : kept->uses) kinds.push_back(known.symbols.uses[use].kind);
  EXPECT_EQ(kinds, (std::vector{BobUseKind::kWrite, BobUseKind::kDefine, BobUseKind::kWrite}));
}

std::string variables(const Marked& marked) {
  std::string names;
  for (const uint32_t symbol : marked.known.symbols.variablesAt(marked.offset))
    names += (names.empty() ? "" : " ") + marked.known.symbols.symbols[symbol].name;
  return names;
}

TEST(BobSymbols, SeeTheVariablesAroundACursor) {
  const std::string source =
      "define f(a, b = 1) { local c = 2, d; if (a) { local a; 1; } return function (e) { 2; }; 3; }\n4;";
  const auto at = [&](const char* place) {
    std::string marked = source;
    return variables(Marked(marked.insert(marked.find(place), "|")));
  };
  EXPECT_EQ(at("1; }"), "a c d this _next b");
  EXPECT_EQ(at("2; };"), "this _next e c d a b");
  EXPECT_EQ(at("3;"), "c d this _next a b");
  EXPECT_EQ(at("4;"), "");
  EXPECT_EQ(at("2, d"), "this _next a b");
  // Where the source breaks off, the blocks that are open go on.
  EXPECT_EQ(variables(Marked("define f(a) { local b; while (b) { x = |")), "b this _next a");
}

// -- objects

std::string classText(const BobSymbols& symbols, std::string_view name) {
  const BobClass* found = symbols.findClass(name);
  if (!found) return "none";
  std::string text = found->parent + ":";
  for (const BobClass::Member& member : found->members) {
    text += " " + member.name;
    if (!member.isMethod) continue;
    text += "(";
    for (const std::string& parameter : member.parameters) text += (text.back() == '(' ? "" : ", ") + parameter;
    text += ")";
  }
  return text;
}

TEST(BobSymbols, KnowObjectsByWhatTheyAreGiven) {
  const Known known(
      "Shape = \\{ area: nil, draw: function (where) { this.drawn = true; } };\n"
      "Round = \\{ Shape radius: 1 };\n"
      "define Round.initialize(r = 1, all..) { this.radius = r; this.set = function () { this.lost = 1; }; return "
      "this; }\n"
      "KOVA.time = 5;\n"
      "one = new Round(2);\n"
      "widgets.bar.value = 3;\n"
      "define f(widgets) { local own = \\{ x: 1 }; own.y = 2; widgets.z = 1; }\n");
  EXPECT_EQ(classText(known.symbols, "Shape"), "Object: area draw(where) drawn");
  EXPECT_EQ(classText(known.symbols, "Round"), "Shape: radius initialize(r = 1, all..) lost set()");
  EXPECT_EQ(classText(known.symbols, "KOVA"), ": time");
  EXPECT_EQ(classText(known.symbols, "one"), "Round:");
  EXPECT_EQ(classText(known.symbols, "widgets.bar"), ": value");
  EXPECT_EQ(classText(known.symbols, "own"), "none");
  EXPECT_EQ(classText(known.symbols, "widgets"), "none");
}

// -- the cursor

std::string cursorText(const std::string& text) {
  static constexpr const char* kKinds[] = {"nothing", "name", "member", "symbol", "new", "key"};
  const Marked marked(text);
  const BobCursor cursor = cursorAt(marked.known.tree, marked.known.symbols, marked.offset);
  std::string out = kKinds[cursor.kind];
  out += " '" + marked.known.source.substr(cursor.begin, cursor.end - cursor.begin) + "'";
  if (cursor.kind == BobCursor::kMember) out += " " + cursor.chain + " is " + cursor.object;
  return out;
}

TEST(BobCursor, KnowsWhatMayStandThere) {
  EXPECT_EQ(cursorText("x = a|;"), "name 'a'");
  EXPECT_EQ(cursorText("x = | ;"), "name ''");
  EXPECT_EQ(cursorText("|"), "name ''");
  EXPECT_EQ(cursorText("ret|urn 1;"), "name 'return'");
  EXPECT_EQ(cursorText("x = widgets.|;\ny = 1;"), "member '' widgets is ");
  EXPECT_EQ(cursorText("widgets.bar[i + 1].va| = 2;"), "member 'va' widgets.bar[i + 1] is ");
  EXPECT_EQ(cursorText("f(x, g(a).|"), "member '' g(a) is ");
  EXPECT_EQ(cursorText("x = \\na|me;"), "symbol 'name'");
  EXPECT_EQ(cursorText("o.Exists(\\|)"), "symbol ''");
  EXPECT_EQ(cursorText("define na|"), "new 'na'");
  EXPECT_EQ(cursorText("define f(a, |) { }"), "new ''");
  EXPECT_EQ(cursorText("define f(a, b = |) { }"), "name ''");
  EXPECT_EQ(cursorText("{ local a = 1, |; }"), "new ''");
  EXPECT_EQ(cursorText("f(a, |)"), "name ''");
  EXPECT_EQ(cursorText("x = \\{ |"), "key ''");
  EXPECT_EQ(cursorText("x = \\{ a: 1, b|: 2 };"), "key 'b'");
  EXPECT_EQ(cursorText("x = \\{ a: | };"), "name ''");
  EXPECT_EQ(cursorText("x = 12|;"), "nothing ''");
  EXPECT_EQ(cursorText("x = \"a.|\";"), "nothing ''");
  EXPECT_EQ(cursorText("x = \"a\"|;"), "name ''");
  EXPECT_EQ(cursorText("// a.|"), "nothing ''");
  EXPECT_EQ(cursorText("/* a.| */"), "nothing ''");
}

TEST(BobCursor, KnowsWhatStandsBeforeThePoint) {
  const std::string shapes =
      "Shape = \\{}; Round = \\{ Shape r: 1 };\n"
      "define Round.f(p) { local o = new Round(1), s = \"text\", both = 1; both = \"\"; ";
  EXPECT_EQ(cursorText(shapes + "this.|"), "member '' this is Round");
  EXPECT_EQ(cursorText(shapes + "super.|"), "member '' super is Shape");
  EXPECT_EQ(cursorText(shapes + "o.|"), "member '' o is Round");
  EXPECT_EQ(cursorText(shapes + "s.|"), "member '' s is String");
  EXPECT_EQ(cursorText(shapes + "both.|"), "member '' both is ");
  EXPECT_EQ(cursorText(shapes + "p.|"), "member '' p is ");
  EXPECT_EQ(cursorText(shapes + "Round.|"), "member '' Round is Round");
  EXPECT_EQ(cursorText(shapes + "new Round(1, 2).|"), "member '' new Round(1, 2) is Round");
  EXPECT_EQ(cursorText(shapes + "\\[1, 2].|"), "member '' \\[1, 2] is Vector");
  EXPECT_EQ(cursorText(shapes + "\"x\".|"), "member '' \"x\" is String");
  EXPECT_EQ(cursorText(shapes + "\\x.|"), "member '' \\x is Symbol");
  EXPECT_EQ(cursorText(shapes + "(3).|"), "member '' (3) is Integer");
  EXPECT_EQ(cursorText("a.b.c = 1; x = a.b.|"), "member '' a.b is a.b");
}

std::string callText(const std::string& text) {
  const Marked marked(text);
  BobCallAt call;
  if (!callAt(marked.known.tree, marked.known.symbols, marked.offset, &call)) return "none";
  return (call.isMethod ? call.object + "." : "") + call.name + " " + std::to_string(call.argument);
}

TEST(BobCursor, KnowsTheCallAroundIt) {
  EXPECT_EQ(callText("f(|"), "f 0");
  EXPECT_EQ(callText("f(a, b|)"), "f 1");
  EXPECT_EQ(callText("f(a, g(b), \\[1, 2], (3, 4), |"), "f 4");
  EXPECT_EQ(callText("f(a, (b + |"), "f 1");
  EXPECT_EQ(callText("f(a, \\{ k: 1, l: |"), "f 1");
  EXPECT_EQ(callText("Box = \\{}; Box.put(1, |);"), "Box.put 1");
  EXPECT_EQ(callText("x = new Box(1, |"), "Box.initialize 1");
  EXPECT_EQ(callText("v[0](1, |"), " 1");
  EXPECT_EQ(callText("f(function () { x; | })"), "none");
  EXPECT_EQ(callText("define f(a, |"), "none");
  EXPECT_EQ(callText("x = function (a, |"), "none");
  EXPECT_EQ(callText("if (a, |"), "none");
  EXPECT_EQ(callText("for (i = 0; |"), "none");
  EXPECT_EQ(callText("f(a)|"), "none");
}

// Whatever the source and the offset, an editor may ask.
TEST(BobCursor, TakesAnySourceAndOffset) {
  RandomBob random(5);
  for (int i = 0; i < 300; ++i) {
    const Known known(i % 2 ? random.bytes() : random.mutated(random.program()));
    const size_t step = 1 + known.source.size() / 50;
    for (size_t offset = 0; offset <= known.source.size() + 1; offset += step) {
      const BobCursor cursor = cursorAt(known.tree, known.symbols, offset);
      ASSERT_LE(cursor.begin, cursor.end);
      ASSERT_LE(cursor.end, known.source.size());
      BobCallAt call;
      callAt(known.tree, known.symbols, offset, &call);
      known.symbols.variablesAt(offset);
    }
    outlineOf(known.tree);
    for (const BobFold& fold : foldsOf(known.tree)) ASSERT_LT(fold.begin, fold.end);
    uint32_t end = 0;
    for (const BobSemanticToken& token : semanticTokensOf(known.tree, known.symbols)) {
      ASSERT_GE(token.offset, end);
      ASSERT_GT(token.length, 0u);
      end = token.offset + token.length;
      ASSERT_LE(end, known.source.size());
    }
  }
}

// -- outline, folds, colours

void write(const std::vector<BobOutlineItem>& items, int depth, std::string* out) {
  static constexpr const char* kKinds[] = {"function", "method", "object", "property", "variable"};
  for (const BobOutlineItem& item : items) {
    *out += std::string(size_t(depth) * 2, ' ') + kKinds[item.kind] + " " + item.name + item.detail + "\n";
    write(item.children, depth + 1, out);
  }
}

TEST(BobOutline, NestsWhatIsDefined) {
  const Known known(
      "a = 1, b = \\{ k: 1, m: function (x) { define inner() { } } };\n"
      "a = 2;\n"
      "define f(p, q = 2) { local c = function () { }; c.go = function (e..) { }; x = 3; }\n"
      "define  Box . put(v) { return function name() { }; }\n"
      "define broken( ;\n");
  std::string text;
  write(outlineOf(known.tree), 0, &text);
  EXPECT_EQ(text,
            "variable a\n"
            "object b\n"
            "  property k\n"
            "  method m(x)\n"
            "    function inner()\n"
            "function f(p, q = 2)\n"
            "  method c.go(e..)\n"
            "method Box.put(v)\n"
            "  function name()\n"
            "function broken()\n");
}

TEST(BobOutline, FoldsWhatGoesOverLines) {
  const Known known(
      "// one\n// two\n\ndefine f() {\n  if (a) {\n    b;\n  } else {\n    c; // three\n  }\n}\n"
      "call(function () {\n  x;\n});\n/* a\n b */ v = \\[1,\n2];\n");
  std::vector<std::pair<int, int>> lines;
  for (const BobFold& fold : foldsOf(known.tree)) {
    const auto line = [&](uint32_t offset) {
      return 1 + int(std::count(known.source.begin(), known.source.begin() + offset, '\n'));
    };
    lines.emplace_back(line(fold.begin), line(fold.end));
  }
  EXPECT_EQ(lines, (std::vector<std::pair<int, int>>{{1, 2}, {4, 10}, {5, 7}, {7, 9}, {11, 13}, {14, 15}, {15, 16}}));
}

TEST(BobOutline, TellsTheKindsOfTokens) {
  const Known known("define f(a) { local b = a.size; o.run(\\key, nil); return f(b + g); } // end\n");
  static constexpr const char* kKinds[] = {"comment",  "keyword", "string",   "number",    "operator",
                                           "function", "method",  "property", "parameter", "variable",
                                           "global",   "symbol",  "constant"};
  std::string text;
  for (const BobSemanticToken& token : semanticTokensOf(known.tree, known.symbols))
    text += known.source.substr(token.offset, token.length) + ":" + kKinds[size_t(token.kind)] +
            (token.isDefinition ? "! " : " ");
  EXPECT_EQ(text,
            "define:keyword f:function! a:parameter! local:keyword b:variable! =:operator a:parameter size:property "
            "o:global run:method \\key:symbol nil:constant return:keyword f:function b:variable +:operator g:global "
            "// end:comment ");
}

}  // namespace
