// The outline of a script, what folds in it, and the kinds of its words.
#include <algorithm>
#include <string_view>
#include <utility>

#include "kit/language/boboutline.h"
#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"

using nlohmann::json;

namespace {

// The protocol's kinds of symbols, for each BobOutlineItem::Kind.
constexpr int kSymbolKinds[] = {12, 6, 19, 7, 13};

// The protocol's words, for each BobSemantic.
constexpr std::string_view kTokenTypes[] = {"comment",  "keyword",    "string",   "number",    "operator",
                                            "function", "method",     "property", "parameter", "variable",
                                            "variable", "enumMember", "macro"};
constexpr unsigned kDefinition = 1, kGlobal = 2;  // modifiers

json outlineJson(const ScriptView& script, const std::vector<BobOutlineItem>& items) {
  const EditedText& text = *script.file;
  json result = json::array();
  for (const BobOutlineItem& item : items) {
    json one = {
        {"name", item.name.empty() ? "?" : item.name},
        {"detail", item.detail},
        {"kind", kSymbolKinds[item.kind]},
        {"range", rangeJson(text.rangeOf(script.sourceOf(item.begin), script.sourceEndOf(item.end)))},
        {"selectionRange", rangeJson(text.rangeOf(script.sourceOf(item.nameBegin), script.sourceEndOf(item.nameEnd)))}};
    if (!item.children.empty()) one["children"] = outlineJson(script, item.children);
    result.push_back(std::move(one));
  }
  return result;
}

// Packs tokens as distances from one to the next.
class TokenPacker {
 public:
  explicit TokenPacker(const EditedText& t) : text(t) {}

  void add(size_t begin, size_t end, unsigned kind, unsigned modifiers) {
    const TextPosition from = text.positionOf(begin), to = text.positionOf(end);
    if (from.line != to.line || to.character <= from.character) return;
    const int lines = from.line - last.line;
    const int characters = lines == 0 ? from.character - last.character : from.character;
    if (lines < 0 || characters < 0) return;
    for (const int number : {lines, characters, to.character - from.character, int(kind), int(modifiers)})
      data.push_back(number);
    last = from;
  }

  json data = json::array();

 private:
  const EditedText& text;
  TextPosition last;
};

}  // namespace

json outlineOfScript(const ScriptView& script) { return outlineJson(script, outlineOf(script.tree)); }

json foldsOfScript(const ScriptView& script) {
  json folds = json::array();
  for (const BobFold& fold : foldsOf(script.tree)) {
    const int first = script.file->positionOf(script.sourceOf(fold.begin)).line;
    const int last = script.file->positionOf(script.sourceEndOf(fold.end)).line;
    if (first >= last) continue;
    json one = {{"startLine", first}, {"endLine", last}};
    if (fold.kind == BobFold::kComment) one["kind"] = "comment";
    folds.push_back(std::move(one));
  }
  return folds;
}

json semanticTokensOf(SourceViews& views, const std::string& path) {
  const SourceViews::Scripts scripts = views.scripts(path);
  if (scripts.empty()) return {{"data", json::array()}};
  TokenPacker packer(*scripts.front()->file);
  for (const auto& script : scripts)
    for (const BobSemanticToken& token : semanticTokensOf(script->tree, script->symbols)) {
      const auto end = uint32_t(token.offset + token.length);
      const unsigned modifiers =
          (token.isDefinition ? kDefinition : 0) | (token.kind == BobSemantic::kGlobal ? kGlobal : 0);
      // A comment of several lines, or a string that is folded, is one token in each line.
      for (uint32_t begin = token.offset; begin < end;) {
        const size_t lineEnd = std::min(size_t(end), script->text.find('\n', begin));
        packer.add(script->sourceOf(begin), script->sourceEndOf(lineEnd), unsigned(token.kind), modifiers);
        begin = uint32_t(lineEnd) + 1;
      }
    }
  return {{"data", std::move(packer.data)}};
}

json semanticLegend() {
  json types = json::array();
  for (const std::string_view type : kTokenTypes) types.push_back(type);
  return {{"tokenTypes", std::move(types)}, {"tokenModifiers", {"definition", "global"}}};
}
