// Which files pages and their scripts may open, with links, pipes and folders that POSIX systems have.
#include "host/fileaccess.h"

#include <sys/stat.h>

#include "engine/base/hostfile.h"
#include "support/pagefixture.h"

namespace {

// What a script gets when it opens the files, in order, as '1' and '0'.
class FileAccessTest : public PageTest {
 protected:
  FileAccessTest() {
    std::filesystem::create_directories("top/page/inner");
    std::filesystem::create_directories("top/beside");
    for (const char* name : {"top/page/in.txt", "top/page/inner/in.txt", "top/beside/in.txt", "outside.txt"})
      writeText(name, "some");
    std::filesystem::current_path("top/page");
    std::filesystem::create_symlink("../../outside.txt", "link.txt");
    std::filesystem::create_symlink("../../new.txt", "danglinglink.txt");
    std::filesystem::create_directory_symlink("../beside", "linkedfolder");
    std::filesystem::create_symlink("in.txt", "insidelink.txt");
    EXPECT_EQ(mkfifo("pipe", 0600), 0);
    build("page.kpg", "page: {}");
    EXPECT_TRUE(loadFile("top/page/page.kpg"));
  }

  std::string opened(const std::string& mode, const std::vector<std::string>& names) {
    std::string all;
    for (const std::string& name : names) {
      const size_t before = desktop.log.size();
      desktop.typeLine("new File(\"" + name + "\", \"" + mode + "\") ? 1 : 0;");
      desktop.settle();
      const std::string answer = desktop.log.substr(before);
      all += answer.ends_with("--> 1\n") ? '1' : '0';
      if (all.back() == '0' && answer.find("' is not opened: ") == std::string::npos) all += "(silently)";
    }
    return all;
  }
  static std::string contents(const std::string& name) {
    const HostFilePtr file = openHostFile(name.c_str());
    const auto bytes = file ? readWhole(file.get()) : std::nullopt;
    return bytes ? std::string(bytes->begin(), bytes->end()) : "(none)";
  }
  FileAccess& access() { return desktop.shell.access; }

  const std::vector<std::string> inside = {"in.txt", "inner/in.txt", "./inner/../in.txt", "insidelink.txt",
                                           std::filesystem::current_path().string() + "/top/page/in.txt"};
  const std::vector<std::string> outside = {"../../outside.txt", "link.txt", "inner/../../../outside.txt",
                                            "linkedfolder/in.txt", "../beside/in.txt"};
};

TEST_F(FileAccessTest, APageReadsAnythingAndWritesInItsFolderUnlessToldOtherwise) {
  EXPECT_EQ(opened("r", inside), "11111");
  EXPECT_EQ(opened("r", outside), "11111");
  EXPECT_EQ(opened("r", {"pipe", "/dev/zero"}), "00");
  for (const char* mode : {"a", "r+", "w"}) {
    EXPECT_EQ(opened(mode, inside), "11111") << mode;
    EXPECT_EQ(opened(mode, outside), "00000") << mode;
  }
  EXPECT_EQ(opened("w", {"danglinglink.txt", "pipe", "inner", "/dev/null", "/dev/../dev/full"}), "00000");
  EXPECT_EQ(opened("w", {"new.txt", "inner/new.txt"}), "11");
  EXPECT_FALSE(std::filesystem::exists("../../new.txt"));
  EXPECT_EQ(contents("../../outside.txt"), "some");

  access().writeAnywhere = true;
  EXPECT_EQ(opened("w", {"link.txt", "../../else.txt"}), "11");
  EXPECT_EQ(opened("w", {"danglinglink.txt", "pipe"}), "00");
}

TEST_F(FileAccessTest, APageKeptToItsFolderReadsWhatIsBesideOnlyWithLeave) {
  access().readAnywhere = false;
  EXPECT_EQ(opened("r", inside), "11111");
  EXPECT_EQ(opened("r", outside), "00000");
  EXPECT_EQ(opened("r", {"IN.TXT", "..\\\\..\\\\OUTSIDE.txt", "LinkedFolder/in.txt"}), "100");
  writeText("../beside/page.kpg", "");
  EXPECT_EQ(contents("../beside/page.kpg"), "(none)");  // pages and pictures, too

  access().readable = {std::filesystem::absolute("../beside"), "nowhere"};
  EXPECT_EQ(opened("r", outside), "00011");
  EXPECT_EQ(opened("w", {"../beside/in.txt"}), "0");

  access().readable = {std::filesystem::absolute("../../outside.txt")};
  EXPECT_EQ(opened("r", outside), "11100");
}

TEST_F(FileAccessTest, WhereScriptsMayOpenNothingThePageStillDoes) {
  access().scriptsOpenFiles = false;
  EXPECT_EQ(opened("r", inside), "00000");
  EXPECT_EQ(opened("w", {"in.txt"}), "0");
  EXPECT_EQ(contents("in.txt"), "some");
  writeText("strings.tbl", "");
  desktop.typeLine("new StringTable(\"strings.tbl\");");
  EXPECT_TRUE(desktop.log.find("'strings.tbl' is not opened: scripts may open no files\n") != std::string::npos)
      << desktop.log;
}

TEST_F(FileAccessTest, ScriptsThatMayOnlyReadWriteNothing) {
  access().scriptsWriteFiles = false;
  EXPECT_EQ(opened("r", inside), "11111");
  for (const char* mode : {"a", "r+", "w"}) EXPECT_EQ(opened(mode, {"in.txt", "new.txt"}), "00") << mode;
  EXPECT_NE(desktop.log.find("'new.txt' is not opened: scripts may write no files\n"), std::string::npos);
  EXPECT_FALSE(std::filesystem::exists("new.txt"));
}

TEST_F(FileAccessTest, ScriptsWriteSoManyBytesInAll) {
  access().mostWritten = 2 * 4096 + 5;
  const auto type = [this](std::initializer_list<const char*> lines) {
    for (const char* line : lines) desktop.typeLine(line);
    desktop.settle();
  };
  // A new file counts as a block, an old one as what is written.
  type({"f = new File(\"new.txt\", \"w\");", "f.Display(\"123\");", "f.Close();"});
  type({"f = new File(\"in.txt\", \"w\");", "f.Display(\"4\");", "f.Close();"});
  type({"f = new File(\"more.txt\", \"w\");", "f.Display(\"5\");"});
  EXPECT_EQ(desktop.log.find("may write no more"), std::string::npos);
  type({"f.PutC(54);", "f.Display(\"7\");", "f.Close();"});
  EXPECT_EQ(contents("new.txt") + contents("in.txt") + contents("more.txt"), "12345");
  const std::string message = "Scripts may write no more than 8197 bytes\n";
  const size_t at = desktop.log.find(message);
  ASSERT_NE(at, std::string::npos) << desktop.log;
  EXPECT_EQ(desktop.log.find(message, at + 1), std::string::npos);
  type({"new File(\"fourth.txt\", \"w\");"});
  EXPECT_FALSE(std::filesystem::exists("fourth.txt"));
}

TEST_F(FileAccessTest, NamesThatNoFileHasEndInAMessage) {
  access().readAnywhere = false;
  EXPECT_EQ(contents(std::string(4096, 'x')), "(none)");
  std::string deep;
  for (int i = 0; i < 400; ++i) deep += "../";
  EXPECT_EQ(contents(deep + "etc/passwd"), "(none)");
  EXPECT_EQ(opened("w", {deep.substr(0, 201) + "tmp/made-by-a-page"}), "0");
  EXPECT_EQ(opened("r", {"pipe", "PIPE", "none.txt"}), "000(silently)");
  // A zero byte ends a name, for whoever judges it as for the system.
  EXPECT_EQ(opened("r", {"in.txt\\0.doc", "../../outside.txt\\0in.txt"}), "10");
  EXPECT_EQ(opened("w", {"in.txt\\0/../../../new.txt", "../../new.txt\\0in.txt"}), "10");
  EXPECT_FALSE(std::filesystem::exists("../../new.txt"));
}

}  // namespace
