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
  EXPECT_EQ(contents((std::filesystem::current_path() / "art/icons/PLAY.gif").string().c_str()), "play");

  writeText("Art/Icons/play.gif", "lower");
  EXPECT_EQ(contents("art/icons/play.gif"), "lower");
  EXPECT_EQ(contents("Art/Icons"), "(none)");  // a folder is no file
  EXPECT_EQ(contents("art/none.gif"), "(none)");
  EXPECT_EQ(contents(""), "(none)");
}

TEST_F(HostTest, EveryReaderClosesItsFile) {
#ifdef _WIN32
  GTEST_SKIP() << "those of Wine itself would be counted";
#endif
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
