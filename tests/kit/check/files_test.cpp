#include "kit/files.h"
#include "checkfixture.h"
#include "kit/pictures/clutfile.h"
#include "kit/pictures/kpxfile.h"

namespace {

class CheckedFilesTest : public CheckTest {
 protected:
  CheckedFilesTest() {
    const std::vector<uint8_t> clut = clutBytes({0x60808000});
    for (const char* name : {"t.clut", "u.clut"}) writeFile(name, clut.data(), clut.size());
  }

  static void writePicture(const std::string& name, const std::string& table, uint32_t width = 4, uint32_t height = 4) {
    writeKpxFile(name, {width, height, table, std::vector<uint8_t>(size_t{width} * height)});
  }

  // The first of the children is in line 8.
  Found checkPage(const std::string& children, const std::string& flags = "8bit") {
    return check("flags: " + flags +
                 "\npage:\n  type: group\n  width: 720\n  height: 480\n  colorTable: t.clut\n  children:\n" + children);
  }
};

TEST_F(CheckedFilesTest, FilesThatAreNotThere) {
  writePicture("a.kpx", "t.clut");
  writeText("next.yaml", "page: {}\n");
  EXPECT_EQ(checkPage("    - {type: image, src: a.kpx, highlightSrc: b.kpx}\n"
                      "    - {background: b.kpx}\n"
                      "    - {type: frame, src: b.kpg}\n"
                      "    - {onClick: topFrame.LoadPage(\"b.kpg\");}\n"
                      "    - {type: frame, src: next.kpg, onClick: topFrame.LoadPage(\"next.kpg\");}\n"),
            (Found{"8 missing-file", "9 missing-file", "10 missing-file", "11 missing-file"}));
  EXPECT_EQ(check("page:\n  colorTable: no.clut\n  scripts: [no.bobo]\n  textStyles: [{font: no.ttf}]\n"),
            (Found{"2 missing-file", "3 missing-file", "4 missing-file"}));
}

TEST_F(CheckedFilesTest, FilesOfAProjectAreThereWithoutABuild) {
  writeText("vistrel.yaml", "pages: [p.yaml, sub/next.yaml]\ntables: {S.clut: standard}\n");
  std::filesystem::create_directory("sub");
  writeText("sub/next.yaml", "page: {}\n");
  const std::string page = "flags: 8bit\npage:\n  type: group\n  colorTable: ";
  const std::string child = "\n  children:\n    - {type: frame, src: sub\\next.kpg}\n";
  EXPECT_EQ(check(page + "S.clut" + child), Found{});
  EXPECT_EQ(check(page + "s.clut" + child), Found{"4 file-case"});
  EXPECT_FALSE(std::filesystem::exists("build"));
}

TEST_F(CheckedFilesTest, NamesThatDifferInCase) {
  std::filesystem::create_directory("Art");
  writePicture("Art/a.kpx", "t.clut");
  writeText("Next.yaml", "page: {}\n");
  EXPECT_EQ(checkPage("    - {background: art\\a.kpx}\n"
                      "    - {background: Art/A.kpx}\n"
                      "    - {background: Art/a.kpx}\n"
                      "    - {type: frame, src: next.kpg}\n"
                      "    - {type: frame, src: Next.kpg}\n"),
            (Found{"8 file-case", "9 file-case", "11 file-case"}));
}

TEST_F(CheckedFilesTest, PicturesThatThePlayerCannotUse) {
  writeText("a.kpx", "no picture");
  writeText("f.ttf", "no font");
  writePicture("b.kpx", "t.clut");
  EXPECT_EQ(checkPage("    - {background: a.kpx}\n    - {background: b.png}\n    - {background: b.kpx}\n"),
            (Found{"8 unreadable-file", "9 picture-ending"}));
  EXPECT_EQ(check("page:\n  textStyles: [{font: f.ttf}]\n"), Found{"2 unreadable-file"});
}

TEST_F(CheckedFilesTest, PicturesThatThePlayerCannotKeep) {
  writePicture("half.kpx", "t.clut", 500, 500);
  writePicture("more.kpx", "t.clut", 500, 500);
  writePicture("dot.kpx", "t.clut", 1, 1);
  writePicture("huge.kpx", "t.clut", 1000, 600);
  const std::string two = "    - {background: half.kpx}\n    - {background: more.kpx}\n    - {background: half.kpx}\n";
  EXPECT_EQ(checkPage(two), Found{});
  EXPECT_EQ(checkPage(two + "    - {background: dot.kpx}\n"), Found{"3 picture-memory"});
  EXPECT_EQ(checkPage("    - {background: huge.kpx}\n"), Found{"8 picture-size"});
}

TEST_F(CheckedFilesTest, ColorsThatPicturesBring) {
  writePicture("same.kpx", "T.clut");
  writePicture("none.kpx", "");
  writePicture("other.kpx", "u.clut");
  const char* const children =
      "    - {background: same.kpx}\n    - {background: none.kpx}\n    - {background: other.kpx}\n";
  EXPECT_EQ(checkPage(children), Found{"10 other-table"});
  EXPECT_EQ(checkPage(children, "16bit"), Found{"9 no-table"});
  EXPECT_EQ(check("flags: 8bit\npage:\n  width: 720\n  height: 480\n"), Found{"3 no-table"});
  EXPECT_EQ(check("flags: 8bit\npage:\n  width: 719\n  height: 480\n"), Found{});
}

}  // namespace
