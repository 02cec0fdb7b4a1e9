#include "kit/source/pageoutline.h"

#include "kit/errors.h"
#include "kit/source/pagebuild.h"
#include "kit/source/pagelimits.h"
#include "support/pagefixture.h"

namespace {

class OutlineTest : public PageTest {
 protected:
  PageOutline outline(const std::string& source) {
    writeText("p.yaml", source);
    const BuiltPage built = compilePage("p.yaml");
    return outlinePage("p.yaml", built.bytes, built.places);
  }
};

constexpr char kPage[] =
    "flags: 8bit\n"
    "page:\n"
    "  x: 10\n"
    "  type: group\n"
    "  start: go\n"
    "  colorTable: c.clut\n"
    "  scripts: [a.bobo]\n"
    "  textStyles:\n"
    "    - {name: body, font: f.ttf, size: 30}\n"
    "    - {font: g.ttf}\n"
    "  children:\n"
    "    - type: group\n"
    "      x: 100\n"
    "      y: 50\n"
    "      children:\n"
    "        - {name: go, x: 5, y: 6, width: 7, height: 8, right: list, onClick: x = 1;, background: b.kpx}\n"
    "        - {type: textContainer, name: list, x: 1, selectTextStyle: body, children: [{x: 2, y: 3, style: body}]}\n"
    "    - {type: text, children: !table [{name: unread}], left: !int 5, up: go}\n";

TEST_F(OutlineTest, SaysWhereThingsLieOnTheScreenAndWhatTheyName) {
  EXPECT_EQ(outlineText(outline(kPage)),
            "8-bit page, widgets: 5\n"
            "page         group          10   0   0x0  p.yaml:3   start=go colorTable=c.clut\n"
            "  group1     group          110  50  0x0  p.yaml:12\n"
            "    go       box            115  56  7x8  p.yaml:16  right=list background=b.kpx onClick\n"
            "    list     textContainer  111  50  0x0  p.yaml:17  selectTextStyle=body\n"
            "      line1  line           113  53  0x0  p.yaml:17  style=body\n"
            "  text2      text           10   0   0x0  p.yaml:18  up=go\n"
            "script   a.bobo\n"
            "style  body     30  p.yaml:9   f.ttf\n"
            "style  default  24  p.yaml:10  g.ttf\n");
  // The engine agrees, once it finds the files that it can't do without.
  std::string page = kPage;
  page.replace(page.find("colorTable: c.clut"), 18, "other: 1");
  ASSERT_TRUE(load(page));
  EXPECT_EQ(widget("go")->bounds.x, 115);
  EXPECT_EQ(widget("go")->bounds.y, 56);
}

TEST_F(OutlineTest, IsWrittenAsJsonWhateverBytesNamesHave) {
  PageTree page;
  page.root.attributes = {{"name", {PageTag::string, 0, "a\"\\\n\xC3(", {}, {}}},  // half of a letter
                          {"up", {PageTag::string, 0, "x\xC2\x80", {}, {}}},
                          {"onUp", {PageTag::script, 0, "", {}, {}}}};
  EXPECT_EQ(outlineJson(outlinePage("p.kpg", writePage(page))),
            "{\n"
            "  \"depth\": 16,\n"
            "  \"widgets\": 1,\n"
            "  \"scripts\": [],\n"
            "  \"styles\": [],\n"
            "  \"root\": {\n"
            "    \"label\": \"a\\\"\\\\?\\ufffd(\",\n"
            "    \"type\": \"box\",\n"
            "    \"name\": \"a\\\"\\\\\\u000a\\ufffd(\",\n"
            "    \"x\": 0,\n"
            "    \"y\": 0,\n"
            "    \"width\": 0,\n"
            "    \"height\": 0,\n"
            "    \"links\": {\n"
            "      \"up\": \"x\xC2\x80\"\n"
            "    },\n"
            "    \"styles\": {},\n"
            "    \"files\": {},\n"
            "    \"hooks\": [\n"
            "      \"onUp\"\n"
            "    ],\n"
            "    \"children\": []\n"
            "  }\n"
            "}\n");
  EXPECT_THROW(outlinePage("p.kpg", {'K', 'P'}), KitError);
}

// Not from a source, since build refuses such a page.
TEST_F(OutlineTest, KnowsHowManyWidgetsThePlayerTakes) {
  for (const size_t count : {65535, 65536}) {
    PageValue child, children;
    child.tag = PageTag::object;
    child.object.emplace_back();
    children.tag = PageTag::table;
    children.table.assign(count, child);
    PageTree tree;
    tree.root.attributes = {{"type", {PageTag::string, 0, "group", {}, {}}}, {"children", children}};
    const std::vector<uint8_t> bytes = writePage(tree);
    EXPECT_EQ(pageHasTooManyWidgets(bytes), count == 65536);
    EXPECT_EQ(outlinePage("p.kpg", bytes).widgets, 65536u);
  }
}

}  // namespace
