// kpg test: runs the tests of pages, and reports what became of them.
#include <unistd.h>

#include <iostream>
#include <memory>

#include "kit/errors.h"
#include "kit/files.h"
#include "kit/run/stdoutaside.h"
#include "kit/source/sourcevalue.h"
#include "kit/testing/suite.h"
#include "kit/testing/testreport.h"
#include "kpg/commands.h"
#include "kpg/pageactions.h"
#include "kpg/progressbar.h"

namespace {

struct TestOptions {
  SuiteOptions suite;
  std::string shard, json, junit, html, coverage;
  size_t seed = 1;
  bool merge = false;
};

// "2/3" of so many equal shares.
void readShard(const std::string& text, SuiteOptions& suite) {
  const size_t slash = text.find('/');
  const auto number = [](const std::string& digits) { return parseInteger(digits).value_or(0); };
  const int64_t shard = number(text.substr(0, slash));
  const int64_t shards = slash == std::string::npos ? 0 : number(text.substr(slash + 1));
  if (shard < 1 || shards < shard || shards > 1'000'000)
    KpgCommand::refuse("--shard: '" + text + "' is no I/N, such as 1/3");
  suite.shard = size_t(shard);
  suite.shards = size_t(shards);
}

// A line a test, and below it what is wrong.
std::string resultText(const TestResult& result) {
  std::string text = (result.outcome == TestOutcome::passed ? "ok    " : "FAIL  ") + titleOf(result) + "\n";
  for (const KitMessage& message : result.messages) text += message.whole() + "\n";
  return text;
}

void save(const std::string& file, const std::string& text) { writeFile(file, text.data(), text.size()); }

std::vector<TestResult> runTests(TestOptions& options) {
  StandardOutputAside aside;
  ProgressBar bar;
  SuiteOptions& suite = options.suite;
  suite.warn = [](const KitMessage& warning) { std::cerr << warning.whole() << "\n"; };
  suite.done = [&](const TestResult& result) {
    bar.clear();
    aside.print(resultText(result));
  };
  suite.progress = [&](size_t done, size_t all, const std::string& title) { bar.show(done, all, title); };
  SuiteReport report = runSuite(suite);
  bar.clear();
  for (const std::string& picture : report.written) aside.print(picture + " written\n");
  if (suite.coverage) {
    aside.print(report.coverage.summary());
    save(options.coverage, report.coverage.asLcov());
  }
  return std::move(report.results);
}

std::vector<TestResult> merged(const std::vector<std::string>& files) {
  std::vector<TestResult> all = mergeReports(files);
  for (const TestResult& result : all)
    if (result.outcome != TestOutcome::passed) std::cout << resultText(result);
  return all;
}

void test(TestOptions options) {
  if (!options.shard.empty()) readShard(options.shard, options.suite);
  options.suite.seed = uint32_t(options.seed);
  options.suite.films = !options.html.empty() || !options.json.empty();
  options.suite.coverage = !options.coverage.empty();
  refuseClashes({options.json, options.junit, options.coverage}, options.suite.paths);
  if (options.merge && options.suite.coverage) KpgCommand::refuse("--merge runs nothing, so there is no --coverage");
  if (options.merge && options.suite.paths.empty()) KpgCommand::refuse("--merge needs reports, as --json makes them");
  const std::vector<TestResult> results = options.merge ? merged(options.suite.paths) : runTests(options);
  if (!options.json.empty()) save(options.json, reportAsJson({results, options.suite.shard, options.suite.shards}));
  if (!options.junit.empty()) save(options.junit, resultsAsJunit(results));
  if (!options.html.empty()) writeHtmlReport(options.html, results);
  const SuiteCount count = countOf(results);
  if (results.empty()) throw KitError("there is no such test");
  std::cout << countText(count) << "\n";
  if (count.errors > 0) throw CommandFailure(2, "");
  if (count.failed > 0) throw CommandFailure(1, "");
}

}  // namespace

void addTestCommand(CommandLine& line) {
  auto options = std::make_shared<TestOptions>();
  SuiteOptions& suite = options->suite;
  KpgCommand command = line.command("test", "Run the tests of pages, NAME.test.yaml", 2);
  command.add("files", suite.paths, "Test files, and folders with some; by default the current folder")
      .type("FILE.test.yaml|FOLDER");
  command.flag("--update", suite.update, "Write the pictures that are missing or differ, and name them");
  command.add("--only", suite.only, "Only tests with this in FILE: NAME; * for any letters").type("PATTERN");
  command.add("--jobs", suite.jobs, "This number of threads; by default as many as the machine runs at once")
      .between(1, 1024);
  command.add("--seed", options->seed, "For the keys of walks; 1 by default").between(0, 0xFFFFFFFF);
  addRunLimits(command, suite);
  command.add("--shard", options->shard, "Run one of N equal shares of the tests, the one with number I").type("I/N");
  command.add("--json", options->json, "Write all results, for --merge; - for the standard output").type("FILE");
  command.add("--junit", options->junit, "Write the results for build servers").type("FILE.xml");
  command.add("--html", options->html, "Write a report for people: pictures side by side, logs, steps, films")
      .type("FOLDER");
  command
      .add("--coverage", options->coverage,
           "Print which lines of scripts the tests have not run, and write how often each ran, as lcov does")
      .type("FILE.info");
  command.flag("--merge", options->merge, "Run nothing: join reports that --json has made");
  command.runs([options] { test(*options); });
}
