// A file of page tests, NAME.test.yaml: which pages are opened, what is done with them, and what is expected then.
//
//   page: guide.yaml
//   setup:
//     - wait: 100
//   tests:
//     - name: Right leads to the channels
//       steps:
//         - key: Right
//         - focus: channel
//         - screen: channels.png
//
// A recording is such a file, too: steps without `tests` are one test. Names of files are relative to the test file and
// come out as they can be opened.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "engine/base/bounds.h"
#include "kit/run/pageaction.h"
#include "kit/yaml/yamlnode.h"

struct TestStep;

struct RepeatStep {
  int64_t times = 1;
  std::vector<TestStep> steps;
};

// A text that is to be found: as a whole, or in what there is.
struct TextExpectation {
  std::optional<std::string> is;
  std::vector<std::string> contains;
};

// The screen shows the picture, which has the size of the area or the widget, if there is one. All rectangles are those
// of the screen.
struct ScreenStep {
  std::string picture;
  int tolerance = 0;  // how far each of red, green and blue may be off, of 255
  std::optional<Bounds> area;
  std::string widget;
  std::vector<Bounds> maskedAreas;  // whatever these show
  std::vector<std::string> maskedWidgets;
};

// Of the lines that were logged since the last such step, without those in which the system says what it loads.
struct LogStep {
  std::optional<std::vector<std::string>> lines;  // exactly these; none for an empty list
  std::vector<std::string> contains, lacks;       // parts of lines
};

struct ValueStep {
  std::string expression;
  TextExpectation expected;
};

struct FocusStep {
  std::string widget;  // empty: nothing has the focus
};

struct TextStep {
  std::string widget;
  TextExpectation expected;
};

struct MemoryStep {
  std::optional<int64_t> heap, cache;  // bytes in use at most
};

// Keys at random: nothing may complain, the focus may not be lost, and memory may not grow.
struct WalkStep {
  int64_t keys = 0;
  int64_t pause = 100;             // milliseconds after each
  std::vector<std::string> among;  // names of keys; empty for all
};

using TestWork =
    std::variant<PageAction, RepeatStep, ScreenStep, LogStep, ValueStep, FocusStep, TextStep, MemoryStep, WalkStep>;

struct TestStep {
  YamlPlace place;
  TestWork work;
};

// "key: Right", "screen: channels.png": as the author has written it, on one line.
std::string stepText(const TestStep& step);

struct PageTestCase {
  std::string name;
  YamlPlace place;
  std::string page;             // as it can be opened
  bool strict = true;           // complaints of the system fail the test, unless a log step has seen them
  std::vector<TestStep> steps;  // with those of the set-up
};

struct TestFile {
  std::string file;
  std::vector<PageTestCase> tests;
};

inline constexpr char kTestFileEnding[] = ".test.yaml";

// Throws KitError with all that is wrong.
TestFile readTestFile(const std::string& file);
