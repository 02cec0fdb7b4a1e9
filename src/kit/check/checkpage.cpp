#include "kit/check/checkpage.h"

#include <algorithm>
#include <tuple>

#include "kit/check/allowed.h"
#include "kit/check/checks.h"
#include "kit/json.h"
#include "kit/source/pagesource.h"

namespace {

constexpr std::string_view kWarning = "warning: ";

// What the build warns of.
Finding ofWarning(const KitMessage& warning) {
  Finding finding{warning.check, warning};
  if (finding.message.text.starts_with(kWarning)) finding.message.text.erase(0, kWarning.size());
  return finding;
}

void putInOrder(std::vector<Finding>& findings) {
  const auto key = [](const Finding& f) { return std::tie(f.message.file, f.message.line, f.check, f.message.text); };
  std::stable_sort(findings.begin(), findings.end(), [&](const auto& a, const auto& b) { return key(a) < key(b); });
}

// A finding at a place that templates or repetitions have brought in is said once for all of its uses, whatever the
// labels of the widgets there.
std::vector<Finding> saidOnce(std::vector<Finding> findings) {
  const auto isAgain = [](const Finding& a, const Finding& b) {
    const bool isUsed = !a.message.uses.empty() && !b.message.uses.empty();
    return a.check == b.check && a.message.file == b.message.file && a.message.line == b.message.line &&
           (isUsed || a.message.text == b.message.text);
  };
  std::vector<Finding> once;
  size_t more = 0;
  const auto end = [&] {
    if (more > 0 && !once.back().message.uses.empty()) once.back().message.uses.push_back(moreUses(more));
    more = 0;
  };
  for (Finding& finding : findings) {
    if (!once.empty() && isAgain(once.back(), finding)) {
      ++more;
      continue;
    }
    end();
    once.push_back(std::move(finding));
  }
  end();
  return once;
}

}  // namespace

CheckReport checkPageSource(const std::string& path, const std::vector<std::string>& allowed) try {
  std::vector<Finding> found;
  PageSourceOptions options;
  options.lines = true;
  const KitWarn warn = [&](const KitMessage& warning) {
    if (!warning.check.empty()) found.push_back(ofWarning(warning));
  };
  const PageTree tree = readPageSource(path, warn, options);
  const CheckedPage page(tree);
  OpenedPage opened(path);
  const Find find = [&](std::string_view check, const YamlPlace& place, std::string text) {
    found.push_back({std::string(check), messageAt(place, std::move(text))});
  };
  checkLinks(page, opened, find);
  checkLooks(page, find);
  checkHighlights(page, find);
  checkStyles(page, find);
  checkFiles(page, opened, find);
  checkScripts(page, opened, find);
  checkTexts(page, opened, find);

  AllowedFindings allow(allowed);
  for (const std::string& source : tree.sources)
    for (Finding& unknown : allow.unknown(source)) found.push_back(std::move(unknown));
  std::erase_if(found, [&](const Finding& finding) { return allow.allows(finding); });
  putInOrder(found);
  return {saidOnce(std::move(found)), opened.errors()};
} catch (const KitError& e) {
  return {{}, e.messages};
}

std::string findingsJson(const std::vector<Finding>& findings) {
  JsonWriter json;
  json.beginArray();
  for (const Finding& finding : findings) {
    json.beginObject();
    json.string("file", finding.message.file);
    json.number("line", finding.message.line);
    json.string("check", finding.check);
    json.string("text", finding.message.text);
    json.endObject();
  }
  json.endArray();
  return json.text();
}
