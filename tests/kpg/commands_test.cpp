// The program as its users call it: exit statuses, streams, and the rules of a shot.
#include <sys/wait.h>

#include "kpg/files.h"
#include "support/pagefixture.h"

namespace {

class CommandsTest : public PageTest {
 protected:
  // Exit status; standard output and error stream are left in `out` and `err`.
  int kpg(const std::string& arguments) {
    const int status = std::system((std::string(KPG_PROGRAM) + " " + arguments + " >out.txt 2>err.txt").c_str());
    out = text("out.txt");
    err = text("err.txt");
    return WEXITSTATUS(status);
  }
  static std::string text(const std::string& name) {
    const auto bytes = readFile(name);
    return {bytes.begin(), bytes.end()};
  }
  std::string out, err;
};

TEST_F(CommandsTest, ErrorsGoToTheErrorStreamWithStatusOne) {
  EXPECT_EQ(kpg("--help"), 0);
  EXPECT_NE(out.find("shot"), std::string::npos);
  EXPECT_EQ(kpg("shot --help"), 0);
  EXPECT_EQ(kpg("fold page.kpg"), 1);
  EXPECT_EQ(kpg("shot none.kpg --key Sideways"), 1);
  EXPECT_EQ(kpg("build none.yaml -o p.kpg"), 1);
  EXPECT_EQ(err, "none.yaml: No such file or directory\n");
  writeText("p.yaml", "page:\n  x: 1\n  x: 2\n");
  EXPECT_EQ(kpg("build p.yaml -o p.kpg"), 1);
  EXPECT_EQ(err, "p.yaml:3: 'x' stands twice\n");
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

TEST_F(CommandsTest, APageThatDoesNotLoadLeavesALogAndNoPicture) {
  writeText("p.kpg", "this is no page at all");
  EXPECT_EQ(kpg("shot p.kpg -o p.png --log log.txt"), 1);
  EXPECT_FALSE(std::filesystem::exists("p.png"));
  EXPECT_TRUE(text("log.txt").starts_with("Not a page file\nFailed to load page file: '"));
  EXPECT_TRUE(err.starts_with("Failed to load page file: '"));
}

}  // namespace
