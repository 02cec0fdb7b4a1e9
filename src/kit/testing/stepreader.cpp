#include "kit/testing/stepreader.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>

#include "kit/run/recording.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"

namespace {

constexpr int64_t kMostRepeats = 1'000'000, kMostKeys = 10'000'000, kMostBytes = 1 << 30;

class StepReader {
 public:
  explicit StepReader(MapReader& reader) : in(reader) {}

  std::vector<TestStep> stepsOf(const YamlNode& list, const std::string& what) {
    std::vector<TestStep> steps;
    if (list.isNull()) return steps;
    if (!list.isList()) {
      in.fail(list.place, what + " is a list, not " + shownNode(list));
      return steps;
    }
    for (const YamlNode& node : list.list)
      if (auto step = stepOf(node)) steps.push_back(std::move(*step));
    return steps;
  }

 private:
  std::optional<TestStep> stepOf(const YamlNode& node) {
    if (!node.isMap()) {
      in.fail(node.place, "a step is a map such as key: Right, not " + shownNode(node));
      return {};
    }
    const size_t before = in.errors.size();
    int64_t times = 1;
    const YamlPair* kind = nullptr;
    for (const YamlPair& pair : node.map) {
      if (pair.key == "repeat") {
        times = in.number(pair.value, 0, kMostRepeats);
      } else if (findKind(pair.key)) {
        if (kind) in.fail(pair.place, "a step does one thing only; write another step for '" + pair.key + "'");
        kind = &pair;
      }
    }
    if (!kind) {
      noKind(node);
      return {};
    }
    TestStep step{node.place, (this->*findKind(kind->key)->read)(node, *kind)};
    if (in.errors.size() > before) return {};
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
        return in.fail(pair.place,
                       "a step has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(words) : meant));
      }
    in.fail(node.place, "a step has one of " + listOfWords(words));
  }

  // The map of a step, whose own key has been read: others are read by `readers`.
  void readOptions(const YamlNode& node, const YamlPair& own, KeyReaders readers) {
    const auto nothing = [](const YamlPair&) {};
    readers.push_back({own.key, nothing});
    readers.push_back({"repeat", nothing});
    in.readMap(node, "a step with " + own.key, readers);
  }

  KeyReaders readersOf(TextExpectation& expected) {
    return {{"is", [&](const YamlPair& p) { expected.is = in.text(p.value, "a text"); }},
            {"contains", [&](const YamlPair& p) { expected.contains = in.texts(p.value, "a text"); }}};
  }

  void need(const TextExpectation& expected, const YamlPair& own) {
    if (!expected.is && expected.contains.empty())
      in.fail(own.place, "'" + own.key + "' needs is or contains beside it");
  }

  TestWork keyStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::key, in.key(own.value)};
  }

  TestWork waitStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::wait, std::to_string(in.number(own.value, 0, kLongestWait))};
  }

  TestWork evalStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return PageAction{PageAction::eval, in.text(own.value, "a line of the console")};
  }

  TestWork playStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    RepeatStep steps;
    const std::string recording = in.path(own.value);
    try {
      for (const PageAction& action : readRecording(recording).actions) steps.steps.push_back({own.place, action});
    } catch (const KitError& e) {
      in.errors.insert(in.errors.end(), e.messages.begin(), e.messages.end());
    }
    return steps;
  }

  TestWork groupStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    return RepeatStep{1, stepsOf(own.value, "steps")};
  }

  TestWork screenStep(const YamlNode& node, const YamlPair& own) {
    ScreenStep step;
    step.picture = in.path(own.value);
    if (std::filesystem::path(step.picture).extension() != ".png")
      in.fail(own.value.place, "a screen is a picture, NAME.png");
    readOptions(node, own,
                {{"tolerance", [&](const YamlPair& p) { step.tolerance = int(in.number(p.value, 0, 255)); }},
                 {"area", [&](const YamlPair& p) { step.area = in.bounds(p.value); }},
                 {"widget", [&](const YamlPair& p) { step.widget = in.text(p.value, "a widget"); }},
                 {"mask", [&](const YamlPair& p) { readMask(p.value, step); }}});
    if (step.area && !step.widget.empty()) in.fail(own.place, "a screen has either an area or a widget");
    return step;
  }

  void readMask(const YamlNode& node, ScreenStep& step) {
    if (!node.isList()) return in.fail(node.place, "mask is a list of areas and widgets, not " + shownNode(node));
    for (const YamlNode& item : node.list) {
      if (item.isList()) {
        step.maskedAreas.push_back(in.bounds(item));
      } else {
        step.maskedWidgets.push_back(in.text(item, "a widget"));
      }
    }
  }

  TestWork logStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    LogStep step;
    if (own.value.isMap()) {
      if (own.value.map.empty()) in.fail(own.value.place, "log has contains or lacks, or is none or a list of lines");
      in.readMap(own.value, "log",
                 {{"contains", [&](const YamlPair& p) { step.contains = in.texts(p.value, "a text"); }},
                  {"lacks", [&](const YamlPair& p) { step.lacks = in.texts(p.value, "a text"); }}});
    } else if (own.value.isScalar() && own.value.text == "none") {
      step.lines.emplace();
    } else if (own.value.isScalar()) {
      step.lines = {own.value.text};
      std::string& only = step.lines->front();
      while (only.ends_with('\n')) only.pop_back();
    } else {
      step.lines = in.texts(own.value, "a line");
    }
    return step;
  }

  TestWork valueStep(const YamlNode& node, const YamlPair& own) {
    ValueStep step{in.text(own.value, "an expression"), {}};
    readOptions(node, own, readersOf(step.expected));
    need(step.expected, own);
    return step;
  }

  TestWork textStep(const YamlNode& node, const YamlPair& own) {
    TextStep step{in.text(own.value, "a widget"), {}};
    readOptions(node, own, readersOf(step.expected));
    need(step.expected, own);
    return step;
  }

  TestWork focusStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    const std::string name = in.text(own.value, "a widget");
    return FocusStep{name == "none" ? "" : name};
  }

  TestWork memoryStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    MemoryStep step;
    in.readMap(own.value, "memory",
               {{"heap", [&](const YamlPair& p) { step.heap = in.number(p.value, 0, kMostBytes); }},
                {"cache", [&](const YamlPair& p) { step.cache = in.number(p.value, 0, kMostBytes); }}});
    if (own.value.isMap() && own.value.map.empty())
      in.fail(own.value.place, "memory has heap or cache: how many bytes there are at most");
    return step;
  }

  TestWork walkStep(const YamlNode& node, const YamlPair& own) {
    readOptions(node, own, {});
    WalkStep step;
    in.readMap(own.value, "walk",
               {{"keys", [&](const YamlPair& p) { step.keys = in.number(p.value, 1, kMostKeys); }},
                {"pause", [&](const YamlPair& p) { step.pause = in.number(p.value, 0, kLongestWait); }},
                {"among", [&](const YamlPair& p) { readAmong(p.value, step); }}});
    if (step.keys == 0) in.fail(own.place, "a walk says how many keys it presses: walk: {keys: 500}");
    return step;
  }

  void readAmong(const YamlNode& node, WalkStep& step) {
    if (!node.isList()) return in.fail(node.place, "among is a list of keys, not " + shownNode(node));
    for (const YamlNode& item : node.list) step.among.push_back(in.key(item));
  }

  struct StepKind {
    const char* name;
    TestWork (StepReader::*read)(const YamlNode& step, const YamlPair& own);
  };

  static constexpr StepKind kKinds[] = {
      {"key", &StepReader::keyStep},   {"wait", &StepReader::waitStep},     {"eval", &StepReader::evalStep},
      {"play", &StepReader::playStep}, {"steps", &StepReader::groupStep},   {"screen", &StepReader::screenStep},
      {"log", &StepReader::logStep},   {"value", &StepReader::valueStep},   {"focus", &StepReader::focusStep},
      {"text", &StepReader::textStep}, {"memory", &StepReader::memoryStep}, {"walk", &StepReader::walkStep},
  };

  static const StepKind* findKind(const std::string& name) {
    const auto kind =
        std::find_if(std::begin(kKinds), std::end(kKinds), [&](const StepKind& each) { return name == each.name; });
    return kind == std::end(kKinds) ? nullptr : kind;
  }

  MapReader& in;
};

}  // namespace

std::vector<TestStep> readSteps(MapReader& reader, const YamlNode& list, const std::string& what) {
  return StepReader(reader).stepsOf(list, what);
}
