#include "kit/lsp/pageview.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "kit/expand/expression.h"
#include "kit/source/sourcekeys.h"

namespace {

constexpr int kMaxTemplates = 64;  // in one another

bool isWidgetKind(ObjectKind kind) { return kind == ObjectKind::root || kind == ObjectKind::widget; }

// What a template makes, by what it says: it may be used where its file isn't open.
ObjectKind kindOfBody(const LooseNode& body) {
  if (body.find("font") || (body.find("size") && !body.find("type"))) return ObjectKind::style;
  return body.find("content") && body.find("style") ? ObjectKind::line : ObjectKind::widget;
}

bool isHex(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

bool isNameChar(char c) { return std::isalnum(uint8_t(c)) || c == '_'; }

}  // namespace

PageView::PageView(std::shared_ptr<const EditedText> t) : text(std::move(t)), top(parseLooseYaml(text->text())) {
  readTop();
}

// ---- reading

void PageView::readTop() {
  if (top.isList()) return readTable(top, ObjectKind::widget, "");
  const bool isPart = !top.find("page") && !top.find("constants") && !top.find("templates") && !top.find("include");
  if (isPart && top.find("type")) return readObject(top, ObjectKind::widget, 1, "");
  for (const LoosePair& pair : top.map) {
    if (pair.key == "page" && pair.value.isMap()) {
      readObject(pair.value, ObjectKind::root, 1, "");
    } else if (pair.key == "templates") {
      readTemplates(pair.value);
    } else if (pair.key == "constants") {
      for (const LoosePair& constant : pair.value.map) {
        define(NameKind::constant, constant, constant.key);
        readOther(constant.value, "");
      }
    } else if (pair.key == "include") {
      if (pair.value.isScalar()) files.push_back({pair.value.text, "include", pair.value.begin, pair.value.end});
      for (const LooseNode& file : pair.value.list)
        if (file.isScalar()) files.push_back({file.text, "include", file.begin, file.end});
    }
  }
}

void PageView::readTemplates(const LooseNode& all) {
  for (const LoosePair& pair : all.map) {
    define(NameKind::madeBy, pair, pair.key);
    if (const LoosePair* parameters = pair.value.find("parameters"))
      for (const LoosePair& parameter : parameters->value.map)
        define(NameKind::parameter, parameter, pair.key + "." + parameter.key);
    if (pair.value.isMap()) readObject(pair.value, kindOfBody(pair.value), 1, pair.key);
  }
}

std::string PageView::typeOf(const LooseNode& node, int depth) const {
  if (const LoosePair* type = node.find("type")) return type->value.text;
  const LooseNode* body = templateNamed(node.textOf("template"));
  return body && depth < kMaxTemplates ? typeOf(*body, depth + 1) : "";
}

void PageView::readObject(const LooseNode& node, ObjectKind kind, size_t number, const std::string& inside) {
  const std::string type = isWidgetKind(kind) ? typeOf(node) : "";
  const std::string label = objectLabel(kind, type, node.textOf("name"), number);
  const size_t index = objects.size();
  objectsByNode[&node] = index;
  if (const std::string name = node.textOf("name"); !name.empty() && (isWidgetKind(kind) || kind == ObjectKind::style))
    objectsByName.try_emplace({isWidgetKind(kind) ? NameKind::widget : NameKind::style, name}, index);
  objects.push_back({kind, type, label, &node, node.find("template") || node.find("include"), inside});
  const SourceObject object = objects[index];  // which moves while what lies in it is added
  for (const LoosePair& pair : node.map) readPair(pair, object);
}

const AttributeRow* PageView::rowOf(const SourceObject& object, const std::string& key) {
  std::string what = std::to_string(int(object.kind)) + object.type + "." + key;
  const auto [known, isNew] = rows.try_emplace(std::move(what), nullptr);
  if (isNew) known->second = rowOfAttribute(object.kind, object.type, key);
  return known->second;
}

void PageView::readPair(const LoosePair& pair, const SourceObject& object) {
  const LooseNode& value = pair.value;
  if (value.isScalar()) readExpressions(value, object.inside);
  if (pair.key == "template") return mention(NameKind::madeBy, value);
  if (pair.key == "style" && object.kind == ObjectKind::style) return mention(NameKind::style, value);
  if (pair.key == "include" && value.isScalar()) return files.push_back({value.text, pair.key, value.begin, value.end});
  if (pair.key == "name") {
    if (isWidgetKind(object.kind)) mention(NameKind::widget, value, true);
    if (object.kind == ObjectKind::style) mention(NameKind::style, value, true);
    return;
  }
  const AttributeRow* row = rowOf(object, pair.key);
  const AttributeForm form = row ? AttributeForm(row->kind) : std::nullopt;
  switch (row ? namedBy(*row) : NamedThing::nothing) {
    case NamedThing::widget: return mention(NameKind::widget, value);
    case NamedThing::style: return mention(NameKind::style, value);
    case NamedThing::file:
      if (value.isScalar()) files.push_back({value.text, pair.key, value.begin, value.end});
      for (const LooseNode& file : value.list)
        if (file.isScalar()) files.push_back({file.text, pair.key, file.begin, file.end});
      return;
    case NamedThing::nothing: break;
  }
  if (form == AttributeKind::script && value.isScalar()) return scripts.push_back({&pair, object.label});
  // What a template's children are is seen where it is used; here they are widgets.
  const bool isChildren = pair.key == "children" && isWidgetKind(object.kind);
  if (value.isList() && (isChildren || form))
    return readTable(value, form ? tableObjectKind(form) : ObjectKind::widget, object.inside);
  if (value.isScalar()) return readColor(value);
  readOther(value, object.inside);
}

void PageView::readTable(const LooseNode& list, ObjectKind kind, const std::string& inside) {
  for (size_t i = 0; i < list.list.size(); ++i) {
    if (list.list[i].isMap()) readObject(list.list[i], kind, i + 1, inside);
    if (list.list[i].isScalar()) readExpressions(list.list[i], inside);
  }
}

void PageView::readColor(const LooseNode& scalar) {
  if (scalar.text.size() != 7 || scalar.text[0] != '#' || !isHex(std::string_view(scalar.text).substr(1))) return;
  const std::string_view written = std::string_view(text->text()).substr(scalar.begin, scalar.end - scalar.begin);
  if (written.find(scalar.text) == std::string_view::npos) return;  // with an escape in it
  const size_t begin = scalar.begin + written.find(scalar.text);
  colors.push_back({begin, begin + scalar.text.size(), uint32_t(std::stoul(scalar.text.substr(1), nullptr, 16))});
}

// What is no object: parameters, repetitions, constants. Only texts in it mean something.
void PageView::readOther(const LooseNode& node, const std::string& inside) {
  if (node.isScalar()) {
    readExpressions(node, inside);
    readColor(node);
  }
  for (const LooseNode& item : node.list) readOther(item, inside);
  for (const LoosePair& pair : node.map) {
    if (pair.key == "repeat" && pair.value.isScalar() && pair.value.text.find('.') != std::string::npos)
      files.push_back({pair.value.text, "repeat", pair.value.begin, pair.value.end});
    readOther(pair.value, inside);
  }
}

// Names in "$(...)": not those after a point, and nothing in quotes.
void PageView::readExpressions(const LooseNode& scalar, const std::string& inside) {
  if (!hasExpression(scalar.text)) return;
  const std::string& all = scalar.text;
  for (size_t at = all.find("$("); at != std::string::npos; at = all.find("$(", at)) {
    if (at > 0 && all[at - 1] == '$') {
      at += 2;
      continue;
    }
    int depth = 0;
    for (++at; at < all.size();) {
      const char c = all[at];
      if (c == '"' || c == '\'') {
        at = std::min(all.find(c, at + 1), all.size() - 1) + 1;
      } else if (isNameChar(c)) {
        const size_t begin = at;
        while (at < all.size() && isNameChar(all[at])) ++at;
        if (std::isdigit(uint8_t(c)) || all[begin - 1] == '.') continue;
        const std::string name = all.substr(begin, at - begin);
        const std::string own = inside + "." + name;
        const bool isParameter = parameters.contains(own);
        names.push_back({isParameter ? NameKind::parameter : NameKind::constant, isParameter ? own : name,
                         scalar.sourceOf(begin), scalar.sourceOf(at - 1) + 1, false});
      } else {
        depth += c == '(' ? 1 : c == ')' ? -1 : 0;
        ++at;
        if (depth == 0) break;
      }
    }
  }
}

void PageView::mention(NameKind kind, const LooseNode& scalar, bool isDefinition) {
  if (scalar.isScalar() && !hasExpression(scalar.text))
    names.push_back({kind, scalar.text, scalar.begin, scalar.end, isDefinition});
}

void PageView::define(NameKind kind, const LoosePair& pair, const std::string& name) {
  if (kind == NameKind::parameter) parameters.insert(name);
  if (pair.hasColon) names.push_back({kind, name, pair.begin, pair.end, true});
}

// ---- looking up

const SourceObject* PageView::objectOf(const LooseNode& map) const {
  const auto found = objectsByNode.find(&map);
  return found == objectsByNode.end() ? nullptr : &objects[found->second];
}

const SourceObject* PageView::named(NameKind kind, const std::string& name) const {
  const auto found = objectsByName.find(std::pair(kind, name));
  return found == objectsByName.end() ? nullptr : &objects[found->second];
}

const NameMention* PageView::nameAt(size_t offset) const {
  for (const NameMention& name : names)
    if (name.begin <= offset && offset <= name.end) return &name;
  return nullptr;
}

const SourceScript* PageView::scriptAt(size_t offset) const {
  for (const SourceScript& script : scripts)
    if (script.pair->value.begin <= offset && offset <= script.pair->value.end) return &script;
  return nullptr;
}

const LooseNode* PageView::templateNamed(std::string_view name) const {
  const LoosePair* all = top.find("templates");
  const LoosePair* one = all && !name.empty() ? all->value.find(name) : nullptr;
  return one ? &one->value : nullptr;
}

std::vector<std::string> PageView::included() const {
  std::vector<std::string> result;
  for (const FileMention& file : files)
    if (file.key == "include" && !hasExpression(file.name)) result.push_back(file.name);
  return result;
}

std::vector<std::string> PageView::scriptFiles() const {
  std::vector<std::string> result;
  for (const FileMention& file : files)
    if (file.key == "scripts" && file.name.ends_with(".bob")) result.push_back(file.name);
  return result;
}
