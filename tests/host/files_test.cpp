#include <sys/stat.h>

#include <iterator>

#include "engine/images/imageload.h"
#include "engine/screen/clut.h"
#include "engine/text/fonts.h"
#include "host/host.h"
#include "support/pagefixture.h"

namespace {

class HostTest : public PageTest {
 protected:
  static std::string contents(const char* name) {
    HostFile* file = hostOpen(name);
    if (!file) return "(none)";
    std::string text(hostFileSize(file), ' ');
    EXPECT_EQ(hostTell(file), 0u);
    text.resize(hostRead(file, text.data(), text.size()));
    hostClose(file);
    return text;
  }
};

TEST_F(HostTest, NamesLeadThroughEitherSeparatorAndAnyCaseButTheExactOneFirst) {
  std::filesystem::create_directories("Art/Icons");
  writeText("Art/Icons/Play.gif", "play");
  EXPECT_EQ(contents("Art/Icons/Play.gif"), "play");
  EXPECT_EQ(contents("art\\ICONS\\play.GIF"), "play");
  EXPECT_EQ(contents((std::filesystem::current_path() / "art/icons/PLAY.gif").c_str()), "play");

  writeText("Art/Icons/play.gif", "lower");
  EXPECT_EQ(contents("art/icons/play.gif"), "lower");
  EXPECT_EQ(contents("Art/Icons"), "(none)");  // a folder is no file
  EXPECT_EQ(contents("art/none.gif"), "(none)");
}

TEST_F(HostTest, EveryReaderClosesItsFile) {
  const std::filesystem::path descriptors = "/proc/self/fd";
  if (!std::filesystem::exists(descriptors)) GTEST_SKIP() << "open files can't be counted here";
  const auto openFiles = [&] {
    return std::distance(std::filesystem::directory_iterator(descriptors), std::filesystem::directory_iterator());
  };
  ASSERT_TRUE(load("flags: 8bit\npage: {type: group}"));
  const std::string good("\0\0\0\1\0\1\0\1\0\0\0\0x", 13);
  writeText("good.kpx", good);
  writeText("short.kpx", good.substr(0, 5));
  writeText("cut.kpx", good.substr(0, 12));
  for (const char* name : {"bad.gif", "any.clut", "any.ttf", "any.tbl", "any.txt"}) writeText(name, "no such format");
  const auto before = openFiles();
  for (const char* name : {"good.kpx", "short.kpx", "cut.kpx", "bad.gif", "page.kpg"}) imagePreload(name);
  clutLoad("any.clut");
  fontLoad("any.ttf");
  desktop.typeLine("new StringTable(\"any.tbl\").Close();");
  desktop.typeLine("new TextStyle({font: \"any.ttf\", size: 10}).CacheGlyphsFromFile(\"any.txt\");");
  desktop.typeLine("Load(\"any.txt\");");
  EXPECT_FALSE(loadFile("any.txt"));
  EXPECT_EQ(openFiles(), before);
}

// What a script gets when it opens the files, in order, as '1' and '0'.
class FileAccessTest : public HostTest {
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
  FileAccess& access() { return desktop.shell.access; }

  const std::vector<std::string> inside = {"in.txt", "inner/in.txt", "./inner/../in.txt", "insidelink.txt",
                                           std::filesystem::current_path().string() + "/top/page/in.txt"};
  const std::vector<std::string> outside = {"../../outside.txt", "link.txt", "inner/../../../outside.txt",
                                            "linkedfolder/in.txt", "../beside/in.txt"};
};

TEST_F(FileAccessTest, APageReadsAnythingAndWritesInItsFolderUnlessToldOtherwise) {
  EXPECT_EQ(opened("r", inside), "11111");
  EXPECT_EQ(opened("r", outside), "11111");
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

TEST_F(FileAccessTest, NamesThatNoFileHasEndInAMessage) {
  access().readAnywhere = false;
  EXPECT_EQ(contents(std::string(4096, 'x').c_str()), "(none)");
  std::string deep;
  for (int i = 0; i < 400; ++i) deep += "../";
  EXPECT_EQ(contents((deep + "etc/passwd").c_str()), "(none)");
  EXPECT_EQ(opened("w", {std::string(251, 'x') + ".text", deep.substr(0, 201) + "tmp/made-by-a-page"}), "00");
  EXPECT_EQ(opened("r", {"pipe"}), "0(silently)");  // as if it were not there
  desktop.typeLine("new File(\"in.txt\\0.doc\", \"r\") ? 1 : 0;");
  EXPECT_TRUE(desktop.log.ends_with("--> 1\n") || desktop.log.ends_with("--> 0\n")) << desktop.log;
}

TEST_F(HostTest, ALogLineBeyondItsBufferIsCut) {
  hostLog("%s\n", std::string(5000, 'x').c_str());
  EXPECT_EQ(desktop.log, std::string(2047, 'x'));
}

TEST_F(HostTest, ACommandLoadsBesideTheChosenFileAndExitEnds) {
  std::filesystem::create_directory("pages");
  build("pages/page.kpg", "page: {type: group, children: [{type: frame, src: inner.kpg}]}");
  build("pages/inner.kpg", "page: {name: inside}");
  desktop.shell.command(Command::loadPage);  // cancelled
  EXPECT_EQ(topFrame()->pageData, nullptr);

  desktop.fileToChoose = (std::filesystem::current_path() / "pages/page.kpg").string();
  desktop.shell.command(Command::loadPage);
  EXPECT_EQ(desktop.log, "");
  EXPECT_NE(topFrame()->pageData, nullptr);
  EXPECT_FALSE(desktop.shell.loadPage("nowhere/page.kpg"));
  EXPECT_TRUE(desktop.shell.loadPage("page.kpg"));  // the folder stays where it was
  EXPECT_FALSE(desktop.hasQuit);
  desktop.shell.command(Command::exit);
  EXPECT_TRUE(desktop.hasQuit);
}

}  // namespace
