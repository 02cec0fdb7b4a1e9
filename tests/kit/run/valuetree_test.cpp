#include "kit/run/valuetree.h"

#include <gtest/gtest.h>

#include "kit/files.h"
#include "kit/run/pagerun.h"
#include "support/temporaryfolder.h"

namespace {

class ValueTreeTest : public testing::Test {
 protected:
  ValueTreeTest() {
    const std::string source =
        "flags: 16bit\npage: {type: group, start: n, children: [\n"
        "  {type: number, name: n, width: 90, height: 20, value: 5}]}\n";
    const std::string page = (folder.path() / "p.yaml").string();
    writeFile(page, source.data(), source.size());
    EXPECT_TRUE(run.load(page));
  }

  const TemporaryFolder folder;
  PageRun run{PageRunOptions()};
};

TEST_F(ValueTreeTest, WhatLiesInAValueIsBelowIt) {
  EXPECT_EQ(valueTree(run, "1 + 2"), "3\n");
  const size_t logged = run.log().size();
  EXPECT_EQ(valueTree(run, "\\[1, \\[\"a\"], nil]"),
            "[1,[\"a\"],nil]  (Vector, 3)\n"
            "  [0]: 1\n"
            "  [1]: [\"a\"]  (Vector, 1)\n"
            "    [0]: \"a\"\n"
            "  [2]: nil\n");
  const std::string widget = valueTree(run, "widgets.n");
  EXPECT_NE(widget.find("\n  value: 5\n"), std::string::npos) << widget;
  EXPECT_EQ(run.log().size(), logged);
}

TEST_F(ValueTreeTest, CyclesAndWhatIsLongAreCut) {
  run.act({PageAction::eval, "{ local i; v = new Vector(100); for (i = 0; i < 100; ++i) v[i] = v; }"});
  const std::string all = valueTree(run, "v");
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 1 + 20 + 1) << all;
  EXPECT_NE(all.find("\n  ... 80 more\n"), std::string::npos) << all;
  ValueTreeLimits limits;
  limits.lines = 5;
  EXPECT_EQ(valueTree(run, "\\[1, 2, 3, 4, 5, 6, 7, 8]", limits),
            "[1,2,3,4,5,6,7,8]  (Vector, 8)\n  [0]: 1\n  [1]: 2\n  [2]: 3\n...\n");
}

TEST_F(ValueTreeTest, AnErrorGoesToTheConsole) {
  EXPECT_EQ(valueTree(run, "1 +"), "");
  EXPECT_EQ(valueTree(run, "nosuch.thing"), "");
  EXPECT_EQ(run.complaints().size(), 2u) << run.log();
  EXPECT_EQ(valueTree(run, "7"), "7\n") << "and the page goes on";
}

}  // namespace
