// Runs one test: opens its page in an engine of its own, does the steps and looks whether all is as expected.
#pragma once

#include <cstdint>
#include <vector>

#include "kit/run/preparedpages.h"
#include "kit/testing/coverage.h"
#include "kit/testing/expectedpictures.h"
#include "kit/testing/testfile.h"
#include "kit/testing/testresult.h"

struct TestRunOptions : RunLimits {
  uint32_t seed = 1;      // for walks
  bool update = false;    // pictures that are missing or differ are wanted, and fail nothing
  bool films = false;     // a test that fails is filmed
  bool coverage = false;  // lines of scripts that ran are counted
};

// What tests on several threads share.
struct TestSurroundings {
  const PreparedPages& pages;
  ExpectedPictures& pictures;
  const TestRunOptions& options;
};

struct TestRunReport {
  TestResult result;
  std::vector<WantedPicture> wanted;
  CoveredLines coverage;  // without what a walk does to find the fewest keys
};

// The first step that fails ends the test.
TestRunReport runTest(const std::string& file, const PageTestCase& test, const TestSurroundings& around);
