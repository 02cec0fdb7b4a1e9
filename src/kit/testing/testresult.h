// What became of a test, for the terminal and for reports.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kit/diff/picturediff.h"
#include "kit/errors.h"

enum class TestOutcome {
  passed,
  failed,  // what was expected is not so
  error,   // it can't be run
};

// A picture that a test compared, as PNG files; empty for one that isn't there.
struct ComparedPicture {
  std::string name;  // of the file
  std::string expected, actual, difference;
};

struct TestResult {
  std::string file, name, page;
  int line = 0;
  TestOutcome outcome = TestOutcome::passed;
  double seconds = 0;
  std::vector<KitMessage> messages;  // why it didn't pass, with the places of steps
  std::vector<std::string> steps;    // that were begun, as they are written; the last is the one that failed
  std::string log;                   // what the console showed, with the places of code; of tests that didn't pass
  std::vector<ComparedPicture> pictures;
  std::string film;  // an animated picture of it, APNG; empty for none
};

// A picture that a step wants to have, for --update.
struct WantedPicture {
  std::string file, png;
  PictureDiffOptions how;  // it will be compared
  KitMessage by;           // the step
};

// "guide.test.yaml: Right leads to the channels"
inline std::string titleOf(const TestResult& result) { return result.file + ": " + result.name; }
