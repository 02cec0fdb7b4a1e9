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
  EXPECT_FALSE(desktop.hasQuit);
  desktop.shell.command(Command::exit);
  EXPECT_TRUE(desktop.hasQuit);
}

}  // namespace
