// Loading and unloading, with pages nested in pages and a language that does what the test says.
#include <functional>
#include <map>

#include "engine/page/language.h"
#include "engine/screen/display.h"
#include "kit/source/base64.h"
#include "support/pagefixture.h"

namespace {

// Runs scripts by name: a page says "!scriptdata" with the name as its bytes.
std::map<std::string, std::function<void()>>* actions;
std::string* story;

constexpr ScriptingLanguage kPuppet = {
    [](Frame*) { return *story += "attach ", 1; },
    [](Frame*) noexcept { return *story += "detach ", 1; },
    [](Frame*, const char* path) { return *story += "load:" + std::string(path) + " ", 0; },
    [](Frame*, const uint8_t* bytes, uint32_t length) {
      const std::string name(reinterpret_cast<const char*>(bytes), length);
      *story += name + " ";
      if (const auto found = actions->find(name); found != actions->end()) found->second();
      return 1;
    },
};

class LoadTest : public PageTest {
 protected:
  LoadTest() {
    actions = &scripts;
    story = &heard;
    languageRegister("puppet", kPuppet);
  }

  // A page in the puppet language; scripts are called as their hooks, with the suffix.
  std::string page(const std::string& more, const std::string& suffix = "") {
    const auto script = [](const std::string& name) { return " !scriptdata " + name; };
    return "flags: 8bit\npage: {width: 100, height: 100, scriptingLanguage: puppet, onLoad:" + script(base(suffix)) +
           ", onUnload:" + script(base("un" + suffix)) + ", " + more + "}\n";
  }
  static std::string base(const std::string& name) { return "\"" + base64Encode("load" + name) + "\""; }

  std::string hearing() { return std::exchange(heard, {}); }

  std::map<std::string, std::function<void()>> scripts;
  std::string heard;
};

TEST_F(LoadTest, StepsRunInOrderAndUnloadWhenAnotherPageComes) {
  ASSERT_TRUE(load(page("type: group, scripts: [a.bobo, b.bobo], start: nobody, children: [{name: w}]")));
  EXPECT_EQ(hearing(), "attach load:a.bobo load:b.bobo load ");
  EXPECT_EQ(desktop.log, "Error loading 'a.bobo'\nError loading 'b.bobo'\nCan't find starting widget 'nobody'\n");
  desktop.log.clear();

  // The old page goes before the new one is even looked for, so a missing one leaves nothing.
  bool widgetsThere = true;
  scripts["loadun"] = [&] { widgetsThere = topFrame()->widgets || topFrame()->focus; };
  EXPECT_FALSE(loadFile("none.kpg"));
  EXPECT_EQ(hearing(), "loadun detach ");
  EXPECT_FALSE(widgetsThere);
  EXPECT_EQ(topFrame()->pageData, nullptr);
}

TEST_F(LoadTest, FailuresSayWhyAndLeaveTheFrameEmpty) {
  const std::pair<const char*, const char*> cases[] = {
      {"flags: 8bit\npage: {scriptingLanguage: klingon}", "Unknown scripting language 'klingon'\n"},
      {"flags: 8bit\npage: {colorTable: no.clut}",
       "Loading CLUT 'no.clut'\nCan't find: no.clut\nCan't load CLUT 'no.clut'\n"},
  };
  for (const auto& [source, log] : cases) {
    EXPECT_FALSE(load(source));
    EXPECT_EQ(std::exchange(desktop.log, {}), log);
    EXPECT_EQ(topFrame()->pageData, nullptr);
  }
}

TEST_F(LoadTest, AFailedLoadRunsOnUnloadAndKeepsTheDepthOfThePageBefore) {
  ASSERT_TRUE(load("flags: 16bit\npage: {}"));
  ASSERT_FALSE(load(page("colorTable: no.clut")));
  EXPECT_EQ(hearing(), "attach loadun detach ");
  EXPECT_EQ(currentDisplay().depth(), 8);  // the depth is set before the table is read
  ASSERT_TRUE(load("flags: 16bit\npage: {}"));
  ASSERT_FALSE(load("flags: 8bit\npage: {scriptingLanguage: klingon}"));
  EXPECT_EQ(currentDisplay().depth(), 16);
}

TEST_F(LoadTest, ANestedPageMayTakeThePageAroundItAway) {
  build("inner.kpg", page("name: inner", "Inner"));
  build("other.kpg", page("name: other, start: other", "Other"));
  const std::string outer = "type: group, children: [{name: a}, {type: frame, src: inner.kpg}, {name: b}]";
  scripts["loadInner"] = [] { frameUnload(topFrame()); };
  EXPECT_FALSE(load(page(outer)));
  EXPECT_EQ(topFrame()->pageData, nullptr);
  EXPECT_EQ(topFrame()->widgets, nullptr);  // the group that was being made adds none of its children any more

  scripts["loadInner"] = [] { frameLoad(topFrame(), "other.kpg"); };
  EXPECT_TRUE(load(page(outer)));
  EXPECT_EQ(focusName(), "other");
  EXPECT_EQ(topFrame()->widgets, widget("other"));
  EXPECT_EQ(widget("other")->nextInFrame, nullptr);
  desktop.settle();
}

// Sees where the focus is when the widget that it is on is about to go.
struct FocusWatch : EventHandler {
  explicit FocusWatch(std::string* s) : EventHandler(kWidgetDestroyed), seen(s) {}
  int fn(const Event* event) override {
    if (event) *seen = topFrame()->focus ? topFrame()->focus->name : "nothing";
    return 0;
  }
  std::string* seen;
};

TEST_F(LoadTest, AWidgetThatGoesLeavesNoFocusBehind) {
  ASSERT_TRUE(load(page("type: group, start: a, children: [{name: a}, {name: b}]")));
  std::string first, second;
  handlerAdd(widget("a"), new FocusWatch(&first));
  handlerAdd(widget("b"), new FocusWatch(&second));
  frameUnloadAndClear(topFrame());
  EXPECT_EQ(first + " " + second, "a nothing");
}

TEST_F(LoadTest, NestedFramesGoSilentlyAndHearEventsAfterTheOuterOne) {
  build("inner.kpg", page("type: group, children: [{name: x, timeout: 50}], start: x", "Inner"));
  ASSERT_TRUE(load(page("type: group, children: [{name: nest, type: frame, src: inner.kpg}]")));
  EXPECT_EQ(hearing(), "attach loadInner attach load ");  // the inner page loads while the outer one is built
  auto* inner = static_cast<Frame*>(widget("nest"));
  EXPECT_EQ(frameOf(inner->focus), inner);
  EXPECT_FALSE(loadFile("none.kpg"));
  EXPECT_EQ(hearing(), "loadun detach ");
  desktop.wait(60);  // the inner widget's timer went with it
}

TEST_F(LoadTest, PagesThatHoldThemselvesEnd) {
  build("page.kpg", "page: {type: group, children: [{type: frame, src: page.kpg}, {type: frame, src: page.kpg}]}");
  loadFile("page.kpg");
  EXPECT_NE(desktop.log.find(" -- 'page.kpg' not found\n"), std::string::npos);  // the 33rd frame finds nothing

  build("line.kpg", "page: {type: frame, src: line.kpg}");
  desktop.log.clear();
  EXPECT_TRUE(loadFile("line.kpg"));
  EXPECT_EQ(log(), " -- 'line.kpg' not found\n");
}

// Bytes of a page of groups, `depth` of them in one another. Each has the next as its child twice, and there is only
// one of each in the file, so that a page of few bytes doubles its widgets with each level.
std::string pageOfTwins(uint32_t depth) {
  std::string bytes = "KPGF";
  const auto put32 = [&](uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += char(value >> shift);
  };
  constexpr uint32_t kTexts = 16, kFirst = kTexts + 32, kObjectSize = 12 + 3 * 8, kLevelSize = kObjectSize + 12;
  put32(0x200);  // the version
  put32(1);      // 8 bits
  put32(kFirst);
  bytes += std::string("type\0name\0children\0group\0twin\0\0", 32);
  for (uint32_t level = 0; level < depth; ++level) {
    const uint32_t table = kFirst + level * kLevelSize + kObjectSize, next = table + 12;
    const bool isLast = level + 1 == depth;
    for (const uint32_t word : {0u, 0x00080008u, isLast ? 2u : 3u}) put32(word);
    for (const uint32_t word : {0x04000000u | kTexts, kTexts + 19}) put32(word);        // type: group
    for (const uint32_t word : {0x04000000u | (kTexts + 5), kTexts + 25}) put32(word);  // name: twin
    for (const uint32_t word : {0x07000000u | (kTexts + 10), table}) put32(word);       // children: the table
    for (const uint32_t word : {2u, next, next}) put32(word);
  }
  return bytes;
}

TEST_F(LoadTest, TablesThatShareTheirChildrenDoubleTheWidgetsUpToTheBound) {
  writeText("twins.kpg", pageOfTwins(9));
  ASSERT_TRUE(loadFile("twins.kpg"));
  int count = 0;
  for (const Widget* w = topFrame()->widgets; w; w = w->nextInFrame) ++count;
  EXPECT_EQ(count, 511);
  EXPECT_EQ(widget("twin"), topFrame()->widgets);

  writeText("more.kpg", pageOfTwins(17));
  EXPECT_FALSE(loadFile("more.kpg"));
  EXPECT_EQ(topFrame()->widgets, nullptr);
}

// 32 pages in one another, each with its frame at the bottom of 150 groups: a key and a draw climb all the way.
TEST_F(LoadTest, TheDeepestPagesAreLoadedDrawnAndDriven) {
  std::string inner = "{name: nest, type: frame, src: deep.kpg}";
  for (int depth = 150; depth > 0; --depth) inner = "{type: group, children: [" + inner + "]}";
  build("deep.kpg", "page: {type: group, bgColor: 2, start: nest, children: [" + inner + "]}");
  EXPECT_TRUE(loadFile("deep.kpg"));
  EXPECT_EQ(log(), " -- 'deep.kpg' not found\n");
  key("Backspace");
  key("Up");
  int frames = 1;
  for (const Frame* frame = topFrame(); frame->focus; ++frames) frame = static_cast<Frame*>(frame->focus);
  EXPECT_EQ(frames, 33);
}

}  // namespace
