// Programs with the output that they are to have, each run as it is, with a collection at every allocation, and with
// each allocation failing in turn.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "bob/session.h"

namespace {

struct Program {
  std::string name, source, expected;  // expected: the lines that begin with "//> "
};

std::vector<Program> Programs() {
  std::vector<Program> programs;
  for (const auto& entry : std::filesystem::directory_iterator(BOB_PROGRAMS)) {
    std::ifstream in(entry.path());
    Program program{entry.path().stem().string(), "", ""};
    for (std::string line; std::getline(in, line);) {
      program.source += line + "\n";
      if (line.starts_with("//> ")) program.expected += line.substr(4) + "\n";
    }
    programs.push_back(program);
  }
  std::sort(programs.begin(), programs.end(), [](const Program& a, const Program& b) { return a.name < b.name; });
  return programs;
}

std::ostream& operator<<(std::ostream& out, const Program& program) { return out << program.name; }

class ProgramTest : public testing::TestWithParam<Program> {};

TEST_P(ProgramTest, PrintsWhatItShould) {
  Session session;
  EXPECT_TRUE(session.run(GetParam().source)) << session.err.text;
  EXPECT_EQ(Session::plain(session.out.text), GetParam().expected);
}

TEST_P(ProgramTest, PrintsTheSameWithACollectionAtEveryAllocation) {
  Session session;
  bobCollectAlways(session.interp);
  EXPECT_TRUE(session.run(GetParam().source)) << session.err.text;
  EXPECT_EQ(Session::plain(session.out.text), GetParam().expected);
}

// One failure in `step` allocations; the exhaustive run takes each of them.
void FailInTurn(const Program& program, int64_t step) {
  for (int64_t point = 0;; point += step) {
    Session session;
    bobFailAllocation(session.interp, point);
    const bool finished = session.run(program.source);
    if (!bobHasFailed(session.interp)) return;  // there were no more allocations
    ASSERT_FALSE(finished && session.err.text.empty()) << "allocation " << point;
    ASSERT_NE(session.err.text.find("Error: Insufficient memory\n"), std::string::npos) << "allocation " << point;
    session.out.take();
    session.err.take();
    ASSERT_EQ(session.eval("{ local v = \\[1, \"a\" + \"b\", \\{ k: 2 }]; v[2].k + v.size; }"), "--> 5\n");
  }
}

TEST_P(ProgramTest, SurvivesAFailedAllocation) { FailInTurn(GetParam(), 97); }

class LongProgramTest : public ProgramTest {};
TEST_P(LongProgramTest, SurvivesEachFailedAllocation) { FailInTurn(GetParam(), 1); }

std::string NameOf(const testing::TestParamInfo<Program>& info) { return info.param.name; }
INSTANTIATE_TEST_SUITE_P(Bob, ProgramTest, testing::ValuesIn(Programs()), NameOf);
#ifdef BOB_LONG
INSTANTIATE_TEST_SUITE_P(Bob, LongProgramTest, testing::ValuesIn(Programs()), NameOf);
#else
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(LongProgramTest);
#endif

}  // namespace
