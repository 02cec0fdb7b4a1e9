#include <cstdio>
#include <filesystem>
#include <set>

#include "kit/files.h"
#include "kit/testing/htmltemplate.h"
#include "kit/testing/suite.h"
#include "kit/testing/testreport.h"

namespace {

namespace fs = std::filesystem;

constexpr char kPicturePrefix[] = "kpg-test-";

bool isHtmlReport(const std::vector<uint8_t>& bytes) {
  return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()).find(kHtmlReportMark) !=
         std::string_view::npos;
}

class HtmlReport {
 public:
  explicit HtmlReport(const std::string& f) : folder(f) {}

  void write(const std::vector<TestResult>& results) {
    prepareFolder();
    const SuiteCount count = countOf(results);
    const bool allPassed = count.failed + count.errors == 0;
    html.append("<!DOCTYPE html>\n<html lang=\"en\">\n").append(kHtmlReportMark).append("\n").append(kHtmlReportHead);
    html.append("<header><h1>").append(markupText(countText(count))).append("</h1>");
    html.append("<label><input type=\"checkbox\" id=\"bad\"").append(allPassed ? "" : " checked");
    html.append("> only what did not pass</label>");
    html.append("<input type=\"search\" id=\"search\" placeholder=\"Name of a test or a file\"></header>\n<main>\n");
    for (const TestResult& result : results) add(result);
    html.append("</main>\n").append(kHtmlReportEnd).append("</html>\n");
    save("index.html", html);
    files.finish();
    removeOld();
  }

 private:
  void prepareFolder() {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) throw KitError(folder, error.message());
    refuseForeign(path("index.html"), isHtmlReport, "name another folder for the report");
  }

  std::string path(const std::string& name) const { return (fs::path(folder) / name).generic_string(); }

  void save(const std::string& name, const std::string& bytes) {
    files.add(path(name), bytes.data(), bytes.size());
    names.insert(name);
  }

  // Pictures of an earlier report, which none shows any more.
  void removeOld() const {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      if (name.starts_with(kPicturePrefix) && !names.contains(name)) fs::remove(entry.path(), error);
    }
  }

  static std::string seconds(double s) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f s", s);
    return text;
  }

  void add(const TestResult& result) {
    constexpr const char* kClasses[] = {"passed", "failed", "error"};
    const std::string head = " class=\"test " + std::string(kClasses[size_t(result.outcome)]) + "\" data-title=\"" +
                             markupText(titleOf(result)) + "\">";
    const std::string title = "<span class=\"time\">" + seconds(result.seconds) + "</span><span class=\"file\">" +
                              markupText(result.file) + "</span> " + markupText(result.name);
    if (result.outcome == TestOutcome::passed) {
      html += "<section" + head + "<p>" + title + "</p></section>\n";
      return;
    }
    html += "<details open" + head + "<summary>" + title + "</summary>\n<div class=\"inside\">\n";
    for (const KitMessage& message : result.messages)
      html += "<p class=\"message\">" + markupText(message.whole()) + "</p>\n";
    std::string large;
    for (const ComparedPicture& picture : result.pictures) large += add(picture);
    large += figure("film of the test", result.film);
    if (!large.empty()) html += "<div class=\"pictures large\">" + large + "</div>\n";
    addSteps(result.steps);
    if (!result.log.empty()) html += "<h3>Log</h3>\n<pre>" + markupText(result.log) + "</pre>\n";
    html += "</div></details>\n";
  }

  // The name of the file that has it.
  std::string kept(const std::string& png) {
    char name[48];
    std::snprintf(name, sizeof name, "%s%04d.png", kPicturePrefix, ++pictures);
    save(name, png);
    return name;
  }

  static std::string figureOf(const std::string& caption, const std::string& file) {
    return "<figure><img src=\"" + file + "\" alt=\"" + markupText(caption) + "\"><figcaption>" + markupText(caption) +
           "</figcaption></figure>";
  }

  std::string figure(const std::string& caption, const std::string& png) {
    return png.empty() ? "" : figureOf(caption, kept(png));
  }

  // Returns the slider between the two pictures, if there are two.
  std::string add(const ComparedPicture& picture) {
    html += "<h3>" + markupText(picture.name) + "</h3>\n<div class=\"pictures\">";
    if (picture.expected.empty()) {
      html += figure("actual; there is no expected one", picture.actual) + "</div>\n";
      return {};
    }
    const std::string expected = kept(picture.expected), actual = kept(picture.actual);
    html += figureOf("expected", expected) + figureOf("actual", actual) + figure("difference", picture.difference) +
            "</div>\n";
    return "<figure><div class=\"slider\"><img src=\"" + actual + "\" alt=\"actual\"><img class=\"over\" src=\"" +
           expected + "\" alt=\"expected\"><input type=\"range\" min=\"0\" max=\"100\" value=\"50\" " +
           "aria-label=\"how much of the expected picture shows\"></div>" +
           "<figcaption>expected on the left of the line, actual on the right</figcaption></figure>";
  }

  void addSteps(const std::vector<std::string>& steps) {
    if (steps.empty()) return;
    html += "<h3>Steps</h3>\n<ol class=\"steps\">\n";
    for (size_t i = 0; i < steps.size(); ++i)
      html += std::string(i + 1 == steps.size() ? "<li class=\"wrong\">" : "<li>") + markupText(steps[i]) + "</li>\n";
    html += "</ol>\n";
  }

  const std::string folder;
  std::string html;
  int pictures = 0;
  std::set<std::string> names;  // of all files
  OutputFiles files;
};

}  // namespace

void writeHtmlReport(const std::string& folder, const std::vector<TestResult>& results) {
  HtmlReport(folder).write(results);
}
