#include "kit/expand/expand.h"

#include <algorithm>
#include <filesystem>
#include <random>

#include "kit/files.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagesource.h"
#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"
#include "support/pagefixture.h"

namespace {

class ExpandTest : public PageTest {
 protected:
  // The plain source of a page that has these lines, or the errors.
  std::string expanded(const std::string& source) {
    std::vector<KitMessage> errors;
    const ExpandedSource result = expandSource(parseYaml("p.yaml", source), errors);
    files = result.files;
    std::string text;
    for (const KitMessage& message : errors) text += message.whole() + "\n";
    return text.empty() ? writeYaml(result.plain) : text;
  }
  // The value of `a` there.
  std::string valueOf(const std::string& value) {
    const std::string text = expanded(kConstants + "a: " + value + "\n");
    return text.starts_with("a: ") ? text.substr(3, text.size() - 4) : text;
  }
  const std::string kConstants = "constants: {n: 7, word: blue, text: '7', list: [a, {b: 5}], map: {x: 1, 'a b': 2}}\n";
  std::vector<std::string> files;
};

TEST_F(ExpandTest, ExpressionsComputeAndJoin) {
  const std::pair<const char*, const char*> cases[] = {
      {"$(2 + 3 * 4)", "14"},
      {"$((2 + 3) * 4)", "20"},
      {"$(n - 1 - 1)", "5"},
      {"$(-n / 2)", "-3"},
      {"$(n % 4)", "3"},
      {"$(0x10)", "0x10"},
      {"'$(n)'", "7"},
      {"$(text)", "\"7\""},
      {"$(word + n)", "\"blue7\""},
      {"$(text + 1)", "\"71\""},
      {"light $(word)$(n + 1).kpx", "light blue8.kpx"},
      {"$(list.1.b)", "5"},
      {"$(map.'a b')", "2"},
      {"cost: $$(n) or $", "\"cost: $(n) or $\""},
      {"!string $(n)", "!string 7"},
      {"|\n  x = $(n);\n  y = $$;\n", "|\n  x = 7;\n  y = $$;"},
  };
  for (const auto& [source, result] : cases)
    EXPECT_EQ(valueOf(std::string(source).starts_with("cost") ? '"' + std::string(source) + '"' : source), result)
        << source;
  EXPECT_EQ(expanded("constants: {a: $(b + 1), b: $(c), c: 4}\nx: {y: $(a), z: $(c)}\n"), "x:\n  y: 5\n  z: 4\n");
}

TEST_F(ExpandTest, WhatIsWrongInAnExpressionIsNamed) {
  const std::pair<const char*, const char*> cases[] = {
      {"$(wrod)", "there is no 'wrod'; did you mean 'word'?"},
      {"$(map.y)", "there is no 'y' in map, which has x and a b"},
      {"$(list.2)", "there is no entry '2' in list, which has 0 to 1"},
      {"$(n.x)", "n is '7' and has no parts"},
      {"$(word * 2)", "'blue' is no whole number to compute with"},
      {"$(text * 2)", "'7' is no whole number to compute with"},
      {"$(n / 0)", "a division by 0"},
      {"$(65536 * 65536)", "the result doesn't fit 32 bits"},
      {"$(n", "expecting ')' or an operator, found the end"},
      {"$(n n)", "expecting ')' or an operator, found 'n)'"},
      {"$()", "expecting a number, a name, a text in quotes or a bracket, found ')'"},
      {"x$(list)", "a text can have a text or a number in it, but not a list"},
      {"$(word + list)", "can't join a list to a text"},
  };
  for (const auto& [source, error] : cases) EXPECT_EQ(valueOf(source), std::string("p.yaml:2: ") + error + "\n");
  EXPECT_EQ(expanded("constants:\n  a: 1\n  a: 2\nx: $(a)\n"), "p.yaml:3: 'a' is given twice, first in line 2\n");
  EXPECT_EQ(expanded("constants:\n  a: $(b)\n  b: $(a)\nx: $(a)\n"), "p.yaml:2: constant a needs itself\n");
}

TEST_F(ExpandTest, ExpressionsHoldAtTheirExtremes) {
  const std::string deep(60, '('), closed(60, ')'), tooDeep(120, '('), text(1000, 'x');
  const std::pair<std::string, std::string> cases[] = {
      {"$(4294967295)", "4294967295"},
      {"$(4294967294 + 1)", "4294967295"},
      {"$(-4294967295)", "-4294967295"},
      {"$(65535 * 65537)", "4294967295"},
      {"$(0x7FFFFFFF + 1)", "2147483648"},
      {"$(-7 / 2)", "-3"},
      {"$(-7 % 2)", "-1"},
      {"$(- - 3)", "3"},
      {"$(2 - -3)", "5"},
      {"$(7 - 2 - 1)", "4"},
      {"$(100 / 10 / 5)", "2"},
      {"$(" + deep + "n" + closed + ")", "7"},
      {"$('a' + 1 + 2)", "\"a12\""},
      {"$(1 + 2 + 'a')", "\"3a\""},
      {"$('' + n)", "\"7\""},
      {"$(')' + word)", "\")blue\""},
      {"$(n)$(n)", "77"},
      {"$$$(n)", "\"$$(n)\""},
      {"$(4294967296)", "p.yaml:2: '4294967296' is no whole number of 32 bits\n"},
      {"$(4294967295 + 1)", "p.yaml:2: the result doesn't fit 32 bits\n"},
      {"$(-4294967295 - 1)", "p.yaml:2: the result doesn't fit 32 bits\n"},
      {"$(4294967295 * 4294967295)", "p.yaml:2: the result doesn't fit 32 bits\n"},
      {"$(n % 0)", "p.yaml:2: a division by 0\n"},
      {"$(" + tooDeep + "n)", "p.yaml:2: an expression is nested too deep\n"},
      {"$('a)", "p.yaml:2: a text in an expression has no end: 'a)\n"},
      {"$(3x)", "p.yaml:2: '3x' is no whole number of 32 bits\n"},
      {"$(list.-1)", "p.yaml:2: there is no entry '' in list, which has 0 to 1\n"},
  };
  for (const auto& [source, result] : cases) EXPECT_EQ(valueOf(source), result) << source;
  // Each doubles the one before.
  std::string doubling = "constants:\n  t0: " + text + "\n";
  for (int i = 1; i < 30; ++i) {
    const std::string before = "t" + std::to_string(i - 1);
    doubling += "  t" + std::to_string(i) + ": $(" + before + " + " + before + ")\n";
  }
  EXPECT_NE(expanded(doubling + "a: $(t29)\n").find("the text is too long"), std::string::npos);
}

TEST_F(ExpandTest, TemplatesTakeParametersAndWhatTheirUseSays) {
  const std::string templates =
      "constants: {w: 10}\n"
      "templates:\n"
      "  tile: {parameters: {label: , size: $(w * 2)}, type: group, width: $(size), children: [{value: $(label)}]}\n"
      "  large: {template: tile, with: {label: L, size: 99}, name: big}\n";
  EXPECT_EQ(expanded(templates + "page:\n"
                                 "  - {template: tile, with: {label: A}, x: 5, width: 30}\n"
                                 "  - {template: large, name: n}\n"),
            "page:\n"
            "  - type: group\n    width: 30\n    children:\n      - value: A\n    x: 5\n"
            "  - type: group\n    width: 99\n    children:\n      - value: L\n    name: n\n");
  const std::pair<const char*, const char*> errors[] = {
      {"{template: tiel}", "p.yaml:5: there is no template 'tiel'; did you mean 'tile'?\n"},
      {"{template: tile}", "p.yaml:5: template 'tile' needs label\n"},
      {"{template: tile, with: {lable: 1, label: 2}}",
       "p.yaml:5: template 'tile' has no parameter 'lable'; it has label and size; did you mean 'label'?\n"},
      {"{template: tile, with: {label: [1]}, x: $(label)}", "p.yaml:5: there is no 'label'\n"},
      {"{template: large, x: 1, x: 2}", "p.yaml:5: 'x' is given twice, first in line 5\n"},
      {"{repeat: 3}", "p.yaml:5: repeat: only an entry of a list can be repeated\n"},
  };
  for (const auto& [use, error] : errors) EXPECT_EQ(expanded(templates + "page: " + use + "\n"), error);
  // A fault inside says both places.
  EXPECT_EQ(expanded("templates:\n  t:\n    x: $(no)\npage:\n  - {template: t}\n"),
            "p.yaml:3: there is no 'no'\n  p.yaml:5: used here: template 't'\n");
  EXPECT_EQ(expanded("templates: {t: {children: [{template: t}]}}\npage: {template: t}\n"),
            "p.yaml:1: template 't' uses itself\n  p.yaml:2: used here: template 't'\n");
}

TEST_F(ExpandTest, EntriesRepeatOverListsCountsAndFiles) {
  writeText("rows.csv", "name,rank\r\n\"a, \"\"b\"\"\",1\r\nc,\r\n");
  writeText("rows.yaml", "- {k: 1}\n- {k: 2}\n");
  const std::pair<const char*, const char*> cases[] = {
      {"{repeat: 2, n: $(item), x: $(index * 10), of: $(count)}",
       "  - n: 1\n    x: 0\n    of: 2\n  - n: 2\n    x: 10\n    of: 2\n"},
      {"{repeat: {over: [u, v], as: l, index: i}, name: $(l)$(i), next: $(l)$((i + 1) % count)}",
       "  - name: u0\n    next: u1\n  - name: v1\n    next: v0\n"},
      {"{repeat: {over: rows.csv}, v: $(item.name), r: $(item.rank)}",
       "  - v: \"a, \\\"b\\\"\"\n    r: 1\n  - v: c\n    r: \"\"\n"},
      {"{repeat: rows.yaml, v: $(item.k), c: [{repeat: 1, w: $(item)}]}",
       "  - v: 1\n    c:\n      - w: 1\n  - v: 2\n    c:\n      - w: 1\n"},
      {"{repeat: 0, x: 1}", ""},
  };
  for (const auto& [entry, result] : cases)
    EXPECT_EQ(expanded(std::string("page:\n  - ") + entry + "\n"),
              *result ? "page:\n" + std::string(result) : "page: []\n");
  const std::pair<const char*, const char*> errors[] = {
      {"{repeat: -1}", "repeat: expecting a count from 0 to 1000000, found -1"},
      {"{repeat: {ovr: 3}}", "repeat has no 'ovr'; it has over, as, index and count; did you mean 'over'?"},
      {"{repeat: {as: x}}", "repeat: needs 'over', what to repeat over"},
      {"{repeat: {over: 1, as: 1x}}", "'1x' is no name for expressions"},
      {"{repeat: none.csv}", "can't read 'none.csv': No such file or directory"},
  };
  for (const auto& [entry, error] : errors)
    EXPECT_EQ(expanded(std::string("page:\n  - ") + entry + "\n"), std::string("p.yaml:2: ") + error + "\n");
}

TEST_F(ExpandTest, FilesAreIncluded) {
  writeText("theme.yaml", "include: more.yaml\nconstants: {dark: 1, light: $(dark + 1)}\n");
  writeText("more.yaml", "constants: {dark: 0, deep: 5}\ntemplates: {t: {bgColor: $(light)}}\n");
  writeText("list.yaml", "- {x: $(deep)}\n- {x: 2}\n");
  writeText("map.yaml", "x: 1\ny: 2\n");
  EXPECT_EQ(expanded("include: [theme.yaml]\nconstants: {dark: 8}\n"
                     "page:\n  - {include: list.yaml}\n  - {include: map.yaml, y: 3}\n  - {template: t}\n"),
            "page:\n  - x: 5\n  - x: 2\n  - x: 1\n    y: 3\n  - bgColor: 9\n");
  EXPECT_EQ(files, (std::vector<std::string>{"theme.yaml", "more.yaml", "list.yaml", "map.yaml"}));

  writeText("a.yaml", "include: b.yaml\n");
  writeText("b.yaml", "include: a.yaml\n");
  EXPECT_EQ(expanded("include: a.yaml\n"),
            "b.yaml:1: include: a.yaml includes itself\n  a.yaml:1: used here: include: b.yaml\n"
            "  p.yaml:1: used here: include: a.yaml\n");
  writeText("c.yaml", "- {include: d.yaml}\n");
  writeText("d.yaml", "- {include: c.yaml}\n");
  EXPECT_EQ(expanded("page:\n  - include: c.yaml\n"),
            "d.yaml:1: c.yaml includes itself\n  c.yaml:1: used here: include: d.yaml\n"
            "  p.yaml:2: used here: include: c.yaml\n");
  writeText("broken.yaml", "a: [\n");
  EXPECT_NE(expanded("page:\n  - include: broken.yaml\n  - x: $(no)\n").find("p.yaml:3: there is no 'no'"),
            std::string::npos);
}

TEST_F(ExpandTest, WhatHasATagIsNoDirectionAndWhatMultipliesHasBounds) {
  const char* const plain = "page:\n  repeat: !string x\n  template: !int 3\n  include: !table\n    - a\n";
  EXPECT_EQ(expanded(plain), plain);
  std::string source = "constants:\n  c0: [1, 2, 3, 4, 5, 6, 7, 8, 9, 10]\n";
  for (int i = 1; i < 9; ++i) {
    const std::string before = "$(c" + std::to_string(i - 1) + ")";
    source += "  c" + std::to_string(i) + ": [" + before;
    for (int k = 1; k < 10; ++k) source += ", " + before;
    source += "]\n";
  }
  EXPECT_NE(expanded(source + "page: $(c8)\n").find("is too large"), std::string::npos);
  EXPECT_NE(expanded("page: [{repeat: 2000, c: [{repeat: 2000, x: 1}]}]\n").find("is too large"), std::string::npos);
}

TEST_F(ExpandTest, StylesTakeFromOthers) {
  EXPECT_EQ(expanded("page:\n"
                     "  textStyles:\n"
                     "    - {name: big, style: red, size: 40}\n"
                     "    - {name: red, style: body, color: 3}\n"
                     "    - {name: body, font: a.ttf, size: 20, color: 1}\n"),
            "page:\n"
            "  textStyles:\n"
            "    - name: big\n      size: 40\n      color: 3\n      font: a.ttf\n"
            "    - name: red\n      color: 3\n      font: a.ttf\n      size: 20\n"
            "    - name: body\n      font: a.ttf\n      size: 20\n      color: 1\n");
  EXPECT_EQ(expanded("page:\n  textStyles:\n    - {name: a, style: b}\n    - {name: b, style: a}\n"
                     "    - {name: body, style: bdoy}\n"),
            "p.yaml:3: style: text style 'a' has itself as its style, directly or by way of others\n"
            "p.yaml:5: style: there is no text style 'bdoy'; did you mean 'body'?\n");
}

TEST_F(ExpandTest, LayoutsPlaceWhatLiesInThem) {
  const auto placed = [&](const std::string& page) {
    std::vector<KitMessage> errors;
    const YamlNode plain = expandSource(parseYaml("p.yaml", "page: " + page), errors).plain;
    std::string text;
    for (const KitMessage& message : errors) text += message.whole();
    const auto show = [&](const auto& self, const YamlNode& widget) -> void {
      const char* between = "";
      for (const char* key : {"x", "y", "width", "height"}) {
        const YamlNode* value = widget.find(key);
        text += between + (value ? value->text : "-");
        between = " ";
      }
      for (const char* key : {"layout", "gap", "padding", "columns"}) EXPECT_FALSE(widget.find(key)) << key;
      if (const YamlNode* children = widget.find("children"))
        for (const YamlNode& child : children->list) {
          text += "; ";
          self(self, child);
        }
    };
    if (errors.empty()) show(show, *plain.find("page"));
    return text;
  };
  const std::pair<const char*, const char*> cases[] = {
      // What has no size shares what is left; the first get the odd pixels.
      {"{width: 101, height: 20, layout: row, gap: 2, padding: [1, 2, 3, 4], children: [{}, {width: 30}, {height: 5}, "
       "{}]}",
       "- - 101 20; 4 1 20 16; 26 1 30 16; 58 1 20 5; 80 1 19 16"},
      {"{width: 10, height: 20, layout: column, children: [{}, {}, {x: 7}, {y: 7}]}",
       "- - 10 20; 0 0 10 10; 0 10 10 10; 7 - - -; - 7 - -"},
      {"{width: 110, height: 50, layout: grid, columns: 2, gap: [10, 4], children: [{}, {width: 20}, {height: 6}]}",
       "- - 110 50; 0 0 80 40; 90 0 20 40; 0 44 80 6"},
      // A size that isn't said is what the entries need.
      {"{layout: row, padding: 1, children: [{width: 5, height: 6}, {width: 7}]}", "- - 14 8; 1 1 5 6; 6 1 7 6"},
      {"{layout: row, children: [{layout: column, children: [{width: 9, height: 2}]}, {layout: column, gap: 1, "
       "children: [{width: 3, height: 2}, {width: 2, height: 4}]}]}",
       "- - 12 7; 0 0 9 7; 0 0 9 2; 9 0 3 7; 0 0 3 2; 0 3 2 4"},
      {"{width: 30, height: 9, layout: row, children: [{layout: row, children: [{}, {}]}]}",
       "- - 30 9; 0 0 30 9; 0 0 15 9; 15 0 15 9"},
      {"{type: textContainer, layout: column, gap: 3, padding: 5, children: [{style: a}, {}, {y: 9}, {x: 8}],\n"
       "textStyles: [{name: a, size: 10}]}",
       "- - - -; 5 15 - -; 5 44 - -; - 9 - -; 8 77 - -"},
      {"{width: 9, height: 9, layout: row}", "- - 9 9"},
      // Across it a size of one's own is kept, and a layout's need counts as one unless the row stretches it.
      {"{type: group, width: 40, height: 21, layout: row, padding: [3, 0, 1, 0], align: center, children: [{width: 5, "
       "height: 4}, {}, {height: 30}, {type: group, layout: column, children: [{height: 6, width: 8}]}]}",
       "- - 40 21; 0 9 5 4; 5 3 12 17; 17 3 12 30; 29 8 11 6; 0 0 8 6"},
      {"{type: group, width: 40, height: 20, layout: column, align: end, children: [{width: 5, height: 4}, {height: 4, "
       "type: text, align: right}]}",
       "- - 40 20; 35 0 5 4; 0 4 40 4"},
      {"{type: group, width: 40, height: 20, layout: column, align: start, children: [{type: group, layout: row, "
       "children: [{width: 3, height: 2}]}, {layout: row, children: [{}]}]}",
       "- - 40 20; 0 0 3 10; 0 0 3 2; 0 10 40 10; 0 0 40 10"},
      {"{type: group, width: 40, height: 20, layout: column, align: stretch, children: [{width: 5}, {layout: row, "
       "children: [{width: 3}]}]}",
       "- - 40 20; 0 0 5 10; 0 10 40 10; 0 0 3 10"},
      // As large as can be, and a size beyond it, which the reader refuses.
      {"{width: 65535, height: 1, layout: row, children: [{}, {width: 65534}]}", "- - 65535 1; 0 0 1 1; 1 0 65534 1"},
      {"{layout: row, children: [{width: 65535, height: 1}, {width: 65535}]}",
       "- - 131070 1; 0 0 65535 1; 65535 0 65535 1"},
      {"{width: 5, height: 5, layout: grid, columns: 65535, children: [{}, {}]}", "- - 5 5; 0 0 3 5; 3 0 2 5"},
      {"{type: group, layout: row, align: middle}",
       "p.yaml:1: layout: align: 'middle' is not one of stretch, start, center and end"},
      {"{type: group, layout: grid, columns: 1, align: end}", "p.yaml:1: layout: align is for a row or a column"},
      {"{layout: grid, columns: 0, name: board}", "p.yaml:1: layout of board: a grid has a column at least"},
      {"{type: textContainer, layout: row, children: [{}]}",
       "p.yaml:1: layout: lines of a text container can only be a column"},
      {"{layout: row, children: [{height: 2}]}",
       "p.yaml:1: layout: a width is needed, of this or of what lies around it"},
      {"{width: 5, height: 5, layout: row, gap: 6, children: [{}, {}]}",
       "p.yaml:1: layout: what lies around leaves no width for this"},
      {"{layout: rwo}", "p.yaml:1: layout: 'rwo' is not one of row, column and grid; did you mean 'row'?"},
      {"{layout: grid}", "p.yaml:1: layout: a grid needs 'columns'"},
      {"{layout: row, columns: 3}", "p.yaml:1: layout: columns are for a grid"},
      {"{layout: row, padding: [1, 2]}", "p.yaml:1: layout: padding is a number or a list of 4"},
      {"{layout: row, gap: -1}", "p.yaml:1: layout: gap: -1 lies outside 0 to 65535"},
  };
  for (const auto& [page, result] : cases) EXPECT_EQ(placed(page), result) << page;
}

TEST_F(ExpandTest, NeighboursAreLinked) {
  // NAME: up down left right, of widgets with a name.
  const auto linked = [&](const std::string& page) {
    std::vector<KitMessage> errors;
    const YamlNode plain = expandSource(parseYaml("p.yaml", "page: " + page), errors).plain;
    std::string text;
    for (const KitMessage& message : errors) text += message.whole();
    const auto show = [&](const auto& self, const YamlNode& widget) -> void {
      EXPECT_FALSE(widget.find("links"));
      if (const YamlNode* name = widget.find("name")) {
        text += name->text + ":";
        for (const char* key : {"up", "down", "left", "right"}) {
          const YamlNode* link = widget.find(key);
          text += " " + (link ? link->text : "-");
        }
        text += "; ";
      }
      if (const YamlNode* children = widget.find("children"))
        for (const YamlNode& child : children->list) self(self, child);
    };
    show(show, *plain.find("page"));
    return text;
  };
  const std::string grid =
      "layout: grid, columns: 2, width: 20, height: 20, children: [{name: a, onClick: x}, {name: b, onClick: x}, "
      "{name: c, onClick: x}, {name: d, onClick: x}]}";
  const std::pair<std::string, const char*> cases[] = {
      {"{links: auto, " + grid, "a: - c - b; b: - d a -; c: a - - d; d: b - c -; "},
      {"{links: wrap, " + grid, "a: c c b b; b: d d a a; c: a a d d; d: b b c c; "},
      {"{" + grid, "a: - - - -; b: - - - -; c: - - - -; d: - - - -; "},
      // In the same row first, however far; else the nearest, and the first of two alike.
      {"{links: auto, children: [{name: a, width: 5, height: 5, onClick: x}, {name: b, x: 6, y: 6, width: 5, height: "
       "5, "
       "onClick: x}, {name: c, x: 90, width: 5, height: 5, onClick: x}]}",
       "a: - b - c; b: a - a c; c: - b a -; "},
      // Positions nest; what can't show the focus, is hidden or says no is left out; names are made.
      {"{links: auto, start: s, children: [{name: link1, x: 5}, {x: 10, children: [{x: 10, width: 5, height: 5, "
       "highlightFrame: true}]}, {name: s, width: 5, height: 5}, {name: h, hidden: true, x: 6, onClick: x}, "
       "{name: n, links: none, x: 7, onClick: x}, {name: l, links: auto, x: 30, width: 5, height: 5}]}",
       "link1: - - - -; link2: - - s l; s: - - - link2; h: - - - -; n: - - - -; l: - - link2 -; "},
      // What is written stays, and a script is in place of a link.
      {"{links: auto, children: [{name: a, width: 5, height: 5, right: ''}, {name: b, x: 6, width: 5, height: 5, "
       "onLeft: y},"
       " {name: c, x: 12, width: 5, height: 5, left: a}]}",
       "a: - - - ; b: - - - c; c: - - a -; "},
      // A group that has `links` of its own is linked by itself.
      {"{links: auto, children: [{name: a, width: 5, height: 5, onClick: x}, {links: wrap, x: 6, children: [{name: b, "
       "width: 5, height: 5, onClick: x}, {name: c, x: 6, width: 5, height: 5, onClick: x}]}]}",
       "a: - - - -; b: - - c c; c: - - b b; "},
      // What follows a master shows the focus of that, and the master takes part.
      {"{links: auto, children: [{name: a, width: 5, height: 5}, {name: s, x: 6, width: 5, height: 5, master: a, "
       "highlightFrame: true}, {name: b, x: 12, width: 5, height: 5, onClick: x}, {name: m, x: 18, width: 5, height: "
       "5, master: '', onClick: x}, {name: l, x: 24, width: 5, height: 5, master: a, links: auto}]}",
       "a: - - - b; s: - - - -; b: - - a m; m: - - b l; l: - - m -; "},
      // Two that overlap lie in no direction of each other; two at the edge of a row wrap to its ends.
      {"{links: wrap, children: [{name: a, width: 9, height: 9, onClick: x}, {name: b, x: 4, y: 4, width: 9, height: "
       "9, onClick: x}]}",
       "a: - - - -; b: - - - -; "},
      {"{links: wrap, children: [{name: a, x: 20, width: 9, height: 9, onClick: x}, {name: b, x: 9, width: 9, height: "
       "9, onClick: x}, {name: c, x: 31, y: 8, width: 9, height: 9, onClick: x}, {name: d, x: 60, y: 50, width: 9, "
       "height: 9, onClick: x}]}",
       "a: - d b c; b: - d c a; c: - d a b; d: c - c -; "},
      {"{links: warp}", "p.yaml:1: links: 'warp' is not one of auto, wrap and none; did you mean 'wrap'?"},
  };
  for (const auto& [page, result] : cases) EXPECT_EQ(linked(page), result) << page;
}

// A layout leaves nothing over and nothing out: what shares what is left differs by a pixel at most.
TEST_F(ExpandTest, RandomRowsFillTheirWidgetExactly) {
  std::mt19937 random(17);
  const auto below = [&](int n) { return int(random() % unsigned(n)); };
  for (int round = 0; round < 300; ++round) {
    const int count = 1 + below(8), gap = below(9), left = below(20), right = below(20), width = 300 + below(400);
    std::string page = "page: {width: " + std::to_string(width) +
                       ", height: 9, layout: row, gap: " + std::to_string(gap) + ", padding: [0, " +
                       std::to_string(right) + ", 0, " + std::to_string(left) + "], children: [";
    std::vector<int> given;
    for (int i = 0; i < count; ++i) {
      given.push_back(i > 0 && below(2) ? below(25) : -1);  // the first takes what is left
      page += given.back() < 0 ? "{}, " : "{width: " + std::to_string(given.back()) + "}, ";
    }
    std::vector<KitMessage> errors;
    const YamlNode plain = expandSource(parseYaml("p.yaml", page + "]}"), errors).plain;
    ASSERT_TRUE(errors.empty()) << page;
    int at = left, least = width, most = 0;
    const std::vector<YamlNode>& children = plain.find("page")->find("children")->list;
    for (size_t i = 0; i < children.size(); ++i) {
      const int size = std::stoi(children[i].textOf("width"));
      ASSERT_EQ(children[i].textOf("x"), std::to_string(at)) << page;
      at += size + gap;
      if (given[i] >= 0) {
        EXPECT_EQ(size, given[i]) << page;
      } else {
        least = std::min(least, size);
        most = std::max(most, size);
      }
    }
    EXPECT_EQ(at - gap + right, width) << page;
    EXPECT_LE(most - least, 1) << page;
  }
}

TEST_F(ExpandTest, GridsOfAllSizesLinkAsTheyLie) {
  for (int columns = 1; columns <= 4; ++columns)
    for (int rows = 1; rows <= 4; ++rows) {
      std::vector<KitMessage> errors;
      const std::string text =
          "page: {width: 400, height: 400, links: wrap, layout: grid, gap: 3, columns: " + std::to_string(columns) +
          ", children: [{repeat: " + std::to_string(rows * columns) + ", name: n$(index), onClick: x}]}";
      const YamlNode plain = expandSource(parseYaml("p.yaml", text), errors).plain;
      // A row of one has nowhere to go in its direction.
      const auto name = [&](int row, int column) {
        return "n" + std::to_string((row + rows) % rows * columns + (column + columns) % columns);
      };
      for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column) {
          const YamlNode& widget = plain.find("page")->find("children")->list.at(size_t(row * columns + column));
          EXPECT_EQ(widget.textOf("up"), rows > 1 ? name(row - 1, column) : "");
          EXPECT_EQ(widget.textOf("down"), rows > 1 ? name(row + 1, column) : "");
          EXPECT_EQ(widget.textOf("left"), columns > 1 ? name(row, column - 1) : "");
          EXPECT_EQ(widget.textOf("right"), columns > 1 ? name(row, column + 1) : "");
        }
    }
  EXPECT_EQ(expanded("page: {links: auto, children: [{repeat: 4097, onClick: x}]}\n"),
            "p.yaml:1: links: there are more than 4,096 widgets to link\n");
}

TEST_F(ExpandTest, TablesAsTextAreReadToTheirLastLine) {
  const auto names = [&](const std::string& csv) {
    writeText("t.csv", csv);
    return expanded("page:\n  - {repeat: t.csv, v: $(item.a)/$(item.b)}\n");
  };
  EXPECT_EQ(names("\xEF\xBB\xBF"
                  "a,b\n1,2"),
            "page:\n  - v: 1/2\n");
  EXPECT_EQ(names("a,b\r1,2\r\r3,4\r"), "page:\n  - v: 1/2\n  - v: 3/4\n");
  EXPECT_EQ(names("b,a\n\"x,\ny\",\n"), "page:\n  - v: |-\n      /x,\n      y\n");
  EXPECT_EQ(names("a,b\n"), "page: []\n");
  EXPECT_EQ(names("a,b\n\"1\n\",2\n3\n"), "t.csv:4: the row has 1 field, and the first one 2\n");
  EXPECT_EQ(names("a,b\n1,\"2\n3,4\n"), "t.csv:2: a quoted field has no end\n");
  EXPECT_EQ(names("a,b,a\n1,2,3\n"), "t.csv:1: two columns are called 'a'\n");
  EXPECT_EQ(names("a,b\n1,2\n\xE4,3\n"), "t.csv:3: this is no UTF-8; save the file in that encoding\n");
  EXPECT_EQ(names("a,b\n\"1\"x,2\n"), "t.csv:2: a quoted field goes on after its quotes\n");
}

TEST_F(ExpandTest, WhatUsesItselfTooDeepIsRefused) {
  const auto chain = [](int length) {
    std::string text = "templates:\n  t0: {x: 1}\n";
    for (int i = 1; i < length; ++i)
      text += "  t" + std::to_string(i) + ": {template: t" + std::to_string(i - 1) + "}\n";
    return text + "page: {template: t" + std::to_string(length - 1) + "}\n";
  };
  EXPECT_EQ(expanded(chain(64)), "page:\n  x: 1\n");
  EXPECT_NE(expanded(chain(65)).find("templates and includes are nested more than 64 deep"), std::string::npos);
  std::string constants = "constants:\n  c0: 1\n";
  for (int i = 1; i < 300; ++i) constants += "  c" + std::to_string(i) + ": $(c" + std::to_string(i - 1) + ")\n";
  EXPECT_EQ(expanded(constants + "x: $(c200)\n"), "x: 1\n");
  EXPECT_NE(expanded(constants + "x: $(c299)\n").find("constants need each other too deep"), std::string::npos);
}

// What --expand prints builds to the same bytes.
TEST_F(ExpandTest, ThePlainSourceIsTheSamePage) {
  const auto builtOf = [](const std::string& source) { return compilePage(source, {}, {.strip = true}).bytes; };
  const auto expectSame = [&](const std::string& source) {
    const PlainSource plain = plainPageSource(source);
    writeText("plain.yaml", plain.text);
    EXPECT_EQ(builtOf("plain.yaml"), builtOf(source)) << source << "\n" << plain.text;
    EXPECT_EQ(plainPageSource("plain.yaml").text, plain.text);
  };
  for (const auto& file : std::filesystem::directory_iterator(VISTREL_DEMO))
    if (file.is_regular_file()) std::filesystem::copy_file(file.path(), file.path().filename());
  size_t pages = 0;
  for (const auto& file : std::filesystem::directory_iterator(VISTREL_DEMO)) {
    if (file.path().extension() != ".yaml" || file.path().filename() == "vistrel.yaml") continue;
    expectSame(file.path().filename().string());
    ++pages;
  }
  EXPECT_GT(pages, 3u);
  writeText(
      "all.yaml",
      "constants: {w: 40, text: 'costs $$(5) and \"more\"', code: \"x = 1;\\n\\n  y = 2;\\n\"}\n"
      "templates: {t: {parameters: {n: }, type: group, name: t$(n), onFocus: $(code), children: [{x: $(n * w)}]}}\n"
      "page:\n  type: group\n  onLoad: !script $(code)\n  layers: !table [$(text), 'null', '~', '- a']\n"
      "  textStyles: [{name: a, font: a.ttf}, {name: b, style: a}]\n"
      "  children: [{repeat: 3, template: t, with: {n: $(index)}}, {type: text, value: $(text)}]\n");
  expectSame("all.yaml");
}

}  // namespace
