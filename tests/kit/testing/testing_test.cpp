// What tests are made of: the search for the fewest keys, reports that read back, tests that are made of recordings.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>

#include "kit/testing/testfile.h"
#include "kit/testing/testreport.h"
#include "kit/testing/walk.h"
#include "kit/testing/writetest.h"
#include "support/temporaryfolder.h"

namespace {

using Keys = std::vector<std::string>;

// Fails when `needed` are among the keys, in their order.
bool hasInOrder(const Keys& keys, const Keys& needed) {
  auto next = needed.begin();
  for (const std::string& key : keys)
    if (next != needed.end() && key == *next) ++next;
  return next == needed.end();
}

TEST(FewestKeys, AreThoseThatAreNeeded) {
  std::mt19937 random(5);
  for (int round = 0; round < 50; ++round) {
    Keys needed, all;
    for (size_t i = 0; i < 1 + random() % 4; ++i) needed.push_back(std::string(1, char('a' + random() % 4)));
    while (!hasInOrder(all, needed)) all.push_back(std::string(1, char('a' + random() % 4)));
    EXPECT_EQ(fewestThatFail(
                  all, [&](const Keys& keys) { return hasInOrder(keys, needed); }, 10000),
              needed);
  }
}

TEST(FewestKeys, AreAskedForAsOftenAsIsAllowed) {
  const Keys all(1000, "a");
  size_t asked = 0;
  const Keys some = fewestThatFail(
      all, [&](const Keys& keys) { return ++asked, keys.size() >= 900; }, 20);
  EXPECT_EQ(asked, 20u);
  EXPECT_GE(some.size(), 900u);
}

TEST(TestReport, ReadsBackWithAllBytes) {
  TestResult result{"a.test.yaml", "n \"1\"", "p.yaml", 3, TestOutcome::failed, 0.25, {}, {}, "", {}, ""};
  result.messages = {{"a.test.yaml", 7, "wrong"}, {"", 0, "no place"}};
  result.steps = {"key: Up", "focus: b"};
  result.log = "one\ntwo\n";
  result.pictures = {{"s.png", std::string("\0\x89PNG\xFF", 6), "a", ""}};
  result.film = "film";
  const TestReport report = reportFromJson("r.json", reportAsJson({{result, TestResult{}}, 2, 3}));
  EXPECT_EQ(report.shard, 2u);
  EXPECT_EQ(report.shards, 3u);
  const std::vector<TestResult>& back = report.results;
  ASSERT_EQ(back.size(), 2u);
  EXPECT_EQ(back[0].name, result.name);
  EXPECT_EQ(back[0].outcome, TestOutcome::failed);
  EXPECT_EQ(back[0].seconds, 0.25);
  ASSERT_EQ(back[0].messages.size(), 2u);
  EXPECT_EQ(back[0].messages[0].whole(), "a.test.yaml:7: wrong");
  EXPECT_EQ(back[0].steps, result.steps);
  EXPECT_EQ(back[0].pictures[0].expected, result.pictures[0].expected);
  EXPECT_EQ(back[0].film, "film");
  EXPECT_EQ(back[1].outcome, TestOutcome::passed);
  for (const char* bad : {"", "{}", "[1]", "{\"report\": \"kpg test\", \"tests\": [{}]}", "{\"report\": \"kpg test\"}"})
    EXPECT_THROW(reportFromJson("r.json", bad), KitError) << bad;
}

TEST(TestOfARecording, ReadsBackAsTheRecordingAndWhatIsExpected) {
  const TemporaryFolder folder;
  const std::string file = (folder.path() / "made.test.yaml").string();
  Recording recording;
  for (int i = 0; i < 3; ++i) recording.add({PageAction::key, "Down"});
  recording.add({PageAction::eval, "x = \"a: b\";"});
  std::ofstream(file) << testOf(recording, {"", "p.yaml", "end.png", "list"});
  const TestFile made = readTestFile(file);
  ASSERT_EQ(made.tests.size(), 1u);
  EXPECT_EQ(made.tests[0].name, "made");
  EXPECT_EQ(made.tests[0].page, (folder.path() / "p.yaml").generic_string());
  Keys steps;
  for (const TestStep& step : made.tests[0].steps) steps.push_back(stepText(step));
  EXPECT_EQ(steps, (Keys{"key: Down, repeat: 3", "eval: \"x = \\\"a: b\\\";\"", "focus: list", "screen: end.png"}));
}

}  // namespace
