#include "gfx/foundation/hsdebug.h"

#include <gtest/gtest.h>

#include "gfx/halt.h"

namespace {

TEST(Debug, PrintsTheReportAsALineBeforeItHalts) {
  testing::internal::CaptureStdout();
  EXPECT_EQ(ReportOf([] { hsDebugMessage("Math overflow", -3); }), "Math overflow: -3");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Math overflow: -3\n");
}

TEST(Debug, AssertNamesItsPlaceAndIsFalseWhenTheReporterReturns) {
  EXPECT_EQ(ReportOf([] { hsAssertFunc(12, "src/file.cpp", "bad index"); }),
            "Assert Failed bad index :: Line:12  File:src/file.cpp: 0");
  ReturnOnHalt halt;
  EXPECT_FALSE(hsAssert(1 > 2, "bad"));
  EXPECT_TRUE(hsAssert(1 < 2, "good"));
  EXPECT_EQ(ReturnOnHalt::Reports().size(), 1u);
}

TEST(Debug, LongTextsAreCut) {
  const std::string text(2000, 'x');
  const std::string report = ReportOf([&] { hsAssertFunc(1, text.c_str(), text.c_str()); });
  EXPECT_LT(report.size(), 1000u);
  EXPECT_EQ(report.substr(0, 16), "Assert Failed xx");
}

TEST(Debug, AStatusMessageReturns) {
  EXPECT_EQ(ReportOf([] { hsStatusMessage("note", 1); }), "");
  EXPECT_STREQ(hsReportText(), "note: 1");
}

// Each throws only once its report has returned.
TEST(Debug, ThrowsReportFirst) {
  struct Case {
    void (*call)();
    const char* report;
    int32_t code, param;
  };
  const Case cases[] = {
      {[] { hsThrow(8, 10003); }, "throw error: 8", 8, 10003},
      {[] { hsThrowIfFalse(false); }, "throw if false: 0", 1, 0},
      {[] { hsThrowIfNilParam(nullptr); }, "nil param: 0", 3, 0},
      {[] { hsThrowIfBadParam(true); }, "bad param: 0", 4, 0},
      {[] { hsThrowIfTrue(true, 77); }, "throw if true: 77", 77, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(ReportOf(c.call), c.report);
    ReturnOnHalt halt;
    try {
      c.call();
      ADD_FAILURE() << c.report;
    } catch (const hsException& e) {
      EXPECT_EQ(e.fErrorCode, c.code);
      EXPECT_EQ(e.fParam, c.param);
    }
  }
}

}  // namespace
