// Memory that runs out and files that fail in the life of a page: the console says so, and the next page is all right.
#include "faults/eachfails.h"
#include "gfx/foundation/hsdebug.h"
#include "support/allocations.h"
#include "support/everywidget.h"

namespace {

constexpr int64_t kSlack = 64 << 10;  // bytes, where the C library counts

constexpr char kGoodPage[] = R"(flags: 16bit
page:
  type: group
  width: 720
  height: 480
  bgColor: 0x40808000
  textStyles: [{name: plain, font: blocks.ttf, size: 10, color: 0x10808000}]
  onLoad: 'widgets.words.value = "ab" + "ab";'
  children:
    - {type: text, name: words, x: 100, y: 100, width: 200, height: 20, textStyle: plain}
    - {type: image, x: 300, y: 100, width: 16, height: 16, src: art.kpx}
    - {type: slider, x: 300, y: 200, width: 90, height: 20, value: 40, fgColor: 0x20808000, bgColor: 0xE0808000}
)";

class PageFaultsTest : public EveryWidgetTest {
 protected:
  PageFaultsTest() : before(hsSetHaltProc([] {})) { build("good.kpg", kGoodPage); }
  ~PageFaultsTest() override { hsSetHaltProc(before); }

  // Everything that a page and its user do, over to the next page or to none.
  static void live(HeadlessDesktop& desktop) {
    if (!desktop.shell.loadPage("every.kpg")) return;
    desktop.settle();
    for (const char* key : {"Right", "Down", "Select", "Down", "1", "2", "Clear", "Down", "Right", "Down", "Down"}) {
      desktop.key(key);
      desktop.settle();
      desktop.wait(1);
    }
    desktop.wait(10);
    desktop.typeLine("widgets.inside.UnloadPage(); widgets.words.value; textStyles.plain.size;");
    desktop.typeLine("no.such;");
    desktop.settle();
    desktop.shell.loadPage("inner.kpg");
    desktop.settle();
    desktop.typeLine("topFrame.UnloadPage();");
    desktop.settle();
  }

 private:
  hsHaltProc before;
};

// Both pages look as they did before anything failed.
class Pictures {
 public:
  explicit Pictures(HeadlessDesktop& d) : desktop(d) {}

  void expectTheSame() {
    for (const auto& [page, picture] : pictures) {
      const bool loaded = desktop.shell.loadPage(page);
      ASSERT_TRUE(loaded) << page << '\n' << desktop.log;
      desktop.settle();
      const auto differs = std::mismatch(picture.begin(), picture.end(), desktop.window().begin()).first;
      ASSERT_EQ(differs, picture.end()) << page << " at " << (differs - picture.begin()) % 720 << ", "
                                        << (differs - picture.begin()) / 720 << '\n'
                                        << desktop.log;
      desktop.log.clear();
    }
  }

 private:
  std::vector<uint32_t> pictureOf(const char* page) {
    EXPECT_TRUE(desktop.shell.loadPage(page)) << desktop.log;
    desktop.settle();
    return desktop.window();
  }

  HeadlessDesktop& desktop;
  const std::pair<const char*, std::vector<uint32_t>> pictures[2] = {{"every.kpg", pictureOf("every.kpg")},
                                                                     {"good.kpg", pictureOf("good.kpg")}};
};

TEST_F(PageFaultsTest, MemoryThatRunsOutLeavesTheNextPageWhole) {
  Pictures pictures(desktop);
  eachFails<FailingAllocation>(
      97, [&] { live(desktop); }, [&] { pictures.expectTheSame(); });
}

TEST_F(PageFaultsTest, AFileThatFailsLeavesTheNextPageWhole) {
  Pictures pictures(desktop);
  eachFails<FailingFileCall>(
      7, [&] { live(desktop); }, [&] { pictures.expectTheSame(); });
}

// Whatever fails, nothing is left of a player that has ended.
TEST_F(PageFaultsTest, APlayerStartsOrDoesNotAndGoesWithoutATrace) {
  int64_t memory = 0;
  eachFails<FailingAllocation>(
      31,
      [&] {
        HeadlessDesktop another;
        if (another.start()) live(another);
      },
      [&] {
        {
          HeadlessDesktop another;
          ASSERT_TRUE(another.start());
          ASSERT_TRUE(another.shell.loadPage("inner.kpg"));
        }
        if (memory == 0) memory = allocatedBytes();
        ASSERT_LE(allocatedBytes(), memory + kSlack);
      });
}

}  // namespace
