#include "kit/lsp/diagnosis.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string_view>
#include <utility>

#include "kit/check/allowed.h"
#include "kit/check/checkedpage.h"
#include "kit/check/checkpage.h"
#include "kit/check/checks.h"
#include "kit/lsp/fileuri.h"
#include "kit/lsp/scriptview.h"
#include "kit/project/project.h"
#include "kit/source/pagesource.h"
#include "kit/source/scripts.h"
#include "kit/testing/testfile.h"
#include "kit/yaml/readyaml.h"

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kWarning = "warning: ";

bool hasLine(const std::string& text, std::string_view begin) {
  for (size_t at = text.find(begin); at != std::string::npos; at = text.find(begin, at + 1))
    if (at == 0 || text[at - 1] == '\n') return true;
  return false;
}

KitMessage withoutPrefix(KitMessage warning) {
  if (warning.text.starts_with(kWarning)) warning.text.erase(0, kWarning.size());
  return warning;
}

std::vector<std::string> allowedAround(const std::string& page) {
  const std::string project = findProject(fs::path(page).parent_path().generic_string());
  return project.empty() ? std::vector<std::string>() : readProject(project).allow;
}

MadeNames namesOf(const CheckedPage& page) {
  MadeNames names;
  for (const CheckedWidget& widget : page.widgets)
    if (!widget.name.empty()) names.widgets.push_back({widget.name, widget.type});
  if (const PageValue* styles = page.root().find("textStyles"))
    for (const PageValue& style : styles->table)
      for (const PageNode& node : style.object)
        for (const PageEntry& entry : node.attributes)
          if (entry.name == "name") names.styles.push_back(entry.value.bytes);
  return names;
}

// Those of the checks that need nothing but the page itself, while it isn't saved or has errors.
void checkEdited(const PageTree& tree, const std::string& path, Diagnosis& into) {
  std::vector<Finding> found;
  const CheckedPage page(tree);
  const Find find = [&](std::string_view check, const YamlPlace& place, std::string text) {
    found.push_back({std::string(check), messageAt(place, std::move(text))});
  };
  checkLooks(page, find);
  checkHighlights(page, find);
  checkStyles(page, find);
  AllowedFindings allowed(allowedAround(path));
  for (Finding& finding : found) {
    if (allowed.allows(finding)) continue;
    finding.message.check = finding.check;
    into.warnings.push_back(std::move(finding.message));
  }
}

void diagnosePage(const std::string& path, bool isSaved, const ReadFile& read, Diagnosis& into) {
  std::vector<KitMessage> warnings;
  PageSourceOptions options;
  options.read = read;
  options.errors = &into.errors;
  const PageTree tree = readPageSource(
      path, [&](const KitMessage& warning) { warnings.push_back(withoutPrefix(warning)); }, options);
  into.sources = tree.sources;
  const bool isSound = into.errors.empty();
  if (isSound) into.made = std::make_shared<const MadeNames>(namesOf(CheckedPage(tree)));
  if (!isSaved || !isSound) {
    into.warnings = std::move(warnings);
    checkEdited(tree, path, into);
    return;
  }
  for (KitMessage& warning : warnings)
    if (warning.check.empty()) into.warnings.push_back(std::move(warning));
  CheckReport report = checkPageSource(path, allowedAround(path));
  for (Finding& finding : report.findings) {
    finding.message.check = finding.check;
    into.warnings.push_back(std::move(finding.message));
  }
  // Of the files that the player asked for when the checks opened the page.
  into.warnings.insert(into.warnings.end(), report.errors.begin(), report.errors.end());
}

void diagnoseScript(const std::string& path, const ReadFile& read) {
  const std::vector<uint8_t> bytes = read(path);
  try {
    ScriptCompiler().compileFile(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  } catch (const ScriptError& e) {
    throw KitError(path, e.place.line, e.what());
  }
}

// What the compiler has not come to: it stops at the first fault of a script, and reads none while the YAML is broken.
void addSyntaxErrors(const std::string& path, SourceKind kind, const ReadFile& read, Diagnosis& into) {
  std::vector<uint8_t> bytes;
  try {
    bytes = read(path);
  } catch (const KitError&) {  // which has been said
    return;
  }
  const auto text = std::make_shared<const EditedText>(std::string(bytes.begin(), bytes.end()));
  const auto add = [&](const ScriptView& script) {
    if (script.hasExpressions) return;
    const auto lineOf = [&](size_t offset) { return text->positionOf(script.sourceOf(offset)).line + 1; };
    const int begin = lineOf(0), end = lineOf(script.text.size());
    for (const BobSyntaxError& error : script.tree.errors) {
      const int line = lineOf(error.offset);
      const bool isKnown = std::any_of(into.errors.begin(), into.errors.end(), [&](const KitMessage& known) {
        const bool isHere = known.line == line || (known.line >= begin && known.line <= end &&
                                                   known.text.ends_with("Syntax error - " + error.text));
        return isHere && fullPath(known.file) == fullPath(path);
      });
      if (!isKnown)
        into.errors.push_back(
            {path, line, (script.what.empty() ? "" : script.what + ": ") + "Syntax error - " + error.text});
    }
  };
  if (kind == SourceKind::script) return add(ScriptView(path, text));
  const auto page = std::make_shared<const PageView>(text);
  for (const SourceScript& script : page->scripts) add(ScriptView(path, page, script));
}

void diagnoseYaml(const std::string& path, const ReadFile& read) {
  const std::vector<uint8_t> bytes = read(path);
  parseYaml(path, std::string(bytes.begin(), bytes.end()));
}

}  // namespace

SourceKind sourceKindOf(const std::string& path, const std::string& text) {
  if (path.ends_with(".bob")) return SourceKind::script;
  if (!path.ends_with(".yaml") && !path.ends_with(".yml")) return SourceKind::other;
  if (fs::path(path).filename() == kProjectFileName) return SourceKind::project;
  if (path.ends_with(kTestFileEnding)) return SourceKind::tests;
  if (hasLine(text, "page:") || hasLine(text, "flags:")) return SourceKind::page;
  return hasLine(text, "constants:") || hasLine(text, "templates:") ? SourceKind::part : SourceKind::other;
}

Diagnosis diagnose(const std::string& path, SourceKind kind, bool isSaved, const ReadFile& read) {
  Diagnosis result;
  result.sources.push_back(path);
  try {
    switch (kind) {
      case SourceKind::page: diagnosePage(path, isSaved, read, result); break;
      case SourceKind::script: diagnoseScript(path, read); break;
      case SourceKind::part: diagnoseYaml(path, read); break;
      case SourceKind::project: isSaved ? void(readProject(path)) : diagnoseYaml(path, read); break;
      case SourceKind::tests: isSaved ? void(readTestFile(path)) : diagnoseYaml(path, read); break;
      case SourceKind::other: break;
    }
  } catch (const BuildError& e) {
    result.errors = e.messages;
    result.sources.insert(result.sources.end(), e.inputs.begin(), e.inputs.end());
  } catch (const KitError& e) {
    result.errors = e.messages;
  } catch (const std::exception& e) {  // such as a page that is too large for the memory
    result.errors.push_back({path, 0, e.what()});
  }
  if (kind == SourceKind::script || kind == SourceKind::page || kind == SourceKind::part)
    addSyntaxErrors(path, kind, read, result);
  return result;
}
