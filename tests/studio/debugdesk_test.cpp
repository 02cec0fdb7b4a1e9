#include "studio/debug/debugdesk.h"

#include <gtest/gtest.h>

#include "studiofixture.h"

namespace {

constexpr char kPage[] =
    "flags: 16bit\n"
    "page:\n"
    "  type: group\n"
    "  start: n\n"
    "  onLoad: |\n"
    "    total = 1;\n"
    "  children:\n"
    "  - type: image\n"
    "    name: n\n"
    "    width: 9\n"
    "    onClick: |\n"
    "      total = total + 1;\n"
    "\n"
    "      total = total * 2;\n";

class DebugDeskTest : public WatchedSessionTest {
 protected:
  DebugDeskTest() {
    write("p.yaml", kPage);
    SessionOptions options;
    options.lines = true;
    options.prepare = [this](PageRun& run) { desk.begin(run); };
    session = std::make_unique<Session>(at("p.yaml"), options);
    file = debuggedFileName(at("p.yaml"));
    desk.stopped = [this](const BobStop&) {
      const std::vector<BobFrameView> frames = desk.standing()->frames();
      lines.push_back(frames.front().line);
      return resumes.empty() ? BobResume::run : std::exchange(resumes, {}).front();
    };
  }
  ~DebugDeskTest() override { session.reset(); }

  void reload(bool isSilent) {
    desk.setSilent(isSilent);
    ASSERT_TRUE(session->reload());
    desk.setSilent(false);
    desk.keepOnly(session->run());
  }
  std::vector<int> linesOf(const std::string& name) {
    std::vector<int> all;
    for (const WantedBreakpoint& each : desk.breakpointsOf(name)) all.push_back(each.line);
    return all;
  }

  DebugDesk desk;
  std::string file;
  std::vector<int> lines;  // where it stood
  std::vector<BobResume> resumes;
};

// A run can't begin to be followed in the middle of a script; what was wanted there counts from its end on.
TEST_F(DebugDeskTest, WhatIsWantedWhileAScriptRunsCountsAfterIt) {
  reload(true);
  bool busy = true;
  int wanted = 0;
  desk.isBusy = [&] { return busy; };
  session->run()->player().whileBusy = [&] {
    if (wanted++ == 0) desk.toggle(file, 14);
    desk.pause();
  };
  session->act({PageAction::eval, "for (i = 0; i < 100000; ++i) total = 1;"});
  EXPECT_GT(wanted, 0);
  session->run()->player().whileBusy = nullptr;
  busy = false;
  desk.followNow();
  session->act({PageAction::key, "Select"});
  EXPECT_EQ(lines, (std::vector<int>{12, 14}));
}

TEST_F(DebugDeskTest, BreakpointsStayOverReloadsAndReplaysPassThem) {
  reload(false);
  EXPECT_EQ(desk.filesWithCode(), std::vector<std::string>{file});
  desk.toggle(file, 13);
  EXPECT_EQ(linesOf(file), std::vector<int>{14}) << "the next line with code";
  key("Select");
  EXPECT_EQ(lines, std::vector<int>{14});
  EXPECT_FALSE(desk.standing());

  lines.clear();
  reload(true);
  EXPECT_EQ(lines, std::vector<int>{}) << "what was done was done again";
  key("Select");
  EXPECT_EQ(lines, std::vector<int>{14});
  desk.toggle(file, 14);
  EXPECT_TRUE(desk.breakpointsOf(file).empty());
  key("Select");
  EXPECT_EQ(lines.size(), 1u);
}

TEST_F(DebugDeskTest, AStepGoesOnWhereItStood) {
  desk.toggle(file, 12);
  reload(false);
  resumes = {BobResume::stepOver};
  key("Select");
  EXPECT_EQ(lines, (std::vector<int>{12, 14}));
  BobBreakpoint breakpoint{12, "total > 100", 0, ""};
  desk.change(file, breakpoint);
  key("Select");
  EXPECT_EQ(lines.size(), 2u) << "the condition doesn't hold";
}

TEST_F(DebugDeskTest, ErrorsStopItOnceThatIsWanted) {
  reload(false);
  type("nosuch();");
  EXPECT_TRUE(lines.empty());
  desk.setStopsAtErrors(true);
  write("p.yaml", std::string(kPage) + "      nosuch();\n");
  reload(true);
  key("Select");
  EXPECT_EQ(lines, std::vector<int>{15});
}

}  // namespace
