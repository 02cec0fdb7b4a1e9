#include "kit/testing/testfile.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "kit/source/sourcevalue.h"
#include "kit/testing/stepreader.h"
#include "kit/yaml/readyaml.h"

namespace {

namespace fs = std::filesystem;

constexpr int64_t kMostSteps = 10'000'000;  // that a test does

// Keys, pauses and so on that the steps do in all, or more than there may be.
int64_t sizeOf(const std::vector<TestStep>& steps) {
  int64_t all = 0;
  for (const TestStep& step : steps) {
    int64_t size = 1;
    if (const auto* several = std::get_if<RepeatStep>(&step.work)) {
      const int64_t once = sizeOf(several->steps);
      size = several->times > 0 && once > kMostSteps / several->times ? kMostSteps + 1 : once * several->times;
    } else if (const auto* walk = std::get_if<WalkStep>(&step.work)) {
      size = walk->keys;
    }
    all = std::min(all + size, kMostSteps + 1);
  }
  return all;
}

class TestFileReader {
 public:
  explicit TestFileReader(const std::string& f) : file(f), in(fs::path(f).parent_path()) {}

  TestFile read() {
    const YamlNode root = readYaml(file);
    PageTestCase shared;
    std::vector<TestStep> setup;
    const YamlNode *tests = nullptr, *steps = nullptr;
    std::string name = fs::path(file).filename().string();
    name.resize(name.size() - std::min(name.size(), std::string(kTestFileEnding).size()));
    in.readMap(root, "a test file",
               {{"name", [&](const YamlPair& p) { name = in.text(p.value, "a name"); }},
                {"page", [&](const YamlPair& p) { shared.page = in.path(p.value); }},
                {"strict", [&](const YamlPair& p) { shared.strict = in.yes(p.value); }},
                {"setup", [&](const YamlPair& p) { setup = readSteps(in, p.value, "setup"); }},
                {"tests", [&](const YamlPair& p) { tests = &p.value; }},
                {"steps", [&](const YamlPair& p) { steps = &p.value; }}});
    if (steps && tests) in.fail(steps->place, "a test file has either tests or steps of one test");
    shared.steps = std::move(setup);
    TestFile result{file, {}};
    if (tests) {
      testsOf(*tests, shared, result);
    } else if (steps) {
      PageTestCase only = shared;
      only.name = name;
      only.place = steps->place;
      append(only.steps, readSteps(in, *steps, "steps"));
      add(std::move(only), result);
    } else if (in.errors.empty()) {
      in.fail(root.place, "a test file has tests, a list, or steps of one test");
    }
    if (!in.errors.empty()) throw KitError(std::move(in.errors));
    return result;
  }

 private:
  static void append(std::vector<TestStep>& to, std::vector<TestStep> more) {
    to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }

  void testsOf(const YamlNode& list, const PageTestCase& shared, TestFile& result) {
    if (!list.isList()) return in.fail(list.place, "tests is a list, not " + shownNode(list));
    for (const YamlNode& node : list.list) {
      PageTestCase test = shared;
      test.place = node.place;
      in.readMap(node, "a test",
                 {{"name", [&](const YamlPair& p) { test.name = in.text(p.value, "a name"); }},
                  {"page", [&](const YamlPair& p) { test.page = in.path(p.value); }},
                  {"strict", [&](const YamlPair& p) { test.strict = in.yes(p.value); }},
                  {"steps", [&](const YamlPair& p) { append(test.steps, readSteps(in, p.value, "steps")); }}});
      add(std::move(test), result);
    }
  }

  void add(PageTestCase test, TestFile& result) {
    if (test.name.empty()) in.fail(test.place, "a test has a name");
    if (test.page.empty()) in.fail(test.place, "the test has no page; name it here, or for all tests of the file");
    if (sizeOf(test.steps) > kMostSteps)
      in.fail(test.place, "the test does more than " + std::to_string(kMostSteps) + " steps");
    const auto same = std::find_if(result.tests.begin(), result.tests.end(),
                                   [&](const PageTestCase& other) { return other.name == test.name; });
    if (same != result.tests.end())
      in.fail(test.place, "there is a test '" + test.name + "' already, in line " + std::to_string(same->place.line));
    result.tests.push_back(std::move(test));
  }

  const std::string file;
  MapReader in;
};

}  // namespace

TestFile readTestFile(const std::string& file) { return TestFileReader(file).read(); }
