#include "kit/testing/testrun.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>

#include "kit/diff/picturediff.h"
#include "kit/film/filmfiles.h"
#include "kit/pictures/png.h"
#include "kit/run/longtext.h"
#include "kit/suggest.h"
#include "kit/testing/testedpage.h"
#include "kit/testing/walk.h"

namespace {

std::string trimmedEnd(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

std::string pngOf(const Picture& picture) {
  const std::vector<uint8_t> bytes = encodePng(int(picture.width), int(picture.height), picture.pixels);
  return {bytes.begin(), bytes.end()};
}

// A film of what was done, or of its beginning, which every viewer can hold.
class ShortFilm : public AnimatedPng {
 public:
  void show(const Picture& picture, uint64_t milliseconds) override {
    if (++pictures <= kMostPictures) AnimatedPng::show(picture, milliseconds);
  }

 private:
  static constexpr size_t kMostPictures = 200;
  size_t pictures = 0;
};

// The part of the rectangle that is on the screen.
Bounds clipped(const Bounds& b, const Picture& screen) {
  const int32_t left = std::max(b.x, 0), top = std::max(b.y, 0);
  const auto right = int32_t(std::min<int64_t>(int64_t{b.x} + b.w, screen.width));
  const auto bottom = int32_t(std::min<int64_t>(int64_t{b.y} + b.h, screen.height));
  return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

PageRunOptions runOptions(const TestRunOptions& options) {
  PageRunOptions run{options};
  run.lines = true;
  run.readOnly = true;  // tests run at the same time, and again
  return run;
}

class TestRunner {
 public:
  TestRunner(const PageTestCase& t, const TestSurroundings& a, TestRunReport& r)
      : test(t),
        around(a),
        report(r),
        coverage([this](BobInterp*, BobValue code) { return page.run.linesOf(code); }),
        page(runOptions(a.options)) {}

  void run() {
    if (around.options.coverage) page.run.trace(coverage);
    try {
      if (!around.pages.open(page.run, test.page)) return failToLoad();
      if (!look() || !runSteps(test.steps)) return finish();
      if (pending) failAsPending();
    } catch (const KitError& e) {
      report.result.outcome = TestOutcome::error;
      report.result.messages = e.messages;
    } catch (const std::exception& e) {  // no memory left, say
      report.result.outcome = TestOutcome::error;
      report.result.messages = {messageAt(place(), e.what())};
    }
    finish();
  }

  bool operator()(const PageAction& action) {
    page.act(action);
    return true;
  }

  bool operator()(const RepeatStep& several) {
    for (int64_t i = 0; i < several.times; ++i)
      if (!runSteps(several.steps)) return false;
    return true;
  }

  bool operator()(const ValueStep& step) {
    const TestedPage::Answer answer = page.evaluate(step.expression);
    if (answer.isValue) return compare(answer.text, step.expected);
    std::string why;
    for (const std::string& line : linesOf(cutInTheMiddle(answer.text))) why += "\n  " + line;
    return wrong("it has no value" + (why.empty() ? "" : ":" + why));
  }

  bool operator()(const TextStep& step) {
    const auto widget = widgetNamed(step.widget);
    return widget && compare(widget->text, step.expected);
  }

  bool operator()(const FocusStep& step) {
    const auto focus = page.focus();
    if (!focus && step.widget.empty()) return true;
    if (focus && !step.widget.empty() && (*focus == step.widget || focus->ends_with("/" + step.widget))) return true;
    if (!step.widget.empty() && !widgetNamed(step.widget)) return false;
    return wrong(focus ? "it is on " + *focus : "nothing has it");
  }

  bool operator()(const MemoryStep& step) {
    const auto within = [&](const char* what, int64_t used, const std::optional<int64_t>& most) {
      return !most || used <= *most ||
             wrong(std::string("the ") + what + " has " + std::to_string(used) + " bytes in use");
    };
    return within("heap", page.heap().usedBytes, step.heap) &&
           within("image cache", int64_t(page.imageCacheBytes()), step.cache);
  }

  bool operator()(const LogStep& step) {
    const std::vector<std::string> lines = page.newLines();
    pending.reset();
    if (step.lines && lines != *step.lines) return wrongLines(*step.lines, lines);
    const auto isIn = [&](const std::string& part) {
      return std::any_of(lines.begin(), lines.end(),
                         [&](const std::string& line) { return line.find(part) != std::string::npos; });
    };
    for (const std::string& part : step.contains)
      if (!isIn(part)) return wrong("no line of the log has '" + part + "'" + shownLines(lines));
    for (const std::string& part : step.lacks)
      if (isIn(part)) return wrong("a line of the log has '" + part + "'" + shownLines(lines));
    return true;
  }

  bool operator()(const ScreenStep& step) {
    Picture screen = page.screen();
    PictureDiffOptions diff{step.tolerance, step.maskedAreas};
    for (const std::string& name : step.maskedWidgets) {
      const auto widget = widgetNamed(name);
      if (!widget) return false;
      diff.masked.push_back(widget->bounds);
    }
    std::optional<Bounds> area = step.area;
    if (!step.widget.empty()) {
      const auto widget = widgetNamed(step.widget);
      if (!widget) return false;
      area = widget->bounds;
    }
    if (area) {
      area = clipped(*area, screen);
      if (area->w == 0 || area->h == 0) return wrong("nothing of it is on the screen");
      screen = cropPicture(screen, *area);
      for (Bounds& masked : diff.masked) masked.x -= area->x, masked.y -= area->y;
    }
    return compareScreen(step, screen, diff);
  }

  bool operator()(const WalkStep& step) {
    const auto begun = page.history;
    const WalkStart again = [&]() -> std::unique_ptr<TestedPage> {
      auto copy = std::make_unique<TestedPage>(runOptions(around.options));
      if (!around.pages.open(copy->run, test.page)) return nullptr;
      for (const PageAction& action : begun) copy->act(action);
      return copy;
    };
    const auto failure = walk(page, step, around.options.seed, test.strict, again);
    return !failure || wrong(walkText(*failure));
  }

 private:
  struct Pending {
    YamlPlace place;
    std::string text;
  };

  // ---- running

  bool runSteps(const std::vector<TestStep>& steps) {
    return std::all_of(steps.begin(), steps.end(), [&](const TestStep& step) { return runStep(step); });
  }

  bool runStep(const TestStep& step) {
    constexpr size_t kMostSteps = 1000;  // more in a report help nobody
    current = &step;
    if (!std::holds_alternative<RepeatStep>(step.work)) done.push_back(&step);
    if (done.size() > kMostSteps) done.pop_front();
    return std::visit(*this, step.work) && look();
  }

  // Whether the page may go on. A complaint waits for the next log step, which may expect it.
  bool look() {
    if (!page.run.stopped().empty()) return wrong(page.run.stopped());
    const std::vector<std::string> complaints = page.newComplaints();
    if (test.strict && !complaints.empty() && !pending)
      pending = {place(), step() + trimmedEnd(cutInTheMiddle(complaints.front()))};
    return true;
  }

  YamlPlace place() const { return current ? current->place : test.place; }
  std::string step() const { return (current ? stepText(*current) : "as the page loads") + ": "; }

  void failToLoad() {
    std::string why;
    for (const std::string& complaint : page.newComplaints()) why += "\n  " + trimmedEnd(complaint);
    fail(test.place, "the player doesn't load " + test.page + why);
    finish();
  }

  void finish() {
    if (around.options.coverage) report.coverage.add(coverage, page.run.knownCode());
    if (report.result.outcome == TestOutcome::passed) return;
    report.result.log = page.run.logWithPlaces();
    for (const TestStep* each : done) report.result.steps.push_back(stepText(*each));
    if (around.options.films && page.run.stopped().empty()) report.result.film = film();
  }

  // The test once more, without what it expects.
  std::string film() const {
    constexpr size_t kMostActions = 5000;
    PageRun again(runOptions(around.options));
    if (report.result.outcome == TestOutcome::error || !around.pages.open(again, test.page)) return {};
    ShortFilm pictures;
    Film film(again, pictures, {});
    for (size_t i = 0; i < page.history.size() && i < kMostActions; ++i) film.act(page.history[i]);
    film.finish();
    return pictures.bytes();
  }

  // ---- what is wrong

  void failAsPending() {
    const Pending complaint = *pending;
    pending.reset();
    fail(complaint.place, complaint.text);
  }

  // A complaint that came before is often why.
  bool fail(const YamlPlace& place, const std::string& text) {
    if (pending) failAsPending();
    report.result.outcome = TestOutcome::failed;
    report.result.messages.push_back(messageAt(place, text));
    return false;
  }

  bool wrong(const std::string& text) { return fail(place(), step() + text); }

  static std::string shownLines(const std::vector<std::string>& lines) {
    constexpr size_t kMost = 20;
    if (lines.empty()) return "; nothing was logged";
    std::string out = "; it was:";
    for (size_t i = 0; i < lines.size() && i < kMost; ++i) out += "\n  " + lines[i];
    if (lines.size() > kMost) out += "\n  ... and " + std::to_string(lines.size() - kMost) + " more lines";
    return out;
  }

  bool wrongLines(const std::vector<std::string>& expected, const std::vector<std::string>& lines) {
    if (expected.empty()) return wrong("something was logged" + shownLines(lines));
    const auto [at, found] = std::mismatch(expected.begin(), expected.end(), lines.begin(), lines.end());
    const std::string where = at == expected.end() ? "the log goes on" : "the log has no '" + *at + "' there";
    return wrong(where + shownLines(lines));
  }

  bool compare(const std::string& found, const TextExpectation& expected) {
    const auto isIn = [&](const std::string& part) { return found.find(part) != std::string::npos; };
    const bool same = !expected.is || found == *expected.is;
    const bool all = std::all_of(expected.contains.begin(), expected.contains.end(), isIn);
    return (same && all) || wrong("it is '" + found + "'");
  }

  std::optional<WidgetView> widgetNamed(const std::string& name) {
    auto widget = page.widget(name);
    if (widget) return widget;
    std::vector<std::string> names;
    for (const WidgetView& each : inspectWidgets(page.run.engine()))
      if (!each.name.empty()) names.push_back(each.name);
    wrong("the page has no widget '" + name + "'" + suggestion(name, names));
    return std::nullopt;
  }

  std::string walkText(const WalkFailure& failure) const {
    std::string text = failure.fault.text + "\n  after " + std::to_string(failure.keys.size()) + " keys with seed " +
                       std::to_string(around.options.seed);
    if (failure.fewest.empty()) return text + ", the last of them " + failure.keys.back();
    const char* how = failure.fault.kind == WalkFault::growth ? "; it grows when these are pressed again and again: "
                                                              : "; the fewest that do it: ";
    return text + how + keysText(failure.fewest);
  }

  bool compareScreen(const ScreenStep& step, const Picture& screen, const PictureDiffOptions& options) {
    const auto expected = around.pictures.read(step.picture);
    const PictureDiff diff = expected ? comparePictures(*expected, screen, options) : PictureDiff{};
    if (expected && diff.pixels == 0 && diff.sameSize) return true;
    if (around.options.update) {
      report.wanted.push_back({step.picture, pngOf(screen), options, messageAt(current->place, stepText(*current))});
      return true;
    }
    ComparedPicture compared{std::filesystem::path(step.picture).filename().string(), "", pngOf(screen), ""};
    if (expected) {
      compared.expected = pngOf(*expected);
      compared.difference = pngOf(pictureOfDifference(*expected, screen, options));
    }
    report.result.pictures.push_back(std::move(compared));
    if (!expected) return wrong("there is no such picture yet; kpg test --update makes it");
    return wrong(differenceText(diff, *expected, screen));
  }

  const PageTestCase& test;
  const TestSurroundings& around;
  TestRunReport& report;
  BobCoverage coverage;
  TestedPage page;
  const TestStep* current = nullptr;  // null while the page loads
  std::deque<const TestStep*> done;   // the last of those that were begun
  std::optional<Pending> pending;     // the first complaint that no log step has seen
};

}  // namespace

TestRunReport runTest(const std::string& file, const PageTestCase& test, const TestSurroundings& around) {
  const auto begin = std::chrono::steady_clock::now();
  TestRunReport report;
  report.result.file = file;
  report.result.name = test.name;
  report.result.page = test.page;
  report.result.line = test.place.line;
  runContained({std::nullopt, {}}, [&] { TestRunner(test, around, report).run(); });  // a test writes nothing
  report.result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
  return report;
}
