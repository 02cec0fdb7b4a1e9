// What a profile of a page says.
#include "kit/profile/profilereport.h"

#include <gtest/gtest.h>

#include <regex>

#include "kit/readjson.h"
#include "kit/run/pagerun.h"
#include "support/pagefixture.h"

namespace {

class ProfileReportTest : public PageTest {
 protected:
  void SetUp() override {
    PageTest::SetUp();
    writeText("p.yaml",
              "page:\n"
              "  type: group\n"
              "  start: one\n"
              "  onLoad: |\n"
              "    define fib(n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }\n"
              "  children:\n"
              "  - {type: image, name: one, onClick: fib(10);}\n");
    PageRunOptions options;
    options.lines = true;
    PageRun run(options);
    run.trace(profiler);
    ASSERT_TRUE(run.load("p.yaml"));
    run.act({PageAction::key, "Select"});
  }

  BobProfiler profiler;
  const ProfileName nameOf = [](const BobProfileFunction& function) { return ProfiledName{function.name}; };
};

TEST_F(ProfileReportTest, TheTableHasTheDearestFunctionFirst) {
  const std::string table = profileTable(profiler, nameOf);
  const size_t first = table.find('\n') + 1;
  std::smatch row;
  const std::string line = table.substr(first, table.find('\n', first) - first);
  ASSERT_TRUE(std::regex_match(line, row, std::regex(" *(\\d+) +[\\d.]+% +(\\d+) +[\\d.]+% +(\\d+) +0 +0  fib")))
      << table;
  EXPECT_EQ(row[1], row[2]);
  EXPECT_EQ(row[3], "177");  // calls of fib(10): 2 fib(11) - 1
  EXPECT_NE(table.find("p.yaml:7 one.onClick"), std::string::npos) << table;
}

TEST_F(ProfileReportTest, TheFlameGraphIsAsWideAsWhatWasCalled) {
  const std::string svg = profileFlameGraph(profiler, nameOf, "a < b");
  EXPECT_NE(svg.find(">a &lt; b: "), std::string::npos);
  const std::regex box("<title>fib: (\\d+) instructions.*?width=\"([\\d.]+)\"");
  double instructions = 0, width = 0;
  size_t count = 0;
  for (std::sregex_iterator at(svg.begin(), svg.end(), box), end; at != end; ++at, ++count) {
    if (count > 0) {
      // Each call is as wide in proportion as the first, and lies in it.
      EXPECT_NEAR(std::stod((*at)[1]) / instructions, std::stod((*at)[2]) / width, 1e-3);
      continue;
    }
    instructions = std::stod((*at)[1]);
    width = std::stod((*at)[2]);
  }
  EXPECT_EQ(count, 10u);  // of one way down: each depth of fib is one node
}

TEST_F(ProfileReportTest, SpeedscopeGetsEveryWayByWhichAFunctionWasCalled) {
  const JsonValue json = readJson(profileSpeedscope(profiler, nameOf, "p.yaml"));
  const JsonValue& profile = json.find("profiles")->array.at(0);
  const auto &samples = profile.find("samples")->array, &weights = profile.find("weights")->array;
  ASSERT_EQ(samples.size(), weights.size());
  double sum = 0;
  size_t deepest = 0;
  for (size_t n = 0; n < samples.size(); ++n) {
    sum += weights[n].number;
    deepest = std::max(deepest, samples[n].array.size());
    for (const JsonValue& frame : samples[n].array)
      EXPECT_LT(frame.number, double(json.find("shared")->find("frames")->array.size()));
  }
  EXPECT_EQ(sum, profile.find("endValue")->number);
  EXPECT_EQ(deepest, 11u);
}

}  // namespace
