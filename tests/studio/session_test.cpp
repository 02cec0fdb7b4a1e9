#include "studio/session/session.h"

#include <gtest/gtest.h>

#include "kit/files.h"
#include "kit/pictures/png.h"
#include "kit/source/pagebuild.h"
#include "studio/editor/scripterrors.h"
#include "studio/record/saverecording.h"
#include "support/temporaryfolder.h"

namespace {

using Value = KeptState::Value;

constexpr uint32_t kWhite = 0xFCFCFC;  // as 16 bits show it

class SessionTest : public testing::Test {
 protected:
  void write(const std::string& name, const std::string& text) {
    writeFile((folder.path() / name).string(), text.data(), text.size());
  }
  std::string at(const std::string& name) const { return (folder.path() / name).string(); }

  void keys(Session& session, const std::vector<std::string>& names) {
    for (const std::string& name : names) session.act({PageAction::key, name});
  }
  static Value valueOf(Session& session, const std::string& name) {
    return readKeptState(session.run()->engine()).values.at(name);
  }
  static std::string focusOf(Session& session, const std::string& frame = "") {
    return readKeptState(session.run()->engine()).focus.at(frame);
  }
  static uint32_t pixel(Session& session, size_t x, size_t y) { return session.run()->player().window()[y * 720 + x]; }

  const TemporaryFolder folder;
};

// Two numbers and a slider under each other; Right changes a value.
std::string settings(const std::string& color, const std::string& first, const std::string& brightness = "50") {
  return "flags: 16bit\n"
         "page:\n"
         "  {type: group, width: 720, height: 480, bgColor: '" +
         color + "', start: " + first +
         ", children: [\n"
         "  {type: number, name: " +
         first +
         ", width: 90, height: 20, value: 1, navigate: leftRight, down: contrast},\n"
         "  {type: number, name: contrast, y: 30, width: 90, height: 20, value: 5, navigate: leftRight, up: " +
         first +
         ", down: brightness},\n"
         "  {type: slider, name: brightness, y: 60, width: 90, height: 20, min: 0, max: 100, value: " +
         brightness + ", navigate: leftRight, up: contrast}]}\n";
}

// A page that reads what it writes is opened anew for each write.
TEST_F(SessionTest, WhatScriptsWriteCountsOverAllOpenings) {
  const auto page = [this](const std::string& rest) {
    write(
        "p.yaml",
        "flags: 16bit\npage:\n  onLoad: |\n    f = new File(\"own.txt\", \"w\");\n    f.Display(\"12345\");\n" + rest);
  };
  const auto written = [](Session& session) { return *session.run()->player().shell.writtenByScripts; };
  page("");
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  const uintmax_t once = written(session);
  EXPECT_GE(once, 5u);
  ASSERT_TRUE(session.reload());
  EXPECT_EQ(written(session), once + 5) << "the file is there";
  session.act({PageAction::eval, "f.PutC(65);"});
  page("  children: {}\n");
  EXPECT_FALSE(session.restart());
  page("");
  ASSERT_TRUE(session.restart());
  EXPECT_EQ(written(session), once + 11);
}

TEST_F(SessionTest, WhatWasDoneSurvivesASave) {
  write("p.yaml", settings("#000000", "volume"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart()) << session.errors().front().whole();
  keys(session, {"Right", "Right", "Down", "Right"});
  session.pass(40);

  write("p.yaml", settings("#FFFFFF", "volume", "70"));
  ASSERT_TRUE(session.reload());
  EXPECT_EQ(valueOf(session, "volume"), Value(3));
  EXPECT_EQ(valueOf(session, "contrast"), Value(6));
  EXPECT_EQ(valueOf(session, "brightness"), Value(70)) << "nobody has touched it, so the source counts";
  EXPECT_EQ(focusOf(session), "contrast");
  EXPECT_EQ(pixel(session, 700, 400), kWhite);
  EXPECT_EQ(session.recording().actions.size(), 5u);

  ASSERT_TRUE(session.restart());
  EXPECT_EQ(valueOf(session, "volume"), Value(1));
  EXPECT_EQ(focusOf(session), "volume");
  EXPECT_TRUE(session.recording().actions.empty());
}

// The keys now lead elsewhere: what has kept its name keeps its value and the focus.
TEST_F(SessionTest, WhereTheKeysNoLongerFitNamesDo) {
  write("p.yaml", settings("#000000", "volume"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  keys(session, {"Down", "Right", "Right", "Down", "Right"});
  write("p.yaml",
        "page: {type: group, width: 720, height: 480, start: brightness, children: [\n"
        "  {type: number, name: contrast, width: 90, height: 20, value: 5, navigate: leftRight},\n"
        "  {type: slider, name: brightness, y: 60, width: 90, height: 20, min: 0, max: 100, value: 50}]}\n");
  ASSERT_TRUE(session.reload());
  EXPECT_EQ(valueOf(session, "contrast"), Value(7));
  EXPECT_EQ(valueOf(session, "brightness"), Value(51));
  EXPECT_EQ(focusOf(session), "brightness");
}

TEST_F(SessionTest, AReplayThatTakesTooLongIsLeftAndNamesDo) {
  write("p.yaml", settings("#000000", "volume"));
  SessionOptions options;
  options.replaySeconds = 0;
  Session session(at("p.yaml"), options);
  ASSERT_TRUE(session.restart());
  session.pass(1'000'000);
  keys(session, {"Down", "Right"});
  ASSERT_TRUE(session.reload());
  EXPECT_EQ(valueOf(session, "contrast"), Value(6));
  EXPECT_EQ(focusOf(session), "contrast");
  EXPECT_LT(session.run()->player().clock, 1'000'000u);
}

TEST_F(SessionTest, PagesInsideKeepTheirState) {
  write("inner.yaml", settings("#000000", "volume"));
  write("p.yaml",
        "page: {type: group, width: 720, height: 480, start: inside, children: [\n"
        "  {type: frame, name: inside, width: 720, height: 480, src: inner.kpg}]}\n");
  buildPage(at("inner.yaml"), at("inner.kpg"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  session.act({PageAction::eval, "widgets.inside.widgets.contrast.value = 9;"});
  keys(session, {"Down"});
  const Value before = valueOf(session, "inside/contrast");
  const std::string focus = focusOf(session, "inside/");
  ASSERT_TRUE(session.reload());
  EXPECT_EQ(valueOf(session, "inside/contrast"), before);
  EXPECT_EQ(focusOf(session, "inside/"), focus);
}

TEST_F(SessionTest, AnErrorLeavesThePageAndTellsWhatToWatch) {
  write("colors.yaml", "constants: {night: '#102030'}\n");
  write("p.yaml", "include: [colors.yaml]\n" + settings("$(night)", "volume"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart()) << session.errors().front().whole();
  keys(session, {"Right"});
  PageRun* const standing = session.run();

  write("colors.yaml", "constants: {nihgt: '#102030'}\n");
  EXPECT_FALSE(session.reload());
  EXPECT_EQ(session.run(), standing);
  ASSERT_EQ(session.errors().size(), 1u);
  EXPECT_EQ(session.errors().front().line, 4);
  const auto watched = session.dependencies();
  for (const char* name : {"p.yaml", "colors.yaml"})
    EXPECT_NE(std::find(watched.begin(), watched.end(), at(name)), watched.end()) << name;

  write("colors.yaml", "constants: {night: '#FFFFFF'}\n");
  EXPECT_TRUE(session.reload());
  EXPECT_TRUE(session.errors().empty());
  EXPECT_EQ(valueOf(session, "volume"), Value(2));
  EXPECT_EQ(pixel(session, 700, 400), kWhite);
}

TEST_F(SessionTest, APageThatIsBrokenFromTheStartCanBeMended) {
  write("p.yaml", "page: {type: gruop}\n");
  Session session(at("p.yaml"));
  EXPECT_FALSE(session.reload());
  EXPECT_EQ(session.run(), nullptr);
  session.act({PageAction::key, "Up"});  // does nothing
  write("p.yaml", settings("#000000", "volume"));
  EXPECT_TRUE(session.reload());

  write("bad.kpg", "no page");
  Session compiled(at("bad.kpg"));
  EXPECT_FALSE(compiled.reload());
  ASSERT_EQ(compiled.errors().size(), 1u);
  EXPECT_NE(compiled.errors().front().text.find("can't be opened: "), std::string::npos);
}

TEST_F(SessionTest, WhatIsMissingIsADependencyToo) {
  write("p.yaml", "page: {width: 720, height: 480, background: none.gif}\n");
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  const auto watched = session.dependencies();
  EXPECT_NE(std::find(watched.begin(), watched.end(), at("none.gif")), watched.end());
}

// A script that never returns ends when it is interrupted, and the page lives on.
TEST_F(SessionTest, AnEndlessScriptCanBeStopped) {
  write("p.yaml", settings("#000000", "volume"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  RunDesktop& player = session.run()->player();
  int calls = 0;
  player.whileBusy = [&] {
    if (++calls == 3) player.interrupt();
  };
  session.act({PageAction::eval, "for (;;);"});
  EXPECT_NE(session.run()->stopped().find("stopped in "), std::string::npos) << session.run()->stopped();
  player.goOn();
  EXPECT_EQ(session.run()->stopped(), "");
  keys(session, {"Right"});
  EXPECT_EQ(valueOf(session, "volume"), Value(2));
}

// What is saved does again what was done: by kpg test, by kpg shot --play, and as a film.
TEST_F(SessionTest, WhatWasDoneIsSavedAsTheNameAsksFor) {
  write("p.yaml", settings("#000000", "volume"));
  Session session(at("p.yaml"));
  ASSERT_TRUE(session.restart());
  keys(session, {"Right", "Down", "Right"});
  session.pass(200);
  for (const char* name : {"p.recording.yaml", "p.test.yaml", "p.gif"})
    saveRecording(session.recording(), at("p.yaml"), at(name));
  EXPECT_EQ(readRecording(at("p.recording.yaml")).actions, session.recording().actions);
  EXPECT_TRUE(isKitPng(readFile(at("p.png"))));
  const std::vector<uint8_t> test = readFile(at("p.test.yaml")), film = readFile(at("p.gif"));
  const std::string text(test.begin(), test.end());
  for (const char* part : {"page: p.yaml", "screen: p.png", "focus: contrast", "key: Right"})
    EXPECT_NE(text.find(part), std::string::npos) << text;
  EXPECT_EQ(std::string(film.begin(), film.begin() + 6), "GIF89a");
  EXPECT_THROW(saveRecording(session.recording(), at("p.yaml"), at("p.test.yaml")), KitError) << "its picture is there";
  EXPECT_THROW(saveRecording(session.recording(), at("p.yaml"), at("p.yaml")), KitError);
}

// The place is that of the innermost code that has one.
TEST(ScriptErrors, ComeWithTheirPlaces) {
  const std::vector<KitMessage> errors =
      scriptErrors({"Error: No property - x\nHappened in f at a b/t.bob:12\nCalled from:\n  g at t.bob:3\n",
                    "Error: Unbound variable - y\nHappened in <CompiledCode-1>\nCalled from:\n  g at t.bob:4\n",
                    "Error: No property - x\nHappened in f at a b/t.bob:12\n", "Loading image 'x' -- not found\n",
                    "Error: Syntax error - Expecting x at y:z\n"});
  ASSERT_EQ(errors.size(), 3u);
  EXPECT_EQ(errors[0].whole(), "a b/t.bob:12: No property - x");
  EXPECT_EQ(errors[1].whole(), "t.bob:4: Unbound variable - y");
  EXPECT_EQ(errors[2].whole(), "Syntax error - Expecting x at y:z");
}

}  // namespace
