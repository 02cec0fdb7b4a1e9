#include "kit/lsp/sourceviews.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <unordered_map>
#include <utility>

#include "kit/errors.h"
#include "kit/lsp/fileuri.h"
#include "kit/project/plan.h"
#include "kit/project/project.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kMostParts = 200;   // of a page
constexpr size_t kMostFiles = 2000;  // that are looked at in a folder
constexpr size_t kMostViews = 500;   // that are kept

bool isYaml(const fs::path& file) { return file.extension() == ".yaml" || file.extension() == ".yml"; }

void addOnce(std::vector<std::string>& all, const std::string& one) {
  if (std::find(all.begin(), all.end(), one) == all.end()) all.push_back(one);
}

// Files in the folder and in those below it, relative to it.
std::vector<fs::path> filesBelow(const fs::path& folder) {
  std::vector<fs::path> result;
  std::error_code error;
  fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error), end;
  for (size_t looked = 0; !error && entry != end && looked < kMostFiles; entry.increment(error), ++looked) {
    const bool isHidden = entry->path().filename().string().starts_with('.');
    if (isHidden) entry.disable_recursion_pending();
    if (!isHidden && entry->is_regular_file(error)) result.push_back(entry->path().lexically_relative(folder));
  }
  std::sort(result.begin(), result.end());
  return result;
}

// What a source may call a file of the folder, for a value of that kind; empty if it can't be one.
std::string nameFor(const fs::path& file, std::string_view value) {
  const std::string extension = file.extension().string();
  const auto is = [&](std::initializer_list<std::string_view> all) {
    return std::find(all.begin(), all.end(), extension) != all.end();
  };
  const auto made = [&](const char* as) { return fs::path(file).replace_extension(as).generic_string(); };
  if (value == "image file" && is({".kpx", ".png", ".gif"})) return made(".kpx");
  if (value == "CLUT file" && is({".clut"})) return file.generic_string();
  if (value == "page file" && is({".kpg", ".yaml", ".yml"}) && !file.generic_string().ends_with(".test.yaml") &&
      file.filename() != kProjectFileName)
    return made(".kpg");
  if (value == "file" && is({".ttf", ".otf", ".t2k", ".ffn"})) return file.generic_string();
  if (value == "list of files" && is({".bob", ".bobo"})) return file.generic_string();
  if (value == "source file" && is({".yaml", ".yml"}) && file.filename() != kProjectFileName)
    return file.generic_string();
  if (value == "list, file or count" && is({".yaml", ".yml", ".csv"}) && file.filename() != kProjectFileName)
    return file.generic_string();
  return "";
}

// What the project makes, relative to its output folder.
std::vector<std::string> madeByProject(const std::string& projectFile) {
  std::vector<std::string> made;
  try {
    const BuildPlan plan = planProject(readProject(projectFile));
    for (const BuildStep& step : plan.steps) made.insert(made.end(), step.outputs.begin(), step.outputs.end());
  } catch (const KitError&) {  // which the project file's own diagnosis says
  }
  return made;
}

}  // namespace

std::string SourceViews::besides(const std::string& source, const std::string& name) {
  return fullPath((fs::path(source).parent_path() / name).generic_string());
}

// The same object for as long as the text is the same.
std::shared_ptr<const EditedText> SourceViews::textOf(const std::string& path) {
  if (const OpenFile* file = files.at(path)) return file->text;
  std::optional<std::string> text = files.textOf(path);
  if (!text) return nullptr;
  if (texts.size() > kMostViews) texts.clear();
  std::shared_ptr<const EditedText>& known = texts[path];
  if (!known || known->text() != *text) known = std::make_shared<const EditedText>(std::move(*text));
  return known;
}

std::shared_ptr<const PageView> SourceViews::page(const std::string& path) {
  const auto text = textOf(path);
  if (!text) return nullptr;
  if (views.size() > kMostViews) views.clear();
  std::shared_ptr<const PageView>& view = views[path];
  if (!view || view->text != text) view = std::make_shared<const PageView>(text);
  return view;
}

SourceViews::Scripts SourceViews::scripts(const std::string& path) {
  const auto text = textOf(path);
  if (!text) return {};
  if (scriptViews.size() > kMostViews) scriptViews.clear();
  auto& [madeOf, all] = scriptViews[path];
  if (madeOf == text) return all;
  madeOf = text;
  std::unordered_map<std::string, std::shared_ptr<const ScriptCode>> known;
  for (const auto& before : all) known.emplace(before->text, before->code);
  const ScriptView::CodeOf codeOf = [&](std::string code) {
    const auto found = known.find(code);
    return found == known.end() ? ScriptView::newCode(std::move(code)) : found->second;
  };
  all.clear();
  if (!isYaml(path)) {
    all.push_back(std::make_shared<const ScriptView>(path, text, codeOf));
  } else if (const auto view = page(path)) {
    for (const SourceScript& script : view->scripts)
      all.push_back(std::make_shared<const ScriptView>(path, view, script, codeOf));
  }
  return all;
}

SourceViews::Scripts SourceViews::relatedScripts(const std::string& path) {
  Scripts result;
  for (const std::string& file : related(path)) {
    const Scripts own = scripts(file);
    result.insert(result.end(), own.begin(), own.end());
  }
  return result;
}

SourceKind SourceViews::looksLike(const std::string& path) {
  const auto text = textOf(path);
  return text ? sourceKindOf(path, text->text()) : SourceKind::other;
}

SourceKind SourceViews::kindOf(const std::string& path) {
  const SourceKind kind = looksLike(path);
  return kind == SourceKind::other && isYaml(path) && related(path).size() > 1 ? SourceKind::part : kind;
}

void SourceViews::addParts(const std::string& path, const ViewOf& viewOf, std::vector<std::string>& into) {
  if (into.size() >= kMostParts || std::find(into.begin(), into.end(), path) != into.end()) return;
  const auto view = viewOf(path);
  if (!view) return;
  into.push_back(path);
  for (const std::string& name : view->included()) addParts(besides(path, name), viewOf, into);
  for (const std::string& name : view->scriptFiles())
    if (files.textOf(besides(path, name))) addOnce(into, besides(path, name));
}

std::vector<std::string> SourceViews::pagesAround(const std::string& path) {
  std::vector<std::string> pages;
  const auto add = [&](const std::string& file) {
    if (isYaml(file) && looksLike(file) == SourceKind::page) addOnce(pages, file);
  };
  for (const auto& [open, file] : files.all()) add(open);
  const fs::path folder = fs::path(path).parent_path();
  try {
    if (const std::string project = findProject(folder.generic_string()); !project.empty()) {
      const Project all = readProject(project);
      for (const ProjectName& page : all.pages) add(fullPath(all.pathOf(page.text)));
    }
  } catch (const KitError&) {  // which the project file's own diagnosis says
  }
  std::error_code error;
  size_t looked = 0;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end && looked < kMostFiles;
       entry.increment(error), ++looked)
    if (entry->is_regular_file(error)) add(fullPath(entry->path().generic_string()));
  return pages;
}

std::vector<std::string> SourceViews::related(const std::string& path) {
  return related(path, [this](const std::string& file) { return page(file); });
}

std::vector<std::string> SourceViews::related(const std::string& path, const ViewOf& viewOf) {
  std::vector<std::string> result{path};
  if (looksLike(path) == SourceKind::page) {
    result.clear();
    addParts(path, viewOf, result);
    return result;
  }
  for (const std::string& page : pagesAround(path)) {
    std::vector<std::string> parts;
    addParts(page, viewOf, parts);
    if (std::find(parts.begin(), parts.end(), path) == parts.end()) continue;
    for (const std::string& part : parts) addOnce(result, part);
  }
  return result;
}

std::vector<std::pair<std::string, SourceViews::PageViewPtr>> SourceViews::relatedPages(const std::string& path,
                                                                                        PageViewPtr own) {
  const ViewOf viewOf = [&](const std::string& file) { return own && file == path ? own : page(file); };
  std::vector<std::pair<std::string, PageViewPtr>> result;
  for (const std::string& file : related(path, viewOf))
    if (isYaml(file))
      if (auto view = viewOf(file)) result.emplace_back(file, std::move(view));
  return result;
}

std::shared_ptr<const MadeNames> SourceViews::madeNames(const std::string& path) {
  const std::lock_guard lock(mutex);
  const auto known = made.find(path);
  return known == made.end() ? nullptr : known->second;
}

void SourceViews::setMadeNames(const std::string& path, std::shared_ptr<const MadeNames> names) {
  const std::lock_guard lock(mutex);
  made[path] = std::move(names);
}

std::vector<std::string> SourceViews::filesFor(const std::string& path, const std::string& value) {
  const fs::path folder = fs::path(path).parent_path();
  std::set<std::string> names;
  const std::string projectFile = findProject(folder.generic_string());
  const fs::path root = projectFile.empty() ? folder : fs::path(projectFile).parent_path();
  for (const fs::path& file : filesBelow(folder)) names.insert(nameFor(file, value));
  // Sources lie where they are; what is made of them lies in the output folder as they lie in the project's.
  if (!projectFile.empty() && value != "source file" && value != "list, file or count")
    for (const std::string& made : madeByProject(projectFile))
      names.insert(nameFor((root / made).lexically_relative(folder), value));
  names.erase("");
  return {names.begin(), names.end()};
}
