// The program as its users call it: exit statuses, streams, and the rules of a shot.
#include <algorithm>
#include <cstring>
#include <regex>

#include "kit/pictures/png.h"
#include "kpgfixture.h"
#include "support/blockfont.h"

namespace {

using CommandsTest = KpgTest;

TEST_F(CommandsTest, ErrorsGoToTheErrorStreamWithStatusOne) {
  EXPECT_EQ(kpg("--help"), 0);
  EXPECT_NE(out.find("shot"), std::string::npos);
  EXPECT_EQ(kpg("shot --help"), 0);
  EXPECT_EQ(kpg("--version"), 0);
  EXPECT_TRUE(out.starts_with("kpg ")) << out;
  constexpr char kList[] = "\nkpg --help lists the commands\n";
  const std::pair<const char*, std::string> wrong[] = {
      {"bild page.yaml", std::string("kpg: there is no command 'bild'; did you mean 'build'?") + kList},
      {"photograph page.kpg", std::string("kpg: there is no command 'photograph'") + kList},
      {"", std::string("kpg: a command is missing") + kList},
      {"--hepl", std::string("kpg: there is no option '--hepl'; did you mean '--help'?") + kList},
      {"shot p.kpg --stict",
       "kpg shot: there is no option '--stict'; did you mean '--strict'?\nkpg shot --help lists its options\n"},
      {"build --colours=3", "kpg build: there is no option '--colours'\nkpg build --help lists its options\n"},
      {"build p.yaml", "p.yaml: No such file or directory\n"},
      {"color zz", "kpg color: 'zz' is no colour #RRGGBB\nkpg color --help lists its options\n"},
      {"eval --timeout -1 '1;'",
       "kpg eval: --timeout: '-1' is no number from 0 up\nkpg eval --help lists its options\n"},
      {"image -o p.kpx", "kpg image: a word is missing, IN.png|IN.gif\nkpg image --help lists its options\n"},
      {"dump a.kpg b.kpg", "kpg dump: there is one word too many, 'b.kpg'\nkpg dump --help lists its options\n"},
  };
  for (const auto& [arguments, message] : wrong) {
    EXPECT_EQ(kpg(arguments), 1);
    EXPECT_EQ(err, message);
  }
  EXPECT_EQ(kpg("shot none.kpg --key Sideways"), 1);
  EXPECT_NE(err.find("there is no key 'Sideways'"), std::string::npos) << err;
  EXPECT_EQ(kpg("build none.yaml -o p.kpg"), 1);
  EXPECT_EQ(err, "none.yaml: No such file or directory\n");
  writeText("p.yaml", "page:\n  x: 1\n  x: 2\n");
  EXPECT_EQ(kpg("build p.yaml -o p.kpg"), 1);
  EXPECT_EQ(err, "p.yaml:3: x of page: is given twice, first in line 2\n");
}

TEST_F(CommandsTest, CompletionsKnowWhichOptionsTakeAValue) {
  ASSERT_EQ(kpg("completion zsh"), 0) << err;
  const auto specOf = [&](const std::string& option) {
    const size_t at = out.find("'*" + option + "[");
    return at == std::string::npos ? "none" : out.substr(at, out.find('\'', at + 1) - at);
  };
  EXPECT_TRUE(specOf("--log").ends_with("]:value:_files")) << specOf("--log");
  EXPECT_TRUE(specOf("--read-only").ends_with("]")) << specOf("--read-only");
  EXPECT_NE(specOf("--key").find("]:value:(Up Down "), std::string::npos) << specOf("--key");
  EXPECT_EQ(kpg("completion tcsh"), 1);
  EXPECT_NE(err.find("there is no shell 'tcsh'; there are bash zsh fish"), std::string::npos) << err;
}

TEST_F(CommandsTest, TheLanguagesToolsKeepItsStreamsApart) {
  writeText("good.bob", "define f(x) { return x + 1; }\nstdout.Display(f(1), \"\\n\");\n");
  writeText("bad.bob", "stdout.Display(\"before\\n\");\nnosuch;\nstdout.Display(\"after\\n\");\n");
  EXPECT_EQ(kpg("run good.bob"), 0);
  EXPECT_EQ(out, "2\n");
  EXPECT_EQ(err, "");
  // An error ends its file, not those after it, and they share an interpreter.
  EXPECT_EQ(kpg("run bad.bob good.bob"), 1);
  EXPECT_TRUE(out.starts_with("before\nHappened in ")) << out;
  EXPECT_TRUE(out.ends_with("\n2\n")) << out;
  EXPECT_EQ(err, "Error: Unbound variable - nosuch\n");
  EXPECT_EQ(kpg("run none.bob"), 1);
  EXPECT_EQ(err, "none.bob: can't be opened\n");

  EXPECT_EQ(kpg("eval 'x = 3;' 'x * 2;'"), 0);
  EXPECT_EQ(out, "--> 3\n--> 6\n");
  EXPECT_EQ(kpg("eval 'nosuch;' '7;'"), 1);
  EXPECT_TRUE(out.ends_with("--> 7\n")) << out;
  EXPECT_EQ(err, "Error: Unbound variable - nosuch\n");

  EXPECT_EQ(kpg("compile good.bob --output good.bobo"), 0);
  ASSERT_EQ(kpg("decode good.bobo"), 0);
  const std::string listing = out;
  EXPECT_NE(listing.find(" ; f\n"), std::string::npos) << listing;
  EXPECT_EQ(kpg("decode bad.bob"), 0);
  EXPECT_NE(out.find("; nosuch\n"), std::string::npos) << out;
  EXPECT_EQ(kpg("decode none.bob"), 1);
  EXPECT_EQ(err, "none.bob: can't be opened\n");
}

TEST_F(CommandsTest, LinesOfTheSourceAreNamedWhereTheyAreKnown) {
  std::filesystem::create_directory("lib");
  writeText("lib/inner.bob", "define inner(v) {\n  return v.nosuch;\n}\n");
  writeText("outer.bob", "Load(\"lib/inner.bob\");\ndefine outer() {\n  inner(\n    1);\n}\nouter();\n");
  EXPECT_EQ(kpg("run --lines outer.bob"), 1);
  EXPECT_EQ(err,
            "Error: No property - nosuch\nlib/inner.bob:2: in inner\nouter.bob:3: in outer\n"
            "outer.bob:6: in a statement\n");
  const std::string plain = out;
  EXPECT_EQ(kpg("run outer.bob"), 1);
  EXPECT_EQ(out, plain);
  EXPECT_EQ(err, "Error: No property - nosuch\n");
  writeText("lib/inner.bob", "x = 1;\n\ny = ;\n");
  EXPECT_EQ(kpg("run --lines outer.bob"), 1);
  EXPECT_EQ(err,
            "Error: Syntax error - Expecting a primary expression\n  in line 3\n\nlib/inner.bob:3: is read here\n"
            "outer.bob:1: in a statement\n");

  // A listing has them from the source, or from a table that is as old as the source. Equal code is distinguished.
  writeText("s.bob", "x = 1;\n  f(x,\n    2);\nx = 1;\n");
  ASSERT_EQ(kpg("decode s.bob"), 0);
  std::string lines;
  for (const char* c = out.c_str(); *c; c = std::strchr(c, '\n') + 1)
    if (*c == ';') lines += std::string(c, std::strchr(c, '\n') + 1);
  EXPECT_EQ(lines,
            "; s.bob:1  x = 1;\n; s.bob:2    f(x,\n; s.bob:3      2);\n; s.bob:2    f(x,\n; s.bob:3      2);\n"
            "; s.bob:4  x = 1;\n");
  const auto withoutAddresses = [](const std::string& text) {
    return std::regex_replace(text, std::regex("(^|\n)[0-9a-f]{8}:"), "$1");
  };
  const std::string fromSource = withoutAddresses(out);
  ASSERT_EQ(kpg("compile s.bob -o s.bobo --lines"), 0);
  ASSERT_EQ(kpg("decode s.bobo"), 0);
  EXPECT_EQ(withoutAddresses(out), fromSource);
  EXPECT_EQ(err, "");
  const std::string object = text("s.bobo");
  ASSERT_EQ(kpg("compile s.bob -o s.bobo"), 0);
  EXPECT_EQ(text("s.bobo"), object);
  writeText("s.bob", "x = 2;\n");
  ASSERT_EQ(kpg("decode s.bobo"), 0);
  EXPECT_FALSE(out.starts_with(";")) << out;
  EXPECT_EQ(out.find("\n;"), std::string::npos) << out;
  EXPECT_EQ(err, "s.bob: warning: was changed after s.bobo was made of it, so no lines are shown\n");
  EXPECT_EQ(kpg("compile s.bob -o - --lines"), 1);
}

TEST_F(CommandsTest, AShotWritesPictureAndLogAgainstTheFolderOfTheCall) {
  std::filesystem::create_directory("pages");
  build(
      "pages/p.kpg",
      "flags: 8bit\npage: {width: 720, height: 480, type: group, colorTable: c.clut, children: [\n"
      "  {width: 9, height: 9, name: a, bgColor: 1, down: b, timeout: 5}, {width: 9, height: 9, name: b, start: a}],\n"
      "  start: a, bgColor: 2}\n");
  EXPECT_EQ(kpg("clut --standard -o pages/c.clut"), 0);
  EXPECT_EQ(kpg("shot pages/p.kpg --key Down --wait 6 --key 1 -o p.png --log log.txt"), 0) << err;
  EXPECT_EQ(text("p.png").substr(1, 3), "PNG");
  EXPECT_EQ(text("log.txt"), "Loading CLUT 'c.clut'\n");
  EXPECT_EQ(kpg("shot pages/p.kpg --log -"), 0);
  EXPECT_EQ(out, "Loading CLUT 'c.clut'\n");
  EXPECT_TRUE(std::filesystem::exists("p.png"));
}

TEST_F(CommandsTest, PrintsWhatAFontHolds) {
  std::vector<uint8_t> font = BlockFontFile();
  WriteFile("blocks.ttf", font);
  EXPECT_EQ(kpg("font blocks.ttf --out specimen.png"), 0) << err;
  EXPECT_NE(out.find("glyphs: 5 for 4 characters\nunits an em: 1000, ascent 800, descent -200"), std::string::npos);
  EXPECT_NE(out.find("platform 3 encoding 1 format 4"), std::string::npos);
  EXPECT_TRUE(out.ends_with("opens: yes\n"));
  EXPECT_EQ(text("specimen.png").substr(1, 3), "PNG");

  std::vector<uint8_t> headless = font;
  headless[size_t(std::search(font.begin(), font.end(), std::begin("head"), std::end("head") - 1) - font.begin())] =
      'H';
  WriteFile("headless.ttf", headless);
  EXPECT_EQ(kpg("font headless.ttf"), 1);
  EXPECT_EQ(err, "headless.ttf: the player can't draw with it: it has no 'head' table\n");
  // The system says nothing of a font that is there.
  writeText("p.yaml", "page: {textStyles: [{font: headless.ttf}, {font: headless.ttf}, {font: none.ttf}]}");
  EXPECT_EQ(kpg("shot p.yaml -o p.png --log -"), 0);
  EXPECT_EQ(out, "Error loading font 'none.ttf'\n");
  EXPECT_TRUE(err.ends_with("\nheadless.ttf: the player can't draw with it: it has no 'head' table\n"));

  WriteFile("table.ttf",
            {0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 'c', 'm', 'a', 'p', 0, 0, 0, 0, 0, 0, 0, 28, 0, 0, 0, 4, 0, 0, 0, 0});
  EXPECT_EQ(kpg("font table.ttf"), 1);
  EXPECT_EQ(err, "table.ttf: the player can't draw with it: it has no 'head' table\n");

  font.resize(200);
  WriteFile("cut.ttf", font);
  EXPECT_EQ(kpg("font cut.ttf --out none.png"), 1);
  EXPECT_TRUE(out.ends_with("opens: no\n"));
  EXPECT_NE(err.find("cut.ttf: the player can't draw with it: it is cut short"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists("none.png"));
  writeText("words.txt", "no font");
  EXPECT_EQ(kpg("font words.txt"), 1);
  EXPECT_EQ(err, "words.txt: not a font\n");
}

TEST_F(CommandsTest, APageThatDoesNotLoadLeavesALogAndNoPicture) {
  writeText("p.kpg", "this is no page at all");
  EXPECT_EQ(kpg("shot p.kpg -o p.png --log log.txt"), 1);
  EXPECT_FALSE(std::filesystem::exists("p.png"));
  EXPECT_TRUE(text("log.txt").starts_with("Not a page file\nFailed to load page file: '"));
  EXPECT_EQ(err, text("log.txt"));

  // A text with nothing to say: the page is refused without a message.
  writeText("p.yaml", "page: {type: text, maxLength: !int -1}");
  ASSERT_EQ(kpg("build p.yaml -o p.kpg"), 0) << err;
  EXPECT_EQ(kpg("shot p.kpg -o p.png"), 1);
  EXPECT_EQ(err, "p.kpg: the player doesn't load it, and doesn't say why\n");
}

TEST_F(CommandsTest, WhatIsNoFileOfThatKindIsNamed) {
  std::filesystem::create_directory("d");
  for (const char* command : {"run d", "decode d", "compile d -o x.bobo", "shot d", "tree d", "dump d"}) {
    EXPECT_EQ(kpg(command), 1) << command;
    EXPECT_TRUE(err.starts_with("d: is a folder")) << command << err;
  }
  EXPECT_FALSE(std::filesystem::exists("x.bobo"));
  build("o.kpg", "page: {}");
  writePng("a.png", 1, 1, {0});
  EXPECT_EQ(kpg("image a.png -o x.kpx --clut o.kpg"), 1);
  EXPECT_EQ(err, "o.kpg: is a page, no colour table\n");
  writeText("j.png", "\xFF\xD8\xFF");
  EXPECT_EQ(kpg("image --list j.png"), 1);
  EXPECT_EQ(err, "j.png: is a JPEG picture, no picture that the player or the kit reads\n");
  // A source by another name is one, for all commands.
  writeText("p.txt", "page: {width: 9, height: 9}\n");
  for (const char* command : {"shot p.txt -o p.png", "tree p.txt", "build p.txt -o p.kpg"})
    EXPECT_EQ(kpg(command), 0) << command << err;
}

TEST_F(CommandsTest, TheLanguageAloneIsEnded) {
  EXPECT_EQ(kpg("eval --timeout 0.2 'for (;;) ;' 'for (;;) ;'"), 1);
  EXPECT_TRUE(err.starts_with("stopped after 0.2 seconds of processor time")) << err;
  writeText("spin.bob", "define spin() { while (true) ; }\nspin();\n");
  EXPECT_EQ(kpg("run --timeout 0.2 spin.bob"), 1);
  EXPECT_NE(err.find(" in spin"), std::string::npos) << err;
}

TEST_F(CommandsTest, AColourNeedsNoSignThatAShellTakesForAComment) {
  ASSERT_EQ(kpg("color '#101830'"), 0);
  const std::string quoted = out;
  EXPECT_EQ(kpg("color 101830"), 0);
  EXPECT_EQ(out, quoted);
}

TEST_F(CommandsTest, ThePlainSourceIsPrinted) {
  writeText("p.yaml", "constants: {w: 4}\npage: {width: $(w * 2)}\n");
  EXPECT_EQ(kpg("build --expand p.yaml"), 0) << err;
  EXPECT_EQ(out, "page:\n  width: 8\n");
  EXPECT_EQ(kpg("build --expand p.yaml -o p.yaml"), 1);
  EXPECT_EQ(err, "p.yaml: is an input, and would be written over\n");
}

TEST_F(CommandsTest, ScriptFilesAreCompiledBesideThePage) {
  std::filesystem::create_directories("out");
  std::filesystem::create_directories("source");
  writeText("source/tools.bob", "define twice(x) { return 2 * x; }\n");
  writeText("source/p.yaml", "page: {scripts: [tools.bob], onLoad: 'stdout.Display(twice(4), \"\\n\");'}");
  EXPECT_EQ(kpg("build source/p.yaml -o out/p.kpg"), 0) << err;
  EXPECT_EQ(kpg("compile --names source/tools.bob -o t.bobo"), 0);
  EXPECT_EQ(text("out/tools.bobo"), text("t.bobo"));
  EXPECT_EQ(kpg("compile source/tools.bob -o t.bobo"), 0);
  EXPECT_NE(text("out/tools.bobo"), text("t.bobo"));
  EXPECT_EQ(kpg("build --strip source/p.yaml -o out/p.kpg"), 0) << err;
  EXPECT_EQ(text("out/tools.bobo"), text("t.bobo"));
  EXPECT_EQ(kpg("shot out/p.kpg --log -"), 0);
  EXPECT_EQ(out, "8\n");

  // A faulty file is named with its own line, and nothing is written.
  writeText("source/tools.bob", "x = 1;\ndefine twice(x) {\n");
  EXPECT_EQ(kpg("build source/p.yaml -o bad.kpg"), 1);
  EXPECT_TRUE(err.starts_with("source/tools.bob:3: Syntax error - ")) << err;
  EXPECT_FALSE(std::filesystem::exists("bad.kpg"));
}

TEST_F(CommandsTest, ATreeIsOfAPageOrOfASource) {
  writeText("p.yaml", "page:\n  type: group\n  children:\n    - {name: a, x: 5, nothing: 1}\n");
  ASSERT_EQ(kpg("tree p.yaml"), 0) << err;
  EXPECT_EQ(out, "16-bit page, widgets: 2\npage  group  0  0  0x0  p.yaml:2\n  a   box    5  0  0x0  p.yaml:4\n");
  EXPECT_EQ(err, "");
  ASSERT_EQ(kpg("build p.yaml -o p.kpg"), 0) << err;
  ASSERT_EQ(kpg("tree p.kpg"), 0) << err;
  EXPECT_EQ(out, "16-bit page, widgets: 2\npage  group  0  0  0x0\n  a   box    5  0  0x0\n");
  ASSERT_EQ(kpg("tree --json p.kpg"), 0) << err;
  EXPECT_NE(out.find("\"name\": \"a\",\n        \"x\": 5,\n"), std::string::npos) << out;
  EXPECT_EQ(kpg("tree out.txt"), 1);
  EXPECT_EQ(err, "out.txt: not a page file\n");
}

TEST_F(CommandsTest, ADumpListsScriptsAndBuildsBack) {
  build("p.kpg", "page:\n  type: group\n  onLoad: 'x = \"a\\nb\";'\n  children: [{onClick: 'y = 2; define f() {}'}]\n");
  EXPECT_EQ(kpg("dump p.kpg"), 0);
  for (const char* line : {"\n  # ", "GSET 0002 ; x\n", "GSET 0002 ; y\n", "\n  onLoad: !scriptdata "})
    EXPECT_NE(out.find(line), std::string::npos) << line << out;
  writeText("back.yaml", out);
  EXPECT_EQ(kpg("build back.yaml -o back.kpg"), 0) << err;
  EXPECT_EQ(text("back.kpg"), text("p.kpg"));
}

TEST_F(CommandsTest, ReadOnlyKeepsScriptsFromWriting) {
  writeText("in.txt", "in");
  build("p.kpg", "page: {}");
  std::string lines;
  for (const char* mode : {"w", "a", "wb", "r+", "r"})
    lines +=
        std::string(" --eval 'new File(\"") + (*mode == 'r' ? "in.txt" : "new.txt") + "\", \"" + mode + "\") ? 1 : 0;'";
  EXPECT_EQ(kpg("shot p.kpg --read-only --log -" + lines), 0);
  const std::string refused = "' is not opened: scripts may write no files\n--> 0\n";
  EXPECT_EQ(out, "'new.txt" + refused + "'new.txt" + refused + "'new.txt" + refused + "'in.txt" + refused + "--> 1\n");
  EXPECT_EQ(kpg("profile p.kpg --read-only" + lines), 0);
  EXPECT_FALSE(std::filesystem::exists("new.txt"));
  EXPECT_EQ(kpg("shot p.kpg --log -" + lines), 0);
  EXPECT_EQ(out, "--> 1\n--> 1\n--> 1\n--> 1\n--> 1\n");
}

}  // namespace
