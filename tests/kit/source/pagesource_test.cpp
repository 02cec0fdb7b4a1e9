#include "kit/source/pagesource.h"

#include <algorithm>
#include <sstream>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "support/pagefixture.h"

namespace {

class SourceTest : public PageTest {
 protected:
  PageTree read(const std::string& source) {
    warnings.clear();
    writeText("p.yaml", source);
    return readPageSource("p.yaml", [this](const KitMessage& warning) { warnings += warning.whole() + "\n"; });
  }
  std::string errorOf(const std::string& source) {
    try {
      read(source);
      return "(none)";
    } catch (const KitError& e) {
      return e.what();
    }
  }
  const PageValue& attribute(const PageTree& page, size_t i = 0) { return page.root.attributes.at(i).value; }
  std::string warnings;
};

TEST_F(SourceTest, AttributesTakeTheTagThatTheirReaderWants) {
  const PageTree page = read(
      "flags: 16bit\n"
      "page: {x: 1, height: 65535, type: text, value: 42, hidden: true, maxLength: 0x10, multiline: yes,\n"
      "       bgColor: white, frameColor: '#FF0000', children: [a, b], onClick: !scriptdata Zm9v}\n");
  EXPECT_EQ(page.flags, 0u);
  EXPECT_EQ(page.root.x, 1);
  EXPECT_EQ(page.root.height, 65535);
  std::string tags;
  for (const PageEntry& entry : page.root.attributes) tags += std::to_string(int(entry.value.tag));
  EXPECT_EQ(tags,
            "444123375"
            "");  // type, value, hidden, maxLength, multiline, bgColor, frameColor, children, onClick
  EXPECT_EQ(attribute(page, 1).bytes, "42");
  EXPECT_EQ(attribute(page, 2).bytes, "true");
  EXPECT_EQ(attribute(page, 3).number, 16u);
  EXPECT_EQ(attribute(page, 5).number, 0xEB808000u);
  EXPECT_EQ(attribute(page, 6).number, 0x51F05B00u);
  EXPECT_EQ(attribute(page, 8).bytes, "foo");
  // A text has no children, so nothing reads them: kept, with a warning.
  EXPECT_EQ(warnings, "p.yaml:3: warning: children of page: nothing reads it; a group or a textContainer has one\n");
}

TEST_F(SourceTest, WhatNothingReadsIsTaggedByItsLooksAndATagOverridesAll) {
  const PageTree page = read(
      "page: {a: 7, b: true, c: '7', d: words, e: {x: 3, z: 1}, f: [1, {y: 2}], name: !int -2, timeout: !string 9,\n"
      "       bgColor: !bool true, g: !color 5, h: !object , i: !table }\n");
  std::string tags;
  for (const PageEntry& entry : page.root.attributes) tags += std::to_string(int(entry.value.tag));
  EXPECT_EQ(tags, "124467142367");
  EXPECT_NE(warnings.find("e of page: nothing reads it\n"), std::string::npos) << warnings;
  EXPECT_EQ(warnings.find("z of"), std::string::npos);  // said of the whole object already
  EXPECT_EQ(attribute(page, 4).object.at(0).x, 3);
  EXPECT_EQ(attribute(page, 5).table.at(0).bytes, "1");
  EXPECT_EQ(attribute(page, 5).table.at(1).object.at(0).y, 2);
  EXPECT_EQ(attribute(page, 6).number, 0xFFFFFFFEu);
  EXPECT_TRUE(attribute(page, 10).object.empty());
}

TEST_F(SourceTest, WhatASliderDoesNotShowIsWarnedOf) {
  read(
      "page:\n  type: group\n  children:\n"
      "    - {type: slider, highlightFrame: true, background: a.gif, bgColor: 1}\n"
      "    - {type: slider, highlightFrame: false}\n"
      "    - {type: number, highlightFrame: true, background: a.gif}\n");
  EXPECT_EQ(warnings,
            "p.yaml:4: warning: highlightFrame of slider1: a slider doesn't show it\n"
            "p.yaml:4: warning: background of slider1: a slider doesn't show it\n");
  // It is so: with the focus the picture is the same.
  const char* const page =
      "flags: 16bit\npage: {type: group, width: 720, height: 480, start: s, children: [{type: slider, name: s, x: 99,\n"
      "  y: 99, width: 200, height: 30, bgColor: black, fgColor: white, frameColor: white, highlightFrame: ";
  ASSERT_TRUE(load(std::string(page) + "true}]}\n"));
  const uint32_t beside = pixel(97, 110);
  ASSERT_TRUE(load(std::string(page) + "false}]}\n"));
  EXPECT_EQ(pixel(97, 110), beside);
}

// Whoever waits for a source to be mended has to watch what it was read from.
TEST_F(SourceTest, AFailedBuildSaysWhatItHasRead) {
  const auto inputsOf = [&](const std::string& source, bool expands = false) {
    writeText("p.yaml", source);
    try {
      if (expands)
        plainPageSource("p.yaml");
      else
        buildPage("p.yaml", "p.kpg");
    } catch (const BuildError& e) {
      return e.inputs;
    }
    return std::vector<std::string>();
  };
  using Files = std::vector<std::string>;
  writeText("theme.yaml", "include: gone.yaml\n");
  writeText("a.bob", "x =;\n");
  const char* const broken = "include: theme.yaml\npage: {scripts: [a.bob, b.bob]}\n";
  EXPECT_EQ(inputsOf(broken), (Files{"p.yaml", "theme.yaml", "gone.yaml", "a.bob", "b.bob"}));
  EXPECT_EQ(inputsOf(broken, true), (Files{"p.yaml", "theme.yaml", "gone.yaml"}));
  EXPECT_EQ(inputsOf("page: ["), Files{"p.yaml"});
  writeText("a.bob", "x = 1;\n");
  writeText("a.bobo", "mine");  // all is well but for what would be written over
  EXPECT_EQ(inputsOf("page: {scripts: [a.bob]}\n"), (Files{"p.yaml", "a.bob"}));
}

TEST_F(SourceTest, ErrorsNameFileLineKeyAndWidget) {
  const std::pair<const char*, const char*> cases[] = {
      {"page:\n  x: 65536\n", "p.yaml:2: x of page: 65536 lies outside 0 to 65535"},
      {"page:\n  name: root\n  y: -1\n", "p.yaml:3: y of root: -1 lies outside 0 to 65535"},
      {"page:\n  x: 1.5\n", "p.yaml:2: x of page: '1.5' is no whole number of pixels from 0 to 65535"},
      {"page:\n  name: a\n  up: b\n  name: c\n", "p.yaml:4: name of a: is given twice, first in line 2"},
      {"page:\n  timeout: soon\n", "p.yaml:2: timeout of page: 'soon' is no whole number of 32 bits"},
      {"page:\n  timeout: 4294967296\n", "p.yaml:2: timeout of page: '4294967296' is no whole number of 32 bits"},
      {"page:\n  timeout:\n", "p.yaml:2: timeout of page: expecting a whole number, found nothing"},
      {"page:\n  tileBackground: on\n", "p.yaml:2: tileBackground of page: 'on' is neither true nor false"},
      {"page:\n  tileBackground: ture\n",
       "p.yaml:2: tileBackground of page: 'ture' is neither true nor false; did you mean 'true'?"},
      {"flags: 8bit\npage:\n  bgColor: '#102030'\n",
       "p.yaml:3: bgColor of page: \"#RRGGBB\" is for 16-bit pages; an 8-bit page takes an index of its colour table"},
      {"page:\n  bgColor: '#12345'\n", "p.yaml:2: bgColor of page: '#12345' is no colour of the form \"#RRGGBB\""},
      {"page:\n  bgColor: balck\n",
       "p.yaml:2: bgColor of page: 'balck' is no colour; a colour is \"#RRGGBB\", black, white, transparent or a "
       "number; "
       "did you mean 'black'?"},
      {"page:\n  name: !strnig a\n",
       "p.yaml:2: name of page: unknown tag !strnig; there are !int, !bool, !color, !string, !script, !scriptdata, "
       "!object "
       "and !table; did you mean '!string'?"},
      {"page:\n  x: !color 5\n", "p.yaml:2: x of page: no tag can be used here: !color"},
      {"page:\n  other:\n    - !int 5\n", "p.yaml:3: other of page: no tag can be used here: !int"},
      {"page:\n  name: [a]\n", "p.yaml:2: name of page: expecting text, found a list"},
      {"page:\n  type: group\n  children: 5\n", "p.yaml:3: children of page: expecting a list, found '5'"},
      {"page:\n  type: group\n  children:\n    - 5\n",
       "p.yaml:4: children of page: an entry is a map of attributes, not '5'"},
      {"page:\n  onClick: !scriptdata '%%%'\n", "p.yaml:2: onClick of page: this is no base64"},
      {"page:\n  onClick: x =;\n", "p.yaml:2: onClick of page: Syntax error - Expecting a primary expression"},
      {"page:\n  onClick: |\n    x = 1;\n    y =;\n",
       "p.yaml:4: onClick of page: Syntax error - Expecting a primary expression"},
      {"page:\n  other: !script |\n    x = 1;\n\n    y =;\n",
       "p.yaml:5: other of page: Syntax error - Expecting a primary expression"},
      {"page:\n  onClick: \"x = 1;\\ny =;\"\n",  // its lines are none of the source's
       "p.yaml:2: onClick of page: Syntax error - Expecting a primary expression"},
      {"page:\n  onClick: true = 1;\n", "p.yaml:2: onClick of page: Attempt to store into a constant"},
      {"page:\n  scripts: [a.bobo,\n   b.bob]\n",
       "p.yaml:3: scripts of page: can't read 'b.bob': No such file or directory"},
      {"flags: 24bit\npage: {}\n", "p.yaml:1: flags: '24bit' is neither 8bit nor 16bit"},
      {"flag: 8bit\npage: {}\n",
       "p.yaml:1: flag: is unknown; a page source has 'flags' and 'page'; did you mean 'flags'?"},
      {"flags: 8bit\n", "p.yaml:1: page: there is none"},
      {"page: 5\n", "p.yaml:1: page: expecting a map of attributes, found '5'"},
      {"page: [\n", "p.yaml:2: a '[' is never closed"},
      {"- page\n", "p.yaml:1: a page source is a map with 'flags' and 'page', not a list"},
      {"# nothing\n", "p.yaml: is empty; a page source is a map with 'flags' and 'page'"},
      {"KPGF", "p.yaml: is a compiled page, no source; kpg dump prints a page as source"},
  };
  for (const auto& [source, message] : cases) EXPECT_EQ(errorOf(source), message) << source;
}

TEST_F(SourceTest, WordsThatThePlayerDoesNotKnowAreErrors) {
  const std::pair<const char*, const char*> cases[] = {
      {"type: txet",
       "type of text1: 'txet' is not one of group, image, frame, text, number, slider, select and "
       "textContainer; did you mean 'text'?"},
      {"type: number, navigate: leftRigth",
       "navigate of number1: 'leftRigth' is not one of leftRight, upDown and both; did you mean 'leftRight'?"},
      {"type: text, align: middle", "align of text1: 'middle' is not one of left, center and right"},
      {"type: select, valign: Top",
       "valign of select1: 'Top' is not one of top, center and bottom; did you mean 'top'?"},
      {"name: n, hidden: never",
       "hidden of n: 'never' is not one of content, background, both, yes, true, none, no and false"},
      {"type: text, maxLength: -1",
       "maxLength of text1: -1 is no number of bytes; the player doesn't load a page with a negative one"},
      {"type: select, showAll: true, textStyle: s",
       "showAll of select1: needs 'highlightTextStyle'; without it the player doesn't load the page"},
      {"tpye: text", "tpye of box1: nothing reads it; did you mean 'type'?"},
      {"children: [{x: -1}]",
       "children of box1: a plain box shows none; say 'type: group'\np.yaml:4: x of box1: -1 lies outside 0 to 65535"},
  };
  for (const auto& [attributes, message] : cases)
    EXPECT_TRUE(errorOf("page:\n  type: group\n  children:\n    - {" + std::string(attributes) + "}\n")
                    .starts_with("p.yaml:4: " + std::string(message)))
        << errorOf("page:\n  type: group\n  children:\n    - {" + std::string(attributes) + "}\n");
  // A tag is for those who mean it, and words are free where no list of words is read.
  read("page: {type: !string txet, typ: 1, hidden: !string never, align: middle}\n");
  EXPECT_EQ(warnings,
            "p.yaml:1: warning: typ of page: nothing reads it; did you mean 'type'?\n"
            "p.yaml:1: warning: align of page: nothing reads it; a text or a select has one\n");
}

TEST_F(SourceTest, UnknownKeysSuggestTheKeyThatWasMeantOrSayWhoHasIt) {
  read(
      "page: {type: group, bgColour: 5, onlaod: x, fgColor: 1, whatever: 1, textStyles: [{fnt: a}],\n"
      "       children: [{start: a}]}\n");
  EXPECT_EQ(warnings,
            "p.yaml:1: warning: bgColour of page: nothing reads it; did you mean 'bgColor'?\n"
            "p.yaml:1: warning: onlaod of page: nothing reads it; did you mean 'onLoad'?\n"
            "p.yaml:1: warning: fgColor of page: nothing reads it; a slider has one\n"
            "p.yaml:1: warning: whatever of page: nothing reads it\n"
            "p.yaml:1: warning: fnt of style1: nothing reads it; did you mean 'font'?\n"
            "p.yaml:2: warning: start of box1: nothing reads it; the page has one\n");
}

TEST_F(SourceTest, NamesThatNothingHasAreWarnedOf) {
  read(
      "page: {type: group, start: gude, textStyles: [{name: title, font: a.ttf, size: 9}], children: [\n"
      "  {type: text, name: guide, textStyle: titel, right: flims},\n"
      "  {name: films},\n"
      "  {name: films, master: guide}]}\n");
  EXPECT_EQ(warnings,
            "p.yaml:1: warning: start of page: there is no widget 'gude', and nothing has the focus as the page opens; "
            "did you mean 'guide'?\n"
            "p.yaml:2: warning: textStyle of guide: there is no text style 'titel', and the player goes on without "
            "one; did you mean 'title'?\n"
            "p.yaml:2: warning: right of guide: there is no widget 'flims', and the key leads nowhere; did you mean "
            "'films'?\n"
            "p.yaml:4: warning: name of films: another widget has the name 'films', in line 3; links lead to "
            "the one that the player makes first, scripts reach the last\n");
}

TEST_F(SourceTest, ASizeAtWhichNothingIsDrawnIsWarnedOf) {
  for (const char* size : {"-5", "0", "1", "32767", "32768"}) {
    read("page: {type: group, textStyles: [{name: a, font: a.ttf, size: " + std::string(size) + "}]}\n");
    const bool draws = std::string_view(size) == "1" || std::string_view(size) == "32767";
    EXPECT_EQ(warnings, draws ? ""
                              : "p.yaml:1: warning: size of a: '" + std::string(size) +
                                    "' draws nothing; a size is 1 to 32767 pixels\n");
  }
}

TEST_F(SourceTest, AFaultThatIsUsedOftenIsSaidOnce) {
  EXPECT_EQ(errorOf("constants: {bad: [1]}\n"
                    "page: {type: group, children: [{x: $(bad)}, {x: $(bad)}, {x: $(bad)}]}\n"),
            "p.yaml:1: x of box1: expecting a number of pixels, found a list\n"
            "  p.yaml:2: used here: $(bad)\n"
            "  and in 2 more uses");
}

TEST_F(SourceTest, AllErrorsAreReportedAtOnceInTheOrderOfTheirLines) {
  writeText("bad.bob", "x = 1;\n\ny = ;\n");
  EXPECT_EQ(errorOf("page:\n"
                    "  type: gruop\n"  // read as a group, so that what is wrong inside is found
                    "  scripts: [bad.bob, none.bob]\n"
                    "  onLoad: |\n"
                    "    x = 1;\n"
                    "    y = ;\n"
                    "  children:\n"
                    "    - &a {x: -1}\n"
                    "    - 7\n"
                    "    - {type: group, x: no, children: [{name: b, onFocus: x =}, *a]}\n"
                    "flags: none\n"),
            "p.yaml:2: type of page: 'gruop' is not one of group, image, frame, text, number, slider, select and "
            "textContainer; did you mean 'group'?\n"
            "p.yaml:3: scripts of page: can't read 'none.bob': No such file or directory\n"
            "p.yaml:6: onLoad of page: Syntax error - Expecting a primary expression\n"
            "p.yaml:8: x of box1: -1 lies outside 0 to 65535\n"
            "p.yaml:8: x of box2: -1 lies outside 0 to 65535\n"
            "p.yaml:9: children of page: an entry is a map of attributes, not '7'\n"
            "p.yaml:10: x of group3: 'no' is no whole number of pixels from 0 to 65535\n"
            "p.yaml:10: onFocus of b: Syntax error - Expecting a primary expression\n"
            "p.yaml:11: flags: 'none' is neither 8bit nor 16bit\n"
            "bad.bob:3: Syntax error - Expecting a primary expression");

  std::string many = "page:\n  type: group\n  children:\n";
  for (int i = 0; i < 60; ++i) many += "    - {x: -1}\n";
  const std::string errors = errorOf(many);
  EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 50);
  EXPECT_TRUE(errors.ends_with("p.yaml:53: x of box50: -1 lies outside 0 to 65535\n... and 10 more")) << errors;
}

TEST_F(SourceTest, APageThatThePlayerWouldRefuseIsRefused) {
  const auto pageOf = [](int count) {
    std::string source = "page:\n  type: group\n  children:\n";
    for (int i = 1; i < count; ++i) source += "  - {}\n";  // the page is one, too
    return source;
  };
  EXPECT_EQ(errorOf(pageOf(65536)), "(none)");
  EXPECT_EQ(
      errorOf(pageOf(65538)),
      "p.yaml:65539: children of page: the page holds more than 65,536 widgets, and the player doesn't load such a "
      "page");

  // Deeper than a parser of YAML would go, but for copies.
  const auto nested = [](int depth, const std::string& innermost) {
    std::string source = "{type: group";
    for (int i = 0; i < depth; ++i) source += ", children: [{type: group";
    source += innermost;
    for (int i = 0; i < depth; ++i) source += "}]";
    return source + "}";
  };
  const std::string deep = "page:\n  type: group\n  deep: &deep " + nested(149, "") + "\n  children: [";
  EXPECT_EQ(errorOf(deep + nested(105, ", children: [*deep]") + "]\n"), "(none)");
  EXPECT_EQ(errorOf(deep + nested(106, ", children: [*deep]") + "]\n"),
            "p.yaml:3: group1 lies in more than 256 widgets; the player leaves it out");
}

class ScriptNamesTest : public SourceTest {
 protected:
  // What the traceback of each error says that the page's scripts run into.
  std::vector<std::string> placesOf(const std::string& source) {
    desktop.log.clear();
    writeText("names.yaml", source);
    buildPage("names.yaml", "names.kpg");
    loadFile("names.kpg");
    key("Select");
    std::vector<std::string> places;
    constexpr std::string_view kHappened = "Happened in ";
    std::istringstream lines(log());
    for (std::string line; std::getline(lines, line);)
      if (line.starts_with(kHappened)) places.push_back(line.substr(kHappened.size()));
    return places;
  }
};

TEST_F(ScriptNamesTest, ATracebackSaysFileLineWidgetAndHook) {
  std::filesystem::create_directory("lib");
  writeText("lib/tools.bob", "x = 1;\n\nnosuch;\n");
  EXPECT_EQ(placesOf("page:\n"
                     "  type: group\n"
                     "  start: go\n"
                     "  scripts: [lib/tools.bob]\n"
                     "  onLoad: |\n"
                     "    define named() { nosuch; }\n"
                     "    run = function (f) { f(); };\n"
                     "\n"
                     "    nosuch;\n"
                     "  children:\n"
                     "    - {}\n"
                     "    - {type: text, onFocus: nosuch;}\n"
                     "    - name: go\n"
                     "      onFocus: >\n"
                     "        x = 1;\n"
                     "        widgets.go.HandleEvent(0x404000c);\n"
                     "      onChange: named();\n"
                     "      onClick: |\n"
                     "        run(function () {\n"
                     "          nosuch; });\n"),
            (std::vector<std::string>{"tools.bob:3", "names.yaml:9 page.onLoad", "named", "names.yaml:19 go.onClick"}));
  // Neither a name that is long nor one with odd letters hurts a traceback.
  EXPECT_EQ(placesOf("page: {start: \"a\\n\\u00e9" + std::string(60, 'x') + "\", name: \"a\\n\\u00e9" +
                     std::string(60, 'x') + "\", onClick: nosuch;}"),
            (std::vector<std::string>{"names.yaml:1 a?\xC3\xA9" + std::string(36, 'x') + "....onClick"}));
}

// The first literal of code is its name. A `case nil` shares it with code that has none.
TEST_F(ScriptNamesTest, NamedCodeDoesWhatUnnamedCodeDoes) {
  writeText("p.yaml",
            "page: {onLoad: 'function of(v) { switch (v) { case nil: return 1; case 2: return 2; } return 3; };\n"
            "  switch (nil) { case nil: stdout.Display(of(nil), of(2), of(4)); }'}\n");
  for (const bool strip : {false, true}) {
    desktop.log.clear();
    buildPage("p.yaml", "p.kpg", {}, {.strip = strip});
    loadFile("p.kpg");
    EXPECT_EQ(log(), "123") << strip;
  }
  const std::vector<uint8_t> stripped = readFile("p.kpg");
  EXPECT_EQ(std::search(stripped.begin(), stripped.end(), std::begin("p.yaml"), std::end("p.yaml") - 1),
            stripped.end());
}

}  // namespace
