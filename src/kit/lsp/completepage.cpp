// What can be written at a place of a page source.
#include <algorithm>
#include <set>
#include <utility>

#include "kit/expand/expression.h"
#include "kit/lsp/features.h"
#include "kit/lsp/lspjson.h"
#include "kit/lsp/pagecursor.h"
#include "kit/source/sourcekeys.h"
#include "kit/yaml/writeyaml.h"

using nlohmann::json;

namespace {

// The protocol's kinds of what it completes.
enum Kind {
  kProperty = 10,
  kVariable = 6,
  kEnumMember = 20,
  kFile = 17,
  kColor = 16,
  kEvent = 23,
  kConstant = 21,
  kClass = 7,
  kKeyword = 14
};

constexpr size_t kMostItems = 400;

constexpr std::string_view kRepeatKeys[][2] = {{"over", "what to repeat over: a list, a file or a count"},
                                               {"as", "the name of what is repeated over, in place of `item`"},
                                               {"index", "the name of its number from 0, in place of `index`"},
                                               {"count", "the name of how many there are, in place of `count`"}};

class PageCompletion {
 public:
  PageCompletion(SourceViews& v, const std::string& p, const EditedText& t, size_t o, PageCursor c)
      : views(v), path(p), text(t), offset(o), cursor(std::move(c)) {}

  json all() {
    if (cursor.kind == PageCursor::key) addKeys();
    if (cursor.kind == PageCursor::value) addValues();
    return {{"isIncomplete", isIncomplete}, {"items", std::move(items)}};
  }

 private:
  void add(const std::string& label, Kind kind, const std::string& newText, const std::string& detail = "",
           const std::string& help = "") {
    if (!labels.insert(label).second || !isWanted(label)) return;
    json item = {{"label", label},
                 {"kind", int(kind)},
                 {"textEdit", {{"range", rangeJson(text.rangeOf(begin(), end()))}, {"newText", newText}}}};
    if (!detail.empty()) item["detail"] = detail;
    if (!help.empty()) item["documentation"] = {{"kind", "markdown"}, {"value", help}};
    items.push_back(std::move(item));
  }

  // Of very many only those that begin as what is written; with each letter the editor asks again then.
  bool isWanted(const std::string& label) {
    if (items.size() < kMostItems / 4) return true;
    const bool wanted = items.size() < kMostItems && label.starts_with(cursor.written);
    isIncomplete = isIncomplete || !wanted;
    return wanted;
  }

  // What is replaced: the word, as far as it lies in the cursor's line.
  size_t begin() const {
    const size_t line = text.lineBegin(size_t(text.positionOf(offset).line));
    return std::min(offset, std::max(line, isInExpression ? wordBegin : cursor.begin));
  }
  size_t end() const {
    const auto line = size_t(text.positionOf(offset).line);
    const size_t lineEnd = text.lineBegin(line) + text.line(line).size();
    return std::max(offset, isInExpression ? offset : std::min(cursor.end, lineEnd));
  }

  // With the mark in a value all keys are as they were, and so is what the page brings in.
  std::vector<std::pair<std::string, SourceViews::PageViewPtr>> pages() {
    return views.relatedPages(path, cursor.kind == PageCursor::value ? cursor.view : nullptr);
  }

  // -- keys

  void addKey(const SourceKey& key) {
    if (std::find(cursor.keys.begin(), cursor.keys.end(), key.name) != cursor.keys.end()) return;
    const std::string name(key.name);
    add(name, key.form == AttributeKind::script ? kEvent : kProperty, cursor.hasColon ? name : name + ": ",
        std::string(key.value), keyHelp(key));
  }

  void addName(const std::string& name, const std::string& help) {
    if (std::find(cursor.keys.begin(), cursor.keys.end(), name) == cursor.keys.end())
      add(name, kProperty, cursor.hasColon ? name : name + ": ", "", help);
  }

  void addKeys() {
    const std::string in = cursor.path.empty() ? "" : cursor.path.back();
    if (cursor.object) return addKeysOf(*cursor.object);
    addKeysIn(in);
    if (cursor.path.empty())
      for (const SourceKey& key : topKeys()) addKey(key);
  }

  // Of a map that is no object.
  void addKeysIn(const std::string& in) {
    if (in == "repeat") {
      for (const auto& [name, help] : kRepeatKeys) addName(std::string(name), std::string(help));
    } else if (in == "with") {
      addParameters();
    }
  }

  void addKeysOf(const SourceObject& object) {
    const std::string made = object.node->textOf("template");
    std::string type = object.type;
    if (type.empty() && !made.empty())
      for (const auto& [file, view] : pages())
        if (const LooseNode* body = view->templateNamed(made)) type = body->textOf("type");
    for (const SourceKey& key : objectKeys(object.kind, type)) addKey(key);
    const bool isBody = cursor.path.size() == 2 && cursor.path.front() == "templates";
    if (isBody) addName("parameters", "what a use of the template can set, with defaults");
  }

  // Those of the template that the map around uses.
  void addParameters() {
    for (const SourceObject& object : cursor.view->objects) {
      const LoosePair* with = object.node->find("with");
      if (!with || with->value.begin > offset || offset > with->value.end + 200) continue;
      for (const auto& [file, view] : pages()) {
        const LooseNode* body = view->templateNamed(object.node->textOf("template"));
        const LoosePair* parameters = body ? body->find("parameters") : nullptr;
        if (!parameters) continue;
        for (const LoosePair& parameter : parameters->value.map)
          addName(parameter.key, parameter.value.kind == YamlNode::Kind::null ? "must be given" : "has a default");
      }
    }
  }

  // -- values

  void addValues() {
    if (startExpression()) return addExpressionNames();
    const std::string& key = cursor.keyOfValue;
    if (isAlone()) addKeysIn(key);
    if (isAlone() && key == "page" && cursor.path.empty())
      for (const SourceKey& of : objectKeys(ObjectKind::root, "")) addKey(of);
    if (cursor.isEntry && key != "scripts" && key != "include") return addEntry(key);
    if (!cursor.object) {
      if (const SourceKey* top = topKey(key); top && cursor.path.empty()) addWords(wordsOf(*top));
      if (key == "include") addFiles("source file");
      if (key == "over") addFiles("list, file or count");
      if (!cursor.path.empty() && cursor.path.front() == "constants") addColors();
      return;
    }
    const auto known = objectKey(cursor.object->kind, cursor.object->type, key);
    if (!known) return;
    addWords(wordsOf(*known));
    if (known->form == AttributeKind::boolean) addWords({"true", "false"});
    if (known->form == AttributeKind::color) addColors();
    if (known->value == "widget name") addNames(NameKind::widget);
    if (known->value == "style name") addNames(NameKind::style);
    if (known->value == "template name") addNames(NameKind::madeBy);
    if (known->value.ends_with("file") || known->form == AttributeKind::files || key == "repeat")
      addFiles(std::string(known->value));
  }

  // Whether the value is on a line of its own, where it may become a map.
  bool isAlone() const {
    const std::string_view line = text.line(size_t(text.positionOf(cursor.begin).line));
    const size_t first = line.find_first_not_of(" \t");
    return first == std::string_view::npos ||
           text.lineBegin(size_t(text.positionOf(cursor.begin).line)) + first >= cursor.begin;
  }

  static const SourceKey* topKey(const std::string& name) {
    for (const SourceKey& key : topKeys())
      if (key.name == name) return &key;
    return nullptr;
  }

  // A list's new entry that has no key yet.
  void addEntry(const std::string& listKey) {
    const AttributeForm form =
        cursor.object ? attributeForm(cursor.object->kind, cursor.object->type, listKey) : std::nullopt;
    if (!form && listKey != "children") return;
    const ObjectKind kind = form ? tableObjectKind(form) : ObjectKind::widget;
    if (kind != ObjectKind::other)
      for (const SourceKey& key : objectKeys(kind, "")) addKey(key);
  }

  void addWords(const std::vector<std::string>& words) {
    for (const std::string& word : words) add(word, kEnumMember, word);
  }

  // In quotes where the value has some, or needs some.
  std::string asValue(const std::string& value) const { return cursor.isQuoted ? value : yamlOnOneLine(value); }

  void addNames(NameKind kind) {
    for (const auto& [file, view] : pages())
      for (const NameMention& name : view->names) {
        if (!name.isDefinition || name.kind != kind) continue;
        const SourceObject* object = kind == NameKind::madeBy ? nullptr : view->named(kind, name.name);
        const std::string type = !object                             ? ""
                                 : object->kind == ObjectKind::style ? object->node->textOf("font")
                                 : object->type.empty()              ? "box"
                                                                     : object->type;
        add(name.name, kind == NameKind::madeBy ? kClass : kVariable, asValue(name.name), type);
      }
    const auto made = views.madeNames(path);  // what expressions have become
    if (made && kind == NameKind::widget)
      for (const MadeNames::Widget& widget : made->widgets)
        add(widget.name, kVariable, asValue(widget.name), widget.type.empty() ? "box" : widget.type);
    if (made && kind == NameKind::style)
      for (const std::string& style : made->styles) add(style, kVariable, asValue(style));
  }

  void addColors() {
    addWords({"black", "white", "transparent"});
    for (const auto& [file, view] : pages()) {
      for (const ColorMention& color : view->colors) {
        const std::string written = view->text->text().substr(color.begin, color.end - color.begin);
        add(written, kColor, asValue(written));
      }
      for (const NameMention& name : view->names)
        if (name.kind == NameKind::constant && name.isDefinition)
          add("$(" + name.name + ")", kConstant, "$(" + name.name + ")");
    }
  }

  void addFiles(const std::string& value) {
    for (const std::string& file : views.filesFor(path, value)) add(file, kFile, asValue(file));
  }

  // -- expressions

  bool startExpression() {
    const size_t open = cursor.written.rfind("$(");
    if (open == std::string::npos || cursor.written.find(')', open) != std::string::npos) return false;
    size_t word = cursor.written.size();
    while (word > open + 2 && (std::isalnum(uint8_t(cursor.written[word - 1])) || cursor.written[word - 1] == '_'))
      --word;
    isInExpression = true;
    wordBegin = cursor.begin + word;
    return true;
  }

  void addExpressionNames() {
    if (wordBegin > 0 && text.text()[wordBegin - 1] == '.') return;  // of what a map holds, only the build knows
    const std::string inside = cursor.object ? cursor.object->inside : "";
    for (const NameMention& name : cursor.view->names)
      if (name.kind == NameKind::parameter && name.isDefinition && name.name.starts_with(inside + "."))
        add(name.name.substr(inside.size() + 1), kVariable, name.name.substr(inside.size() + 1), "parameter");
    for (const auto& [file, view] : pages())
      for (const NameMention& name : view->names)
        if (name.kind == NameKind::constant && name.isDefinition) add(name.name, kConstant, name.name, "constant");
    for (const char* name : {"item", "index", "count"}) add(name, kKeyword, name, "of what repeats");
  }

  SourceViews& views;
  const std::string path;
  const EditedText& text;
  const size_t offset;
  const PageCursor cursor;
  bool isInExpression = false;
  size_t wordBegin = 0;
  json items = json::array();
  bool isIncomplete = false;
  std::set<std::string> labels;
};

}  // namespace

// The source is read once: what the cursor is in tells what else has to be known.
json completeAt(SourceViews& views, const std::string& path, size_t offset) {
  if (views.kindOf(path) == SourceKind::script)
    return completeScript(views, path, *views.scripts(path).front(), offset, offset);
  const std::shared_ptr<const EditedText> text = views.files.at(path)->text;
  PageCursor cursor = pageCursorAt(*text, offset);
  if (cursor.kind != PageCursor::script) return PageCompletion(views, path, *text, offset, std::move(cursor)).all();
  return completeScript(views, path, ScriptView(std::move(cursor.scriptText)), cursor.scriptOffset, offset);
}
