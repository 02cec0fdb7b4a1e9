#include "kit/lsp/names.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "kit/expand/expression.h"

namespace fs = std::filesystem;

namespace {

SharedNameKind sharedKind(NameKind kind) {
  switch (kind) {
    case NameKind::widget: return SharedNameKind::widget;
    case NameKind::style: return SharedNameKind::style;
    case NameKind::madeBy: return SharedNameKind::madeBy;
    case NameKind::constant: return SharedNameKind::constant;
    case NameKind::parameter: return SharedNameKind::parameter;
  }
  return SharedNameKind::widget;
}

NamePlace placeOf(const std::string& path, const PageView& view, const NameMention& name) {
  const std::string& text = view.text->text();
  const bool isQuoted = text[name.begin] == '"' || text[name.begin] == '\'';
  const bool isClosed = isQuoted && name.end > name.begin + 1 && text[name.end - 1] == text[name.begin];
  return {path, view.text, name.begin + isQuoted, name.end - isClosed, name.isDefinition, false, isQuoted};
}

NamePlace placeOf(const ScriptView& script, const BobUse& use) {
  // Of a symbol without its backslash.
  const bool hasBackslash = script.text[use.offset] == '\\';
  return {script.path,
          script.file,
          script.sourceOf(use.offset + hasBackslash),
          script.sourceEndOf(use.offset + use.length),
          use.isDefinition(),
          true,
          false};
}

// What a use in a script means; nothing for words such as `this`.
std::optional<SharedName> meaningOf(const std::shared_ptr<const ScriptView>& script, const BobUse& use) {
  const BobSymbol& symbol = script->symbols.symbols[use.symbol];
  switch (symbol.kind) {
    case BobSymbolKind::kGlobal: return SharedName{SharedNameKind::global, symbol.name};
    case BobSymbolKind::kArgument:
    case BobSymbolKind::kLocal: return SharedName{SharedNameKind::variable, symbol.name, script, use.symbol};
    case BobSymbolKind::kSelector: break;
    case BobSymbolKind::kImplicit:
    case BobSymbolKind::kConstant: return {};
  }
  const std::string owner = script->ownerOf(use);
  return SharedName{owner == "widgets"      ? SharedNameKind::widget
                    : owner == "textStyles" ? SharedNameKind::style
                                            : SharedNameKind::selector,
                    symbol.name};
}

void addPagePlaces(SourceViews& views, const std::string& path, const SharedName& name, std::vector<NamePlace>& into) {
  for (const auto& [file, view] : views.relatedPages(path)) {
    if (name.kind == SharedNameKind::parameter && file != path) continue;
    for (const NameMention& mention : view->names)
      if (sharedKind(mention.kind) == name.kind && mention.name == name.name)
        into.push_back(placeOf(file, *view, mention));
  }
}

void addUses(const std::shared_ptr<const ScriptView>& script, const SharedName& name, std::vector<NamePlace>& into) {
  const bool isGlobal = name.kind == SharedNameKind::global;
  const BobSymbol* symbol =
      script->symbols.find(isGlobal ? BobSymbolKind::kGlobal : BobSymbolKind::kSelector, name.name);
  if (!symbol) return;
  for (const uint32_t number : symbol->uses) {
    const BobUse& use = script->symbols.uses[number];
    if (const auto meaning = meaningOf(script, use); meaning && meaning->kind == name.kind)
      into.push_back(placeOf(*script, use));
  }
}

bool isInPages(SharedNameKind kind) { return kind <= SharedNameKind::parameter; }

bool isInScripts(SharedNameKind kind) {
  return kind == SharedNameKind::widget || kind == SharedNameKind::style || kind == SharedNameKind::global ||
         kind == SharedNameKind::selector;
}

}  // namespace

std::optional<std::pair<SharedName, NamePlace>> nameAt(SourceViews& views, const std::string& path, size_t offset) {
  for (const auto& script : views.scripts(path)) {
    if (!script->holds(offset)) continue;
    const BobUse* use = script->symbols.useAt(script->offsetOf(offset));
    if (!use || (script->hasExpressions && script->text[use->offset] == '_')) continue;
    if (const auto meaning = meaningOf(script, *use)) return std::pair(*meaning, placeOf(*script, *use));
  }
  const auto view = views.kindOf(path) == SourceKind::script ? nullptr : views.page(path);
  const NameMention* mention = view ? view->nameAt(offset) : nullptr;
  if (!mention) return {};
  return std::pair(SharedName{sharedKind(mention->kind), mention->name}, placeOf(path, *view, *mention));
}

std::vector<NamePlace> placesOf(SourceViews& views, const std::string& path, const SharedName& name) {
  std::vector<NamePlace> places;
  if (name.kind == SharedNameKind::variable) {
    for (const uint32_t number : name.script->symbols.symbols[name.symbol].uses)
      places.push_back(placeOf(*name.script, name.script->symbols.uses[number]));
    return places;
  }
  if (isInPages(name.kind)) addPagePlaces(views, path, name, places);
  if (isInScripts(name.kind))
    for (const auto& script : views.relatedScripts(path)) addUses(script, name, places);
  return places;
}

std::vector<NamePlace> definitionsOf(SourceViews& views, const std::string& path, const SharedName& name) {
  std::vector<NamePlace> places = placesOf(views, path, name);
  std::erase_if(places, [](const NamePlace& place) { return !place.isDefinition; });
  if (isInPages(name.kind))  // `widgets.go = ...` makes no widget
    std::erase_if(places, [](const NamePlace& place) { return place.isInScript; });
  if (!places.empty() || isInPages(name.kind)) return places;
  if (name.kind == SharedNameKind::variable) return places;
  for (const auto& script : views.relatedScripts(path)) {
    const BobSymbolKind kind = name.kind == SharedNameKind::global ? BobSymbolKind::kGlobal : BobSymbolKind::kSelector;
    const BobSymbol* symbol = script->symbols.find(kind, name.name);
    const BobUse* first =
        symbol ? script->symbols.definitionOf(uint32_t(symbol - script->symbols.symbols.data())) : nullptr;
    if (first) places.push_back(placeOf(*script, *first));
  }
  return places;
}

std::string bareName(const SharedName& name) {
  return name.kind == SharedNameKind::parameter ? name.name.substr(name.name.find('.') + 1) : name.name;
}

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
          return of.generic_string();
  if (fs::is_regular_file(file, error)) return file.generic_string();
  return {};
}
