#include "kit/run/recording.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "host/keytable.h"
#include "kit/errors.h"
#include "kit/source/sourcevalue.h"
#include "kit/suggest.h"
#include "kit/yaml/readyaml.h"
#include "kit/yaml/writeyaml.h"

namespace {

constexpr int64_t kMostRepeats = 1'000'000;
constexpr size_t kMostActions = 10'000'000;

struct ActionName {
  const char* name;
  PageAction::Kind kind;
};
constexpr ActionName kActionNames[] = {
    {"key", PageAction::key}, {"wait", PageAction::wait}, {"eval", PageAction::eval}};

class RecordingReader {
 public:
  Recording read(const std::string& file) {
    const YamlNode root = readYaml(file);
    if (!root.isMap()) fail(root.place, "a recording is a map with page and steps, not " + shownNode(root));
    for (const YamlPair& pair : root.map) {
      if (pair.key == "page") {
        recording.page = text(pair.value, "a page");
      } else if (pair.key == "steps") {
        steps(pair.value);
      } else {
        fail(pair.place, "a recording has no '" + pair.key + "'" + suggestion(pair.key, {"page", "steps"}));
      }
    }
    if (!errors.empty()) throw KitError(std::move(errors));
    return std::move(recording);
  }

 private:
  void fail(const YamlPlace& place, const std::string& what) { errors.push_back(messageAt(place, what)); }

  std::string text(const YamlNode& node, const char* what) {
    try {
      return scalarText(node, what);
    } catch (const SourceFault& fault) {
      fail(fault.at, fault.text);
      return {};
    }
  }

  void steps(const YamlNode& list) {
    if (list.isNull()) return;
    if (!list.isList()) return fail(list.place, "steps is a list, not " + shownNode(list));
    for (const YamlNode& step : list.list) {
      if (!step.isMap()) {
        fail(step.place, "a step is a map such as key: Right, not " + shownNode(step));
      } else if (const auto action = actionOf(step)) {
        repeat(*action, timesOf(step), step.place);
      }
    }
  }

  std::optional<PageAction> actionOf(const YamlNode& step) {
    std::optional<PageAction> action;
    for (const YamlPair& pair : step.map) {
      if (pair.key == "repeat") continue;
      const auto known = std::find_if(std::begin(kActionNames), std::end(kActionNames),
                                      [&](const ActionName& a) { return pair.key == a.name; });
      if (known == std::end(kActionNames)) {
        const std::vector<std::string> words{"key", "wait", "eval", "repeat"};
        const std::string meant = suggestion(pair.key, words);
        fail(pair.place,
             "a step has no '" + pair.key + "'" + (meant.empty() ? "; it has " + listOfWords(words) : meant));
      } else if (action) {
        fail(pair.place, "a step has one action only; write another step for '" + pair.key + "'");
      } else {
        action = PageAction{known->kind, text(pair.value, known->name)};
        check(*action, pair.value);
      }
    }
    if (!action && errors.empty()) fail(step.place, "a step has key, wait or eval");
    return action;
  }

  void check(const PageAction& action, const YamlNode& value) {
    const std::string shown = "'" + action.argument + "'";
    if (action.kind == PageAction::key && !keyMessageNamed(action.argument))
      fail(value.place, "there is no key " + shown + suggestion(action.argument, keyNames()));
    if (action.kind == PageAction::wait && !number(action.argument, 0, kLongestWait))
      fail(value.place, shown + " is no number of milliseconds from 0 to " + std::to_string(kLongestWait));
  }

  static std::optional<int64_t> number(const std::string& text, int64_t least, int64_t most) {
    const auto n = parseInteger(text);
    return n && *n >= least && *n <= most ? n : std::nullopt;
  }

  int64_t timesOf(const YamlNode& step) {
    const YamlNode* repeat = step.find("repeat");
    if (!repeat) return 1;
    const auto times = number(text(*repeat, "a number"), 0, kMostRepeats);
    if (!times) fail(repeat->place, "repeat is a number from 0 to " + std::to_string(kMostRepeats));
    return times.value_or(0);
  }

  void repeat(const PageAction& action, int64_t times, const YamlPlace& place) {
    if (recording.actions.size() + size_t(times) > kMostActions)
      throw KitError(messageAt(place, "there are more than " + std::to_string(kMostActions) + " actions"));
    recording.actions.insert(recording.actions.end(), size_t(times), action);
  }

  Recording recording;
  std::vector<KitMessage> errors;
};

YamlNode scalar(const std::string& text) {
  YamlNode node;
  node.kind = YamlNode::Kind::scalar;
  node.text = text;
  return node;
}

}  // namespace

void Recording::add(const PageAction& action) {
  const bool isWait = action.kind == PageAction::wait;
  if (isWait && action.argument == "0") return;
  if (isWait && !actions.empty() && actions.back().kind == PageAction::wait) {
    const int64_t both = std::stoll(actions.back().argument) + std::stoll(action.argument);
    if (both <= kLongestWait) {
      actions.back().argument = std::to_string(both);
      return;
    }
  }
  actions.push_back(action);
}

Recording readRecording(const std::string& file) { return RecordingReader().read(file); }

std::string recordingText(const Recording& recording) {
  YamlNode root, steps;
  root.kind = YamlNode::Kind::map;
  steps.kind = YamlNode::Kind::list;
  const auto& actions = recording.actions;
  for (size_t i = 0, next; i < actions.size(); i = next) {
    next = i + 1;
    if (actions[i].kind == PageAction::key)
      while (next < actions.size() && actions[next] == actions[i]) ++next;
    YamlNode step;
    step.kind = YamlNode::Kind::map;
    step.map.push_back({kActionNames[actions[i].kind].name, {}, scalar(actions[i].argument)});
    if (next - i > 1) step.map.push_back({"repeat", {}, scalar(std::to_string(next - i))});
    steps.list.push_back(std::move(step));
  }
  if (!recording.page.empty()) root.map.push_back({"page", {}, scalar(recording.page)});
  root.map.push_back({"steps", {}, std::move(steps)});
  return writeYaml(root);
}
