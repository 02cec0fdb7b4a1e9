// A day of the demo, and of a page with all kinds of widgets, under random keys and console lines: nothing is reported,
// no script fails, memory stays flat.
//
// Time is virtual. VISTREL_SOAK_PACE sets how many milliseconds lie between two keys, for a run by hand.
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <random>

#include "engine/engine.h"
#include "gfx/foundation/hsdebug.h"
#include "host/headless/headlessdesktop.h"
#include "support/allocations.h"
#include "support/everywidget.h"

namespace {

constexpr uint32_t kDay = 24 * 60 * 60 * 1000;  // milliseconds
constexpr int64_t kSlack = 64 << 10;            // bytes that the pages and the glyphs of the moment may make up
constexpr uint32_t kStep = 500;                 // of the clock; the demo's timers are slower
#ifdef SOAK_LONG
constexpr uint32_t kPace = 1'000;
#else
constexpr uint32_t kPace = 10'000;
#endif

constexpr const char* kKeys[] = {"Up",     "Down",    "Left",   "Right",    "Up",        "Down", "Left", "Right",
                                 "Select", "Select",  "Clear",  "UpLeft",   "DownRight", "1",    "2",    "3",
                                 "9",      "UpRight", "Select", "DownLeft", "Backspace", "S"};

constexpr const char* kLines[] = {
    "topFrame.LoadPage(\"guide.kpg\");",
    "topFrame.LoadPage(\"settings.kpg\");",
    "topFrame.LoadPage(\"tour.kpg\");",
    "topFrame.LoadPage(\"game.kpg\");",
    "topFrame.LoadPage(\"panel.kpg\");",
    "topFrame.LoadPage(\"gallery.kpg\");",
    "topFrame.LoadPage(\"every.kpg\");",
    "topFrame.UnloadPage();",
    "if (frame.Focus()) frame.Focus().value;",
    "if (frame.Focus()) { frame.Focus().Hide(true); frame.Focus().Show(true); }",
    "if (frame.Focus()) frame.Focus().highlighted = true;",
    "if (KOVA.Exists(\\time)) KOVA.time = rand(1440);",
    "new Timer(function () { if (frame.Focus()) frame.Focus().x = frame.Focus().x; }, 700);",
    "s = \"\"; for (i = 0; i < 50; i++) s = s + \"text\";",
};

class SoakTest : public EveryWidgetTest {
 protected:
  SoakTest() : before(hsSetHaltProc([] { ADD_FAILURE() << hsReportText(); })) {
    std::filesystem::copy(DEMO_FOLDER, ".", std::filesystem::copy_options::recursive);
  }
  ~SoakTest() override { hsSetHaltProc(before); }

  void disturb(std::mt19937& random) {
    if (random() % 5 == 0) {
      desktop.typeLine(kLines[random() % std::size(kLines)]);
    } else {
      ASSERT_TRUE(desktop.key(kKeys[random() % std::size(kKeys)]));
    }
    desktop.settle();
    if (!topFrame()->pageData) desktop.typeLine(kLines[0]);
  }

  // Of the program's own, in bytes. The console keeps a bounded number of lines; what the test keeps is dropped.
  int64_t memory() {
    desktop.log.clear();
    desktop.log.shrink_to_fit();
    return allocatedBytes();
  }

  // Whether the log so far holds what nobody asked for. It is emptied.
  bool complained() {
    const bool bad = desktop.log.find("rror") != std::string::npos;
    EXPECT_FALSE(bad) << desktop.log;
    desktop.log.clear();
    return bad;
  }

 private:
  hsHaltProc before;
};

TEST_F(SoakTest, ADayLeavesNoTrace) {
  const char* pace = std::getenv("VISTREL_SOAK_PACE");
  const uint32_t between = pace ? uint32_t(std::strtoul(pace, nullptr, 10)) : kPace;
  std::mt19937 random(24);
  ASSERT_TRUE(desktop.shell.loadPage("guide.kpg"));
  int64_t most = 0;
  uint32_t untilNext = between;
  for (uint32_t now = 0; now < kDay; now += kStep) {
    desktop.clock += kStep;
    desktop.settle();
    if (untilNext <= kStep) {
      disturb(random);
      if (complained()) return;
      untilNext = between;
    } else {
      untilNext -= kStep;
    }
    if (now % (kDay / 96) != 0) continue;
    // No later use exceeds that of the first quarter of the day.
    const int64_t used = memory();
    if (now <= kDay / 4) {
      most = std::max(most, used);
    } else {
      ASSERT_LE(used, most + kSlack) << "after " << now / 1000 << " seconds";
    }
  }
}

}  // namespace
