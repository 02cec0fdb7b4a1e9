// Pages with each kind of widget that are loaded, used and unloaded, over and over: nothing of them stays in memory.
#include <algorithm>
#include <ostream>

#include "engine/engine.h"
#include "gfx/foundation/hsdebug.h"
#include "support/allocations.h"
#include "support/blockfont.h"
#include "support/pagefixture.h"

namespace {

struct Kind {
  const char* name;
  const char* widget;
  const char* script;  // at the console, while the page is there
};

void PrintTo(const Kind& kind, std::ostream* out) { *out << kind.name; }

constexpr Kind kKinds[] = {
    {"plain", "bgColor: 0x20808000", "w.Hide(true);"},
    {"group",
     "type: group, background: cloth.gif, tileBackground: true, children: [{name: inner, bgColor: 0x30808000}]",
     "w.ObserveEvent(0x70001, function (e) { return nil; });"},
    {"image", "type: image, src: art.kpx, highlightSrc: cloth.gif, timeout: 8", "w.src = \"cloth.gif\";"},
    {"text", "type: text, textStyle: plain, multiline: true, maxLength: 9, value: 'ab ba'", "w.value = \"ba ab\";"},
    {"number", "type: number, textStyle: plain, highlightTextStyle: bright, navigate: leftRight", "w.value = 7;"},
    {"select",
     "type: select, textStyle: plain, highlightTextStyle: bright, showAll: true, navigate: leftRight, choices: '|a|b'",
     "w.AddElement(\"ba\");"},
    {"slider", "type: slider, navigate: leftRight, immediate: true, onChange: 'n = w.value;'", "w.value = 50;"},
    {"textContainer",
     "type: textContainer, selectTextStyle: bright, selectedLine: 1, children: [{x: 0, y: 12, style: plain, content: "
     "ab}]",
     "w.highlightStyle = textStyles.bright;"},
    {"frame", "type: frame, src: inner.kpg", "w.LoadPage(\"inner.kpg\");"},
};

class ComeAndGoTest : public PageTest, public testing::WithParamInterface<Kind> {
 protected:
  ComeAndGoTest() : before(hsSetHaltProc([] { ADD_FAILURE() << hsReportText(); })) {
    WriteFile("blocks.ttf", BlockFontFile());
    writeText("cloth.gif", std::string("GIF89a\1\0\1\0\x80\0\0\xFF\xFF\xFF\0\0\0,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35));
    std::string picture("\0\0\0\20\0\20\0\1\0\0\0\0", 12);
    for (int i = 0; i < 256; ++i) picture += char(i);
    writeText("art.kpx", picture);
    build("inner.kpg", "page: {type: group, onLoad: 'mine = new Object();', children: [{type: text, value: in}]}");
  }
  ~ComeAndGoTest() override { hsSetHaltProc(before); }

  void comeAndGo(const Kind& kind) {
    ASSERT_TRUE(desktop.shell.loadPage("page.kpg")) << log();
    desktop.settle();
    for (const char* name : {"Right", "Select", "1"}) key(name);
    desktop.typeLine(kind.script);
    desktop.wait(5);
    EXPECT_EQ(log().find("Error"), std::string::npos) << log();
    desktop.typeLine("topFrame.UnloadPage();");
    desktop.settle();
    desktop.log.clear();
  }

 private:
  hsHaltProc before;
};

// What the console holds, and what the C library keeps for the next allocations, goes up and down: the most in a while
// tells whether anything stays.
TEST_P(ComeAndGoTest, NothingOfAPageStaysInMemory) {
#ifdef COME_AND_GO_LONG
  constexpr int kTimes = 10'000;
#else
  constexpr int kTimes = 1'200;
#endif
  constexpr int kWhile = 600;  // in which the console is trimmed once at least
  const Kind& kind = GetParam();
  build("page.kpg", std::string(R"(flags: 16bit
page:
  type: group
  width: 720
  height: 480
  start: w
  textStyles:
    - {name: plain, font: blocks.ttf, size: 10, color: 0xEB808000, antialias: true}
    - {name: bright, font: blocks.ttf, size: 12, color: 0x80808000, underline: true}
  onLoad: 'w = widgets.w; tick = new Timer(function () { n = 1; }, 3, true);'
  onUnload: 'tick.Clear(); w = nil;'
  children: [{name: w, x: 100, y: 100, width: 40, height: 30, onClick: 'n = 1;', )") +
                        kind.widget + "}]\n");
  int64_t first = 0, last = 0;
  for (int i = 0; i < kTimes && !HasFailure(); ++i) {
    comeAndGo(kind);
    if (i < kWhile) first = std::max(first, allocatedBytes());
    if (i >= kTimes - kWhile) last = std::max(last, allocatedBytes());
  }
  EXPECT_LT(last - first, (kTimes - kWhile) * 8) << "less than the smallest thing that each could leave";
}

INSTANTIATE_TEST_SUITE_P(, ComeAndGoTest, testing::ValuesIn(kKinds), [](const auto& kind) { return kind.param.name; });

}  // namespace
