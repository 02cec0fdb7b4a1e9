// kpg diff: what a reader sees of two pages or two pictures.
#include "kit/pictures/png.h"
#include "kpgfixture.h"

namespace {

namespace fs = std::filesystem;

using DiffTest = KpgTest;

constexpr char kPage[] = R"(flags: 16bit
page:
  type: group
  scripts: [tools.bob]
  textStyles:
    - {name: body, font: a.ttf, size: 20}
  children:
    - {type: text, name: title, x: 10, width: 100, value: Guide}
    - {x: 1, width: 5}
    - {x: 2, width: 5}
    - {type: group, name: band, children: [{name: lamp, x: 3, onClick: "x = 1;"}]}
    - {type: text, name: foot, x: 10, width: 100, value: Foot}
)";

std::string with(std::string page, const std::string& from, const std::string& to) {
  const size_t at = page.find(from);
  EXPECT_NE(at, std::string::npos) << from;
  return page.replace(at, from.size(), to);
}

TEST_F(DiffTest, PagesDifferByWidgetsAttributesStylesAndScripts) {
  writeText("tools.bob", "define f() { return 1; }\n");
  writeText("a.yaml", kPage);
  struct Case {
    const char *from, *to, *lines;
  };
  const Case cases[] = {
      {"flags: 16bit", "flags: 8bit", "flags: 16bit -> 8bit\n"},
      {"x: 10", "x: 12", "title: x: 10 -> 12\n"},
      {"value: Guide", "bgColor: 3", "title: value: Guide is gone\ntitle: bgColor: 3 is new\n"},
      {"    - {x: 1, width: 5}\n", "", "box1 of page: box is gone from page\n"},
      {"    - {x: 1, width: 5}\n", "    - {x: 9}\n    - {x: 1, width: 5}\n", "box1 of page: box is new in page\n"},
      {"{x: 2, width", "{x: 4, width", "box2 of page: x: 2 -> 4\n"},
      {"x = 1;", "x = 2;", "lamp: onClick: \"x = 1;\" -> \"x = 2;\"\n"},
      {"size: 20", "size: 22", "style body: size: 20 -> 22\n"},
      {"- {name: body", "- {name: small, font: b.ttf}\n    - {name: body", "style small: is new\n"},
      {"type: text, name: foot", "type: number, name: foot", "foot: type: text -> number\nfoot: value: Foot -> 7\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.to);
    std::string changed = with(kPage, c.from, c.to);
    if (std::string(c.to).starts_with("type: number")) changed = with(changed, "value: Foot", "value: \"7\"");
    writeText("b.yaml", changed);
    EXPECT_EQ(kpg("diff a.yaml b.yaml"), 1) << err;
    EXPECT_EQ(out, c.lines);
    EXPECT_EQ(kpg("diff b.yaml a.yaml"), 1);
    EXPECT_EQ(kpg("diff b.yaml b.yaml"), 0);
    EXPECT_EQ(out, "");
  }
}

TEST_F(DiffTest, AWidgetIsKnownByItsNameWhereverItStands) {
  writeText("tools.bob", "");
  writeText("a.yaml", kPage);
  std::string moved = with(kPage, "children: [{name: lamp, x: 3, onClick: \"x = 1;\"}]", "children: []");
  moved += "    - {name: lamp, x: 7, onClick: \"x = 1;\"}\n";
  writeText("b.yaml", moved);
  EXPECT_EQ(kpg("diff a.yaml b.yaml"), 1) << err;
  EXPECT_EQ(out, "lamp: now in page\nlamp: x: 3 -> 7\n");
  EXPECT_EQ(kpg("diff b.yaml a.yaml"), 1);
  EXPECT_EQ(out, "lamp: now in band\nlamp: x: 7 -> 3\n");

  const std::string title = "    - {type: text, name: title, x: 10, width: 100, value: Guide}\n";
  writeText("b.yaml", with(kPage, title, "") + title);
  EXPECT_EQ(kpg("diff a.yaml b.yaml"), 1);
  EXPECT_EQ(out, "page: its children have another order: box1 of page, box2 of page, band, foot, title\n");
}

TEST_F(DiffTest, CompiledPagesAndScriptFilesAreComparedByWhatTheyDo) {
  fs::create_directory("other");
  writeText("tools.bob", "define f() {\n  return 1;\n}\n");
  writeText("other/tools.bob", "define f() {\n  return 2;\n}\n");
  writeText("a.yaml", kPage);
  writeText("other/a.yaml", kPage);
  EXPECT_EQ(kpg("diff a.yaml other/a.yaml"), 1) << err;
  EXPECT_EQ(out, "file tools.bob:\n    define f() {\n  -   return 1;\n  +   return 2;\n    }\n");

  // Lines of a source, constants and the like leave no trace.
  writeText("other/tools.bob", text("tools.bob"));
  writeText("other/a.yaml", "# One line more\n" + with(kPage, "x: 10", "x: $(5 + 5)"));
  EXPECT_EQ(kpg("diff a.yaml other/a.yaml"), 0) << out;
  ASSERT_EQ(kpg("build a.yaml -o a.kpg"), 0);
  ASSERT_EQ(kpg("build other/a.yaml -o other/a.kpg"), 0);
  EXPECT_NE(text("a.kpg"), text("other/a.kpg"));
  for (const char* pages : {"a.kpg other/a.kpg", "a.kpg other/a.yaml", "other/a.yaml a.kpg"})
    EXPECT_EQ(kpg("diff " + std::string(pages)), 0) << pages << out;
  writeText("b.yaml", with(kPage, "x = 1;", "x = 2;"));
  EXPECT_EQ(kpg("diff a.kpg b.yaml"), 1);
  EXPECT_TRUE(out.starts_with("lamp: onClick:\n")) << out;
  EXPECT_NE(out.find("\n  - LIT 0003 ; 1\n  + LIT 0003 ; 2\n"), std::string::npos) << out;
}

TEST_F(DiffTest, PicturesAreCountedAndDrawn) {
  std::vector<uint32_t> pixels(20 * 10, 0x204060);
  writePng("a.png", 20, 10, pixels);
  pixels[3 * 20 + 7] = 0x20A060;
  pixels[5 * 20 + 9] = 0x204061;
  writePng("b.png", 20, 10, pixels);
  EXPECT_EQ(kpg("diff a.png a.png"), 0);
  EXPECT_EQ(out, "");
  EXPECT_EQ(kpg("diff a.png b.png -o d.png"), 1);
  EXPECT_EQ(out, "2 pixels differ, in 3x3 at 7,3, by 96 of 255 at most\n");
  const Picture drawn = decodePng("d.png", readFile("d.png"));
  EXPECT_EQ(drawn.pixels[3 * 20 + 7], drawn.pixels[5 * 20 + 9]);
  EXPECT_NE(drawn.pixels[3 * 20 + 7], drawn.pixels[0]);
  EXPECT_EQ(kpg("diff a.png b.png --tolerance 1"), 1);
  EXPECT_EQ(out, "1 pixel differs, in 1x1 at 7,3, by 96 of 255 at most\n");
  EXPECT_EQ(kpg("diff a.png none.png"), 2);
  EXPECT_EQ(kpg("diff a.png a.png -o a.png"), 2);
  writeText("p.yaml", "page: {}");
  EXPECT_EQ(kpg("diff a.png p.yaml"), 2);
}

}  // namespace
