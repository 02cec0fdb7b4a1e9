// Errors of scripts say in which line of which source they are.
#include <algorithm>
#include <regex>

#include "kit/files.h"
#include "kit/lines/bobmap.h"
#include "kit/run/pagerun.h"
#include "kit/source/pagebuild.h"
#include "support/pagefixture.h"

namespace {

namespace fs = std::filesystem;

class LinesTest : public PageTest {
 protected:
  // The log of a page that is loaded, with its lines.
  std::string logOf(const std::string& page, const std::vector<PageAction>& actions = {}) {
    PageRunOptions options;
    options.lines = true;
    PageRun run(options);
    EXPECT_TRUE(run.load(page));
    for (const PageAction& action : actions) run.act(action);
    warnings.clear();
    for (const KitMessage& warning : run.lineWarnings()) warnings += warning.whole() + "\n";
    return run.logWithPlaces();
  }

  static std::string text(const std::string& name) {
    const std::vector<uint8_t> bytes = readFile(name);
    return {bytes.begin(), bytes.end()};
  }

  std::string warnings;
};

// Places of the names in a traceback, the innermost first.
std::vector<std::string> placesIn(const std::string& log) {
  std::vector<std::string> places;
  const std::regex place(" at (\\S+)\n");
  for (std::sregex_iterator at(log.begin(), log.end(), place), end; at != end; ++at) places.push_back((*at)[1]);
  return places;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
  for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
    text.replace(at, what.size(), by);
  return text;
}

// In each source every @ is a statement. One after the other is made to fail, and must be found in the line in which it
// was written.
TEST_F(LinesTest, AFaultIsInItsLineHoweverTheScriptIsWritten) {
  const std::pair<const char*, const char*> cases[] = {
      {"plain", "page:\n  onLoad: @ @\n"},
      {"plain over lines", "page:\n  x: 0\n  onLoad: @\n    @\n\n    @ @\n\n\n    @\n  y: 0\n"},
      {"plain, on a line of its own", "page:\n  onLoad:\n    @\n    @\n"},
      {"single quotes", "page:\n  onLoad: '@ x = ''a''; @\n\n    y = ''b'';\n    @ @'\n"},
      {"single quotes, begun by a line", "page:\n  onLoad: '\n    @\n    @'\n"},
      {"double quotes",
       "page:\n  onLoad: \"@ x = \\\"\\x41\\u00e9 \\\\n\\\"; \\\n    @\n    @\\n @ \\t\n    \\n\\n@ \\\n      @\"\n"},
      {"double quotes in a flow", "page: {\n  x: 0, onLoad: \"@\n  @\", y: 0,\n  onUnload: '1;'}\n"},
      {"literal", "page:\n  onLoad: |\n    @\n\n    @ @\n     @\n  x: 0\n"},
      {"literal with indicators", "page:\n  onLoad: !script |2-\n\n\n      @\n    @\n\n"},
      {"folded", "page:\n  onLoad: >\n    @\n    @\n\n    @\n      @\n      @\n\n\n    @\n  x: 0\n"},
      {"folded with indicators", "page:\n  onLoad: &a !script >-  # why\n\n    @\n\n    @ @\n"},
      {"strings and comments", "page:\n  onLoad: |\n    // @@ none\n    x = \"a\n      b\"; @\n    /* \n     */ @\n"},
      {"expressions",
       "constants: {word: b, lines: \"1;\\n2;\\n3;\\n\"}\n"
       "page:\n  onLoad: |\n    x = \"$(word)\"; @\n    $(lines) @\n    @ $(1 +\n    2); @\n  onUnload: '1;'\n"},
      {"expressions, folded",
       "constants: {w: some words}\npage:\n  onLoad: >\n    x = \"$(w) $$(\"; @\n    @ \"$(w)\";\n    @\n"},
      {"a script from a constant", "constants:\n  code: |\n    @\n    @\npage:\n  onLoad: $(code)\n"},
      {"a template",
       "templates:\n  t:\n    parameters: {n: 1}\n    type: image\n    name: b$(n)\n    onFocus: |\n      x = $(n);\n"
       "      @\n      @\npage:\n  type: group\n  start: b2\n  children:\n  - {template: t}\n"
       "  - {template: t, with: {n: 2}}\n"},
      {"repetition",
       "page:\n  type: group\n  start: b1\n  children:\n  - repeat: 3\n    type: image\n    name: b$(index)\n"
       "    onFocus: |\n      x = $(index);\n      @\n"},
      {"an alias",
       "page:\n  type: group\n  start: b\n  children:\n  - {type: image, name: a, onFocus: &s '@\n      @'}\n"
       "  - {type: image, name: b, onFocus: *s}\n"},
  };
  for (const auto& [name, source] : cases) {
    const std::string pattern = source;
    for (size_t fault = pattern.find('@'); fault != std::string::npos; fault = pattern.find('@', fault + 1)) {
      if (pattern.substr(fault).starts_with("@@")) {
        ++fault;
        continue;
      }
      const std::string text =
          replaced(pattern.substr(0, fault), "@", "1;") + "nosuch;" + replaced(pattern.substr(fault + 1), "@", "1;");
      const auto line = 1 + std::count(text.begin(), text.begin() + long(text.find("nosuch;")), '\n');
      for (const char* strip : {"", "strip"}) {
        writeText("p.yaml", text);
        PageSourceOptions options;
        options.lines = true;
        options.strip = *strip;
        buildPage("p.yaml", "p.kpg", {}, options);
        const std::vector<std::string> places = placesIn(logOf("p.kpg"));
        ASSERT_FALSE(places.empty()) << name << "\n" << text;
        for (const std::string& place : places)
          EXPECT_EQ(place, "p.yaml:" + std::to_string(line)) << name << "\n" << text;
        EXPECT_EQ(warnings, "");
      }
    }
  }
}

TEST_F(LinesTest, CallsAreFollowedThroughFiles) {
  fs::create_directory("parts");
  writeText("parts/part.yaml", "type: image\nname: part\nonFocus: |\n  1;\n  outer(\n    3);\n");
  writeText("p.yaml",
            "page:\n"
            "  type: group\n"
            "  start: part\n"
            "  scripts: [tools.bob]\n"
            "  onLoad: Load(\"more.bob\");\n"
            "  children:\n"
            "  - include: parts/part.yaml\n");
  writeText("tools.bob", "define outer(a) {\n\n  return middle(a);\n}\n");
  writeText("more.bob", "define middle(a) {\n  local k = a;\n  return k.nosuch;\n}\n");
  const std::vector<std::string> expected = {"more.bob:3", "tools.bob:3", "parts/part.yaml:5"};
  const std::string fromSource = logOf("p.yaml");
  EXPECT_EQ(placesIn(fromSource), expected) << fromSource;
  EXPECT_EQ(fromSource,
            "<Method-middle>\nError: No property - nosuch\nHappened in middle at more.bob:3\nCalled from:\n"
            "  outer at tools.bob:3\n  part.yaml:5 part.onFocus at parts/part.yaml:5\n");

  PageSourceOptions options;
  options.lines = true;
  buildPage("p.yaml", "p.kpg", {}, options);
  EXPECT_EQ(logOf("p.kpg"), fromSource);
  EXPECT_EQ(warnings, "");

  // Without lines the log is the system's own, and so are the bytes of what was built.
  PageRun plain({});
  ASSERT_TRUE(plain.load("p.kpg"));
  std::string without = fromSource;
  for (const std::string& place : expected) without = replaced(without, " at " + place, "");
  EXPECT_EQ(plain.log(), without);
  const std::string page = text("p.kpg"), script = text("tools.bobo"), map = text("p.bobmap");
  buildPage("p.yaml", "p.kpg");
  EXPECT_EQ(text("p.kpg"), page);
  EXPECT_EQ(text("tools.bobo"), script);
  EXPECT_EQ(text("p.bobmap"), map);

  // A table of another page is not believed, one that is missing not missed.
  writeText("p.yaml",
            "page:\n  type: group\n  start: part\n  scripts: [tools.bob]\n  children:\n  - include: parts/part.yaml\n");
  buildPage("p.yaml", "p.kpg");
  fs::remove("tools.bobo.bobmap");
  EXPECT_EQ(placesIn(logOf("p.kpg")), std::vector<std::string>());
  EXPECT_EQ(warnings, "p.bobmap: warning: was made for another p.kpg, and is not used\n");
  writeText("p.bobmap", map.substr(0, map.size() / 2));
  EXPECT_EQ(placesIn(logOf("p.kpg")), std::vector<std::string>());
  EXPECT_TRUE(warnings.ends_with(": is no line table that this kpg can read\n")) << warnings;
}

// Names tell equal code of two places apart; without names both places are said.
TEST_F(LinesTest, CodeThatWasWrittenTwiceHasBothPlaces) {
  writeText("p.yaml",
            "page:\n  type: group\n  start: b\n  children:\n  - {type: image, name: a, onFocus: nosuch;}\n"
            "  - {type: image, name: b, onFocus: nosuch;}\n");
  EXPECT_EQ(placesIn(logOf("p.yaml")), std::vector<std::string>{"p.yaml:6"});
  PageSourceOptions options;
  options.lines = options.strip = true;
  buildPage("p.yaml", "p.kpg", {}, options);
  EXPECT_NE(logOf("p.kpg").find(" at p.yaml:5 or p.yaml:6\n"), std::string::npos);
}

TEST_F(LinesTest, ATableIsReadAsItWasWritten) {
#ifdef _WIN32  // has no names with line breaks
  const std::string source = "a b/50%;x.yaml", written = " ../50%25;x.yaml\n";
#else
  const std::string source = "a b/50%\nx.yaml", written = " ../50%25%0ax.yaml\n";
#endif
  fs::create_directories("a b/build");
  writeText(source, "page: {}\n");
  BobCodeLines code;
  code.hash = 0xFEDCBA9876543210;
  code.file = source;
  code.starts = {{0, 3}, {7, 1}, {65535, 1 << 30}};
  code.continuesLine = true;
  code.arguments = {"this", "_next", "a"};
  code.blocks = {{5, 20, {"i", "n"}}, {6, 6, {}}};
  BobCodeLines other;
  other.file = code.file;
  other.starts = {{0, 1}};
  const std::string text = bobMapText("a b/build/x.bobmap", makeBobMap("bytes", {code, other}));
  EXPECT_NE(text.find(written), std::string::npos) << text;
  const BobMap map = parseBobMap("a b/build/x.bobmap", text);
  EXPECT_EQ(map.codes, (std::vector<BobCodeLines>{code, other}));
  EXPECT_TRUE(map.isCurrent(code.file));
  writeText(source, "page: {x: 1}\n");
  EXPECT_FALSE(map.isCurrent(code.file));
  EXPECT_EQ(code.lineAt(6), 3);
  EXPECT_EQ(code.lineAt(7), 1);

  // Cut anywhere, or with a line that says what can't be.
  for (size_t size = 0; size < text.size(); ++size)
    EXPECT_THROW(parseBobMap("x.bobmap", text.substr(0, size)), KitError) << size;
  const std::pair<const char*, const char*> changes[] = {
      {"bobmap 1", "bobmap 2"}, {"lines 0:3", "lines 0:0"},
      {"7:1", "0:1"},           {"7:1", "7"},
      {"7:1", "7:1 "},          {"7:1", "7:1  8:1"},
      {"65535", "65536"},       {"block 5 20", "block 20 5"},
      {"block 5", "block -5"},  {"\narguments", "\n\narguments"},
      {"end\n", "end\nend\n"},  {"arguments", "names"},
      {"3210 0 ", "3210 1 "},   {"fedc", "gedc"},
      {"lines 0:1\n", ""},      {" continues", " continue"},
  };
  for (const auto& [from, to] : changes) {
    const size_t at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    EXPECT_THROW(parseBobMap("x.bobmap", std::string(text).replace(at, std::string(from).size(), to)), KitError) << to;
  }
}

}  // namespace
