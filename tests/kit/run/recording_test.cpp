#include "kit/run/recording.h"

#include <gtest/gtest.h>

#include <fstream>

#include "kit/errors.h"
#include "support/temporaryfolder.h"

namespace {

using Actions = std::vector<PageAction>;

class RecordingTest : public testing::Test {
 protected:
  Recording read(const std::string& text) {
    std::ofstream(file) << text;
    return readRecording(file);
  }
  std::string faults(const std::string& text) try {
    read(text);
    return "none";
  } catch (const KitError& e) {
    std::string all = e.what();
    for (size_t at; (at = all.find(file)) != std::string::npos;) all.replace(at, file.size(), "r");
    return all;
  }

  const TemporaryFolder folder;
  const std::string file = (folder.path() / "r.yaml").string();
};

TEST_F(RecordingTest, WhatIsWrittenReadsBack) {
  Recording recording{"pages/a b.yaml", {}};
  for (const PageAction& action : Actions{{PageAction::key, "Right"},
                                          {PageAction::key, "Right"},
                                          {PageAction::key, "5"},
                                          {PageAction::wait, "0"},
                                          {PageAction::wait, "300"},
                                          {PageAction::wait, "900"},
                                          {PageAction::eval, "x = \"a: b\"; // #1"},
                                          {PageAction::eval, "y"},
                                          {PageAction::eval, "y"},
                                          {PageAction::eval, ""}})
    recording.add(action);
  const Recording back = read(recordingText(recording));
  EXPECT_EQ(back.page, "pages/a b.yaml");
  EXPECT_EQ(back.actions, (Actions{{PageAction::key, "Right"},
                                   {PageAction::key, "Right"},
                                   {PageAction::key, "5"},
                                   {PageAction::wait, "1200"},
                                   {PageAction::eval, "x = \"a: b\"; // #1"},
                                   {PageAction::eval, "y"},
                                   {PageAction::eval, "y"},
                                   {PageAction::eval, ""}}));
  EXPECT_EQ(recordingText(back), recordingText(recording));
}

TEST_F(RecordingTest, APauseBeyondTheLongestIsSplit) {
  Recording recording;
  recording.add({PageAction::wait, "999999999"});
  recording.add({PageAction::wait, "2"});
  EXPECT_EQ(recording.actions, (Actions{{PageAction::wait, "999999999"}, {PageAction::wait, "2"}}));
}

TEST_F(RecordingTest, StepsRepeat) {
  EXPECT_EQ(read("steps:\n- {repeat: 2, wait: 5}\n- {key: Up, repeat: 0}\n").actions,
            (Actions{{PageAction::wait, "5"}, {PageAction::wait, "5"}}));
  EXPECT_TRUE(read("page: a.yaml\nsteps:\n").actions.empty());
}

TEST_F(RecordingTest, EveryFaultIsReportedWithItsLine) {
  EXPECT_EQ(faults("pgae: a\n"
                   "steps:\n"
                   "  - key: Rigth\n"
                   "  - wait: soon\n"
                   "  - {key: Up, wait: 3}\n"
                   "  - pres: Up\n"
                   "  - Up\n"
                   "  - {eval: x, repeat: -1}\n"
                   "  - wait: 1000000001\n"),
            "r:1: a recording has no 'pgae'; did you mean 'page'?\n"
            "r:3: there is no key 'Rigth'; did you mean 'Right'?\n"
            "r:4: 'soon' is no number of milliseconds from 0 to 1000000000\n"
            "r:5: a step has one action only; write another step for 'wait'\n"
            "r:6: a step has no 'pres'; it has key, wait, eval and repeat\n"
            "r:7: a step is a map such as key: Right, not 'Up'\n"
            "r:8: repeat is a number from 0 to 1000000\n"
            "r:9: '1000000001' is no number of milliseconds from 0 to 1000000000");
  EXPECT_EQ(faults("steps: 3\n"), "r:1: steps is a list, not '3'");
  EXPECT_EQ(faults("- key: Up\n"), "r:1: a recording is a map with page and steps, not a list");
}

}  // namespace
