// The outline of a page source, and what folds in it.
#include <algorithm>
#include <set>
#include <utility>

#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"

using nlohmann::json;

namespace {

// The protocol's kinds of symbols.
enum Kind { kClass = 5, kField = 8, kConstant = 14, kObject = 19, kEvent = 24, kModule = 2 };

class PageOutlineMaker {
 public:
  explicit PageOutlineMaker(const PageView& v) : view(v), text(*v.text) {
    for (const SourceScript& script : view.scripts) scripts.insert(script.pair);
  }

  json all() {
    json result = json::array();
    for (const LoosePair& pair : view.top.map) {
      if (pair.key == "page") result.push_back(pairSymbol(pair, kModule));
      if (pair.key == "constants" || pair.key == "templates") {
        json group = pairSymbol(pair, kModule, false);
        for (const LoosePair& one : pair.value.map)
          if (one.hasColon) group["children"].push_back(pairSymbol(one, pair.key == "constants" ? kConstant : kClass));
        result.push_back(std::move(group));
      }
    }
    json entries = json::array();
    addObjects(view.top, entries);
    if (view.top.isList()) result = std::move(entries);
    return result;
  }

 private:
  json symbol(const std::string& name, const std::string& detail, Kind kind, size_t begin, size_t end, size_t nameBegin,
              size_t nameEnd) const {
    return {{"name", name.empty() ? "?" : name},
            {"detail", detail},
            {"kind", int(kind)},
            {"range", rangeJson(text.rangeOf(begin, std::max(end, nameEnd)))},
            {"selectionRange", rangeJson(text.rangeOf(nameBegin, nameEnd))}};
  }

  json pairSymbol(const LoosePair& pair, Kind kind, bool withChildren = true) const {
    json result = symbol(pair.key, "", kind, pair.begin, pair.value.end, pair.begin, pair.end);
    if (withChildren && pair.value.isMap()) addInside(pair.value, result);
    return result;
  }

  // Scripts, styles and widgets of an object.
  void addInside(const LooseNode& object, json& into) const {
    json children = json::array();
    for (const LoosePair& pair : object.map) {
      if (scripts.contains(&pair))
        children.push_back(symbol(pair.key, "", kEvent, pair.begin, pair.value.end, pair.begin, pair.end));
      addObjects(pair.value, children);
    }
    if (!children.empty()) into["children"] = std::move(children);
  }

  void addObjects(const LooseNode& list, json& into) const {
    for (const LooseNode& item : list.list) {
      const SourceObject* object = view.objectOf(item);
      if (!object) continue;
      const LoosePair* name = item.find("name");
      const bool isNamed = name && name->value.isScalar();
      const std::string made = item.textOf("template");
      const std::string detail = !made.empty() ? made : object->type;
      const size_t begin = isNamed ? name->value.begin : item.begin;
      const size_t end = isNamed ? name->value.end : item.map.empty() ? item.end : item.map.front().end;
      json one = symbol(object->label, detail, object->kind == ObjectKind::style ? kField : kObject, item.begin,
                        item.end, begin, end);
      addInside(item, one);
      into.push_back(std::move(one));
    }
  }

  const PageView& view;
  const EditedText& text;
  std::set<const LoosePair*> scripts;
};

void addFold(const EditedText& text, size_t begin, size_t end, json& into, const char* kind = nullptr) {
  const int first = text.positionOf(begin).line, last = text.positionOf(end).line;
  if (first >= last) return;
  json fold = {{"startLine", first}, {"endLine", last}};
  if (kind) fold["kind"] = kind;
  into.push_back(std::move(fold));
}

void addFolds(const EditedText& text, const LooseNode& node, json& into) {
  for (const LoosePair& pair : node.map) {
    addFold(text, pair.begin, pair.value.end, into);
    addFolds(text, pair.value, into);
  }
  for (const LooseNode& item : node.list) {
    if (item.isMap() || item.isList()) addFold(text, item.begin, item.end, into);
    addFolds(text, item, into);
  }
}

void addCommentFolds(const EditedText& text, json& into) {
  const auto isComment = [&](size_t line) {
    const std::string_view content = text.line(line);
    const size_t first = content.find_first_not_of(" \t");
    return first != std::string_view::npos && content[first] == '#';
  };
  for (size_t line = 0; line < text.lineCount(); ++line) {
    const size_t first = line;
    while (line < text.lineCount() && isComment(line)) ++line;
    if (line > first + 1) addFold(text, text.lineBegin(first), text.lineBegin(line - 1), into, "comment");
  }
}

}  // namespace

json outlineOfPage(const PageView& view) { return PageOutlineMaker(view).all(); }

json foldsOfPage(const PageView& view) {
  json folds = json::array();
  addFolds(*view.text, view.top, folds);
  addCommentFolds(*view.text, folds);
  return folds;
}
