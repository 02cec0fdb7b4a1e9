#include "kit/testing/testfile.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>

#include "host/keytable.h"
#include "kit/run/recording.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"
#include "kit/yaml/readyaml.h"

namespace {

namespace fs = std::filesystem;

constexpr int64_t kMostRepeats = 1'000'000, kMostKeys = 10'000'000, kMostBytes = 1 << 30;
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

// Reads what a map says by its keys: each is known by its name, and what nobody asked for is an error.
using KeyReader = std::function<void(const YamlPair&)>;
using KeyReaders = std::vector<std::pair<std::string, KeyReader>>;

class TestFileReader {
 public:
  explicit TestFileReader(const std::string& f) : file(f), folder(fs::path(f).parent_path()) {}

  TestFile read() {
    const YamlNode root = readYaml(file);
    PageTestCase shared;
    std::vector<TestStep> setup;
    const YamlNode *tests = nullptr, *steps = nullptr;
    std::string name = fs::path(file).filename().string();
    name.resize(name.size() - std::min(name.size(), std::string(kTestFileEnding).size()));
    readMap(root, "a test file",
            {{"name", [&](const YamlPair& p) { name = text(p.value, "a name"); }},
             {"page", [&](const YamlPair& p) { shared.page = path(p.value); }},
             {"strict", [&](const YamlPair& p) { shared.strict = yes(p.value); }},
             {"setup", [&](const YamlPair& p) { setup = stepsOf(p.value, "setup"); }},
             {"tests", [&](const YamlPair& p) { tests = &p.value; }},
             {"steps", [&](const YamlPair& p) { steps = &p.value; }}});
    if (steps && tests) fail(steps->place, "a test file has either tests or steps of one test");
    shared.steps = std::move(setup);
    TestFile result{file, {}};
    if (tests) {
      testsOf(*tests, shared, result);
    } else if (steps) {
      PageTestCase only = shared;
      only.name = name;
      only.place = steps->place;
      append(only.steps, stepsOf(*steps, "steps"));
      add(std::move(only), result);
    } else if (errors.empty()) {
      fail(root.place, "a test file has tests, a list, or steps of one test");
    }
    if (!errors.empty()) throw KitError(std::move(errors));
    return result;
  }

 private:
  void fail(const YamlPlace& place, const std::string& what) { errors.push_back(messageAt(place, what)); }

  static void append(std::vector<TestStep>& to, std::vector<TestStep> more) {
    to.insert(to.end(), std::make_move_iterator(more.begin()), std::make_move_iterator(more.end()));
  }

  void readMap(const YamlNode& map, const std::string& what, const KeyReaders& readers) {
    if (!map.isMap()) return fail(map.place, what + " is a map, not " + shownNode(map));
    std::set<std::string> seen;
    std::vector<std::string> words;
    for (const auto& [word, reader] : readers) words.push_back(word);
    for (const YamlPair& pair : map.map) {
      const auto reader =
          std::find_if(readers.begin(), readers.end(), [&](const auto& each) { return each.first == pair.key; });
      if (reader == readers.end()) {
        const std::string meant = suggestion(pair.key, words);
        fail(pair.place,
             what + " has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(words) : meant));
      } else if (!seen.insert(pair.key).second) {
        fail(pair.place, "'" + pair.key + "' is given twice");
      } else {
        reader->second(pair);
      }
    }
  }

  // ---- single values

  std::string text(const YamlNode& node, const char* what) {
    try {
      return scalarText(node, what);
    } catch (const SourceFault& fault) {
      fail(fault.at, fault.text);
      return {};
    }
  }

  std::vector<std::string> texts(const YamlNode& node, const char* what) {
    if (!node.isList()) return {text(node, what)};
    std::vector<std::string> all;
    for (const YamlNode& item : node.list) all.push_back(text(item, what));
    return all;
  }

  std::string path(const YamlNode& node) {
    const std::string name = text(node, "the name of a file");
    return name.empty() ? name : (folder / name).lexically_normal().string();
  }

  int64_t number(const YamlNode& node, int64_t least, int64_t most) {
    const std::string written = node.isScalar() ? node.text : "";
    const auto n = parseInteger(written);
    if (n && *n >= least && *n <= most) return *n;
    fail(node.place, "expecting a number from " + std::to_string(least) + " to " + std::to_string(most) + ", found " +
                         shownNode(node));
    return least;
  }

  bool yes(const YamlNode& node) {
    if (node.isScalar() && (node.text == "yes" || node.text == "true")) return true;
    if (!node.isScalar() || (node.text != "no" && node.text != "false"))
      fail(node.place, "expecting yes or no, found " + shownNode(node));
    return false;
  }

  Bounds bounds(const YamlNode& node) {
    if (!node.isList() || node.list.size() != 4) {
      fail(node.place, "an area is a list [x, y, width, height]");
      return {};
    }
    int32_t n[4];
    for (size_t i = 0; i < 4; ++i) n[i] = int32_t(number(node.list[i], i < 2 ? 0 : 1, 65535));
    return {n[0], n[1], n[2], n[3]};
  }

  std::string key(const YamlNode& node) {
    std::string name = text(node, "a key");
    if (!keyMessageNamed(name)) fail(node.place, "there is no key '" + name + "'" + suggestion(name, keyNames()));
    return name;
  }

  // ---- tests

  void testsOf(const YamlNode& list, const PageTestCase& shared, TestFile& result) {
    if (!list.isList()) return fail(list.place, "tests is a list, not " + shownNode(list));
    for (const YamlNode& node : list.list) {
      PageTestCase test = shared;
      test.place = node.place;
      readMap(node, "a test",
              {{"name", [&](const YamlPair& p) { test.name = text(p.value, "a name"); }},
               {"page", [&](const YamlPair& p) { test.page = path(p.value); }},
               {"strict", [&](const YamlPair& p) { test.strict = yes(p.value); }},
               {"steps", [&](const YamlPair& p) { append(test.steps, stepsOf(p.value, "steps")); }}});
      add(std::move(test), result);
    }
  }

  void add(PageTestCase test, TestFile& result) {
    if (test.name.empty()) fail(test.place, "a test has a name");
    if (test.page.empty()) fail(test.place, "the test has no page; name it here, or for all tests of the file");
    if (sizeOf(test.steps) > kMostSteps)
      fail(test.place, "the test does more than " + std::to_string(kMostSteps) + " steps");
    const auto same = std::find_if(result.tests.begin(), result.tests.end(),
                                   [&](const PageTestCase& other) { return other.name == test.name; });
    if (same != result.tests.end())
      fail(test.place, "there is a test '" + test.name + "' already, in line " + std::to_string(same->place.line));
    result.tests.push_back(std::move(test));
  }

  // ---- steps

  std::vector<TestStep> stepsOf(const YamlNode& list, const std::string& what) {
    std::vector<TestStep> steps;
    if (list.isNull()) return steps;
    if (!list.isList()) {
      fail(list.place, what + " is a list, not " + shownNode(list));
      return steps;
    }
    for (const YamlNode& node : list.list)
      if (auto step = stepOf(node)) steps.push_back(std::move(*step));
    return steps;
  }

  std::optional<TestStep> stepOf(const YamlNode& node) {
    if (!node.isMap()) {
      fail(node.place, "a step is a map such as key: Right, not " + shownNode(node));
      return {};
    }
    const size_t before = errors.size();
    int64_t times = 1;
    const YamlPair* kind = nullptr;
    for (const YamlPair& pair : node.map) {
      if (pair.key == "repeat") {
        times = number(pair.value, 0, kMostRepeats);
      } else if (findKind(pair.key)) {
        if (kind) fail(pair.place, "a step does one thing only; write another step for '" + pair.key + "'");
        kind = &pair;
      }
    }
    if (!kind) {
      noKind(node);
      return {};
    }
    TestStep step{node.place, (this->*findKind(kind->key)->read)(node, *kind)};
    if (errors.size() > before) return {};
    if (!node.find("repeat")) return step;
    if (auto* several = std::get_if<RepeatStep>(&step.work)) {
      several->times = times;
      return step;
    }
    return TestStep{node.place, RepeatStep{times, {std::move(step)}}};
  }

  void noKind(const YamlNode& node) {
    std::vector<std::string> words;
    for (const StepKind& each : kKinds) words.push_back(each.name);
    words.push_back("repeat");
    for (const YamlPair& pair : node.map)
      if (pair.key != "repeat") {
        const std::string meant = suggestion(pair.key, words);
        return fail(pair.place,
                    "a step has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(words) : meant));
      }
    fail(node.place, "a step has one of " + listOfWords(words));
  }

  // The map of a step, whose own key has been read: others are read by `readers`.
  void readOptions(const YamlNode& node, const YamlPair& own, KeyReaders readers) {
    const auto nothing = [](const YamlPair&) {};
    readers.push_back({own.key, nothing});
    readers.push_back({"repeat", nothing});
    readMap(node, "a step with " + own.key, readers);
  }

  KeyReaders readersOf(TextExpectation& expected) {
    return {{"is", [&](const YamlPair& p) { expected.is = text(p.value, "a text"); }},
            {"contains", [&](const YamlPair& p) { expected.contains = texts(p.value, "a text"); }}};
  }

  void need(const TextExpectation& expected, const YamlPair& own) {
    if (!expected.is && expected.contains.empty()) fail(own.place, "'" + own.key + "' needs is or contains beside it");
  }

  TestWork keyStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::key, key(own.value)};
  }

  TestWork waitStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::wait, std::to_string(number(own.value, 0, kLongestWait))};
  }

  TestWork evalStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::eval, text(own.value, "a line of the console")};
  }

  TestWork playStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    RepeatStep steps;
    const std::string recording = path(own.value);
    try {
      for (const PageAction& action : readRecording(recording).actions) steps.steps.push_back({own.place, action});
    } catch (const KitError& e) {
      errors.insert(errors.end(), e.messages.begin(), e.messages.end());
    }
    return steps;
  }

  TestWork groupStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return RepeatStep{1, stepsOf(own.value, "steps")};
  }

  TestWork screenStep(const YamlNode& node, const YamlPair& own) {
    ScreenStep step;
    step.picture = path(own.value);
    if (fs::path(step.picture).extension() != ".png") fail(own.value.place, "a screen is a picture, NAME.png");
    readOptions(node, own,
                {{"tolerance", [&](const YamlPair& p) { step.tolerance = int(number(p.value, 0, 255)); }},
                 {"area", [&](const YamlPair& p) { step.area = bounds(p.value); }},
                 {"widget", [&](const YamlPair& p) { step.widget = text(p.value, "a widget"); }},
                 {"mask", [&](const YamlPair& p) { readMask(p.value, step); }}});
    if (step.area && !step.widget.empty()) fail(own.place, "a screen has either an area or a widget");
    return step;
  }

  void readMask(const YamlNode& node, ScreenStep& step) {
    if (!node.isList()) return fail(node.place, "mask is a list of areas and widgets, not " + shownNode(node));
    for (const YamlNode& item : node.list) {
      if (item.isList()) {
        step.maskedAreas.push_back(bounds(item));
      } else {
        step.maskedWidgets.push_back(text(item, "a widget"));
      }
    }
  }

  TestWork logStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    LogStep step;
    if (own.value.isMap()) {
      readMap(own.value, "log",
              {{"contains", [&](const YamlPair& p) { step.contains = texts(p.value, "a text"); }},
               {"lacks", [&](const YamlPair& p) { step.lacks = texts(p.value, "a text"); }}});
    } else if (own.value.isScalar() && own.value.text == "none") {
      step.lines.emplace();
    } else if (own.value.isScalar()) {
      step.lines = {own.value.text};
      std::string& only = step.lines->front();
      while (only.ends_with('\n')) only.pop_back();
    } else {
      step.lines = texts(own.value, "a line");
    }
    return step;
  }

  TestWork valueStep(const YamlNode& node, const YamlPair& own) {
    ValueStep step{text(own.value, "an expression"), {}};
    readOptions(node, own, readersOf(step.expected));
    need(step.expected, own);
    return step;
  }

  TestWork textStep(const YamlNode& node, const YamlPair& own) {
    TextStep step{text(own.value, "a widget"), {}};
    readOptions(node, own, readersOf(step.expected));
    need(step.expected, own);
    return step;
  }

  TestWork focusStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    const std::string name = text(own.value, "a widget");
    return FocusStep{name == "none" ? "" : name};
  }

  TestWork memoryStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    MemoryStep step;
    readMap(own.value, "memory",
            {{"heap", [&](const YamlPair& p) { step.heap = number(p.value, 0, kMostBytes); }},
             {"cache", [&](const YamlPair& p) { step.cache = number(p.value, 0, kMostBytes); }}});
    return step;
  }

  TestWork walkStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    WalkStep step;
    readMap(own.value, "walk",
            {{"keys", [&](const YamlPair& p) { step.keys = number(p.value, 1, kMostKeys); }},
             {"pause", [&](const YamlPair& p) { step.pause = number(p.value, 0, kLongestWait); }},
             {"among", [&](const YamlPair& p) { readAmong(p.value, step); }}});
    if (step.keys == 0) fail(own.place, "a walk says how many keys it presses: walk: {keys: 500}");
    return step;
  }

  void readAmong(const YamlNode& node, WalkStep& step) {
    if (!node.isList()) return fail(node.place, "among is a list of keys, not " + shownNode(node));
    for (const YamlNode& item : node.list) step.among.push_back(key(item));
  }

  struct StepKind {
    const char* name;
    TestWork (TestFileReader::*read)(const YamlNode& step, const YamlPair& own);
  };

  static constexpr StepKind kKinds[] = {
      {"key", &TestFileReader::keyStep},       {"wait", &TestFileReader::waitStep},
      {"eval", &TestFileReader::evalStep},     {"play", &TestFileReader::playStep},
      {"steps", &TestFileReader::groupStep},   {"screen", &TestFileReader::screenStep},
      {"log", &TestFileReader::logStep},       {"value", &TestFileReader::valueStep},
      {"focus", &TestFileReader::focusStep},   {"text", &TestFileReader::textStep},
      {"memory", &TestFileReader::memoryStep}, {"walk", &TestFileReader::walkStep},
  };

  static const StepKind* findKind(const std::string& name) {
    const auto kind =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const StepKind& each) { return name == each.name; });
    return kind == std::end(kKinds) ? nullptr : kind;
  }

  const std::string file;
  const fs::path folder;
  std::vector<KitMessage> errors;
};

}  // namespace

TestFile readTestFile(const std::string& file) { return TestFileReader(file).read(); }
