#include "kit/testing/suite.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <thread>

#include "kit/files.h"
#include "kit/onthreads.h"
#include "kit/pictures/png.h"
#include "kit/wildcards.h"

namespace {

namespace fs = std::filesystem;

struct SuiteItem {
  std::string file;
  std::optional<PageTestCase> test;  // nothing for a file with errors
  std::vector<KitMessage> messages;  // what is wrong with it
};

bool isTestFile(const fs::path& path) { return path.filename().string().ends_with(kTestFileEnding); }

// In the order of their names, without what lies in hidden folders.
void findTestFiles(const fs::path& folder, std::vector<std::string>& files) {
  std::set<fs::path> found;
  for (auto at = fs::recursive_directory_iterator(folder); at != fs::recursive_directory_iterator(); ++at) {
    const bool hidden = at->path().filename().string().starts_with(".");
    if (hidden && at->is_directory()) at.disable_recursion_pending();
    if (!hidden && at->is_regular_file() && isTestFile(at->path())) found.insert(at->path());
  }
  for (const fs::path& path : found) files.push_back(path.lexically_normal().generic_string());
}

std::vector<std::string> testFiles(const std::vector<std::string>& paths) try {
  std::vector<std::string> files;
  for (const std::string& path : paths.empty() ? std::vector<std::string>{"."} : paths) {
    if (!fs::exists(path)) throw KitError(path, std::strerror(ENOENT));
    const size_t before = files.size();
    if (!fs::is_directory(path)) {
      files.push_back(path);
    } else {
      findTestFiles(path, files);
      if (files.size() == before) throw KitError(path, std::string("has no test file, NAME") + kTestFileEnding);
    }
  }
  return files;
} catch (const fs::filesystem_error& e) {
  throw KitError(e.path1().generic_string(), e.code().message());
}

std::vector<SuiteItem> itemsOf(const SuiteOptions& options) {
  std::vector<SuiteItem> items;
  for (const std::string& file : testFiles(options.paths)) try {
      for (PageTestCase& test : readTestFile(file).tests) {
        const std::string title = file + ": " + test.name, pattern = "*" + options.only + "*";
        if (options.only.empty() || matchesWildcards(pattern, title)) items.push_back({file, std::move(test), {}});
      }
    } catch (const KitError& e) {
      items.push_back({file, std::nullopt, e.messages});
    }
  std::vector<SuiteItem> share;
  for (size_t i = options.shard - 1; i < items.size(); i += options.shards) share.push_back(std::move(items[i]));
  return share;
}

// Runs the items on some threads.
class SuiteRun {
 public:
  SuiteRun(const SuiteOptions& o, std::vector<SuiteItem> i)
      : options(o), items(std::move(i)), pages(o.warn), reports(items.size()) {
    for (const SuiteItem& item : items)
      if (item.test) pages.prepare(item.test->page);
  }

  SuiteReport run() {
    const size_t machine = std::max(1u, std::thread::hardware_concurrency());
    const size_t threads = std::min(options.jobs == 0 ? machine : options.jobs, items.size());
    runOnThreads(threads, [this] { work(); });
    if (failure) std::rethrow_exception(failure);
    if (options.update) writePictures();
    return std::move(report);
  }

 private:
  // What can't be passed on, because nobody reads any more, ends the suite.
  void work() {
    try {
      for (size_t i; (i = next++) < items.size();) {
        TestRunReport done = runItem(items[i]);
        const std::lock_guard lock(mutex);
        if (options.progress) options.progress(++finished, items.size(), titleOf(done.result));
        reports[i] = std::move(done);
        passOn();
      }
    } catch (...) {
      next = items.size();
      const std::lock_guard lock(mutex);
      failure = std::current_exception();
    }
  }

  TestRunReport runItem(const SuiteItem& item) {
    if (item.test) return runTest(item.file, *item.test, {pages, pictures, options});
    TestRunReport bad;
    bad.result.file = item.file;
    bad.result.name = "the file itself";
    bad.result.outcome = TestOutcome::error;
    bad.result.messages = item.messages;
    return bad;
  }

  // Those whose turn has come.
  void passOn() {
    for (; passed < reports.size() && reports[passed]; ++passed) {
      TestRunReport& one = *reports[passed];
      if (!options.update && options.done) options.done(one.result);
      for (WantedPicture& picture : one.wanted) want(passed, std::move(picture));
      report.coverage.add(one.coverage);
      report.results.push_back(std::move(one.result));
      reports[passed] = TestRunReport{};
    }
  }

  // One picture must do for all steps that have it, the way in which each compares it.
  void want(size_t item, WantedPicture picture) {
    const auto [at, isNew] = wanted.emplace(fs::path(picture.file).lexically_normal().generic_string(), picture);
    if (isNew || at->second.png == picture.png) return;
    const Picture before = pictureOf(at->second), now = pictureOf(picture);
    if (isSame(before, now, picture.how)) return;
    if (isSame(now, before, at->second.how)) {
      at->second = std::move(picture);
      return;
    }
    TestResult& result = reports[item]->result;
    result.outcome = TestOutcome::failed;
    KitMessage message = picture.by;
    message.text += ": another step has this picture with other pixels";
    message.uses.push_back(at->second.by);
    result.messages.push_back(std::move(message));
  }

  static Picture pictureOf(const WantedPicture& wanted) {
    return decodePng(wanted.file, {wanted.png.begin(), wanted.png.end()});
  }

  static bool isSame(const Picture& a, const Picture& b, const PictureDiffOptions& how) {
    const PictureDiff diff = comparePictures(a, b, how);
    return diff.sameSize && diff.pixels == 0;
  }

  void writePictures() {
    for (const auto& [name, picture] : wanted) {
      std::error_code ignored;
      fs::create_directories(fs::path(picture.file).parent_path(), ignored);
      writeFile(picture.file, picture.png.data(), picture.png.size());
      report.written.push_back(name);
    }
    if (options.done) std::for_each(report.results.begin(), report.results.end(), options.done);
  }

  const SuiteOptions& options;
  const std::vector<SuiteItem> items;
  PreparedPages pages;
  ExpectedPictures pictures;
  std::atomic<size_t> next = 0;

  std::mutex mutex;  // for what follows
  size_t finished = 0, passed = 0;
  std::vector<std::optional<TestRunReport>> reports;
  std::map<std::string, WantedPicture> wanted;
  SuiteReport report;
  std::exception_ptr failure;
};

}  // namespace

SuiteReport runSuite(const SuiteOptions& options) { return SuiteRun(options, itemsOf(options)).run(); }

SuiteCount countOf(const std::vector<TestResult>& results) {
  SuiteCount count;
  for (const TestResult& result : results)
    ++(result.outcome == TestOutcome::passed   ? count.passed
       : result.outcome == TestOutcome::failed ? count.failed
                                               : count.errors);
  return count;
}

std::string countText(const SuiteCount& count) {
  std::string text = std::to_string(count.passed) + (count.passed == 1 ? " test passed" : " tests passed");
  if (count.failed > 0) text += ", " + std::to_string(count.failed) + " failed";
  if (count.errors > 0) text += ", " + std::to_string(count.errors) + " can't be run";
  return text;
}
