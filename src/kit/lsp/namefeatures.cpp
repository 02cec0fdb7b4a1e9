// Where names come from, who uses them, and other names for them.
#include <algorithm>
#include <utility>

#include "kit/expand/expression.h"
#include "kit/lsp/features.h"
#include "kit/lsp/knownmembers.h"
#include "kit/lsp/lspjson.h"
#include "kit/lsp/names.h"
#include "kit/yaml/writeyaml.h"

using nlohmann::json;

namespace {

json locationJson(const std::string& uri, const EditedText& text, size_t begin, size_t end) {
  return {{"uri", uri}, {"range", rangeJson(text.rangeOf(begin, end))}};
}

json locationsJson(const SourceViews& views, const std::vector<NamePlace>& places) {
  json result = json::array();
  for (const NamePlace& place : places)
    result.push_back(locationJson(views.files.uriOf(place.path), *place.text, place.begin, place.end));
  return result;
}

[[noreturn]] void refuse(const std::string& why) { throw LspError(LspErrorCode::requestFailed, why); }

bool isWordOfScripts(const std::string& text) {
  const BobTokens tokens = bobTokensOf(text);
  return tokens.all.size() == 2 && tokens.errors.empty() && tokens.all[0].kind == BobTokenKind::kIdentifier &&
         tokens.all[0].end == text.size();
}

// The player's own names, which no page can change.
bool isThePlayers(const SharedName& name) {
  if (name.kind == SharedNameKind::global) return knownMember("", name.name);
  return name.kind == SharedNameKind::selector && isKnownSelector(name.name);
}

void checkRename(SourceViews& views, const std::string& path, const SharedName& name, const std::string& to,
                 const std::vector<NamePlace>& places) {
  if (isThePlayers(name)) refuse("'" + name.name + "' is the player's own name");
  if (to.empty() || to.find_first_of("\r\n") != std::string::npos || hasExpression(to))
    refuse("a name is a text in one line, without $(...)");
  const bool isInExpressions = name.kind == SharedNameKind::constant || name.kind == SharedNameKind::parameter;
  if (isInExpressions && !isExpressionName(to))
    refuse("'" + to + "' is no name for expressions: letters, digits and _, and no digit first");
  const bool isInScripts = std::any_of(places.begin(), places.end(), [](const NamePlace& p) { return p.isInScript; });
  if (isInScripts && !isWordOfScripts(to)) refuse("scripts name it, and '" + to + "' is no name for them");
  if (definitionsOf(views, path, name).empty()) refuse("nothing here is called '" + bareName(name) + "'");
  if (to == bareName(name)) return;
  SharedName other = name;
  other.name = name.kind == SharedNameKind::parameter ? name.name.substr(0, name.name.find('.') + 1) + to : to;
  if (name.kind == SharedNameKind::variable) {
    const ScriptView& script = *name.script;
    for (const uint32_t use : script.symbols.symbols[name.symbol].uses)
      for (const uint32_t visible : script.symbols.variablesAt(script.symbols.uses[use].offset))
        if (script.symbols.symbols[visible].name == to) refuse("there is a '" + to + "' already");
    return;
  }
  const bool isTaken = name.kind == SharedNameKind::global || name.kind == SharedNameKind::selector
                           ? isThePlayers(other) || !placesOf(views, path, other).empty()
                           : !definitionsOf(views, path, other).empty();
  if (isTaken) refuse("there is a '" + to + "' already");
}

// The texts in LoadPage("menu.kpg").
std::vector<uint32_t> textsOfLoadPage(const BobTree& tree) {
  std::vector<uint32_t> texts;
  for (uint32_t i = 0; i < tree.nodes.size(); ++i) {
    if (tree.nodes[i].kind != BobNodeKind::kChain) continue;
    const auto links = tree.children(i);
    for (size_t link = 1; link < links.size(); ++link) {
      const auto arguments = tree.children(links[link]);
      if (tree.nodes[links[link]].kind != BobNodeKind::kCall || arguments.size() != 1) continue;
      const std::string_view text = tree.text(arguments[0]);
      if (tree.nodes[arguments[0]].kind == BobNodeKind::kString && text.size() > 2 && text.ends_with('"') &&
          tree.text(links[link - 1]).ends_with("LoadPage"))
        texts.push_back(arguments[0]);
    }
  }
  return texts;
}

// As a value of YAML in the quotes that it has, or needs.
std::string writtenName(const NamePlace& place, const std::string& to) {
  if (place.isInScript || isExpressionName(to)) return to;
  const std::string quoted = quotedYaml(to);
  if (place.isQuoted) return quoted.substr(1, quoted.size() - 2);
  return yamlOnOneLine(to);
}

}  // namespace

json definitionAt(SourceViews& views, const std::string& path, size_t offset) {
  if (const auto name = nameAt(views, path, offset))
    return locationsJson(views, definitionsOf(views, path, name->first));
  json result = json::array();
  if (views.kindOf(path) == SourceKind::script) return result;
  for (const FileMention& file : views.page(path)->files)
    if (file.begin <= offset && offset <= file.end)
      if (const auto behind = fileBehind(path, file.name))
        result.push_back(locationJson(views.files.uriOf(*behind), EditedText(), 0, 0));
  return result;
}

json referencesAt(SourceViews& views, const std::string& path, size_t offset, bool withDefinitions) {
  const auto name = nameAt(views, path, offset);
  if (!name) return json::array();
  std::vector<NamePlace> places = placesOf(views, path, name->first);
  if (!withDefinitions) std::erase_if(places, [](const NamePlace& place) { return place.isDefinition; });
  return locationsJson(views, places);
}

json prepareRenameAt(SourceViews& views, const std::string& path, size_t offset) {
  const auto name = nameAt(views, path, offset);
  if (!name || isThePlayers(name->first)) return nullptr;
  const NamePlace& place = name->second;
  return {{"range", rangeJson(place.text->rangeOf(place.begin, place.end))}, {"placeholder", bareName(name->first)}};
}

json renameAt(SourceViews& views, const std::string& path, size_t offset, const std::string& to) {
  const auto name = nameAt(views, path, offset);
  if (!name) refuse("there is no name here");
  const std::vector<NamePlace> places = placesOf(views, path, name->first);
  checkRename(views, path, name->first, to, places);
  json changes = json::object();
  for (const NamePlace& place : places) {
    // Single quotes may not be enough for what double ones can hold.
    const bool isSingle = place.isQuoted && place.text->text()[place.begin - 1] == '\'' && !isExpressionName(to);
    const size_t begin = place.begin - isSingle, end = place.end + isSingle;
    changes[views.files.uriOf(place.path)].push_back({{"range", rangeJson(place.text->rangeOf(begin, end))},
                                                      {"newText", isSingle ? quotedYaml(to) : writtenName(place, to)}});
  }
  return {{"changes", std::move(changes)}};
}

json linksIn(SourceViews& views, const std::string& path) {
  json result = json::array();
  const auto add = [&](const std::string& name, const EditedText& text, size_t begin, size_t end) {
    if (const auto behind = fileBehind(path, name))
      result.push_back({{"range", rangeJson(text.rangeOf(begin, end))}, {"target", views.files.uriOf(*behind)}});
  };
  if (const auto view = views.kindOf(path) == SourceKind::script ? nullptr : views.page(path))
    for (const FileMention& file : view->files) {
      const char first = view->text->text()[file.begin];
      const size_t quote = first == '"' || first == '\'' ? 1 : 0;
      add(file.name, *view->text, file.begin + quote, file.end - quote);
    }
  for (const auto& script : views.scripts(path))
    for (const uint32_t text : textsOfLoadPage(script->tree)) {
      const BobNode& node = script->tree.nodes[text];
      const std::string name(script->tree.text(text).substr(1, node.end - node.begin - 2));
      add(name, *script->file, script->sourceOf(node.begin + 1), script->sourceEndOf(node.end - 1));
    }
  return result;
}
