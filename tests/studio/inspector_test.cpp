// The tree of widgets, their attributes, and why they are not to be seen.
#include <map>

#include "inspectorpage.h"
#include "studio/inspector/attributelines.h"
#include "studio/inspector/unseen.h"
#include "studio/inspector/widgettree.h"
#include "support/blockfont.h"

namespace {

class InspectorTest : public InspectorPage {
 protected:
  std::map<std::string, AttributeLine> linesOf(const std::string& widget) {
    std::map<std::string, AttributeLine> lines;
    for (AttributeLine& line : attributeLines(run(), *sources, idOf(widget))) lines.emplace(line.name, line);
    return lines;
  }
};

// ---- the tree

TEST_F(InspectorTest, TheTreeShowsEachWidgetWithWhatItIs) {
  write("inner.yaml", "page: {type: group, children: [{type: text}]}\n");
  buildPage(at("inner.yaml"), at("inner.kpg"));
  open(R"(flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: black
  start: second
  children:
    - {type: group, name: g, x: 10, y: 20, children: [{x: 3, width: 7, height: 8, bgColor: white}, {name: second}]}
    - {type: frame, name: f, src: inner.kpg}
    - {type: image, hidden: both}
    - {type: image}
    - {name: twin, width: 1, height: 1}
    - {name: twin, width: 1, height: 1, master: second}
    - {x: 800, width: 1, height: 1, bgColor: white}
)");
  std::string tree;
  for (const TreeRow& row : widgetTree(engine())) {
    tree += std::string(size_t(row.depth), ' ') + row.label + " " + row.path;
    tree += std::string(row.hidden ? " hidden" : "") + (row.focused ? " focused" : "") +
            (row.highlighted ? " highlighted" : "") + (row.notSeen ? " unseen" : "") + "\n";
  }
  EXPECT_EQ(tree,
            "page page\n"
            " g page/g\n"
            "  box1 page/g/box1\n"
            "  second page/g/second focused highlighted\n"
            " f page/f\n"
            "  page page/f/page\n"
            "   text1 page/f/page/text1 unseen\n"
            " image3 page/image3 hidden\n"
            " image4 page/image4 unseen\n"
            " twin page/twin\n"
            " twin page/twin#2 highlighted\n"
            " box7 page/box7 unseen\n");
  const std::vector<TreeRow> rows = widgetTree(engine());
  EXPECT_EQ(rows[2].bounds, (Bounds{13, 20, 7, 8}));
  EXPECT_EQ(rows[2].parent, size_t{1});
  EXPECT_EQ(rows[0].parent, std::nullopt);
  EXPECT_EQ(findRow(rows, idOf("second")), size_t{3});
  EXPECT_EQ(widgetLabels(engine()).at(inspectWidgets(engine()).front().id), "screen");
}

TEST_F(InspectorTest, AnEmptyFieldIsSeenByItsBackground) {
  const std::vector<uint8_t> font = BlockFontFile();
  writeFile(at("a.ttf"), font.data(), font.size());
  open(R"(page:
  type: group
  textStyles: [{name: s, font: a.ttf, size: 20, color: white}]
  children:
    - {type: text, name: field, width: 90, height: 20, bgColor: '#C00000', textStyle: s}
    - {type: text, name: bare, width: 90, height: 20, y: 30, textStyle: s}
    - {type: text, name: full, width: 90, height: 20, y: 60, bgColor: '#C00000', textStyle: s, value: a}
)");
  std::map<std::string, bool> notSeen;
  for (const TreeRow& row : widgetTree(engine())) notSeen[row.label] = row.notSeen;
  EXPECT_TRUE(notSeen.at("bare"));
  EXPECT_FALSE(notSeen.at("field"));
  EXPECT_FALSE(notSeen.at("full"));
}

TEST_F(InspectorTest, ARowIsFoundAgainAfterASave) {
  open("page: {type: group, children: [{type: group, name: g, children: [{name: a}, {name: b}]}]}\n");
  const auto pathOf = [&](const std::string& name) {
    const auto rows = widgetTree(engine());
    return rows[*findRow(rows, idOf(name))].path;
  };
  const std::string a = pathOf("a"), b = pathOf("b");
  write("p.yaml", "page: {type: group, children: [{name: new}, {type: group, name: g, children: [{name: b}]}]}\n");
  reload();
  const auto rows = widgetTree(engine());
  EXPECT_EQ(rows[*findPath(rows, b)].id, idOf("b"));
  EXPECT_EQ(rows[*findPath(rows, a)].label, "g") << "what it lay in";
  EXPECT_EQ(findPath(rows, "other/b"), std::nullopt);
}

// ---- attributes

TEST_F(InspectorTest, AnAttributeTellsWhereItComesFrom) {
  write("more.yaml", "bgColor: white\nframeWidth: 2\n");
  open(R"(flags: 16bit
templates:
  label:
    parameters: {says: null}
    type: text
    width: 70
    value: $(says)
page:
  type: group
  width: 720
  height: 480
  children:
    - template: label
      with: {says: Hello}
      name: hello
      x: 5
      align: right
    - include: more.yaml
      name: included
      onClick: x = 1;
      tileBackground: !object {}
    - {type: number, name: n, value: 7, navigate: leftRight, immediate: true}
    - {type: text, name: soon, value: a, timeout: 20}
    - {type: group, layout: row, children: [{name: placed, width: 10, height: 10}]}
)");
  auto hello = linesOf("hello");
  EXPECT_EQ(hello.at("x").from, "p.yaml:16");
  EXPECT_EQ(hello.at("x").value, "5");
  EXPECT_EQ(hello.at("x").uses, std::vector<std::string>());
  EXPECT_EQ(hello.at("align").from, "p.yaml:17");
  EXPECT_EQ(hello.at("align").choices, (std::vector<std::string>{"left", "center", "right"}));
  EXPECT_EQ(hello.at("align").editBy, EditBy::choice);
  EXPECT_EQ(hello.at("width").from, "p.yaml:6");
  EXPECT_EQ(hello.at("width").uses, std::vector<std::string>{"template 'label' at p.yaml:13"});
  EXPECT_EQ(hello.at("value").from, "p.yaml:7");
  EXPECT_EQ(hello.at("value").value, "Hello");
  EXPECT_EQ(hello.at("y").from, "default");
  EXPECT_EQ(hello.at("valign").from, "default");
  EXPECT_EQ(hello.at("valign").value, "top");
  EXPECT_EQ(hello.at("upLeft").value, "up, then left");
  EXPECT_EQ(hello.at("hidden").help, "what is hidden at first");

  auto included = linesOf("included");
  EXPECT_EQ(included.at("bgColor").from, "more.yaml:1");
  EXPECT_EQ(included.at("bgColor").editBy, EditBy::color);
  EXPECT_EQ(included.at("onClick").editBy, EditBy::nothing);
  EXPECT_TRUE(included.at("onClick").value.starts_with("a script of ")) << included.at("onClick").value;
  EXPECT_EQ(included.at("tileBackground").from.substr(0, 8), "refused:");
  EXPECT_EQ(included.at("tileBackground").value, "false");
  EXPECT_EQ(included.at("tileBackground").place->line, 21);
  EXPECT_EQ(linesOf("placed").at("x").from, "p.yaml:24");

  run().act({PageAction::wait, "30"});
  talk("widgets.n.value = 9;");
  talk("widgets.hello.x = 50;");
  EXPECT_EQ(linesOf("n").at("value").from, "changed by a key or a script");
  EXPECT_EQ(linesOf("n").at("value").value, "9");
  EXPECT_EQ(linesOf("n").at("value").place->line, 22);
  EXPECT_EQ(linesOf("n").at("immediate").editBy, EditBy::flag);
  EXPECT_EQ(linesOf("soon").at("hidden").from, "changed by its timeout or a script");
  EXPECT_TRUE(linesOf("nobody").empty());
}

// What lies built on the disk has a source only if that would still be built to the same bytes.
TEST_F(InspectorTest, PagesInsideHaveTheirSources) {
  std::filesystem::create_directory(folder.path() / "build");
  write("vistrel.yaml", "pages: [pages/far.yaml]\n");
  std::filesystem::create_directories(folder.path() / "pages");
  std::filesystem::create_directories(folder.path() / "build" / "pages");
  write("pages/far.yaml", "page:\n  type: group\n  children:\n    - {name: far, width: 3}\n");
  buildPage(at("pages/far.yaml"), at("build/pages/far.kpg"));
  write("near.yaml", "page:\n  type: group\n  children:\n    - name: near\n      width: 3\n");
  buildPage(at("near.yaml"), at("near.kpg"));
  const std::string page =
      "page: {type: group, children: [{type: frame, src: near.kpg}, {type: frame, src: 'build\\pages\\far.kpg'}]}\n";
  open(page);
  EXPECT_EQ(linesOf("near").at("width").from, "near.yaml:5");
  EXPECT_EQ(linesOf("far").at("width").from, "far.yaml:4");
  EXPECT_EQ(linesOf("far").at("width").editBy, EditBy::number);

  write("near.yaml", "# Other.\npage:\n  type: group\n  children:\n    - name: near\n      width: 4\n");
  const auto builtAt = std::filesystem::last_write_time(at("near.kpg"));
  std::filesystem::last_write_time(at("near.yaml"), builtAt - std::chrono::seconds(5));
  open(page);
  EXPECT_EQ(linesOf("near").at("width").from, "the page");
  EXPECT_EQ(linesOf("near").at("width").value, "3");
  EXPECT_EQ(linesOf("near").at("width").editBy, EditBy::nothing);
}

TEST_F(InspectorTest, WidgetsOfOneSourceAreCounted) {
  open(R"(templates:
  pair: {type: group, children: [{name: inside}]}
page:
  type: group
  children:
    - {template: pair}
    - {template: pair, name: second}
    - {name: 'row$(index)', repeat: 3}
    - &a {name: anchored}
    - *a
)");
  const auto shared = [&](const std::string& name) { return sources->of(idOf(name))->sharedBy; };
  EXPECT_EQ(shared("inside"), 2u);
  EXPECT_EQ(shared("second"), 1u);
  EXPECT_EQ(shared("row1"), 3u);
  EXPECT_EQ(shared("anchored"), 2u);
}

// ---- why not seen

TEST_F(InspectorTest, WhyAWidgetIsNotSeenIsSaidInSentences) {
  write("bad.gif", "no picture");
  open(R"(flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: black
  textStyles:
    - {name: lost, font: gone.ttf, color: white}
    - {name: fontless, color: white}
  children:
    - {name: fine, width: 9, height: 9, bgColor: white}
    - {name: hidden, x: 20, hidden: content, width: 9, height: 9, bgColor: white}
    - {name: byScript, x: 40, width: 9, height: 9, bgColor: white}
    - {name: flat, x: 60, width: 9, bgColor: white}
    - {name: outside, x: 720, width: 9, height: 9, bgColor: white}
    - {name: nothing, x: 80, width: 9, height: 9}
    - {name: black, x: 100, width: 9, height: 9, bgColor: black}
    - {name: clear, x: 120, width: 9, height: 9, bgColor: transparent}
    - {type: image, name: nopicture}
    - {type: image, name: picture, src: bad.gif}
    - {type: image, name: missing, src: none.gif}
    - {type: text, name: empty, textStyle: lost}
    - {type: text, name: lost, value: a, textStyle: lost}
    - {type: text, name: fontless, value: a, textStyle: fontless}
    - {type: text, name: unstyled, value: a, textStyle: unheard}
    - {type: text, name: styleless, value: a}
    - {type: select, name: choiceless, textStyle: lost}
    - {type: textContainer, name: lineless, x: 140, width: 9, height: 9}
    - {name: under, y: 100, width: 20, height: 10, bgColor: white}
    - {name: left, y: 100, width: 10, height: 10, bgColor: white}
    - {name: right, y: 100, x: 10, width: 10, height: 10, bgColor: white}
)");
  talk("widgets.byScript.Hide();");
  const std::pair<const char*, std::string> cases[] = {
      {"fine", ""},
      {"hidden", "hidden by the page"},
      {"byScript", "hidden by a script"},
      {"flat", "it has no height"},
      {"outside", "outside the screen"},
      {"nothing", "it has neither a colour nor a picture"},
      {"black", "it has the colour of what it lies on"},
      {"clear", "its colour is transparent"},
      {"nopicture", "it has no picture"},
      {"picture", "picture 'bad.gif' refused: it is no picture of the player's"},
      {"missing", "picture 'none.gif' refused: there is no such file"},
      {"empty", "its text is empty; font 'gone.ttf' is missing"},
      {"lost", "font 'gone.ttf' is missing"},
      {"fontless", "its text style names no font"},
      {"unstyled", "the page has no text style 'unheard'"},
      {"styleless", "it has no text style"},
      {"choiceless", "it has no choices"},
      {"lineless", "it has no lines"},
      {"under", "covered by 'right' and 'left'"},
  };
  for (const auto& [name, expected] : cases) {
    std::string all;
    for (const UnseenSentence& sentence : unseenSentences(engine(), idOf(name)))
      all += (all.empty() ? "" : "; ") + sentence.text;
    EXPECT_EQ(all, expected) << name;
  }
  const auto covered = unseenSentences(engine(), idOf("under"));
  ASSERT_EQ(covered[0].by.size(), 2u);
  EXPECT_EQ(covered[0].by[0].id, idOf("right"));
  EXPECT_EQ(covered[0].by[1].label, "left");
}

}  // namespace
