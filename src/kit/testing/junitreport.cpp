#include <cstdio>
#include <map>

#include "kit/testing/suite.h"
#include "kit/testing/testreport.h"
#include "kit/utf8.h"

namespace {

std::string seconds(double s) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f", s);
  return text;
}

std::string attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + markupText(value) + "\"";
}

std::string counts(const std::vector<TestResult>& results) {
  const SuiteCount count = countOf(results);
  double time = 0;
  for (const TestResult& result : results) time += result.seconds;
  return attribute("tests", std::to_string(results.size())) + attribute("failures", std::to_string(count.failed)) +
         attribute("errors", std::to_string(count.errors)) + attribute("time", seconds(time));
}

std::string testCase(const TestResult& result) {
  std::string out = "    <testcase" + attribute("classname", result.file) + attribute("name", result.name) +
                    attribute("file", result.file) + attribute("line", std::to_string(result.line)) +
                    attribute("time", seconds(result.seconds));
  if (result.outcome == TestOutcome::passed) return out + "/>\n";
  std::string all;
  for (const KitMessage& message : result.messages) all += message.whole() + "\n";
  const std::string element = result.outcome == TestOutcome::failed ? "failure" : "error";
  out += ">\n      <" + element + attribute("message", result.messages.empty() ? "" : result.messages.front().text) +
         ">" + markupText(all) + "</" + element + ">\n";
  if (!result.log.empty()) out += "      <system-out>" + markupText(result.log) + "</system-out>\n";
  return out + "    </testcase>\n";
}

}  // namespace

std::string markupText(std::string_view text) {
  std::string out;
  for (size_t bad = firstBadUtf8(text);; bad = firstBadUtf8(text)) {
    for (const char c : text.substr(0, bad)) {
      switch (c) {
        case '&': out += "&amp;"; break;
        case '<': out += "&lt;"; break;
        case '>': out += "&gt;"; break;
        case '"': out += "&quot;"; break;
        case '\n':
        case '\t': out += c; break;
        default: out += static_cast<unsigned char>(c) < ' ' ? "\uFFFD" : std::string(1, c);
      }
    }
    if (bad == std::string_view::npos) return out;
    out += "\uFFFD";
    text.remove_prefix(bad + 1);
  }
}

std::string resultsAsJunit(const std::vector<TestResult>& results) {
  std::map<std::string, std::vector<TestResult>> suites;
  for (const TestResult& result : results) suites[result.file].push_back(result);
  std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + counts(results) + ">\n";
  for (const auto& [file, tests] : suites) {
    out += "  <testsuite" + attribute("name", file) + counts(tests) + ">\n";
    for (const TestResult& result : tests) out += testCase(result);
    out += "  </testsuite>\n";
  }
  return out + "</testsuites>\n";
}
