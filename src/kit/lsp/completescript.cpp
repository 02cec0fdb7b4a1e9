// What can be written at a place of a script, and what its names mean.
#include <algorithm>
#include <set>
#include <utility>

#include "kit/expand/expression.h"
#include "kit/lsp/features.h"
#include "kit/lsp/knownmembers.h"
#include "kit/lsp/lspjson.h"
#include "kit/lsp/names.h"
#include "kit/lsp/pagecursor.h"

using nlohmann::json;

namespace {

// The protocol's kinds of what it completes.
enum Kind { kMethod = 2, kFunction = 3, kVariable = 6, kClass = 7, kProperty = 10, kKeyword = 14, kObject = 18 };

constexpr size_t kMostItems = 400;

std::string signatureOf(const std::vector<std::string>& parameters) {
  std::string text = "(";
  for (const std::string& parameter : parameters) text += (text.size() > 1 ? ", " : "") + parameter;
  return text + ")";
}

bool isMasked(std::string_view name) { return name.find_first_not_of('_') == std::string_view::npos; }

class ScriptCompletion {
 public:
  // `place` is where the name that is being written begins and ends in the source.
  ScriptCompletion(SourceViews& v, const std::string& p, const ScriptView& s, size_t o)
      : views(v), path(p), script(s), offset(o), cursor(cursorAt(s.tree, s.symbols, o)) {}

  // `range` is where the name that is being written lies in the source.
  json all(const EditedText& text, size_t sourceOffset) {
    range = rangeJson(text.rangeOf(sourceOffset - (offset - cursor.begin), sourceOffset + (cursor.end - offset)));
    switch (cursor.kind) {
      case BobCursor::kName: addNames(); break;
      case BobCursor::kMember: addMembers(); break;
      case BobCursor::kSymbol: addSelectors(); break;
      case BobCursor::kKey:
      case BobCursor::kNewName:
      case BobCursor::kNothing: break;
    }
    return {{"isIncomplete", isIncomplete}, {"items", std::move(items)}};
  }

 private:
  void add(const std::string& label, Kind kind, const std::string& detail = "", std::string_view help = {}) {
    if (isMasked(label) || !labels.insert(label).second || !isWanted(label)) return;
    json item = {{"label", label}, {"kind", int(kind)}, {"textEdit", {{"range", range}, {"newText", label}}}};
    if (!detail.empty()) item["detail"] = detail;
    if (!help.empty()) item["documentation"] = {{"kind", "markdown"}, {"value", help}};
    items.push_back(std::move(item));
  }

  // Of very many only those that begin as what is written; with each letter the editor asks again then.
  bool isWanted(const std::string& label) {
    if (items.size() < kMostItems / 2) return true;
    const std::string_view written = std::string_view(script.text).substr(cursor.begin, offset - cursor.begin);
    const bool wanted = items.size() < kMostItems && label.starts_with(written);
    isIncomplete = isIncomplete || !wanted;
    return wanted;
  }

  void addKnown(const KnownMember& member) {
    const bool isFunction = !member.parameters.empty();
    const Kind kind = member.object.empty() ? isFunction ? kFunction : kObject : isFunction ? kMethod : kProperty;
    add(std::string(member.name), kind, std::string(member.parameters), member.help);
  }

  void addNames() {
    for (const uint32_t variable : script.symbols.variablesAt(offset))
      add(script.symbols.symbols[variable].name, kVariable, "variable");
    for (const auto& other : views.relatedScripts(path)) addGlobals(*other);
    addGlobals(script);
    for (const KnownMember& member : knownMembers())
      if (member.object.empty()) addKnown(member);
    if (isAfterNew()) return;
    for (const std::string_view word : bobKeywords()) add(std::string(word), kKeyword);
    for (const char* word : {"true", "false", "this", "_next"}) add(word, kKeyword);
  }

  // Where only what has instances can stand.
  bool isAfterNew() const {
    size_t token = script.tree.tokens.at(cursor.begin);
    while (token > 0 && script.tree.tokens.all[token].end > cursor.begin) --token;
    while (token > 0 && script.tree.tokens.all[token].isComment()) --token;
    return script.tree.tokens.all[token].end <= cursor.begin &&
           script.tree.tokens.all[token].kind == BobTokenKind::kNew;
  }

  void addGlobals(const ScriptView& from) {
    for (const BobFunctionInfo& function : from.symbols.functions)
      if (function.ofObject.empty()) add(function.name, kFunction, signatureOf(function.parameters));
    for (const BobSymbol& symbol : from.symbols.symbols) {
      const bool isSet = std::any_of(symbol.uses.begin(), symbol.uses.end(), [&](uint32_t use) {
        return from.symbols.uses[use].kind == BobUseKind::kWrite || from.symbols.uses[use].isDefinition();
      });
      if (symbol.kind == BobSymbolKind::kGlobal && isSet) add(symbol.name, kVariable, "global");
    }
  }

  void addMembers() {
    const std::string& path = cursor.object.empty() ? cursor.chain : cursor.object;
    if (path == "widgets" || path.ends_with(".widgets")) return addPageNames(NameKind::widget);
    if (path == "textStyles" || path.ends_with(".textStyles")) return addPageNames(NameKind::style);
    std::string object = objectOfChain(path);
    if (object.empty()) object = cursor.object;
    if (object == "Widget" && isFrame(path.substr(path.rfind('.') + 1))) object = "Frame";
    const size_t before = items.size();
    addClass(cursor.object, 0);  // what scripts give it, beside what it has
    for (const KnownMember* member : membersOfObject(object)) addKnown(*member);
    if (items.size() == before) {  // whatever it is
      for (const KnownMember& member : knownMembers())
        if (!member.object.empty()) addKnown(member);
      addSelectors();
    }
    for (const KnownMember* member : membersOfObject("Object")) addKnown(*member);
  }

  bool isFrame(const std::string& widget) {
    for (const auto& [file, view] : views.relatedPages(path))
      if (const SourceObject* object = view->named(NameKind::widget, widget)) return object->type == "frame";
    return false;
  }

  // What scripts give an object, and the one that it is made of.
  void addClass(const std::string& name, int depth) {
    constexpr int kMostParents = 20;
    if (name.empty() || depth > kMostParents) return;
    const auto addFrom = [&](const ScriptView& from) {
      const BobClass* found = from.symbols.findClass(name);
      if (!found) return;
      for (const BobClass::Member& member : found->members)
        add(member.name, member.isMethod ? kMethod : kProperty,
            member.isMethod ? signatureOf(member.parameters) : name.substr(0, name.find('@')));
      addClass(found->parent, depth + 1);
      for (const KnownMember* member : membersOfObject(found->parent)) addKnown(*member);
    };
    addFrom(script);
    for (const auto& other : views.relatedScripts(path)) addFrom(*other);
  }

  void addSelectors() {
    const auto addFrom = [&](const ScriptView& from) {
      for (const BobSymbol& symbol : from.symbols.symbols) {
        const bool isElsewhere = std::any_of(symbol.uses.begin(), symbol.uses.end(), [&](uint32_t use) {
          return &from != &script || from.symbols.uses[use].offset != cursor.begin;
        });
        if (symbol.kind == BobSymbolKind::kSelector && isElsewhere) add(symbol.name, kProperty);
      }
    };
    addFrom(script);
    for (const auto& other : views.relatedScripts(path))
      if (!(other->path == path && other->text == script.text)) addFrom(*other);
  }

  void addPageNames(NameKind kind) {
    for (const auto& [file, view] : views.relatedPages(path))
      for (const NameMention& name : view->names) {
        if (name.kind != kind || !name.isDefinition || !isExpressionName(name.name)) continue;
        const SourceObject* object = view->named(kind, name.name);
        add(name.name, kObject, object && kind == NameKind::widget ? object->type.empty() ? "box" : object->type : "");
      }
    const auto made = views.madeNames(path);  // what expressions have become
    if (!made || kind != NameKind::widget) return;
    for (const MadeNames::Widget& widget : made->widgets)
      if (isExpressionName(widget.name)) add(widget.name, kObject, widget.type.empty() ? "box" : widget.type);
  }

  SourceViews& views;
  const std::string path;
  const ScriptView& script;
  const size_t offset;
  const BobCursor cursor;
  json range;
  json items = json::array();
  bool isIncomplete = false;
  std::set<std::string> labels;
};

// The script around a place, also one that only the cursor makes: an empty one, or the end of one.
std::shared_ptr<const ScriptView> scriptAround(SourceViews& views, const std::string& path, size_t offset,
                                               size_t* inside) {
  if (views.kindOf(path) == SourceKind::script) {
    *inside = offset;
    return views.scripts(path).front();
  }
  PageCursor cursor = pageCursorAt(*views.page(path)->text, offset);
  if (cursor.kind != PageCursor::script) return nullptr;
  *inside = cursor.scriptOffset;
  return std::make_shared<const ScriptView>(std::move(cursor.scriptText));
}

// The comment right above a line of the script.
std::string commentAbove(const ScriptView& script, uint32_t offset) {
  const size_t token = script.tree.tokens.at(offset);
  std::string comment;
  size_t next = script.text.rfind('\n', offset);
  for (size_t i = token; i-- > 0 && next != std::string::npos;) {
    const BobSourceToken& before = script.tree.tokens.all[i];
    if (before.begin > next) continue;  // of the same line
    if (before.kind != BobTokenKind::kLineComment || before.end > next) break;
    if (script.text.substr(before.end, next - before.end).find('\n') != std::string::npos) break;
    std::string line(script.tree.text(before).substr(2));
    line.erase(0, line.find_first_not_of(' '));
    comment = line + (comment.empty() ? "" : " ") + comment;
    next = script.text.rfind('\n', before.begin);
  }
  return comment;
}

std::string aboutGlobal(SourceViews& views, const std::string& path, const std::string& name) {
  for (const auto& script : views.relatedScripts(path))
    if (const BobFunctionInfo* function = script->functionNamed(name)) {
      const std::string comment = commentAbove(*script, function->nameOffset);
      return "```bob\n" + name + signatureOf(function->parameters) + "\n```" + (comment.empty() ? "" : "\n" + comment);
    }
  if (const KnownMember* known = knownMember("", name))
    return "**" + name + "**" + std::string(known->parameters) + "\n\n" + std::string(known->help);
  return "**" + name + "**, a global";
}

std::string aboutSelector(SourceViews& views, const std::string& path, const std::string& name) {
  for (const auto& script : views.relatedScripts(path))
    for (const BobFunctionInfo& function : script->symbols.functions)
      if (function.name == name && !function.ofObject.empty()) {
        const std::string comment = commentAbove(*script, function.nameOffset);
        return "```bob\n" + function.ofObject + "." + name + signatureOf(function.parameters) + "\n```" +
               (comment.empty() ? "" : "\n" + comment);
      }
  std::string text;
  for (const KnownMember& member : knownMembers())
    if (!member.object.empty() && member.name == name)
      text += (text.empty() ? "" : "\n\n") + std::string("**") + name + "**" + std::string(member.parameters) + " of " +
              std::string(member.object) + ": " + std::string(member.help);
  return text;
}

// The parts of "(a, b)".
std::vector<std::string> parametersIn(std::string_view text) {
  std::vector<std::string> result;
  for (size_t at = 1; at < text.size();) {
    const size_t end = std::min(text.find_first_of(",)", at), text.size());
    if (end > at) result.emplace_back(text.substr(at, end - at));
    at = end + 2;
  }
  return result;
}

json signatureJson(const std::string& name, const std::vector<std::string>& parameters, size_t argument,
                   std::string_view help) {
  json all = json::array();
  for (const std::string& parameter : parameters) all.push_back({{"label", parameter}});
  json signature = {{"label", name + signatureOf(parameters)}, {"parameters", std::move(all)}};
  if (!help.empty()) signature["documentation"] = {{"kind", "markdown"}, {"value", help}};
  return {{"signatures", {std::move(signature)}}, {"activeSignature", 0}, {"activeParameter", argument}};
}

}  // namespace

json completeScript(SourceViews& views, const std::string& path, const ScriptView& script, size_t inside,
                    size_t offset) {
  return ScriptCompletion(views, path, script, inside).all(*views.files.at(path)->text, offset);
}

json hoverScript(SourceViews& views, const std::string& path, size_t offset) {
  const auto found = nameAt(views, path, offset);
  if (!found || !found->second.isInScript) return nullptr;
  const auto& [name, place] = *found;
  std::string text;
  switch (name.kind) {
    case SharedNameKind::widget: text = aboutPageName(views, path, NameKind::widget, name.name); break;
    case SharedNameKind::style: text = aboutPageName(views, path, NameKind::style, name.name); break;
    case SharedNameKind::global: text = aboutGlobal(views, path, name.name); break;
    case SharedNameKind::selector: text = aboutSelector(views, path, name.name); break;
    case SharedNameKind::variable: {
      const bool isArgument = name.script->symbols.symbols[name.symbol].kind == BobSymbolKind::kArgument;
      text = "**" + name.name + "**, " + (isArgument ? "an argument" : "a local variable");
      break;
    }
    default: break;
  }
  if (text.empty()) return nullptr;
  return {{"contents", {{"kind", "markdown"}, {"value", text}}},
          {"range", rangeJson(place.text->rangeOf(place.begin, place.end))}};
}

json signatureAt(SourceViews& views, const std::string& path, size_t offset) {
  size_t inside = 0;
  const auto script = scriptAround(views, path, offset, &inside);
  BobCallAt call;
  if (!script || !callAt(script->tree, script->symbols, inside, &call) || call.name.empty()) return nullptr;
  for (const auto& other : views.relatedScripts(path))
    for (const BobFunctionInfo& function : other->symbols.functions)
      if (function.name == call.name && function.ofObject.empty() != call.isMethod)
        return signatureJson(call.name, function.parameters, call.argument, commentAbove(*other, function.nameOffset));
  for (const KnownMember& member : knownMembers())
    if (member.name == call.name && member.object.empty() != call.isMethod && !member.parameters.empty())
      return signatureJson(call.name, parametersIn(member.parameters), call.argument, member.help);
  return nullptr;
}
