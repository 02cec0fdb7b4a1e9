// Names of widgets, styles, templates and constants: where they come from, who uses them, and other names for them.
#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "kit/expand/expression.h"
#include "kit/lsp/lspjson.h"
#include "kit/lsp/pagefeatures.h"
#include "kit/yaml/writeyaml.h"

using nlohmann::json;
namespace fs = std::filesystem;

namespace {

struct FoundName {
  std::string uri;
  std::shared_ptr<const PageView> view;
  NameMention mention;
};

json locationJson(const std::string& uri, const EditedText& text, size_t begin, size_t end) {
  return {{"uri", uri}, {"range", rangeJson(text.rangeOf(begin, end))}};
}

// All mentions of what is named at a place; the parameter of a template is known in its file alone.
std::vector<FoundName> mentionsOf(SourceViews& views, const std::string& path, const NameMention& name) {
  std::vector<FoundName> found;
  for (const auto& [file, view] : views.relatedPages(path)) {
    if (name.kind == NameKind::parameter && file != path) continue;
    for (const NameMention& other : view->names)
      if (other.kind == name.kind && other.name == name.name) found.push_back({views.files.uriOf(file), view, other});
  }
  return found;
}

// The file that a name in a source leads to: itself, or what the build makes it of.
std::optional<std::string> fileBehind(const std::string& source, const std::string& name) {
  if (name.empty() || hasExpression(name)) return {};
  const fs::path file = SourceViews::besides(source, name);
  std::error_code error;
  const std::pair<const char*, std::vector<const char*>> kMadeOf[] = {
      {".kpg", {".yaml", ".yml"}}, {".kpx", {".png", ".gif"}}, {".bobo", {".bob"}}, {".clut", {".png", ".gif"}}};
  for (const auto& [made, sources] : kMadeOf)
    if (file.extension() == made)
      for (const char* extension : sources)
        if (const fs::path of = fs::path(file).replace_extension(extension); fs::is_regular_file(of, error))
          return of.string();
  if (fs::is_regular_file(file, error)) return file.string();
  return {};
}

// Without the name of the template in front of a parameter's.
std::string bareName(const NameMention& name) {
  return name.kind == NameKind::parameter ? name.name.substr(name.name.find('.') + 1) : name.name;
}

bool isAnyText(NameKind kind) { return kind == NameKind::widget || kind == NameKind::style; }

void refuseName(const NameMention& old, const std::string& to, const std::vector<FoundName>& found,
                const std::vector<NameMention>& all) {
  const auto refuse = [](const std::string& why) { throw LspError(LspErrorCode::requestFailed, why); };
  if (to.empty() || to.find_first_of("\r\n") != std::string::npos || hasExpression(to))
    refuse("a name is a text in one line, without $(...)");
  if (old.kind != NameKind::madeBy && !isAnyText(old.kind) && !isExpressionName(to))
    refuse("'" + to + "' is no name for expressions: letters, digits and _, and no digit first");
  const bool isDefined =
      std::any_of(found.begin(), found.end(), [](const FoundName& f) { return f.mention.isDefinition; });
  if (!isDefined) refuse("nothing here is called '" + bareName(old) + "'");
  const std::string whole = old.kind == NameKind::parameter ? old.name.substr(0, old.name.find('.') + 1) + to : to;
  for (const NameMention& other : all)
    if (other.kind == old.kind && other.isDefinition && other.name == whole && whole != old.name)
      refuse("there is a '" + to + "' already");
}

}  // namespace

json definitionInPage(SourceViews& views, const std::string& path, size_t offset) {
  const auto view = views.page(path);
  json result = json::array();
  if (const NameMention* name = view->nameAt(offset)) {
    for (const FoundName& found : mentionsOf(views, path, *name))
      if (found.mention.isDefinition)
        result.push_back(locationJson(found.uri, *found.view->text, found.mention.begin, found.mention.end));
    return result;
  }
  for (const FileMention& file : view->files)
    if (file.begin <= offset && offset <= file.end)
      if (const auto behind = fileBehind(path, file.name))
        result.push_back(locationJson(views.files.uriOf(*behind), EditedText(), 0, 0));
  return result;
}

json referencesInPage(SourceViews& views, const std::string& path, size_t offset, bool withDefinitions) {
  const auto view = views.page(path);
  json result = json::array();
  const NameMention* name = view->nameAt(offset);
  if (!name) return result;
  for (const FoundName& found : mentionsOf(views, path, *name))
    if (withDefinitions || !found.mention.isDefinition)
      result.push_back(locationJson(found.uri, *found.view->text, found.mention.begin, found.mention.end));
  return result;
}

json prepareRenameInPage(SourceViews& views, const std::string& path, size_t offset) {
  const auto view = views.page(path);
  const NameMention* name = view->nameAt(offset);
  if (!name) return nullptr;
  const char first = view->text->text()[name->begin];
  const size_t quote = first == '"' || first == '\'' ? 1 : 0;
  return {{"range", rangeJson(view->text->rangeOf(name->begin + quote, name->end - quote))},
          {"placeholder", bareName(*name)}};
}

json renameInPage(SourceViews& views, const std::string& path, size_t offset, const std::string& to) {
  const auto view = views.page(path);
  const NameMention* name = view->nameAt(offset);
  if (!name) throw LspError(LspErrorCode::requestFailed, "there is no name here");
  const std::vector<FoundName> all = mentionsOf(views, path, *name);
  std::vector<NameMention> others;
  for (const auto& [file, other] : views.relatedPages(path))
    others.insert(others.end(), other->names.begin(), other->names.end());
  refuseName(*name, to, all, others);

  json changes = json::object();
  for (const FoundName& found : all) {
    const std::string& source = found.view->text->text();
    const char first = source[found.mention.begin];
    const bool isQuoted = first == '"' || first == '\'';
    const std::string text = isQuoted ? quotedYaml(to) : isExpressionName(to) ? to : yamlOnOneLine(to);
    changes[found.uri].push_back(
        {{"range", rangeJson(found.view->text->rangeOf(found.mention.begin, found.mention.end))}, {"newText", text}});
  }
  return {{"changes", std::move(changes)}};
}

json linksOfPage(SourceViews& views, const std::string& path) {
  const auto view = views.page(path);
  json result = json::array();
  for (const FileMention& file : view->files) {
    const auto behind = fileBehind(path, file.name);
    if (!behind) continue;
    const char first = view->text->text()[file.begin];
    const size_t quote = first == '"' || first == '\'' ? 1 : 0;
    result.push_back({{"range", rangeJson(view->text->rangeOf(file.begin + quote, file.end - quote))},
                      {"target", views.files.uriOf(*behind)}});
  }
  return result;
}
