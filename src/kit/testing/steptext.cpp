// Steps of tests as their authors write them.
#include <filesystem>

#include "kit/testing/testfile.h"
#include "kit/yaml/writeyaml.h"

namespace {

std::string listText(const std::vector<std::string>& items) {
  std::string out;
  for (const std::string& item : items) out += (out.empty() ? "" : ", ") + yamlOnOneLine(item);
  return "[" + out + "]";
}

std::string expectedText(const TextExpectation& expected) {
  std::string out;
  if (expected.is) out += ", is: " + yamlOnOneLine(*expected.is);
  if (!expected.contains.empty()) out += ", contains: " + listText(expected.contains);
  return out;
}

struct StepWriter {
  std::string operator()(const PageAction& action) const {
    constexpr const char* kNames[] = {"key", "wait", "eval"};
    return kNames[action.kind] + (": " + yamlOnOneLine(action.argument));
  }
  std::string operator()(const RepeatStep& step) const {
    const std::string times = "repeat: " + std::to_string(step.times);
    return step.steps.size() == 1 ? stepText(step.steps.front()) + ", " + times : times;
  }
  std::string operator()(const ScreenStep& step) const {
    return "screen: " + std::filesystem::path(step.picture).filename().string() +
           (step.widget.empty() ? "" : ", widget: " + step.widget);
  }
  std::string operator()(const LogStep& step) const {
    if (!step.lines) return "log";
    return "log: " + (step.lines->empty() ? "none" : listText(*step.lines));
  }
  std::string operator()(const ValueStep& step) const {
    return "value: " + yamlOnOneLine(step.expression) + expectedText(step.expected);
  }
  std::string operator()(const FocusStep& step) const {
    return "focus: " + (step.widget.empty() ? "none" : step.widget);
  }
  std::string operator()(const TextStep& step) const { return "text: " + step.widget + expectedText(step.expected); }
  std::string operator()(const MemoryStep& step) const {
    std::string out;
    if (step.heap) out += "heap: " + std::to_string(*step.heap);
    if (step.cache) out += (out.empty() ? "cache: " : ", cache: ") + std::to_string(*step.cache);
    return "memory: {" + out + "}";
  }
  std::string operator()(const WalkStep& step) const { return "walk: {keys: " + std::to_string(step.keys) + "}"; }
};

}  // namespace

std::string stepText(const TestStep& step) { return std::visit(StepWriter(), step.work); }
