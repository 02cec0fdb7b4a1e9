// All tests of some files: found, shared out over threads and machines, and run.
//
// Results come in the order of the tests, whatever the threads did. A file that is no good counts as a test that can't
// be run.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kit/errors.h"
#include "kit/testing/testresult.h"
#include "kit/testing/testrun.h"

struct SuiteOptions : TestRunOptions {
  std::vector<std::string> paths;  // test files and folders with some; none for the current folder
  std::string only;                // a part of "FILE: NAME", * for any letters; empty for all
  size_t jobs = 0;                 // threads; 0 for as many as the machine runs at once
  size_t shard = 1, shards = 1;    // this one of so many equal shares
  KitWarn warn;
  // Both are called by one thread at a time, but not by the same.
  std::function<void(const TestResult&)> done;  // in order
  std::function<void(size_t done, size_t all, const std::string& title)> progress;
};

struct SuiteReport {
  std::vector<TestResult> results;
  std::vector<std::string> written;  // pictures, with `update`
  CoveredLines coverage;             // of all tests, with `coverage`
};

// Throws KitError for what isn't there, and when there is no test file at all.
SuiteReport runSuite(const SuiteOptions& options);

struct SuiteCount {
  size_t passed = 0, failed = 0, errors = 0;
};
SuiteCount countOf(const std::vector<TestResult>& results);

// "3 tests passed, 1 failed, 1 can't be run"
std::string countText(const SuiteCount& count);
